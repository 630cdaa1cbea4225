#include "invscan/com/VirtualMachineInfo.h"

#include "common/vartree/vtexec.h"
#include "framework/Trace.h"
#include "invscan/com/probeVT.h"

const char* const VirtualMachineInfo::virtualizationNames[11] = {
    "None", "Unknown", "Hyper-V", "MSVS", "VMware", "KVM", "Integrity VM", "KVM_PPC", "Xen", "HVPX", "NUTANIX"};

VirtualMachineInfoRetriever* VirtualMachineInfoProvider::s_retriever = nullptr;

namespace {
const char* const kSource = "./../../../src/invscan/com/VirtualMachineInfo";
const char* const kFunction = "VirtualMachineInfoRetriever::retrieve()";
#define VMI_TRACE(level, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, kFunction, __VA_ARGS__)

enum { NONE = 0, UNKNOWN = 1, HYPER_V = 2, MSVS = 3, VMWARE = 4, KVM = 5, INTEGRITY_VM = 6, KVM_PPC = 7, XEN = 8,
       NUTANIX = 10 };

bool contains(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }
}  // namespace

VirtualMachineInfoRetriever& VirtualMachineInfoProvider::retriever()
{
    if (!s_retriever) s_retriever = new VirtualMachineInfoRetriever;
    return *s_retriever;
}

bool getVirtualMachineInfo(VirtualMachineInfo& info) { return VirtualMachineInfoProvider::retriever().retrieve(info); }

bool VirtualMachineInfoRetriever::retrieve(VirtualMachineInfo& info)
{
    return retrieveFrom(m_skip ? nullptr : getCpuidVT(), info);
}

bool VirtualMachineInfoRetriever::retrieveFrom(VtExecInfo* probe, VirtualMachineInfo& info)
{
    CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "");
    m_result = false;
    if (!m_skip && read(probe)) {
        decide();
        VMI_TRACE(traceMAX, "Hypervisor is '%s'", VirtualMachineInfo::virtualizationNames[m_facts.virtualizationType]);
        m_result = true;
    }
    info = m_facts;
    CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "result=%d", m_result ? 1 : 0);
    return m_result;
}

// The probe's facts into the retriever; false (traced) when they cannot be had.
bool VirtualMachineInfoRetriever::read(VtExecInfo* probe)
{
    m_facts = VirtualMachineInfo();
    m_vendorSignature.clear();
    m_interfaceSignature.clear();
    m_brand.clear();
    m_virtualization.clear();
    if (!probe) {
        VMI_TRACE(traceMIN, "%s", "ERROR! Failed to execute cpuid command");
        return false;
    }
    if (probe->result != 0 || !probe->root) {
        VMI_TRACE(traceMIN, "ERROR! cpuid command returned %d", probe->result);
        return false;
    }
    const VtNode* hv = vtGetNode(probe, "Hypervisor", 0);
    if (!hv) {
        VMI_TRACE(traceMAX, "%s", "No hypervisor info in CPUID - no problem");
        return false;
    }
    auto value = [](const VtNode* node, const char* name) { return std::string(node->getValue(nullptr, name, "")); };
    m_vendorSignature = value(hv, "Vendor");
    m_interfaceSignature = value(hv, "Interface");
    m_brand = value(hv, "Brand");
    m_virtualization = value(hv, "Virtualization");
    VMI_TRACE(traceMAX, "VendorSignature='%s'", m_vendorSignature.c_str());
    VMI_TRACE(traceMAX, "InterfaceSignature='%s'", m_interfaceSignature.c_str());
    VMI_TRACE(traceMAX, "Brand='%s'", m_brand.c_str());
    VMI_TRACE(traceMAX, "Virtualization='%s'", m_virtualization.c_str());

    const VtNode* system = vtGetNode(probe, "System", 0);
    if (!system) {
        VMI_TRACE(traceMIN, "%s", "ERROR! Failed to get System info");
        return false;
    }
    m_facts.manufacturer = value(system, "Manufacturer");
    m_facts.productName = value(system, "ProductName");
    m_facts.version = value(system, "Version");
    m_facts.serialNumber = value(system, "SerialNumber");
    m_facts.uuid = value(system, "UUID");
    VMI_TRACE(traceMAX, "Manufacturer='%s'", m_facts.manufacturer.c_str());
    VMI_TRACE(traceMAX, "ProductName='%s'", m_facts.productName.c_str());
    VMI_TRACE(traceMAX, "Version='%s'", m_facts.version.c_str());
    VMI_TRACE(traceMAX, "SerialNumber='%s'", m_facts.serialNumber.c_str());
    VMI_TRACE(traceMAX, "UUID='%s'", m_facts.uuid.c_str());

    if (const VtNode* host = vtGetNode(probe, "Host", 0)) {
        m_facts.hostManufacturer = value(host, "Manufacturer");
        m_facts.hostProduct = value(host, "Product");
        m_facts.hostModel = value(host, "Model");
        m_facts.hostSerialNumber = value(host, "SerialNumber");
        VMI_TRACE(traceMAX, "Host manufacturer='%s'", m_facts.hostManufacturer.c_str());
        VMI_TRACE(traceMAX, "Host product='%s'", m_facts.hostProduct.c_str());
        VMI_TRACE(traceMAX, "Host model='%s'", m_facts.hostModel.c_str());
        VMI_TRACE(traceMAX, "Host SerialNumber='%s'", m_facts.hostSerialNumber.c_str());
    } else {
        VMI_TRACE(traceMID, "%s", "Warning! Failed to get host info");
    }
    return true;
}

// The first rule that applies wins; every rule that names a type makes the
// machine a virtual machine.
void VirtualMachineInfoRetriever::decide()
{
    const std::string& maker = m_facts.manufacturer;
    const std::string& product = m_facts.productName;
    int type = -1;
    if (maker == "Nutanix") {
        type = NUTANIX;
    } else if (m_vendorSignature == "XenVMMXenVMM" || maker == "Xen") {
        type = XEN;
    } else if (m_vendorSignature == "Microsoft Hv") {
        if (maker != "Microsoft Corporation")
            VMI_TRACE(traceMID, "%s",
                      "Warning! 'hypervisor vendor' from 'CPUID Leaf' has a different value than the one from SMBIOS "
                      "'Manufacturer', it could mean the 'Nested Virtualization'");
        if (m_virtualization == "VMware" || contains(product, "VMware"))
            type = VMWARE;
        else if (contains(product, "Virtual"))
            type = HYPER_V;
    } else if (m_vendorSignature == "Microsoft" && m_brand == "Virtual Server") {
        type = MSVS;
    } else if (m_vendorSignature == "VMware" || m_vendorSignature == "VMwareVMware") {
        type = VMWARE;
    } else if (m_vendorSignature == "KVMKVMKVM") {
        type = KVM;
    } else if (maker == "Red Hat" && product == "KVM") {
        type = KVM;
    } else {
        if (m_virtualization == "VMware")
            type = VMWARE;
        else if (m_virtualization == "MSVS")
            type = MSVS;
        else if (m_virtualization == "HPVM")
            type = INTEGRITY_VM;
        else if (m_virtualization == "KVM_PPC")
            type = KVM_PPC;
        VMI_TRACE(traceMAX, "Hypervisor is '%s' (check 2)", VirtualMachineInfo::virtualizationNames[type < 0 ? UNKNOWN : type]);
    }
    m_facts.virtualizationType = type < 0 ? UNKNOWN : type;
    m_facts.isVirtualMachine = type >= 0;
}
