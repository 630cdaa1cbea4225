// The Storage group on a simulated SAN host: every LUN seen through 16
// paths (two-digit controllers, WWN-named targets), each path a raw-disk
// entry that is opened and asked, then dropped as already reported. Run
// with 1,000 LUNs (16,000 entries) and 250 LUNs (4,000 entries): the
// per-entry time should barely grow.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "invscan/com/KorTable.h"
#include "invscan/solaris/storage/StorageGroup.h"
#include "support/Disks.h"
#include "support/FakeSystem.h"
#include "support/TempDir.h"

namespace {

using namespace testsupport;

const int kPaths = 16;

std::string entryName(int path, int lun)
{
    char name[64];
    // The target is the array port's WWN, one per path.
    std::snprintf(name, sizeof name, "c%dt500A0981%08Xd%ds2", 10 + path, 0x87F90000 + path, lun);
    return name;
}

void buildSanHost(FakeSystem& os, int luns)
{
    std::vector<std::string>& entries = os.directories["/dev/rdsk"];
    for (int path = 0; path < kPaths; ++path) {
        for (int lun = 0; lun < luns; ++lun) {
            FakeDisk d;
            std::snprintf(d.controller.dki_cname, DK_DEVLEN, "fp");
            std::snprintf(d.controller.dki_dname, DK_DEVLEN, "ssd");
            d.controller.dki_ctype = DKC_SCSI_CCS;
            d.controller.dki_cnum = static_cast<ushort_t>(10 + path);
            d.controller.dki_unit = static_cast<uint_t>(lun);
            d.geometry.dkg_ncyl = 65533;
            d.geometry.dkg_nhead = 64;
            d.geometry.dkg_nsect = 256;
            d.label.v_sectorsz = 512;
            d.label.v_nparts = 8;
            d.label.v_part[2].p_tag = V_BACKUP;
            char serial[16];
            std::snprintf(serial, sizeof serial, "7500%08d", lun);  // one LUN, one serial, whatever the path
            d.inquiry = scsiInquiry(0, "IBM", "2107900", ".217", serial);
            d.capacity = bigEndian(209715199, 4) + bigEndian(512, 4);
            d.formatPage = modeSense(formatPage(256, 512));
            d.geometryPage = modeSense(rigidGeometryPage(12800, 64));
            const std::string name = entryName(path, lun);
            entries.push_back(name);
            installDisk(os, "/dev/rdsk/" + name, d);
        }
    }
}

// The diskscan probe's tree for the host: each LUN once, reached through an HBA.
void installDiskscan(const TempDir& home, int luns)
{
    std::string dump = "1.0 0 OK\n(ScsiInfo\n(DiskTable\n";
    for (int lun = 0; lun < luns; ++lun) {
        char wwn[32];
        std::snprintf(wwn, sizeof wwn, "6005076303ff%04x", lun);
        dump += "(Disk\nId:s=/dev/rdsk/" + entryName(0, lun) + "\nisSAN:i=1\nWWNN:s=5005076303ffc1a5\nWWPN:s=" + wwn +
                "\n(HBA\nId:s=c10\nWWNN:s=20000024ff2e1a00\nWWPN:s=21000024ff2e1a00\n)\n)\n";
    }
    dump += ")\n)\n";
    home.write("diskscan.out", dump);
    home.script("bin/diskscan", "cat '" + home.path() + "/diskscan.out'\n");
}

void BM_StorageScanOfSanHost(benchmark::State& state)
{
    const int luns = static_cast<int>(state.range(0));
    static TempDir home;  // the probe runs once per process: the first size run sets the tree
    static bool installed = false;
    if (!installed) {
        installDiskscan(home, luns);  // run each size in a process of its own for a tree of its size
        setenv("NIM_HOMEDIR", home.path().c_str(), 1);
        installed = true;
    }
    FakeSystem os;
    buildSanHost(os, luns);
    ScopedSystem scope(os);
    StorageGroup group;
    unsigned long rows = 0;
    for (auto _ : state) {
        std::unique_ptr<KorTable> table(group.getTable());
        rows = table ? table->getRowCount() : 0;
    }
    if (rows != static_cast<unsigned long>(luns)) state.SkipWithError("not one row per LUN");
    state.counters["entries"] = luns * kPaths;
    state.counters["per_entry_us"] = benchmark::Counter(static_cast<double>(luns * kPaths),
                                                        benchmark::Counter::kIsIterationInvariantRate |
                                                            benchmark::Counter::kInvert);
}
BENCHMARK(BM_StorageScanOfSanHost)->Arg(250)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
