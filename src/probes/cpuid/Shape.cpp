#include "probes/cpuid/Shape.h"

#include <cstdio>

namespace cpuid {

namespace {

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

    VtNode* node = vtNewNode("Processor");
    vtAddString(node, "Manufacturer", pkg.vendor);
    vtAddString(node, "BrandName", pkg.brand);
    vtAddString(node, "Family", familyName(pkg.brand));
    vtAddString(node, "Type", typeName(pkg.type));
    vtAddString(node, "Signature", signature);
    vtAddString(node, "Is64bit", pkg.is64bit ? "Yes" : "No");
    vtAddString(node, "IEM64T", intel && pkg.is64bit ? "Yes" : "No");
    vtAddInt(node, "CpuClockMHz", clock);
    // Only processors this probe could run on are seen, so total, active and
    // pool counts agree.
    vtAddInt(node, "TotalCoreCount", pkg.cores);
    vtAddInt(node, "ActiveCoreCount", pkg.cores);
    vtAddInt(node, "TotalPoolCoreCount", pkg.cores);
    vtAddInt(node, "TotalProcCount", pkg.logicalCount);
    vtAddInt(node, "ActiveProcCount", pkg.logicalCount);
    vtAddInt(node, "TotalPoolProcCount", pkg.logicalCount);
    vtAddInt(node, "ProcsPerCore", pkg.threadsPerCore);
    vtAddInt(node, "L2CacheSizeKB", pkg.l2KB);
    vtAddInt(node, "L3CacheSizeKB", pkg.l3KB);
    vtAddString(node, "Features", joined(pkg.features));

    VtNode* regs = vtNewNode("CPUID");
    vtAddInt(regs, "CorePerPackageCount", pkg.cores);
    vtAddInt(regs, "HtPerCoreCount", pkg.threadsPerCore);
    vtAddInt(regs, "Family", pkg.family);
    vtAddInt(regs, "Model", pkg.model);
    vtAddInt(regs, "Stepping", pkg.stepping);
    vtAddInt(regs, "BrandId", pkg.brandId);
    vtAddInt(regs, "ExtBrand", pkg.extBrand);
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
    VtNode* root = vtNewNode("");
    VtNode* table = vtNewNode("ProcessorTable");
    int cores = 0;
    for (const Package& pkg : decoded.packages) cores += pkg.cores;
    auto packages = static_cast<long>(decoded.packages.size());
    vtAddInt(table, "TotalPackageCount", packages);
    vtAddInt(table, "ActivePackageCount", packages);
    vtAddInt(table, "TotalCoreCount", cores);
    vtAddInt(table, "ActiveCoreCount", cores);
    vtAddInt(table, "OnlineProcessorCount", machine.onlineCount);
    vtAddInt(table, "ActiveProcessorCount", decoded.logicalCount);
    const Firmware& fw = machine.firmware;
    if (fw.hasProcessors) {  // what the firmware counts, sockets the OS does not see included
        vtAddInt(table, "BiosTotalProcessorCount", fw.totalThreads);
        vtAddInt(table, "BiosTotalCoreCount", fw.totalCores);
        vtAddInt(table, "BiosTotalPackageCount", fw.totalPackages);
        vtAddInt(table, "BiosActiveProcessorCount", fw.activeThreads);
        vtAddInt(table, "BiosActiveCoreCount", fw.activeCores);
        vtAddInt(table, "BiosActivePackageCount", fw.activePackages);
    }
    if (!machine.osArch.empty()) vtAddString(table, "OSSystemArch", machine.osArch);
    if (!machine.osKernelMode.empty()) vtAddString(table, "OSKernelMode", machine.osKernelMode);
    for (const Package& pkg : decoded.packages) table->addChild(processorNode(machine, pkg));
    root->addChild(table);

    if (decoded.hypervisor) {
        VtNode* hv = vtNewNode("Hypervisor");
        vtAddString(hv, "Vendor", decoded.hypervisorVendor);
        if (!decoded.hypervisorInterface.empty()) vtAddString(hv, "Interface", decoded.hypervisorInterface);
        vtAddString(hv, "Brand", brandFromFirmware(fw));
        vtAddString(hv, "Virtualization", virtualizationFromFirmware(fw));
        root->addChild(hv);
    }
    // Always there, empty where the firmware says nothing: a guest without
    // tables is still known by its CPUID signature.
    VtNode* system = vtNewNode("System");
    vtAddString(system, "Manufacturer", fw.manufacturer);
    vtAddString(system, "ProductName", fw.productName);
    vtAddString(system, "Version", fw.version);
    vtAddString(system, "SerialNumber", fw.serialNumber);
    vtAddString(system, "UUID", fw.uuid);
    root->addChild(system);
    if (fw.hasBoard) {  // the base board (type 2) the system sits on
        VtNode* host = vtNewNode("Host");
        vtAddString(host, "Manufacturer", fw.boardManufacturer);
        vtAddString(host, "Product", fw.boardProduct);
        vtAddString(host, "Model", fw.boardVersion);
        vtAddString(host, "SerialNumber", fw.boardSerial);
        root->addChild(host);
    }
    return root;
}

void printTree(const VtNode* root)
{
    for (const VtNode* child = root ? root->children : nullptr; child; child = child->next) vtDumpNode(child, 0);
}

}  // namespace cpuid
