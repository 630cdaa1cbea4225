// The zone reader over any "zoneadm list -c -p", "zonecfg -z ZONE info
// PROPERTY" and "poolbind -q PID" output, in a global zone whose pool and
// virtualization libraries answer.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "common/replay/MachineFile.h"
#include "invscan/solaris/virtualization/Zone.h"

namespace {

class FuzzedZones : public replay::SimulatedSystem {
public:
    std::string zoneadm, zonecfg, poolbind;

    int runCommand(const std::vector<std::string>& argv, int, std::vector<std::string>& lines) override
    {
        const std::string& text = argv[0] == "zoneadm" ? zoneadm : argv[0] == "zonecfg" ? zonecfg : poolbind;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);) lines.push_back(line);
        return 0;
    }
};

FuzzedZones& machine()
{
    static FuzzedZones* os = [] {
        auto* m = new FuzzedZones;
        std::istringstream text(
            "shell zonename 2>/dev/null\n> global\n"
            "shell LANG=C; ps -o zoneid -p 4242 2>/dev/null | sed '2q;d' 2>/dev/null\n> 0\n"
            "hostid 305419896\nlibrary libv12n.so.1\nv12n name vmware\npset 0 1\nonline 0 on\nonline 1 on\n"
            "library libpool.so\npool pool_default pset pset_default 2\npool web mset mset_web 0\n");
        std::string error;
        replay::readMachine(text, "fuzz", false, *m, error);
        sys::setCurrent(m);
        return m;
    }();
    return *os;
}

}  // namespace

// Input: the three outputs, separated by NUL bytes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedZones& os = machine();
    std::string parts[3];
    size_t part = 0;
    for (size_t i = 0; i < size; ++i) {
        if (data[i] == 0 && part < 2)
            ++part;
        else
            parts[part] += static_cast<char>(data[i]);
    }
    os.zoneadm = parts[0];
    os.zonecfg = parts[1];
    os.poolbind = parts[2];
    const Zone zone;
    return static_cast<int>(zone.getChildZonesInfo().size() & 0);
}
