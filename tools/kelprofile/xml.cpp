#include "xml.h"

#include <libxml/parser.h>

#include <cstring>
#include <iostream>

#include "input.h"

namespace tool {

namespace {

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

// The roots the tool knows, for the message about an unknown one.
std::string knownRoots() {
    std::string known;
    for (const Family* f : families())
        known += std::string(known.empty() ? "" : ", ") +
                 (f->root ? '"' + std::string(f->root) + '"' : f->described) + " (" + f->name + ")";
    return known;
}

// The parse of admitted bytes; the error of a document that is not XML.
Doc parse(const std::string& path, const std::string& bytes, std::string& error) {
    std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxtPtr)> context(xmlNewParserCtxt(),
                                                                       xmlFreeParserCtxt);
    Doc doc(nullptr, xmlFreeDoc);
    if (!context) {
        error = path + ": error: out of memory";
        return doc;
    }
    // The parser's own message, with its place, instead of libxml2's
    // printing on stderr.
    xmlError first{};
    xmlSetStructuredErrorFunc(&first, keepFirst);
    doc.reset(xmlCtxtReadMemory(
        context.get(), bytes.data(), static_cast<int>(bytes.size()), path.c_str(), nullptr,
        XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_BIG_LINES));
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    std::string message = first.message ? first.message : "";
    xmlFree(first.message);
    if (!doc) {
        if (message.empty()) message = "not well-formed XML";
        while (!message.empty() && (message.back() == '\n' || message.back() == ' '))
            message.pop_back();
        error = path + ':' + std::to_string(first.line > 0 ? first.line : 1) + ':' +
                std::to_string(first.int2 > 0 ? first.int2 : 1) + ": error: " + message;
    }
    return doc;
}

}  // namespace

Parsed parseXml(const std::string& path) {
    Parsed parsed;
    std::string bytes, why;
    if (!readBounded(path, KELPROFILE_FILE_BYTES, bytes, why)) {
        parsed.error = path + ": error: " + why;
        return parsed;
    }
    // libxml2 would inflate a compressed file read from its path; the
    // library reads files as they are, and so does the tool.
    if (bytes.compare(0, 2, "\x1f\x8b") == 0) {
        parsed.error = path +
                       ": error: a gzip-compressed file; files are read as they are, "
                       "never decompressed";
        return parsed;
    }
    parsed.doc = parse(path, bytes, parsed.error);
    if (!parsed.doc) return parsed;
    const xmlNode* root = xmlDocGetRootElement(parsed.doc.get());
    if (!root) {
        parsed.doc.reset();
        parsed.error = path + ":1:1: error: no root element";
    }
    return parsed;
}

Parsed identify(const std::string& path) {
    Parsed parsed = parseXml(path);
    if (!parsed.doc) return parsed;
    const xmlNode* root = xmlDocGetRootElement(parsed.doc.get());
    parsed.family = familyOf(root);
    if (!parsed.family) {
        parsed.error = path + ':' + std::to_string(xmlGetLineNo(root)) +
                       ": error: root element \"" + nameOf(root) +
                       "\" is not one kelprofile knows; it knows " + knownRoots();
        parsed.doc.reset();
    }
    return parsed;
}

bool isFileOf(const std::string& path, const Family& family) {
    Parsed parsed = identify(path);
    if (!parsed.family) {
        std::cerr << parsed.error << '\n';
        return false;
    }
    if (parsed.family != &family) {
        fileError(path,
                  std::string("a file of ") + parsed.family->name + ", not of " + family.name);
        return false;
    }
    return true;
}

std::string attribute(const xmlNode* node, const char* name, bool* present) {
    xmlChar* value = xmlGetProp(node, reinterpret_cast<const xmlChar*>(name));
    if (present) *present = value != nullptr;
    std::string text = value ? reinterpret_cast<const char*>(value) : "";
    xmlFree(value);
    return text;
}

std::string content(const xmlNode* node) {
    xmlChar* value = xmlNodeGetContent(node);
    std::string text = value ? reinterpret_cast<const char*>(value) : "";
    xmlFree(value);
    return text;
}

std::vector<const xmlNode*> elementChildren(const xmlNode* node) {
    std::vector<const xmlNode*> children;
    for (const xmlNode* c = node->children; c; c = c->next)
        if (c->type == XML_ELEMENT_NODE) children.push_back(c);
    return children;
}

bool named(const xmlNode* node, const char* name) {
    return std::strcmp(reinterpret_cast<const char*>(node->name), name) == 0;
}

std::string nameOf(const xmlNode* node) {
    return reinterpret_cast<const char*>(node->name);
}

}  // namespace tool
