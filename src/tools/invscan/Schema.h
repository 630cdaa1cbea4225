#pragma once
// invscan schema: the JSON Schema of `invscan scan --format json`.
#include <nlohmann/json.hpp>

namespace cli {

// Draft 2020-12, made from the catalogue.
nlohmann::ordered_json scanSchema();
int runSchema();

}  // namespace cli
