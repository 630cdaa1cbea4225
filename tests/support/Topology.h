#pragma once
// Whether this machine's kernel numbers processors as CPUID does. Some
// hypervisors give the kernel one topology (ACPI) and CPUID another; the
// probe reads CPUID, so a comparison with the kernel means nothing there.
namespace testsupport {

bool kernelAgreesWithCpuid();

}  // namespace testsupport
