// lint's comparison of a file with the library's rewrite of it, for the
// families with a writer: what the written copy lacks or holds differently
// is what the record lost or changed. Differences that are only the
// writer's normal form (attribute order, indentation, the declaration,
// empty element forms, elements and attributes it adds with the value
// their absence reads as) are not findings.
#pragma once

#include <libxml/tree.h>

#include "checks.h"

namespace tool {

// Reports to lint how the element record (the rewrite) differs from the
// element file; gbk: the family's records hold element text in GBK.
void compareRewrite(const xmlNode* file, const xmlNode* record, bool gbk, Lint& lint);

}  // namespace tool
