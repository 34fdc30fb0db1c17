// The tool's own reading of XML: a file parsed with line numbers under the
// library's admission rules, its family found, and the node helpers that
// lint and the families' checks share.
#pragma once

#include <libxml/tree.h>

#include <memory>
#include <string>
#include <vector>

#include "tool.h"

namespace tool {

using Doc = std::unique_ptr<xmlDoc, void (*)(xmlDoc*)>;

// A file parsed for the tool; on failure doc is null and error says why, in
// the form "FILE:LINE:COLUMN: error: ..." (or "FILE: error: ..." when there
// is no place in the file to name).
struct Parsed {
    Doc doc{nullptr, xmlFreeDoc};
    const Family* family = nullptr;
    std::string error;
};

// Parses a file, admitted as the library admits it (a regular file of at
// most the library's largest size) and parsed from its bytes as they are,
// so that a FIFO, a device, a huge or a compressed file is refused at once.
// A document without a root element is an error too.
Parsed parseXml(const std::string& path);

// Parses a file as parseXml does and finds its family by the root element.
Parsed identify(const std::string& path);

// Whether the file is one of family; else the error printed, in the form
// every command gives.
bool isFileOf(const std::string& path, const Family& family);

// The text of a node's attribute, "" when absent; present tells which.
std::string attribute(const xmlNode* node, const char* name, bool* present = nullptr);
// The whole text content of a node.
std::string content(const xmlNode* node);
// The element children of a node.
std::vector<const xmlNode*> elementChildren(const xmlNode* node);
bool named(const xmlNode* node, const char* name);
std::string nameOf(const xmlNode* node);

}  // namespace tool
