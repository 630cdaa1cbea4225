// Every reader of system files, given what is no regular file or is past its
// bound: each fails at once (or, where a reader keeps a file's head, keeps
// only whole lines of it) and none blocks. Each case runs in a child process
// that an alarm ends, so a reader that does block fails instead of hanging.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "common/sys/PosixSystem.h"
#include "common/sys/System.h"
#include "common/util/SystemFile.h"
#include "support/Guarded.h"
#include "support/TempDir.h"

namespace {

using testsupport::inGuardedChild;
using testsupport::TempDir;

// What the child reports.
enum Outcome { Refused = 10, ReadWhole, ReadHead, ReadPastBound };

const size_t kBound = 64 << 10;

// The readers, each with the file it serves.
struct Reader {
    const char* serves;
    Outcome (*read)(const std::string& path);
};

Outcome headOf(const std::string& text, bool cut)
{
    if (text.size() > kBound) return ReadPastBound;
    // Only whole lines: a cut line could read as another name server.
    if (cut) return !text.empty() && text.back() == '\n' ? ReadHead : ReadPastBound;
    return ReadWhole;
}

const Reader kReaders[] = {
    {"/etc/resolv.conf (its head)",
     [](const std::string& path) {
         std::string text;
         bool cut = false;
         if (!util::readSystemFileHead(sys::current(), path.c_str(), text, kBound, &cut)) return Refused;
         return headOf(text, cut);
     }},
    {"settings files and the mount table",
     [](const std::string& path) {
         std::string text;
         if (!util::readSystemFile(sys::current(), path.c_str(), text, kBound)) return Refused;
         return text.size() > kBound ? ReadPastBound : ReadWhole;
     }},
    {"the PCI id database (line by line)",
     [](const std::string& path) {
         size_t seen = 0;
         if (!util::forEachSystemFileLine(
                 sys::current(), path.c_str(), [&](const std::string& line) { return (seen += line.size() + 1), true; },
                 kBound))
             return Refused;
         // A last line the bound cut arrives without its line end.
         return seen > kBound + 1 ? ReadPastBound : ReadWhole;
     }},
    {"the SMBIOS table files, captures and machine files",
     [](const std::string& path) {
         std::string text;
         bool cut = false;
         if (!sys::readRegularFile(path.c_str(), text, kBound, &cut)) return Refused;
         return text.size() > kBound ? ReadPastBound : cut ? ReadHead : ReadWhole;
     }},
};

class SystemFiles : public ::testing::TestWithParam<Reader> {
protected:
    Outcome readIn(const std::string& path)
    {
        const int got = inGuardedChild([&] { return static_cast<int>(GetParam().read(path)); });
        return static_cast<Outcome>(got);
    }
    TempDir m_dir;
};

TEST_P(SystemFiles, WhatIsNoRegularFileIsRefusedWithoutBlocking)
{
    const std::string fifo = m_dir.path() + "/fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(readIn(fifo), Refused) << "a FIFO without a writer";
    EXPECT_EQ(readIn("/dev/zero"), Refused) << "a device that never ends";
    EXPECT_EQ(readIn(m_dir.path()), Refused) << "a folder";
    EXPECT_EQ(readIn(m_dir.path() + "/absent"), Refused);
    EXPECT_EQ(readIn(m_dir.write("empty", "")), ReadWhole);
}

TEST_P(SystemFiles, AFileOverItsBoundIsNeverReadPastIt)
{
    // Lines that straddle every read, and a last one the bound cuts.
    std::string text;
    for (int i = 0; text.size() <= 3 * kBound; ++i) text += "nameserver 10.0.0." + std::to_string(i % 250) + "\n";
    const Outcome over = readIn(m_dir.write("over", text));
    const std::string reader = GetParam().serves;
    EXPECT_NE(over, ReadPastBound);
    if (reader.find("settings") != std::string::npos) {
        EXPECT_EQ(over, Refused);  // a settings file that large is not one
    } else if (reader.find("PCI") == std::string::npos) {
        EXPECT_EQ(over, ReadHead);
    }
    EXPECT_EQ(readIn(m_dir.write("exact", std::string(kBound, '\n'))), ReadWhole);
}

INSTANTIATE_TEST_SUITE_P(Readers, SystemFiles, ::testing::ValuesIn(kReaders),
                         [](const ::testing::TestParamInfo<Reader>& c) { return std::to_string(c.index); });

// The line reader gives each line whole, however the reads cut it.
TEST(SystemFileLines, LinesLongerThanAReadArriveWhole)
{
    TempDir dir;
    const std::string longLine(200000, 'x');
    const std::string path = dir.write("lines", "a\r\n" + longLine + "\n\nlast");
    std::vector<std::string> lines;
    ASSERT_TRUE(util::forEachSystemFileLine(sys::current(), path.c_str(), [&](const std::string& line) {
        lines.push_back(line);
        return true;
    }));
    EXPECT_EQ(lines, (std::vector<std::string>{"a", longLine, "", "last"}));
    lines.clear();
    util::forEachSystemFileLine(sys::current(), path.c_str(), [&](const std::string& line) {
        lines.push_back(line);
        return lines.size() < 2;
    });
    EXPECT_EQ(lines.size(), 2u) << "the reader stops when asked";
}

}  // namespace
