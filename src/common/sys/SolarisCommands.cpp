#include "common/sys/SolarisCommands.h"

#include <iterator>

namespace sys {
namespace solaris {
namespace {

// Plain constants, so that other files' constants may be made from it at start-up.
const Entry kTable[] = {
    // The network groups.
    {Id::Ifconfig, Form::Run, "ifconfig", "ifconfig -a", OnLinux::Answered, "no interfaces, so no address rows"},
    {Id::Netstat, Form::Run, "netstat", "netstat -rn", OnLinux::Answered, "no default routes: gateways left empty"},
    {Id::DladmPhysical, Form::Run, "dladm", "dladm show-phys -p -o link,media,device", OnLinux::Answered,
     "no physical links"},
    {Id::DladmFactoryAddresses, Form::Run, "dladm", "dladm show-phys -m -p -o link,slot,address", OnLinux::Answered,
     "links keep their plumbed address only"},
    {Id::DladmLinks, Form::Run, "dladm", "dladm show-link -p -o link,class,over", OnLinux::Answered,
     "no aggregations"},
    {Id::DladmDevices, Form::Run, "dladm", "dladm show-dev", OnLinux::Absent,
     "no physical links (asked on Solaris 10 only)"},
    {Id::DladmAggregations, Form::Run, "dladm", "dladm show-aggr", OnLinux::Absent,
     "no aggregations (asked on Solaris 10 only)"},
    {Id::Modinfo, Form::Run, "modinfo", "modinfo", OnLinux::Answered, "drivers without a version"},
    // Devices and the keyboard.
    {Id::Prtconf, Form::Run, "prtconf", "prtconf -pv", OnLinux::Answered, "no PCI device rows"},
    {Id::Kbd, Form::Run, "kbd", "kbd -t -l", OnLinux::Answered, "the keyboard from /etc/default/kbd alone"},
    // The system's locale.
    {Id::Svcprop, Form::Run, "svcprop", "svcprop -p environment/LANG svc:/system/environment:init", OnLinux::Absent,
     "the locale from /etc/default/init"},
    // Zones and pools.
    {Id::Zoneadm, Form::Run, "zoneadm", "zoneadm list -c -p", OnLinux::Absent, "no child zones"},
    {Id::ZonecfgInfo, Form::Run, "zonecfg", "zonecfg -z {zone} info {property}", OnLinux::Absent,
     "the child zone's property left empty"},
    {Id::Poolbind, Form::Run, "poolbind", "poolbind -q {pid}", OnLinux::Absent, "no pool name"},
    {Id::Zonename, Form::Shell, "zonename", "zonename 2>/dev/null", OnLinux::Answered,
     "ps is asked for the zone (the answer exits 127, as a shell without the program)"},
    {Id::ProcessZone, Form::Shell, "ps", "LANG=C; ps -o zone -p {pid} 2>/dev/null | sed '2q;d' 2>/dev/null",
     OnLinux::Answered, "no zone name: not in a zone"},
    {Id::ProcessZoneId, Form::Shell, "ps", "LANG=C; ps -o zoneid -p {pid} 2>/dev/null | sed '2q;d' 2>/dev/null",
     OnLinux::Answered, "no zone id: not in a zone"},
    // Storage.
    {Id::Iostat, Form::Shell, "iostat", "/usr/bin/iostat -En", OnLinux::Answered, "iostat is asked on the PATH"},
    {Id::IostatOnPath, Form::Shell, "iostat", "iostat -En", OnLinux::Answered, "no CD/DVD drive rows"},
    {Id::DevDiskListing, Form::Shell, "ls", "ls -la /dev/ | grep disk", OnLinux::Answered, "no floppy drive row"},
    {Id::DevPcmciaListing, Form::Shell, "ls", "ls -la /dev/| grep pcmcia", OnLinux::Answered, "no PCMCIA row"},
    {Id::ProcessList, Form::Shell, "ps", "/usr/bin/ps -ef", OnLinux::Native, "no backup program seen running"},
    // Files.
    {Id::Release, Form::File, "", "/etc/release", OnLinux::Answered, "no release banner"},
    {Id::InitDefaults, Form::File, "", "/etc/default/init", OnLinux::Answered, "no time zone or locale settings"},
    {Id::KbdDefaults, Form::File, "", "/etc/default/kbd", OnLinux::Answered, "kbd's own answer alone"},
    {Id::MountTable, Form::File, "", "/etc/mnttab", OnLinux::Answered, "no partition rows"},
    {Id::PathToInst, Form::File, "", "/etc/path_to_inst", OnLinux::Answered, "links without PCI ids"},
    {Id::ResolverConf, Form::File, "", "/etc/resolv.conf", OnLinux::Native, "no domain or name servers"},
    {Id::CorePackageInfo, Form::File, "", "/var/sadm/pkg/SUNWcsr/pkginfo", OnLinux::Absent, "no install date"},
    {Id::KeyboardLayouts, Form::File, "", "/usr/share/lib/keytables/type_6/kbd_layouts", OnLinux::Absent,
     "layout numbers without names"},
    {Id::RawDiskDir, Form::File, "", "/dev/rdsk", OnLinux::Answered, "no disks or drives"},
    {Id::MemoryDevice, Form::File, "", "/dev/xsvc", OnLinux::Answered, "no SMBIOS table"},
    {Id::PromDevice, Form::File, "", "/dev/openprom", OnLinux::Absent, "no PROM properties"},
};

// Programs the table names that Linux has as the same tool.
const char* const kOnLinuxToo[] = {"ls", "ps", "sh", "sed", "grep"};

// A value for a {word} part: never empty, never an option ("-x").
bool isWord(const std::string& text)
{
    if (text.empty() || text[0] == '-') return false;
    for (const char c : text)
        if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_' ||
              c == '-'))
            return false;
    return true;
}

bool isPlaceholder(const std::string& word) { return word.size() > 2 && word.front() == '{' && word.back() == '}'; }

// Split on single blanks, empty words kept, so that a line matches only its own spacing.
std::vector<std::string> words(const std::string& text)
{
    std::vector<std::string> out(1);
    for (const char c : text) {
        if (c == ' ')
            out.emplace_back();
        else
            out.back() += c;
    }
    return out;
}

// The entry's words with `values` in its {word} parts; empty when a value is missing or no word.
std::vector<std::string> filled(const Entry& e, const std::vector<std::string>& values)
{
    std::vector<std::string> out = words(e.text);
    size_t next = 0;
    for (std::string& w : out) {
        if (!isPlaceholder(w)) continue;
        if (next >= values.size() || !isWord(values[next])) return {};
        w = values[next++];
    }
    return next == values.size() ? out : std::vector<std::string>();
}

bool matches(const Entry& e, const std::vector<std::string>& given)
{
    const std::vector<std::string> pattern = words(e.text);
    if (pattern.size() != given.size()) return false;
    for (size_t i = 0; i < given.size(); ++i)
        if (isPlaceholder(pattern[i]) ? !isWord(given[i]) : pattern[i] != given[i]) return false;
    return true;
}

const Entry* find(Form form, const std::vector<std::string>& given)
{
    for (const Entry& e : kTable)
        if (e.form == form && matches(e, given)) return &e;
    return nullptr;
}

std::string lastPart(const std::string& program)
{
    const size_t slash = program.rfind('/');
    return slash == std::string::npos ? program : program.substr(slash + 1);
}

}  // namespace

