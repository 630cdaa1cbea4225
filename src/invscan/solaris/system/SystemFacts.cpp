#include "invscan/solaris/system/SystemFacts.h"

#include <cstdlib>
#include <cwchar>
#include <cstring>
#include <vector>

#include "common/sys/Portable.h"
#include "common/sys/SolarisCommands.h"
#include "common/sys/System.h"
#include "common/util/SystemFile.h"
#include "framework/Trace.h"
#include "framework/ZPopen.h"

namespace systemfacts {
namespace {

const char* const kSource = "./../../../src/invscan/solaris/SystemFacts";

// A named kernel statistic as a number, whatever its integer width.
bool namedNumber(const kstat_t* ksp, const char* name, long long& value)
{
    if (!ksp || !ksp->ks_data || ksp->ks_type != KSTAT_TYPE_NAMED) return false;
    const auto* entries = static_cast<const kstat_named_t*>(ksp->ks_data);
    for (uint_t i = 0; i < ksp->ks_ndata; ++i) {
        const kstat_named_t& n = entries[i];
        if (std::strncmp(n.name, name, KSTAT_STRLEN) != 0) continue;
        switch (n.data_type) {
        case KSTAT_DATA_INT32: value = n.value.i32; return true;
        case KSTAT_DATA_UINT32: value = n.value.ui32; return true;
        case KSTAT_DATA_INT64: value = n.value.i64; return true;
        case KSTAT_DATA_UINT64: value = static_cast<long long>(n.value.ui64); return true;
        default: return false;
        }
    }
    return false;
}

long long kernelBootTime(sys::System& os)
{
    kstat_ctl_t* kc = os.kstat_open();
    if (!kc) return -1;
    char module[] = "unix", name[] = "system_misc";
    long long boot = -1;
    kstat_t* ksp = os.kstat_lookup(kc, module, 0, name);
    if (ksp && os.kstat_read(kc, ksp, nullptr) != -1 && !namedNumber(ksp, "boot_time", boot)) boot = -1;
    os.kstat_close(kc);
    return boot;
}

// Solaris 11 keeps the system locale in the service configuration rather than
// in /etc/default/init; older releases have no svcprop to ask. Asked once
// per process, as the probes are run once: both the operating system and
// the regional group want it, and a spawn costs more than the whole read.
std::string serviceLocale(sys::System& os)
{
    static bool asked = false;
    static std::string answer;
    if (asked) return answer;
    if (sysinfoText(os, SI_RELEASE).compare(0, 4, "5.11") != 0) return std::string();
    asked = true;
    ZPopen svcprop(sys::solaris::argv(sys::solaris::Id::Svcprop));
    if (svcprop.run() == 0 && !svcprop.lines().empty()) answer = trimmed(svcprop.lines().front());
    return answer;
}

std::string firstSet(const std::map<std::string, std::string>& values, std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        auto it = values.find(name);
        if (it != values.end() && !it->second.empty()) return it->second;
    }
    return std::string();
}

}  // namespace

std::string sysinfoText(sys::System& os, int command)
{
    char buffer[257];
    const long n = os.sysinfo(command, buffer, sizeof buffer);
    return n > 0 ? std::string(buffer) : std::string();
}

long long bootTime(sys::System& os)
{
    long long boot = -1;
    os.setutxent();
    while (const struct utmpx* u = os.getutxent())
        if (u->ut_type == BOOT_TIME) boot = u->ut_tv.tv_sec;  // the last boot wins
    os.endutxent();
    if (boot > 0) return boot;
    CcLogWrapper::traceMAX(getCcLogHw(), __LINE__, kSource, "bootTime()", "hardware %s",
                           "no boot record in utmpx, asking the kernel");
    boot = kernelBootTime(os);
    if (boot <= 0) {
        CcLogWrapper::traceMIN(getCcLogHw(), __LINE__, kSource, "bootTime()", "hardware %s",
                               "ERROR! boot time unknown");
        return -1;
    }
    return boot;
}

int runLevel(sys::System& os)
{
    int level = -1;
    os.setutxent();
    while (const struct utmpx* u = os.getutxent()) {
        if (u->ut_type != RUN_LVL) continue;
        // ut_line need not end in a NUL.
        const std::string line(u->ut_line, sys::boundedLength(u->ut_line, sizeof u->ut_line));
        const size_t at = line.find("run-level ");
        if (at == std::string::npos || at + 10 >= line.size()) continue;
        const char c = line[at + 10];
        if (c >= '0' && c <= '6')
            level = c - '0';
        else if (c == 'S' || c == 's')
            level = 1;  // single user
    }
    os.endutxent();
    return level;
}

std::map<std::string, std::string> parseSettings(const std::string& text)
{
    std::map<std::string, std::string> out;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::string line = trimmed(text.substr(start, end - start));
        start = end + 1;
        if (line.empty() || line[0] == '#') continue;
        if (line.compare(0, 7, "export ") == 0) line = trimmed(line.substr(7));
        const size_t equals = line.find('=');
        if (equals == std::string::npos || equals == 0) continue;
        std::string value = trimmed(line.substr(equals + 1));
        if (value.size() >= 2 && (value[0] == '"' || value[0] == '\'') && value.back() == value[0])
            value = value.substr(1, value.size() - 2);
        out[trimmed(line.substr(0, equals))] = value;
    }
    return out;
}

std::map<std::string, std::string> readSettings(sys::System& os, const char* path)
{
    std::string text;
    if (!util::readSystemFile(os, path, text, 64 * 1024)) return {};
    return parseSettings(text);
}

Locales readLocales(sys::System& os)
{
    const auto init = readSettings(os, sys::solaris::path(sys::solaris::Id::InitDefaults));
    Locales l;
    l.system = firstSet(init, {"LC_ALL", "LANG"});
    if (l.system.empty()) l.system = serviceLocale(os);
    l.messages = firstSet(init, {"LC_ALL", "LC_MESSAGES"});
    if (l.system.empty()) l.system = "C";
    if (l.messages.empty()) l.messages = l.system;
    for (const char* name : {"LC_ALL", "LANG"}) {
        const char* value = std::getenv(name);
        if (value && *value) {
            l.user = value;
            break;
        }
    }
    if (l.user.empty()) l.user = l.system;
    return l;
}

std::string languageOf(const std::string& locale)
{
    const size_t end = locale.find_first_of("_.@");
    return locale.substr(0, end);
}

std::string trimmed(const std::string& text)
{
    const char* blanks = " \t\r\n";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return std::string();
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace systemfacts
