// The two forms in which show prints a record: "label: value" lines, and
// JSON for scripts.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "tool.h"

namespace tool {

using Json = nlohmann::ordered_json;

// The text form of show, on a stream.
std::unique_ptr<Fields> textFields(std::ostream& out);

// The record family's reader makes of a file as a JSON object: a list is
// an array of that name (slots a record leaves out are null), a null heap
// text is null. False when the library cannot read the file.
bool recordJson(const Family& family, const std::string& path, Json& record);

}  // namespace tool
