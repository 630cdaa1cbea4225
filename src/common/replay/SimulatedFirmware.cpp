#include "common/replay/SimulatedFirmware.h"

#include <cstring>
#include <memory>


namespace replay {

namespace {
void put16(std::string& s, size_t at, unsigned v)
{
    s[at] = static_cast<char>(v & 0xFF);
    s[at + 1] = static_cast<char>((v >> 8) & 0xFF);
}

// The byte that makes the sum of s[from, from + length) zero.
void fixChecksum(std::string& s, size_t from, size_t length, size_t at)
{
    unsigned sum = 0;
    s[at] = 0;
    for (size_t i = from; i < from + length; ++i) sum += static_cast<unsigned char>(s[i]);
    s[at] = static_cast<char>((256 - sum % 256) % 256);
}
}  // namespace

std::string smbiosEntryPoint(uint16_t tableLength, uint32_t tableAddress, uint16_t count, int major, int minor)
{
    std::string e(0x1F, '\0');
    std::memcpy(&e[0], "_SM_", 4);
    e[5] = 0x1F;
    e[6] = static_cast<char>(major);
    e[7] = static_cast<char>(minor);
    std::memcpy(&e[0x10], "_DMI_", 5);
    put16(e, 0x16, tableLength);
    put16(e, 0x18, tableAddress & 0xFFFF);
    put16(e, 0x1A, tableAddress >> 16);
    put16(e, 0x1C, count);
    e[0x1E] = static_cast<char>((major << 4) | (minor & 0x0F));
    fixChecksum(e, 0x10, 15, 0x15);
    fixChecksum(e, 0, 0x1F, 4);
    return e;
}

std::string smbiosStructure(uint8_t type, std::string formatted, const std::vector<std::string>& strings)
{
    formatted[0] = static_cast<char>(type);
    formatted[1] = static_cast<char>(formatted.size());
    std::string s = formatted;
    for (const std::string& text : strings) s += text + '\0';
    if (strings.empty()) s += '\0';
    return s + '\0';
}

std::string smbiosSystem(const std::vector<std::string>& fields)
{
    std::string formatted(27, '\0');
    std::vector<std::string> strings;
    for (size_t i = 0; i < fields.size() && i < 4; ++i) {
        if (fields[i].empty()) continue;
        strings.push_back(fields[i]);
        formatted[4 + i] = static_cast<char>(strings.size());
    }
    formatted[24] = 6;  // woken by the power switch
    return smbiosStructure(1, formatted, strings);
}

void installFirmware(SimulatedSystem& os, const std::string& entry, const std::string& table, uint32_t address)
{
    SimulatedSystem::Device& memory = os.devices["/dev/xsvc"];
    memory.memory[0xF0000] = entry;
    memory.memory[address] = table;
}

void installProm(SimulatedSystem& os, const std::vector<std::pair<std::string, std::string>>& properties)
{
    auto props = std::make_shared<std::vector<std::pair<std::string, std::string>>>(properties);
    os.devices["/dev/openprom"].ioctl = [props](int request, void* arg) {
        auto* p = static_cast<openpromio*>(arg);
        if (request == OPROMNEXT) {
            p->oprom_node = p->oprom_node == 0 ? 1 : 0;  // one node: the root
            return 0;
        }
        auto copyOut = [p](const std::string& text, unsigned size) {
            std::memcpy(p->oprom_array, text.c_str(), text.size() + 1);
            p->oprom_size = size;
            return 0;
        };
        const std::string name = p->oprom_array;
        if (request == OPROMNXTPROP) {
            if (name.empty()) return props->empty() ? copyOut("", 0) : copyOut(props->front().first, 1);
            for (size_t i = 0; i + 1 < props->size(); ++i)
                if ((*props)[i].first == name) return copyOut((*props)[i + 1].first, 1);
            return copyOut("", 0);
        }
        if (request == OPROMGETPROP) {
            for (const auto& prop : *props)
                if (prop.first == name) return copyOut(prop.second, static_cast<unsigned>(prop.second.size()));
            return copyOut("", 0);
        }
        errno = EINVAL;
        return -1;
    };
}

}  // namespace replay
