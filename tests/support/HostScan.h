#pragma once
// One scan the way a host agent makes it: the factory initialised, the
// hardware configuration loaded, every group the factory lists asked for its
// table by name, then the scan ended.
#include <functional>
#include <string>

class KorTable;

namespace testsupport {

// `each` sees every group's name and its table, null when it gave none; the
// table is deleted after it returns.
void hostScan(const std::function<void(const std::string& name, KorTable* table)>& each);

}  // namespace testsupport
