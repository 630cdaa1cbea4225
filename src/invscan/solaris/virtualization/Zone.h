#pragma once
// The Solaris zone the scanner runs in, and from a global zone (or a kernel
// zone) the other zones of the machine. Everything is read once, in the
// constructor, from zonename/ps/zoneadm/zonecfg/poolbind, the
// virtualization-environment and resource-pool libraries, and the processor
// set calls; whatever cannot be read keeps its reset value.
#include <memory>
#include <string>
#include <vector>

class Zone {
public:
    struct ZoneInfo {
        std::string id;
        std::string hostid;
        std::string name;
        std::string type;           // a v12n environment (local) or a zonecfg brand (child)
        std::string typeDisplayed;  // "Zone", "Kernel-Zone" or empty
        std::string path;
        float capacity;
        std::string sharedPoolName;
        std::string sharedPoolType;
        std::string poolResourceName;
        float sharedPoolCapacity;
        ZoneInfo() { resetZoneInfo(*this); }
    };

    static const char* const IDENTIFIER_NOT_SET;
    static const float CAPACITY_NOT_AVAILABLE;
    static const char* const ZONE_TYPE_ZONE;
    static const char* const ZONE_TYPE_KERNEL_ZONE;
    static const char* const ZONE_TYPE_UNKNOWN;
    static const char* const ZONE_TYPE_UNINITIALIZED;
    static const char* const ZONE_TYPE_ZONECFG_BRAND_LABELED;
    static const char* const ZONE_TYPE_ZONECFG_BRAND_SOLARIS10;
    static const char* const ZONE_TYPE_ZONECFG_BRAND_SOLARIS_KZ;
    static const char* const ZONE_TYPE_ZONECFG_BRAND_SOLARIS;
    static const char* const ZONE_TYPE_V12N_ENV_XEN;
    static const char* const ZONE_TYPE_V12N_ENV_VIRTUALBOX;
    static const char* const ZONE_TYPE_V12N_ENV_VMWARE;
    static const char* const ZONE_TYPE_V12N_ENV_KERNEL_ZONE;
    static const char* const ZONE_TYPE_V12N_ENV_NON_GLOBAL_ZONE;
    static const char* const ZONE_TYPE_V12N_ENV_LOGICAL_DOMAIN;
    static const char* const ZONE_TYPE_V12N_ENV_KVM;
    static const char* const ZONE_TYPE_V12N_ENV_UNKNOWN;
    static const char* const ZONECFG_INFO_PROPNAME_POOL;
    static const char* const ZONECFG_INFO_PROPNAME_BRAND;
    static const char* const ZONECFG_INFO_PROPNAME_HOSTID;
    static const char* const ZONE_NAMES_PSET;
    static const char* const ZONE_NAMES_GLOBAL_ZONE;
    static const char* const LIB_POOL;
    static const char* const LIB_V12N;
    static const char* const LIB_PATH64;
    static const char* const LIB_PATH;

    Zone();

    const ZoneInfo& getZoneInfo() const { return m_info; }
    const std::vector<ZoneInfo>& getChildZonesInfo() const { return m_children; }
    bool isInsideZone() const { return m_insideZone; }
    // A kernel zone counts as global: it owns zones of its own.
    bool isGlobalZone() const;
    bool isKernelZone() const;
    bool isInsidePool() const { return !m_info.sharedPoolName.empty(); }

    static void resetZoneInfo(ZoneInfo& info);

    // The reading steps; 0 (or true) on success, each tracing what it did.
    int readAllZoneData();
    int readZoneType(ZoneInfo& info);
    static void setTypeDisplayed(ZoneInfo& info);
    int readZoneCapacity(float& capacity);
    int getPoolNameForCurrentProcess(std::string& poolName);
    int readPoolInfo(ZoneInfo& info);
    int readChildZonesInfo();
    bool getZonePropertyValue(const std::string& property, const std::string& zoneName, std::string& out);
    // Runs `argv` (from the Solaris command table) and matches its joined
    // output lines; false when it did not run (or `argv` is empty).
    bool getMatchedCommandOutput(const std::vector<std::string>& argv, const std::string& regex, std::string& out);

private:
    int readPoolFacts(ZoneInfo& info);  // readPoolInfo's steps, each returning its result

    ZoneInfo m_info;
    std::vector<ZoneInfo> m_children;
    bool m_insideZone = false;
};

// The zone facts of this scan: read by the first of the capacity and the
// virtual machine groups that asks, shared by the other.
std::shared_ptr<const Zone> scanZone();
