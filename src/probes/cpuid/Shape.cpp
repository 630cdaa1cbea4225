#include "probes/cpuid/Shape.h"

#include <cstdio>

namespace cpuid {

namespace {

VtNode* newNode(const char* name) { return vtNewNode(name); }
void addInt(VtNode* node, const char* name, long value) { vtAddInt(node, name, value); }
void addString(VtNode* node, const char* name, const std::string& value) { vtAddString(node, name, value); }

const char* typeName(uint32_t type)
{
    switch (type) {
    case 0: return "Original OEM Processor";
    case 1: return "OverDrive Processor";
    case 2: return "Dual Processor";
    default: return "Reserved";
    }
}

bool isWordChar(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); }

bool containsWord(const std::string& text, const std::string& word)
{
    for (size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
        bool startOk = at == 0 || !isWordChar(text[at - 1]);
        size_t end = at + word.size();
        bool endOk = end == text.size() || !isWordChar(text[end]);
        if (startOk && endOk) return true;
    }
    return false;
}

std::string joined(const std::vector<std::string>& words)
{
    std::string out;
    for (const std::string& w : words) {
        if (!out.empty()) out += ' ';
        out += w;
    }
    return out;
}

VtNode* processorNode(const Machine& machine, const Package& pkg)
{
    int clock = 0;
    for (size_t i : pkg.processors)
        if (i < machine.processors.size() && machine.processors[i].clockMHz > clock) clock = machine.processors[i].clockMHz;

    char signature[16];
    std::snprintf(signature, sizeof signature, "%08X", static_cast<unsigned>(pkg.signature));
    bool intel = pkg.vendor == "GenuineIntel";

    VtNode* node = newNode("Processor");
    addString(node, "Manufacturer", pkg.vendor);
    addString(node, "BrandName", pkg.brand);
    addString(node, "Family", familyName(pkg.brand));
    addString(node, "Type", typeName(pkg.type));
    addString(node, "Signature", signature);
    addString(node, "Is64bit", pkg.is64bit ? "Yes" : "No");
    addString(node, "IEM64T", intel && pkg.is64bit ? "Yes" : "No");
    addInt(node, "CpuClockMHz", clock);
    // Only processors this probe could run on are seen, so total, active and
    // pool counts agree.
    addInt(node, "TotalCoreCount", pkg.cores);
    addInt(node, "ActiveCoreCount", pkg.cores);
    addInt(node, "TotalPoolCoreCount", pkg.cores);
    addInt(node, "TotalProcCount", pkg.logicalCount);
    addInt(node, "ActiveProcCount", pkg.logicalCount);
    addInt(node, "TotalPoolProcCount", pkg.logicalCount);
    addInt(node, "ProcsPerCore", pkg.threadsPerCore);
    addInt(node, "L2CacheSizeKB", pkg.l2KB);
    addInt(node, "L3CacheSizeKB", pkg.l3KB);
    addString(node, "Features", joined(pkg.features));

    VtNode* regs = newNode("CPUID");
    addInt(regs, "CorePerPackageCount", pkg.cores);
    addInt(regs, "HtPerCoreCount", pkg.threadsPerCore);
    addInt(regs, "Family", pkg.family);
    addInt(regs, "Model", pkg.model);
    addInt(regs, "Stepping", pkg.stepping);
    addInt(regs, "BrandId", pkg.brandId);
    addInt(regs, "ExtBrand", pkg.extBrand);
    node->addChild(regs);
    return node;
}

}  // namespace

std::string familyName(const std::string& brand)
{
    // AMD names first: their brands say "Eight-Core", which is not Intel's Core.
    static const char* const kNames[] = {"Threadripper", "EPYC", "Opteron", "Ryzen", "Athlon", "Phenom",
                                         "Sempron", "Turion", "FX", "Xeon", "Celeron", "Pentium",
                                         "Atom", "Core"};
    for (const char* name : kNames)
        if (containsWord(brand, name)) return name;
    return "Unknown";
}

VtNode* buildTree(const Machine& machine, const Decoded& decoded)
{
    VtNode* root = newNode("");
    VtNode* table = newNode("ProcessorTable");
    int cores = 0;
    for (const Package& pkg : decoded.packages) cores += pkg.cores;
    auto packages = static_cast<long>(decoded.packages.size());
    addInt(table, "TotalPackageCount", packages);
    addInt(table, "ActivePackageCount", packages);
    addInt(table, "TotalCoreCount", cores);
    addInt(table, "ActiveCoreCount", cores);
    addInt(table, "OnlineProcessorCount", machine.onlineCount);
    addInt(table, "ActiveProcessorCount", decoded.logicalCount);
    const Firmware& fw = machine.firmware;
    if (fw.hasProcessors) {  // what the firmware counts, sockets the OS does not see included
        addInt(table, "BiosTotalProcessorCount", fw.totalThreads);
        addInt(table, "BiosTotalCoreCount", fw.totalCores);
        addInt(table, "BiosTotalPackageCount", fw.totalPackages);
        addInt(table, "BiosActiveProcessorCount", fw.activeThreads);
        addInt(table, "BiosActiveCoreCount", fw.activeCores);
        addInt(table, "BiosActivePackageCount", fw.activePackages);
    }
    if (!machine.osArch.empty()) addString(table, "OSSystemArch", machine.osArch);
    if (!machine.osKernelMode.empty()) addString(table, "OSKernelMode", machine.osKernelMode);
    for (const Package& pkg : decoded.packages) table->addChild(processorNode(machine, pkg));
    root->addChild(table);

    if (decoded.hypervisor) {
        VtNode* hv = newNode("Hypervisor");
        addString(hv, "Vendor", decoded.hypervisorVendor);
        if (!decoded.hypervisorInterface.empty()) addString(hv, "Interface", decoded.hypervisorInterface);
        addString(hv, "Brand", brandFromFirmware(fw));
        addString(hv, "Virtualization", virtualizationFromFirmware(fw));
        root->addChild(hv);
    }
    // Always there, empty where the firmware says nothing: a guest without
    // tables is still known by its CPUID signature.
    VtNode* system = newNode("System");
    addString(system, "Manufacturer", fw.manufacturer);
    addString(system, "ProductName", fw.productName);
    addString(system, "Version", fw.version);
    addString(system, "SerialNumber", fw.serialNumber);
    addString(system, "UUID", fw.uuid);
    root->addChild(system);
    if (fw.hasBoard) {  // the base board (type 2) the system sits on
        VtNode* host = newNode("Host");
        addString(host, "Manufacturer", fw.boardManufacturer);
        addString(host, "Product", fw.boardProduct);
        addString(host, "Model", fw.boardVersion);
        addString(host, "SerialNumber", fw.boardSerial);
        root->addChild(host);
    }
    return root;
}

void printTree(const VtNode* root)
{
    for (const VtNode* child = root ? root->children : nullptr; child; child = child->next) vtDumpNode(child, 0);
}

}  // namespace cpuid
