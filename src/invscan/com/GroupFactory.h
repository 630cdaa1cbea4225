#pragma once
// The library's entry point: the process-wide factory the host asks for
// groups, and the hardware configuration it loads for them.
//
// Threads: the library is meant to be driven by one host thread at a time,
// but a host may call it from several. Every entry point (each method here,
// each group's getTable(), the probe accessors, the catalogue look-up by
// name, the printing functions, Toolbox) takes one process-wide recursive
// lock, so calls from several threads take turns: each gets correct tables,
// and scans made at once last as long as made one after the other. No entry
// point throws: an exception, out of memory included, becomes its neutral
// result (a null group or table, 0 or false) and a minimum-level trace line.
#include <list>
#include <map>
#include <vector>

#include "framework/NimCfg.h"
#include "framework/String.h"
#include "invscan/com/Export.h"
#include "invscan/com/HWConfig.h"
#include "invscan/com/KorGroup.h"

class Node;

class INVSCAN_API GroupFactory {
public:
    static GroupFactory* getInstance();

    virtual ~GroupFactory();
    GroupFactory(const GroupFactory&) = delete;
    GroupFactory& operator=(const GroupFactory&) = delete;

    // Sets the configuration file path (does not read it); returns 1.
    int initialise();
    void setHWConfigFile();
    const String& getHWConfigFile() const { return m_HWConfigFile; }

    // Bracket a scan; its end drops the facts its groups shared.
    void startScan();
    void endScan();

    // A new group the caller owns, or null for an id or name with no group
    // and for a group the configuration keeps off this machine.
    KorGroup* getKORGroup(unsigned long groupId);
    KorGroup* getGroup(const String& groupName);
    // Whether "hwscanner.exclude" (group names or ids, separated by commas)
    // names the group: operators keep a slow or risky group off a machine so.
    static bool isExcluded(unsigned long groupId);
    // Appends the catalogue's group names in table order; returns 0.
    int getAllGroups(std::list<String>& names);

    // Reads the hardware configuration file. 0 on success; otherwise the
    // reader's status, and the attribute lists and records are left empty.
    // `priority` is the nice increment used when the file sets none.
    int loadNodeFromFile(const String& path, int priority);
    void getHWGroupFromNode(const Node* node);
    void getProcessorFromNode(const Node* processors);
    void getQCMFromNode(const Node* qcms);

    const AttrList& getGlobalAttrList() const { return m_globalAttrs; }
    // Null when the file had no section for the group and no group of that
    // name was handed out yet.
    const AttrList* getGroupAttrList(const String& groupName) const;
    const std::vector<ProcessorInfo*>& getProcessorInfo() const { return m_processors; }
    const std::vector<QCMInfo*>& getQCMInfo() const { return m_qcms; }
    // The file the last successful load read (empty after a failed one).
    const std::list<String>& getLoadedFiles() const { return m_loadedFiles; }
    // Settings in force after the last load (texts as read).
    const String& getCpuThresholdText() const { return m_cpuThreshold; }

private:
    GroupFactory() = default;
    void clearConfiguration();
    void applySettings(const Node* settings, int priority);

    static GroupFactory* singleton_;

    std::vector<ProcessorInfo*> m_processors;
    std::vector<QCMInfo*> m_qcms;
    String m_HWConfigFile;
    std::list<String> m_loadedFiles;
    AttrList m_globalAttrs;
    std::map<String, AttrList> m_groupAttrs;
    String m_cpuThreshold;
};

// The build's date and time in the date-time form 2022-06-01-15.27.51.000000,
// in one static buffer.
INVSCAN_API const char* getBuildDateQVRB();
INVSCAN_API extern const char QVRB_BuildDate[];  // yy/mm/dd
INVSCAN_API extern const char QVRB_BuildTime[];  // hh:mm:ss

// Longest a command or probe may run, in seconds (NimCfg::getTimeout()).
const int NIM_DEFAULT_MAX_TIMEOUT = NimCfg::DEFAULT_TIMEOUT;
INVSCAN_API int GetNIMMaxTimeout();
