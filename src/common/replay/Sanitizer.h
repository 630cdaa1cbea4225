#pragma once
// Takes what identifies a machine or its owner out of a capture: serial
// numbers, host ids, UUIDs, MAC addresses and WWNs become placeholders. The
// same value gets the same placeholder throughout one capture, so what the
// scan matches up (a link's MAC in two commands) still matches.
#include <map>
#include <string>

namespace replay {

class Sanitizer {
public:
    // Command output, file lines, names and properties.
    std::string text(const std::string& in);
    // A host id: a placeholder of the same width.
    unsigned long hostid(unsigned long id);
    // A serial number as a field of bytes: a placeholder of the same length.
    std::string serial(const std::string& value);
    // A SCSI answer to `cdb`: the serial number it carries replaced.
    std::string scsiAnswer(const std::string& cdb, const std::string& answer);
    // Firmware memory from `address`: serial numbers, asset tags and UUIDs of
    // the SMBIOS table it holds replaced, given the table's place.
    std::string firmware(const std::string& bytes, unsigned long long address, unsigned long long tableAddress,
                         size_t tableLength);

private:
    // The placeholder of `value` among `kind`, numbered in order of appearance.
    std::string placeholder(const std::string& kind, const std::string& value, const std::string& pattern);
    std::map<std::string, std::map<std::string, std::string>> m_seen;
};

}  // namespace replay
