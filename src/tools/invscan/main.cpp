// Placeholder host until the command line lands: says what is built.
#include <cstdio>
#include <cstring>

int main(int argc, char** argv)
{
    if (argc > 1 && std::strcmp(argv[1], "scan") == 0) {
        std::printf("invscan %s: no groups are built yet\n", INVSCAN_VERSION);
        return 0;
    }
    std::fprintf(stderr, "usage: invscan scan\n");
    return 2;
}
