#pragma once
// Real captures from real machines, kept beside the project in
// ../shared/fixtures/KIND. A test that needs them starts with
// REQUIRE_FIXTURES(dir, "KIND"): without the folder it is skipped, with a
// message `make test` counts, and under CI (CI=true) it fails, so that a CI
// run can never pass by skipping what it should have checked.
#include <string>

namespace testsupport {

// The folder of captures of that kind; empty when it is absent.
std::string fixturePath(const std::string& kind);
bool inCI();
// A capture's text without its provenance header (the lines up to and
// including "#==== END OF PROVENANCE HEADER ====", where there are any).
std::string captureText(const std::string& path);

}  // namespace testsupport

#define REQUIRE_FIXTURES(dir, kind)                                                          \
    const std::string dir = testsupport::fixturePath(kind);                                   \
    if (dir.empty()) {                                                                         \
        if (testsupport::inCI()) FAIL() << "CI without ../shared/fixtures/" << (kind);         \
        GTEST_SKIP() << "no real captures: ../shared/fixtures/" << (kind) << " is absent";     \
    }
