// The readers of the system description groups over any text: the release
// banner (/etc/release) with the kernel version, the settings files
// (/etc/default/init, /etc/default/kbd), the install date (the core
// package's pkginfo), "kbd -t -l" and the keyboard layouts file, and the
// mount table (/etc/mnttab); each row is shaped from what they read. The
// layouts file and the file systems' sizes are read through a simulated
// machine, as the groups read them.
#include <cstddef>
#include <cstdint>

#include "FuzzedAnswers.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/system/KeyboardGroup.h"
#include "invscan/solaris/storage/PartitionGroup.h"
#include "invscan/solaris/system/SystemFacts.h"
#include "invscan/solaris/system/SystemGroups.h"

using fuzzed::lines;

// Selectors (the first byte modulo 5), and the texts each reads:
//   0 /etc/release, the kernel version (sysinfo VERSION), the kernel release
//   1 an /etc/default file (/etc/default/init's locale settings)
//   2 a pkginfo file (INSTDATE)
//   3 kbd -t -l, /etc/default/kbd, the keyboard layouts file
//   4 /etc/mnttab
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0) return 0;
    const std::vector<std::string> text = fuzzed::parts(data, size, 3);
    switch (data[0] % 5) {
    case 0: {
        OperatingSystemFacts facts;
        facts.sysname = "SunOS";
        facts.banner = releaseBannerLines(text[0]);
        facts.version = text[1].substr(0, 256);
        facts.release = text[2].substr(0, 256);
        (void)osVersion(facts);
        (void)osType(facts.sysname, facts.release);
        KorTable table(OPERATING_SYSTEM_GROUP, 1);
        shapeOperatingSystemRow(facts, table);
        break;
    }
    case 1: {
        const auto settings = systemfacts::parseSettings(text[0]);
        for (const char* name : {"LC_ALL", "LANG", "LC_MESSAGES", "TZ"}) {
            auto it = settings.find(name);
            if (it != settings.end()) (void)systemfacts::languageOf(it->second);
        }
        break;
    }
    case 2: (void)parseInstallDate(text[0]); break;
    case 3: {
        fuzzed::AfterInput after;
        fuzzed::QuietSystem& os = fuzzed::QuietSystem::fresh();
        os.files["/usr/share/lib/keytables/type_6/kbd_layouts"] = text[2];
        KeyboardFacts facts;
        if (!parseKbdOutput(lines(text[0]), facts)) break;
        applyKeyboardDefaults(systemfacts::parseSettings(text[1]), facts);
        facts.layout = layoutName(os, facts.layout);
        KorTable table(KEYBOARD_GROUP, 1);
        shapeKeyboardRow(facts, table);
        break;
    }
    default: {
        fuzzed::AfterInput after;
        fuzzed::QuietSystem& os = fuzzed::QuietSystem::fresh();
        const std::vector<PartitionRow> rows = gatherPartitions(os, parseMountTable(text[0]));
        KorTable table(PARTITION_GROUP, 1);
        shapePartitionRows(rows, table);
        break;
    }
    }
    return 0;
}
