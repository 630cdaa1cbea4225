// No scan waits on the network. glibc's gethostid() resolves the host name
// when "/etc/hostid" is absent; the host id here comes from local facts only.
// This program interposes gethostid and the name look-ups, so any call of
// them from the scanner (linked in whole) is counted; a scan of this machine
// under a host name that resolves nowhere must make none.
#include <dlfcn.h>
#include <netdb.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "common/sys/LinuxHostId.h"
#include "invscan/com/Catalogue.h"
#include "invscan/com/GroupFactory.h"
#include "invscan/com/GroupRegistry.h"
#include "support/Guarded.h"
#include "support/TableReader.h"
#include "support/TempDir.h"

namespace {
std::atomic<int> g_lookUps{0};

template <class F>
F next(const char* name)
{
    return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}
}  // namespace

// Never forwarded: the real one may wait on DNS.
extern "C" long gethostid(void)
{
    ++g_lookUps;
    return 0;
}

extern "C" int getaddrinfo(const char* node, const char* service, const struct addrinfo* hints, struct addrinfo** res)
{
    ++g_lookUps;
    using F = int (*)(const char*, const char*, const struct addrinfo*, struct addrinfo**);
    static const F real = next<F>("getaddrinfo");
    return real ? real(node, service, hints, res) : EAI_FAIL;
}

extern "C" struct hostent* gethostbyname(const char* name)
{
    ++g_lookUps;
    using F = struct hostent* (*)(const char*);
    static const F real = next<F>("gethostbyname");
    return real ? real(name) : nullptr;
}

extern "C" int gethostbyname_r(const char* name, struct hostent* ret, char* buf, size_t buflen,
                               struct hostent** result, int* h_errnop)
{
    ++g_lookUps;
    using F = int (*)(const char*, struct hostent*, char*, size_t, struct hostent**, int*);
    static const F real = next<F>("gethostbyname_r");
    return real ? real(name, ret, buf, buflen, result, h_errnop) : ENOENT;
}

namespace {

using namespace testsupport;

// Where the id comes from, in order, on trees that have less and less.
TEST(LocalHostId, TakesHostidThenMachineIdThenAMacAndNeverTheNetwork)
{
    const uint32_t stored = 0x0a1b2c3d;
    const std::string hostid(reinterpret_cast<const char*>(&stored), 4);  // glibc's form: native order
    struct Case {
        const char* name;
        std::vector<std::pair<std::string, std::string>> files;
        uint32_t id;
        const char* source;
    } cases[] = {
        {"hostid wins over the rest",
         {{"etc/hostid", hostid}, {"etc/machine-id", "8f3e2b1c00000000000000000000000a\n"}},
         stored,
         "/etc/hostid"},
        {"a short hostid is no id",
         {{"etc/hostid", "ab"}, {"etc/machine-id", "8f3e2b1c00000000000000000000000a\n"}},
         0x8f3e2b1c,
         "/etc/machine-id"},
        {"D-Bus's machine id when systemd's is absent",
         {{"var/lib/dbus/machine-id", "00C0FFEE99999999999999999999999a\n"}},
         0x00c0ffee,
         "/var/lib/dbus/machine-id"},
        {"a machine id that is no hex falls through to the MAC",
         {{"etc/machine-id", "uninitialized\n"},
          {"sys/class/net/lo/address", "00:00:00:00:00:00\n"},
          {"sys/class/net/eth1/address", "52:54:00:12:34:57\n"},
          {"sys/class/net/eth0/address", "52:54:00:12:34:56\n"}},
         0x00123456,
         "MAC of eth0"},
        {"an all-zero MAC is passed over",
         {{"sys/class/net/dummy0/address", "00:00:00:00:00:00\n"}, {"sys/class/net/wlan0/address", "aa:bb:cc:dd:ee:ff\n"}},
         0xccddeeff,
         "MAC of wlan0"},
        {"nothing at all", {{"sys/class/net/lo/address", "00:00:00:00:00:00\n"}}, 0, "none"},
    };
    for (const Case& c : cases) {
        TempDir root;
        for (const auto& file : c.files) root.write(file.first, file.second);
        std::string source;
        EXPECT_EQ(sys::localHostId(root.path(), source), c.id) << c.name;
        EXPECT_EQ(source, c.source) << c.name;
    }
    EXPECT_EQ(g_lookUps.load(), 0);
}

// In a child with a host name of its own where the system allows it (a UTS
// namespace): every group of this machine scanned; the number of look-ups,
// then the ComponentID table.
std::string scanUnderUnresolvableName(bool& renamed)
{
    const testsupport::ChildText child = testsupport::textFromChild(
        [] {
            const char name[] = "invscan-no-such-host.invalid";
            const bool own = unshare(CLONE_NEWUTS) == 0 && sethostname(name, sizeof name - 1) == 0;
            g_lookUps = 0;
            std::string component;
            GroupFactory* factory = GroupFactory::getInstance();
            factory->startScan();
            for (const korGroupDef* g = GROUPS_DEF; g->id != KOR_END; ++g) {
                if (!findGroupClass(g->id)) continue;
                std::unique_ptr<KorGroup> group(factory->getKORGroup(g->id));
                std::unique_ptr<KorTable> table(group ? group->getTable() : nullptr);
                if (table && g->id == 1) component = tableText(*table);
            }
            factory->endScan();
            return std::string(own ? "renamed " : "as is ") + std::to_string(g_lookUps.load()) + "\n" + component;
        },
        false);
    renamed = child.text.rfind("renamed ", 0) == 0;
    return child.text;
}

TEST(LocalHostId, AScanUnderAHostNameThatResolvesNowhereLooksNothingUp)
{
    bool renamed = false;
    const std::string report = scanUnderUnresolvableName(renamed);
    if (!renamed) std::printf("no UTS namespace here: scanned under this host's own name\n");
    const size_t cut = report.find('\n');
    ASSERT_NE(cut, std::string::npos) << report;
    EXPECT_EQ(report.substr(report.find(' ') + 1, cut - report.find(' ') - 1), "0") << "name look-ups made";
    // The serial the table shows is the local one.
    std::string source;
    const std::string serial = std::to_string(sys::localHostId("", source));
    EXPECT_NE(report.find("HW Serial = " + serial + "\n"), std::string::npos) << report;
}

}  // namespace
