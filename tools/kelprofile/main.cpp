// kelprofile: shows the records of the application's files, checks that
// whole folders survive a read, a write and a second read, and reaches the
// library's other jobs from the command line.
#include <exception>
#include <iostream>
#include <new>

#include "commands.h"

namespace {

// The commands, in the order --help lists them.
const tool::Command* const kCommands[] = {
    &tool::kCheck,   &tool::kDvd, &tool::kGet,  &tool::kLint,
    &tool::kPublish, &tool::kSet, &tool::kShow, &tool::kWrite,
};

void printHelp(std::ostream& out) {
    out << "Usage: kelprofile COMMAND ARGS...\n\n"
           "Reads and writes the media application's XML configuration and project files.\n\n"
           "Commands:\n";
    for (const tool::Command* c : kCommands)
        out << "  kelprofile " << c->name << ' ' << c->usage << "\n      " << c->summary << '\n';
    out << "\nFiles known, in the order that decides a file more than one would take:";
    for (const tool::Family* f : tool::families()) out << "\n  " << f->name;
    out << "\n\nErrors name their place as FILE:LINE:COLUMN: error: ..., lint's findings as\n"
           "FILE:LINE: warning: ....\n"
           "Exit status: 0 ok, 1 some file failed (lint: something would be lost), 2 usage error.\n"
           "kelprofile --version prints the version of the tool and its library.\n";
}

int run(const tool::Command& command, int argc, char** argv) {
    try {
        return command.run(std::vector<std::string>(argv + 2, argv + argc));
    } catch (const std::bad_alloc&) {
        tool::error("out of memory");
    } catch (const std::exception& e) {
        tool::error(e.what());
    }
    return tool::kFailed;
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
    for (const tool::Command* c : kCommands)
        if (name == c->name) return run(*c, argc, argv);
    tool::error("unknown command '" + name + "' (see kelprofile --help)");
    return tool::kUsage;
}
