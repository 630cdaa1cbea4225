// The hardware configuration file as the factory loads it: parsed, then its
// global, group, processor and QCM records taken in.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "invscan/com/GroupFactory.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // The factory reads a file: one a process, in memory where there is a
    // memory file system (a disk's writes would be most of the time), removed
    // at its end.
    static const std::string path = std::string(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") +
                                    "/fuzz_hwconfig." + std::to_string(getpid()) + ".xml";
    static const bool cleaned = std::atexit([] { unlink(path.c_str()); }) == 0;
    (void)cleaned;
    if (std::FILE* out = std::fopen(path.c_str(), "wb")) {
        std::fwrite(data, 1, size, out);
        std::fclose(out);
    }
    GroupFactory::getInstance()->loadNodeFromFile(String(path), 0);
    return 0;
}
