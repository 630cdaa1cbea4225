#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <vector>

#include "common/util/qrn_popen.h"
#include "support/TempDir.h"

namespace {

// Drains a handle; the lines, and whether it ended within `limitSeconds`.
std::vector<std::string> drain(void* h, int size = 256, double limitSeconds = 10)
{
    std::vector<std::string> lines;
    std::vector<char> buf(static_cast<size_t>(size));
    for (int spins = 0; spins < static_cast<int>(limitSeconds * 1000); ++spins) {
        const int r = qrn_pgets(buf.data(), size, h);
        if (r == 1) {
            lines.emplace_back(buf.data());
            spins = 0;
        } else if (r < 0) {
            return lines;
        } else {
            usleep(1000);
        }
    }
    lines.emplace_back("<<did not end>>");
    return lines;
}

TEST(CommandPipes, LinesThenEnd)
{
    void* h = qrn_popen("sh", 5, "-c", "echo one; echo two; echo three", static_cast<char*>(nullptr));
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(drain(h), (std::vector<std::string>{"one\n", "two\n", "three\n"}));
    EXPECT_EQ(qrn_pgets(nullptr, 10, nullptr), 0);
    qrn_pclose(h);
    qrn_pclose(nullptr);
    EXPECT_FALSE(testsupport::hasZombieChild());
}

TEST(CommandPipes, ShortBufferGivesPieces)
{
    void* h = qrn_popen("echo", 5, "abcdefghijklmnop", static_cast<char*>(nullptr));
    EXPECT_EQ(drain(h, 10), (std::vector<std::string>{"abcdefgh", "ijklmnop", "\n"}));
    qrn_pclose(h);
}

TEST(CommandPipes, TimeOutKillsAndZeroNeverDoes)
{
    void* h = qrn_popen("sleep", 1, "30", static_cast<char*>(nullptr));
    ASSERT_NE(h, nullptr);
    const time_t start = time(nullptr);
    EXPECT_TRUE(drain(h, 64, 5).empty());
    EXPECT_LE(time(nullptr) - start, 3);
    qrn_pclose(h);
    EXPECT_FALSE(testsupport::hasZombieChild());

    void* patient = qrn_popen("sh", 0, "-c", "sleep 2; echo late", static_cast<char*>(nullptr));
    EXPECT_EQ(drain(patient, 64, 6), (std::vector<std::string>{"late\n"}));
    qrn_pclose(patient);
}

TEST(CommandPipes, MissingCommandEndsWithoutOutput)
{
    void* h = qrn_popen("/nonexistent/command", 2, static_cast<char*>(nullptr));
    ASSERT_NE(h, nullptr);
    EXPECT_TRUE(drain(h).empty());
    qrn_pclose(h);
}

TEST(CommandPipes, CloseWhileRunningLeavesNoZombieOrDescriptor)
{
    const int before = testsupport::openDescriptorCount();
    for (int i = 0; i < 20; ++i) {
        void* h = qrn_popen("sleep", 30, "30", static_cast<char*>(nullptr));
        ASSERT_NE(h, nullptr);
        qrn_pclose(h);
    }
    EXPECT_EQ(testsupport::openDescriptorCount(), before);
    EXPECT_FALSE(testsupport::hasZombieChild());
}

}  // namespace
