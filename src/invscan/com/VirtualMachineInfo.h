#pragma once
// Is this machine a virtual machine guest, and under which hypervisor? Decided
// from the cpuid probe's tree: the processor's hypervisor leaf ("Hypervisor")
// and the firmware's system and host ("System", "Host").
#include <string>

struct VtExecInfo;

struct VirtualMachineInfo {
    // The names the decision's numbers stand for.
    static const char* const virtualizationNames[11];

    bool isVirtualMachine = false;
    int virtualizationType = 0;  // into virtualizationNames
    std::string manufacturer, productName, version, serialNumber, uuid;
    std::string hostManufacturer, hostProduct, hostModel, hostSerialNumber;
};

class VirtualMachineInfoRetriever {
public:
    // Runs (or finds cached) the cpuid probe and decides; true when the
    // hypervisor and system facts were read. Always fills `info`.
    bool retrieve(VirtualMachineInfo& info);
    // The same over a given probe result.
    bool retrieveFrom(VtExecInfo* probe, VirtualMachineInfo& info);

private:
    bool read(VtExecInfo* probe);
    void decide();

    bool m_skip = false;
    bool m_result = false;
    VirtualMachineInfo m_facts;
    std::string m_vendorSignature, m_interfaceSignature, m_brand, m_virtualization;
};

class VirtualMachineInfoProvider {
public:
    // The process-wide retriever, made on first use.
    static VirtualMachineInfoRetriever& retriever();

private:
    static VirtualMachineInfoRetriever* s_retriever;
};

bool getVirtualMachineInfo(VirtualMachineInfo& info);
