// Fills a cleared record from its JSON through the record's description,
// refusing, with its JSON path, every value the record could not hold as
// given: nothing is cut, and a record with a refused value is not saved.
#pragma once

#include <memory>

#include "json_source.h"
#include "tool.h"

namespace tool {

// The filler of the record at path ("$[0].record") of a document.
std::unique_ptr<Fields> recordFiller(const Json& record, const std::string& path,
                                     Findings& findings);

}  // namespace tool
