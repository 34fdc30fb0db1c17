// What the tool's commands and families share: their registers, the parse
// that finds a file's family, and error messages.
#include "tool.h"

#include <libxml/parser.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>

namespace fs = std::filesystem;

namespace tool {

std::vector<Family>& families() {
    static std::vector<Family> all;
    return all;
}

std::vector<Command>& commands() {
    static std::vector<Command> all;
    return all;
}

namespace {

// The roots the tool knows, for the message about an unknown one.
std::string knownRoots() {
    std::vector<const Family*> sorted;
    for (const Family& f : families()) sorted.push_back(&f);
    // Roots by name first, then the families known by something else.
    std::sort(sorted.begin(), sorted.end(), [](const Family* a, const Family* b) {
        bool aNamed = a->roots[0] == '"', bNamed = b->roots[0] == '"';
        return aNamed != bNamed ? aNamed : std::strcmp(a->name, b->name) < 0;
    });
    std::string known;
    for (const Family* f : sorted)
        known += std::string(known.empty() ? "" : ", ") + f->roots + " (" + f->name + ")";
    return known;
}

// Keeps the first error of a parse: the later ones often only follow from it.
void keepFirst(void* first, xmlErrorPtr e) {
    auto* kept = static_cast<xmlError*>(first);
    if (kept->code == XML_ERR_OK && e && e->level >= XML_ERR_ERROR) {
        kept->code = e->code;
        kept->line = e->line;
        kept->int2 = e->int2;  // the column
        kept->message = e->message ? xmlMemStrdup(e->message) : nullptr;
    }
}

}  // namespace

Parsed identify(const std::string& path) {
    Parsed parsed;
    std::error_code ec;
    fs::file_status status = fs::status(path, ec);
    if (!fs::exists(status)) {
        parsed.error = path + ": error: no such file";
        return parsed;
    }
    if (fs::is_directory(status)) {
        parsed.error = path + ": error: a folder, not a file";
        return parsed;
    }
    // The parser's own message, with its place, instead of libxml2's
    // printing on stderr.
    std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxtPtr)> context(xmlNewParserCtxt(),
                                                                       xmlFreeParserCtxt);
    if (!context) {
        parsed.error = path + ": error: out of memory";
        return parsed;
    }
    xmlError first{};
    xmlSetStructuredErrorFunc(&first, keepFirst);
    parsed.doc.reset(xmlCtxtReadFile(
        context.get(), path.c_str(), nullptr,
        XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_BIG_LINES));
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    std::string message = first.message ? first.message : "";
    xmlFree(first.message);
    const xmlNode* root = parsed.doc ? xmlDocGetRootElement(parsed.doc.get()) : nullptr;
    if (!parsed.doc) {
        if (message.empty()) message = "not well-formed XML";
        while (!message.empty() && (message.back() == '\n' || message.back() == ' '))
            message.pop_back();
        parsed.error = path + ':' + std::to_string(first.line > 0 ? first.line : 1) + ':' +
                       std::to_string(first.int2 > 0 ? first.int2 : 1) + ": error: " + message;
        return parsed;
    }
    if (!root) {
        parsed.doc.reset();
        parsed.error = path + ":1:1: error: no root element";
        return parsed;
    }
    for (const Family& f : families())
        if (f.recognise(root)) {
            parsed.family = &f;
            return parsed;
        }
    parsed.error = path + ':' + std::to_string(xmlGetLineNo(root)) + ": error: root element \"" +
                   reinterpret_cast<const char*>(root->name) +
                   "\" is not one kelprofile knows; it knows " + knownRoots();
    parsed.doc.reset();
    return parsed;
}

void error(const std::string& message) {
    std::cerr << "kelprofile: " << message << '\n';
}

}  // namespace tool
