// The hypervisor decision over probe trees: every rule once, in its order.
// Real guests (trees the probe builds from captured CPUID and SMBIOS bytes)
// are in tests/cpuidprobe.
#include <gtest/gtest.h>

#include <memory>

#include "common/vartree/vtexec.h"
#include "framework/Trace.h"
#include "invscan/com/VirtualMachineInfo.h"

namespace {

// A probe's output: a Hypervisor node (unless vendor is null), a System node
// (unless manufacturer is null) and a Host node.
std::string tree(const char* vendor, const char* brand, const char* virtualization, const char* manufacturer,
                 const char* product = "", bool host = true)
{
    std::string out = "1.0 0 OK\n";
    if (vendor)
        out += std::string("(Hypervisor\nVendor:s=") + vendor + "\nBrand:s=" + brand +
               "\nVirtualization:s=" + virtualization + "\n)\n";
    if (manufacturer)
        out += std::string("(System\nManufacturer:s=") + manufacturer + "\nProductName:s=" + product +
               "\nUUID:s=u-1\n)\n";
    if (host) out += "(Host\nManufacturer:s=Board Co\n)\n";
    return out;
}

TEST(HypervisorDecision, FirstRuleThatAppliesWins)
{
    struct Case {
        const char* what;
        std::string output;
        bool result, isVM;
        const char *type, *trace;
    } const cases[] = {
        {"no hypervisor leaf: physical", tree(nullptr, "", "", "Dell Inc."), false, false, "None",
         "No hypervisor info in CPUID - no problem"},
        {"no system node", tree("KVMKVMKVM", "", "", nullptr), false, false, "None", "ERROR! Failed to get System info"},
        {"the probe failed", "1.0 3 broken\n", false, false, "None", "ERROR! cpuid command returned 3"},
        {"Nutanix before the KVM signature", tree("KVMKVMKVM", "", "", "Nutanix"), true, true, "NUTANIX", ""},
        {"Xen by signature", tree("XenVMMXenVMM", "", "", "Acme"), true, true, "Xen", ""},
        {"Xen by manufacturer", tree("Other", "", "", "Xen"), true, true, "Xen", ""},
        {"Hyper-V", tree("Microsoft Hv", "", "", "Microsoft Corporation", "Virtual Machine"), true, true, "Hyper-V", ""},
        {"nested: VMware under Hyper-V", tree("Microsoft Hv", "", "", "VMware, Inc.", "VMware Virtual Platform"), true,
         true, "VMware", "it could mean the 'Nested Virtualization'"},
        {"Hyper-V's leaf, VMware's verdict", tree("Microsoft Hv", "", "VMware", "Microsoft Corporation", "X"), true,
         true, "VMware", ""},
        {"Hyper-V's leaf on a physical product", tree("Microsoft Hv", "", "", "Microsoft Corporation", "Surface Laptop 3"),
         true, false, "Unknown", ""},
        {"Virtual Server", tree("Microsoft", "Virtual Server", "", "Microsoft Corporation"), true, true, "MSVS", ""},
        {"VMware by signature", tree("VMwareVMware", "", "", "VMware, Inc."), true, true, "VMware", ""},
        {"VMware, short signature", tree("VMware", "", "", "Acme"), true, true, "VMware", ""},
        {"KVM by signature", tree("KVMKVMKVM", "", "", ""), true, true, "KVM", ""},
        {"KVM by Red Hat's firmware", tree("Other", "", "", "Red Hat", "KVM"), true, true, "KVM", ""},
        {"Integrity VM by verdict", tree("Other", "", "HPVM", "HP"), true, true, "Integrity VM", "(check 2)"},
        {"KVM_PPC by verdict", tree("Other", "", "KVM_PPC", "IBM"), true, true, "KVM_PPC", ""},
        {"MSVS by verdict", tree("Other", "", "MSVS", "Microsoft Corporation"), true, true, "MSVS", ""},
        {"unknown everything", tree("Mystery", "", "", "Acme"), true, false, "Unknown", "Hypervisor is 'Unknown' (check 2)"},
        {"no host: only a warning", tree("KVMKVMKVM", "", "", "", "", false), true, true, "KVM",
         "Warning! Failed to get host info"},
    };
    for (const Case& c : cases) {
        trace::Capture capture;
        VtIStream_Memory in(c.output);
        std::unique_ptr<VtExecInfo> probe(vtParseProgramOutput(&in));
        VirtualMachineInfoRetriever retriever;
        VirtualMachineInfo info;
        EXPECT_EQ(retriever.retrieveFrom(probe.get(), info), c.result) << c.what;
        EXPECT_EQ(info.isVirtualMachine, c.isVM) << c.what;
        EXPECT_STREQ(VirtualMachineInfo::virtualizationNames[info.virtualizationType], c.type) << c.what;
        EXPECT_TRUE(capture.contains(c.trace)) << c.what << ": " << c.trace;
    }
    VirtualMachineInfoRetriever retriever;
    VirtualMachineInfo info;
    trace::Capture capture;
    EXPECT_FALSE(retriever.retrieveFrom(nullptr, info));
    EXPECT_TRUE(capture.contains("ERROR! Failed to execute cpuid command"));
}

}  // namespace
