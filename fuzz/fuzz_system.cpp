// The readers of the system description groups over any text: the release
// banner (/etc/release) with the kernel version, the settings files
// (/etc/default/init, /etc/default/kbd), the install date (the core
// package's pkginfo), "kbd -t -l" and the keyboard layouts file, and the
// mount table (/etc/mnttab). Reached as a scan reaches them: the Operating
// System facts are gathered and shaped, and the Keyboard and Partition
// groups build their tables, on a simulated machine answering with the input.
#include <clocale>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "FuzzedAnswers.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/KeyboardGroup.h"
#include "invscan/solaris/PartitionGroup.h"
#include "invscan/solaris/SystemFacts.h"
#include "invscan/solaris/SystemGroups.h"

namespace {

using fuzzed::Answer;

const std::vector<Answer>& answers()
{
    static const std::vector<Answer> list = {
        {Answer::File, "/etc/release"},
        {Answer::Sysinfo, "", SI_VERSION},
        {Answer::File, "/etc/default/init"},
        {Answer::File, "/var/sadm/pkg/SUNWcsr/pkginfo"},
        {Answer::Run, "kbd -t -l"},
        {Answer::File, "/etc/default/kbd"},
        {Answer::File, "/usr/share/lib/keytables/type_6/kbd_layouts"},
        {Answer::File, "/etc/mnttab"},
    };
    return list;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // Texts are cut on character boundaries in the locale hosts mostly run in.
    std::setlocale(LC_ALL, "C.UTF-8");
    return 0;
}

// The high bit of the first byte: Solaris 10, else 11 (whose system locale
// the service configuration keeps).
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzed::Machine m = fuzzed::answering(data, size, answers());
    replay::SimulatedSystem& os = *m.os;
    os.sysinfoValues[SI_SYSNAME] = "SunOS";
    os.sysinfoValues[SI_RELEASE] = m.highBit ? "5.10" : "5.11";
    os.commands["svcprop -p environment/LANG svc:/system/environment:init"].output = "en_US.UTF-8\n";
    // Two file systems with sizes: the rest fail statvfs.
    struct statvfs64 fs{};
    fs.f_frsize = 8192;
    fs.f_blocks = 2573694;
    fs.f_bavail = 1378547;
    os.fileSystems["/"] = fs;
    os.fileSystems["/export/home"] = fs;

    OperatingSystemFacts facts;
    if (gatherOperatingSystemFacts(os, nullptr, facts)) {
        KorTable table(OPERATING_SYSTEM_GROUP, 1);
        shapeOperatingSystemRow(facts, table);
    }
    (void)parseInstallDate(os.files["/var/sadm/pkg/SUNWcsr/pkginfo"]);
    std::unique_ptr<KorTable> keyboard(KeyboardGroup().getTable());
    std::unique_ptr<KorTable> partitions(PartitionGroup().getTable());
    return 0;
}