const std::vector<Entry>& table()
{
    static const std::vector<Entry> all(std::begin(kTable), std::end(kTable));
    return all;
}

const Entry& entry(Id id) { return kTable[static_cast<size_t>(id)]; }

std::vector<std::string> argv(Id id, const std::vector<std::string>& values) { return filled(entry(id), values); }

std::string line(Id id, const std::vector<std::string>& values)
{
    std::string out;
    const std::vector<std::string> w = filled(entry(id), values);
    for (size_t i = 0; i < w.size(); ++i) out += (i ? " " : "") + w[i];
    return out;
}

const char* path(Id id) { return entry(id).text; }

std::vector<std::string> zonecfgInfo(const std::string& zone, const std::string& property)
{
    return argv(Id::ZonecfgInfo, {zone, property});
}

std::vector<std::string> poolbindQuery(long pid) { return argv(Id::Poolbind, {std::to_string(pid)}); }

std::string processZone(long pid) { return line(Id::ProcessZone, {std::to_string(pid)}); }

std::string processZoneId(long pid) { return line(Id::ProcessZoneId, {std::to_string(pid)}); }

const Entry* findRun(const std::vector<std::string>& given) { return find(Form::Run, given); }

const Entry* findShell(const std::string& text) { return find(Form::Shell, words(text)); }

const Entry* findFile(const std::string& text)
{
    for (const Entry& e : kTable)
        if (e.form == Form::File && text == e.text) return &e;
    return nullptr;
}

bool solarisOnly(const std::string& program)
{
    const std::string name = lastPart(program);
    if (name.empty()) return false;
    for (const char* native : kOnLinuxToo)
        if (name == native) return false;
    for (const Entry& e : kTable)
        if (e.form != Form::File && name == e.program) return true;
    return false;
}

std::string solarisOnlyProgramIn(const std::string& text)
{
    size_t start = 0;
    while (start <= text.size()) {
        const size_t end = text.find_first_of(";|&()\n`", start);
        const std::string command = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
        size_t at = 0;
        for (;;) {
            at = command.find_first_not_of(" \t", at);
            if (at == std::string::npos) break;
            const size_t stop = command.find_first_of(" \t", at);
            const std::string word = command.substr(at, stop == std::string::npos ? std::string::npos : stop - at);
            if (word.find('=') != std::string::npos && word[0] != '=') {  // a variable set for the command
                at = stop;
                if (stop == std::string::npos) break;
                continue;
            }
            if (solarisOnly(word)) return lastPart(word);
            break;
        }
        if (end == std::string::npos) break;
        start = end + 1;
    }
    return std::string();
}

}  // namespace solaris
}  // namespace sys
