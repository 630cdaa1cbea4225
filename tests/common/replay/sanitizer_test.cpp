// What --sanitize takes out of a capture, and what it must leave readable.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/replay/Sanitizer.h"
#include "common/replay/SimulatedDisks.h"
#include "common/replay/SimulatedFirmware.h"

namespace {

using replay::Sanitizer;

TEST(Sanitizer, IdentitiesBecomeStablePlaceholdersInEveryForm)
{
    Sanitizer s;
    const struct {
        std::string in, out;
    } cases[] = {
        // MAC addresses as Solaris, Linux and dladm's parseable form write them: one address, one placeholder.
        {"ether 0:14:4f:f8:1e:a0", "ether 02:00:00:00:00:01"},
        {"link/ether 00:14:4F:F8:1E:A0 brd", "link/ether 02:00:00:00:00:01 brd"},
        {"net0:0\\:14\\:4f\\:f8\\:1e\\:a0", "net0:02\\:00\\:00\\:00\\:00\\:01"},
        {"ether 0:14:4f:f8:1e:a1", "ether 02:00:00:00:00:02"},
        {"uuid 4C4C4544-0042-3510-8052-B4C04F4E4B31", "uuid 00000000-0000-4000-8000-000000000001"},
        {"Port WWN: 210000e08b8a1b2c", "Port WWN: 2000000000000001"},
        {"port_name 0x210000E08B8A1B2C", "port_name 0x2000000000000001"},
        {"21:00:00:e0:8b:8a:1b:2c", "20:00:00:00:00:00:00:01"},
        {"/dev/rdsk/c0t600A0B800026B2D4000004D74A6C3B1Bd0s2", "/dev/rdsk/c0t60000000000000010000000000000000d0s2"},
        {"Serial No: 3KT0ABCD Size: 73.40GB", "Serial No: SN000000 Size: 73.40GB"},
        {"   SerialNumber:s=3KT0ABCD", "   SerialNumber:s=SN000000"},
        {"   SerialNumber:s=", "   SerialNumber:s="},  // nothing to hide: the node dump stays valid
        {"hostid: 8323328", "hostid: a0000001"},
        // Left alone: times, IPv4 and short hexadecimal.
        {"12:34:56 10.0.0.1 0x1af4", "12:34:56 10.0.0.1 0x1af4"},
    };
    for (const auto& c : cases) EXPECT_EQ(s.text(c.in), c.out) << c.in;
    EXPECT_EQ(s.hostid(8323328), 0xa0000001ul);
    EXPECT_EQ(s.hostid(1), 0xa0000002ul);
    EXPECT_EQ(s.hostid(8323328), 0xa0000001ul);
}

TEST(Sanitizer, SerialsInsideBinaryAnswersKeepTheirLength)
{
    Sanitizer s;
    const std::string inquiry = replay::scsiInquiry(0, "SEAGATE", "ST373207LC", "0005", "3KT0ABCD0000");
    const std::string standard("\x12\0\0\0\x30\0", 6);
    const std::string clean = s.scsiAnswer(standard, inquiry);
    ASSERT_EQ(clean.size(), inquiry.size());
    EXPECT_EQ(clean.substr(0, 36), inquiry.substr(0, 36));  // vendor, product and revision stay
    EXPECT_EQ(clean.substr(36, 12), "SN0000000100");
    EXPECT_EQ(s.scsiAnswer(std::string("\x25\0", 2), inquiry), inquiry);  // not an INQUIRY

    // An SMBIOS table: the system's serial and UUID go, its manufacturer stays.
    std::string system = replay::smbiosSystem({"Dell Inc.", "PowerEdge R720", "", "7XJ4K2S"});
    system.replace(8, 16, std::string("\x44\x45\x4C\x4C\x58\x00\x10\x4A\x80\x34\xB7\xC0\x4F\x4B\x32\x53", 16));
    const std::string table = system + replay::smbiosStructure(127, std::string(4, '\0'), {});
    const std::string memory = std::string(16, '\0') + table;
    const std::string out = s.firmware(memory, 0xE0000, 0xE0010, table.size());
    ASSERT_EQ(out.size(), memory.size());
    EXPECT_NE(out.find("Dell Inc."), std::string::npos);
    EXPECT_EQ(out.find("7XJ4K2S"), std::string::npos);
    EXPECT_NE(out.find("SN00000"), std::string::npos);
    EXPECT_NE(out.substr(16 + 8, 16), memory.substr(16 + 8, 16));
    EXPECT_EQ(out.substr(16 + 24), memory.substr(16 + 24).replace(memory.substr(16 + 24).find("7XJ4K2S"), 7, "SN00000"));
}

}  // namespace
