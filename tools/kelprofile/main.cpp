// kelprofile: shows the records of the application's files, checks that
// whole folders survive a read, a write and a second read, and reaches the
// library's other jobs from the command line.
#include <libxml/parser.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>

#include "kelProfile.h"
#include "tool.h"

namespace tool {

std::vector<Family>& families() {
    static std::vector<Family> all;
    return all;
}

std::vector<Command>& commands() {
    static std::vector<Command> all;
    return all;
}

const Family* familyOf(const char* path) {
    std::unique_ptr<xmlDoc, void (*)(xmlDoc*)> doc(
        xmlReadFile(path, nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
        xmlFreeDoc);
    const xmlNode* root = doc ? xmlDocGetRootElement(doc.get()) : nullptr;
    if (!root) return nullptr;
    for (const Family& f : families())
        if (f.recognise(root)) return &f;
    return nullptr;
}

std::string utf8(const char* gbk) {
    if (!gbk) return "";
    char out[4096];
    char to[] = "UTF-8", from[] = "gbk";
    if (covert(to, from, gbk, std::strlen(gbk), out, sizeof out) == 0) return out;
    std::string shown;
    for (const unsigned char* p = reinterpret_cast<const unsigned char*>(gbk); *p; ++p) {
        if (*p < 0x80) {
            shown += static_cast<char>(*p);
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02X", *p);
            shown += hex;
        }
    }
    return shown;
}

void Printer::indent() {
    out_ << std::string(static_cast<std::size_t>(depth_) * 2, ' ');
}

Printer& Printer::text(const char* label, const char* value) {
    indent();
    out_ << label << ": " << (value ? value : "(null)") << '\n';
    return *this;
}

Printer& Printer::gbk(const char* label, const char* value) {
    indent();
    out_ << label << ": " << (value ? utf8(value) : std::string("(null)")) << '\n';
    return *this;
}

Printer& Printer::number(const char* label, long value) {
    indent();
    out_ << label << ": " << value << '\n';
    return *this;
}

Printer& Printer::open(const char* label, int index) {
    indent();
    out_ << label;
    if (index >= 0) out_ << ' ' << index;
    out_ << ":\n";
    ++depth_;
    return *this;
}

Printer& Printer::close() {
    --depth_;
    return *this;
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
    out << "\n\nExit status: 0 ok, 1 some file failed, 2 usage error.\n";
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
    for (const tool::Command& c : tool::commands()) {
        if (name == c.name) return c.run(std::vector<std::string>(argv + 2, argv + argc));
    }
    tool::error("unknown command '" + name + "' (see kelprofile --help)");
    return tool::kUsage;
}
