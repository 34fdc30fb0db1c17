// kelprofile: shows the records of the application's files, checks that
// whole folders survive a read, a write and a second read, and reaches the
// library's other jobs from the command line.
#include <algorithm>
#include <cstring>
#include <iostream>
#include <new>

#include "tool.h"

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
        if (name != c.name) continue;
        try {
            return c.run(std::vector<std::string>(argv + 2, argv + argc));
        } catch (const std::bad_alloc&) {
            tool::error("out of memory");
            return tool::kFailed;
        }
    }
    tool::error("unknown command '" + name + "' (see kelprofile --help)");
    return tool::kUsage;
}
