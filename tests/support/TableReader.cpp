#include "support/TableReader.h"

#include <cstring>

#include "framework/utils.h"
#include "invscan/com/KorTable.h"

namespace testsupport {

namespace {
template <typename T>
T at(const unsigned char* block, size_t offset)
{
    T value;
    std::memcpy(&value, block + offset, sizeof value);
    return value;
}
}  // namespace

std::vector<std::map<unsigned long, Cell>> readTable(KorTable& table)
{
    std::vector<std::map<unsigned long, Cell>> rows;
    table.reset();
    while (KorTableRow* row = table.getNext()) {
        std::map<unsigned long, Cell> cells;
        row->reset();
        while (KorTableAttrib* attrib = row->getNext()) {
            const unsigned char* block = attrib->getAttribPtr();
            if (!block) continue;
            Cell c;
            c.type = attrib->getType();
            const size_t v = 12;  // size, id and type come first
            switch (c.type) {
            case KOR_UCHAR: c.number = at<uint8_t>(block, v); break;
            case KOR_USHORT: c.number = at<uint16_t>(block, v); break;
            case KOR_ULONG: c.number = at<uint32_t>(block, v); break;
            case KOR_ULONGLONG:
            case KOR_LONGLONG: c.number = at<uint64_t>(block, v); break;
            case KOR_FLOAT: c.real = at<float>(block, v); break;
            case KOR_DOUBLE: c.real = at<double>(block, v); break;
            case KOR_STRING:
            case KOR_WIDESTRING: {
                const uint32_t count = at<uint32_t>(block, v);  // with the terminator
                std::wstring wide;
                for (uint32_t i = 0; i + 1 < count; ++i)
                    wide += static_cast<wchar_t>(at<uint32_t>(block, v + 4 + 4 * i));
                c.text = utils::stringToUTF8(wide);
                break;
            }
            default: break;
            }
            cells[attrib->getId()] = c;
        }
        row->reset();
        rows.push_back(cells);
    }
    table.reset();
    return rows;
}

}  // namespace testsupport
