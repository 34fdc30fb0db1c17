// kelprofile: shows the records of the application's files, checks that
// whole folders survive a read, a write and a second read, and reaches the
// library's other jobs from the command line.
#include <libxml/parser.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>

#include "kelProfile.h"
#include "tool.h"

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

namespace {

void printHelp(std::ostream& out) {
    out << "Usage: kelprofile COMMAND ARGS...\n\n"
           "Reads and writes the media application's XML configuration and project files.\n\n"
           "Commands:\n";
    std::vector<tool::Command> sorted = tool::commands();
    std::sort(sorted.begin(), sorted.end(), [](const tool::Command& a, const tool::Command& b) {
        return std::strcmp(a.name, b.name) < 0;
    });
    for (const tool::Command& c : sorted)
        out << "  kelprofile " << c.name << ' ' << c.usage << "\n      " << c.summary << '\n';
    out << "\nFiles known:";
    for (const tool::Family& f : tool::families()) out << "\n  " << f.name;
    out << "\n\nErrors name their place as FILE:LINE:COLUMN: error: ..., lint's findings as\n"
           "FILE:LINE: warning: ....\n"
           "Exit status: 0 ok, 1 some file failed (lint: something would be lost), 2 usage error.\n"
           "kelprofile --version prints the version of the tool and its library.\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        printHelp(std::cerr);
        return tool::kUsage;
    }
    std::string name = argv[1];
    if (name == "--help" || name == "-h" || name == "help") {
        printHelp(std::cout);
        return tool::kOk;
    }
    if (name == "--version") {
        // The tool is built with the library, from the same version.
        std::cout << "kelprofile (kelProfile) " << KELPROFILE_VERSION << '\n';
        return tool::kOk;
    }
    for (const tool::Command& c : tool::commands()) {
        if (name == c.name) return c.run(std::vector<std::string>(argv + 2, argv + argc));
    }
    tool::error("unknown command '" + name + "' (see kelprofile --help)");
    return tool::kUsage;
}
