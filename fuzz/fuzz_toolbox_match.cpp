// The whitespace-token template matcher over any text and pattern (the input
// split at its first NUL byte).
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "common/util/Toolbox.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    const size_t cut = input.find('\0');
    const std::string text = input.substr(0, cut);
    const std::string pattern = cut == std::string::npos ? std::string() : input.substr(cut + 1);
    std::map<std::string, std::string> values;
    Toolbox::match(text.c_str(), pattern.c_str(), values);
    return 0;
}
