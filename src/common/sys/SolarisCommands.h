#pragma once
// The Solaris commands and files the groups read, written once. The groups
// build their command lines and paths from here; the Linux seam recognises
// the same entries to answer them in their Solaris form, and refuses any
// other command of a Solaris-only program rather than run a Linux program of
// that name (net-tools' ifconfig, sysstat's iostat, kmod's modinfo mean
// something else).
//
// A variable part is written {word} in the entry's text and filled by a
// builder below; it stands for one word of letters, digits, '.', '_' and
// '-', not beginning with '-' (a zone name, a property, a process id), so a
// filled line never carries an option, a blank or a shell character.
#include <string>
#include <vector>

namespace sys {
namespace solaris {

// How the groups ask.
enum class Form {
    Run,    // a program and its arguments, no shell (the command runner)
    Shell,  // a command line through the shell (popen)
    File,   // a file (or device) opened through the seam
};

// What a Linux machine has of it.
enum class OnLinux {
    Answered,  // the Linux seam answers it in its Solaris form
    Absent,    // Solaris only: the Linux seam fails it as a machine without it would
    Native,    // Linux has the same program or file, read as it is
};

enum class Id {
    Ifconfig,
    Netstat,
    DladmPhysical,
    DladmFactoryAddresses,
    DladmLinks,
    DladmDevices,       // Solaris 10's dladm
    DladmAggregations,  // Solaris 10's dladm
    Modinfo,
    Prtconf,
    Kbd,
    Svcprop,
    Zoneadm,
    ZonecfgInfo,
    Poolbind,
    Zonename,
    ProcessZone,
    ProcessZoneId,
    Iostat,
    IostatOnPath,
    DevDiskListing,
    DevPcmciaListing,
    ProcessList,
    Release,
    InitDefaults,
    KbdDefaults,
    MountTable,
    PathToInst,
    ResolverConf,
    CorePackageInfo,
    KeyboardLayouts,
    RawDiskDir,
    MemoryDevice,
    PromDevice,
};

struct Entry {
    Id id;
    Form form;
    const char* program;  // the program a command runs (its last path part); empty for a file
    const char* text;     // the argument words blank-separated, the shell line, or the path
    OnLinux onLinux;
    const char* missing;  // what the groups make of no answer
};

// Every entry, in the order of Id.
const std::vector<Entry>& table();
const Entry& entry(Id id);

// The entry's argument vector, shell line or path, with `values` filling its
// {word} parts in order. A value that is no word, or a missing one, leaves
// the result empty (no command is built).
std::vector<std::string> argv(Id id, const std::vector<std::string>& values = {});
std::string line(Id id, const std::vector<std::string>& values = {});
const char* path(Id id);

// The commands with a variable part.
std::vector<std::string> zonecfgInfo(const std::string& zone, const std::string& property);
std::vector<std::string> poolbindQuery(long pid);
std::string processZone(long pid);
std::string processZoneId(long pid);

// The entry an argument vector, a shell line or a path is, or null.
const Entry* findRun(const std::vector<std::string>& argv);
const Entry* findShell(const std::string& line);
const Entry* findFile(const std::string& path);

// True when the program (a name or a path) is one of the table's programs
// that Linux has no true equivalent of: the Linux seam never runs it.
bool solarisOnly(const std::string& program);

// The first Solaris-only program a shell line would run (each command of
// its pipes and lists, variable settings skipped), or empty.
std::string solarisOnlyProgramIn(const std::string& line);

}  // namespace solaris
}  // namespace sys
