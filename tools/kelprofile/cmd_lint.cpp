// kelprofile lint: what a read by the library would lose or change in a
// file, one "FILE:LINE: warning: ..." line per finding. For a family with
// a writer, lint reads the file with the library, writes the record back
// with the library's writer and compares the two documents; families the
// library only reads check their capacities and widths directly.
#include <iostream>
#include <sstream>

#include "checks.h"
#include "commands.h"
#include "input.h"
#include "printer.h"
#include "rewrite_diff.h"
#include "xml.h"

namespace tool {

namespace {

// Errors go with the warnings, on standard output, so that the report
// keeps the order of the files.
bool failed(const std::string& path, const std::string& why) {
    std::cout << path << ": error: " << why << '\n';
    return false;
}

// The findings of a family with a writer: the file against the library's
// rewrite of it.
bool lintRewrite(const Family& family, const std::string& path, const xmlNode* root,
                 const ScratchFolder& scratch, Lint& lint) {
    std::string copy = scratch.file("record.xml");
    if (family.rewrite(path.c_str(), copy.c_str()) != 0)
        return failed(path, "the library cannot read it");
    Parsed written = identify(copy);
    if (!written.doc) return failed(path, "the library's rewrite of it does not parse");
    compareRewrite(root, xmlDocGetRootElement(written.doc.get()), family.gbk, lint);
    return true;
}

// The findings of a family the library only reads, when it reads the file
// at all.
bool lintDirectly(const Family& family, const std::string& path, const xmlNode* root, Lint& lint) {
    std::ostringstream discard;
    if (!family.show(path.c_str(), *textFields(discard)))
        return failed(path, "the library cannot read it");
    if (family.lint) family.lint(root, lint);
    return true;
}

// What lint does with one file; the number of warnings, or -1 when the file
// cannot be linted.
int lintFile(const std::string& path, const ScratchFolder& scratch) {
    Parsed parsed = identify(path);
    if (!parsed.family) {
        std::cout << parsed.error << '\n';
        return -1;
    }
    const Family& family = *parsed.family;
    const xmlNode* root = xmlDocGetRootElement(parsed.doc.get());
    Lint lint(path);
    bool linted = family.rewrite ? lintRewrite(family, path, root, scratch, lint)
                                 : lintDirectly(family, path, root, lint);
    return linted ? lint.print(std::cout) : -1;
}

struct Tally {
    int files = 0, warnings = 0, errors = 0;
    void add(int found) {
        ++files;
        if (found < 0)
            ++errors;
        else
            warnings += found;
    }
};

// The files below a folder as the loaders see them, and what the loaders
// leave of them.
void lintFolder(const std::string& folder, const ScratchFolder& scratch, Tally& tally) {
    std::vector<FoundFile> below = xmlFilesBelow(folder);
    for (const FoundFile& file : below) {
        tally.add(lintFile(file.path, scratch));
        if (!file.loadable) {
            std::cout << file.path << ": warning: a path of " << file.path.size()
                      << " bytes; the folder loaders leave out paths longer than "
                      << KELPROFILE_FOLDER_PATH << "\n";
            ++tally.warnings;
        }
    }
    if (below.size() > static_cast<std::size_t>(kFolderFiles)) {
        std::cout << folder << ": warning: " << below.size()
                  << " .xml files below this folder; the folder loaders read at most "
                  << kFolderFiles << " and leave the rest\n";
        ++tally.warnings;
    }
}

int lint(const std::vector<std::string>& args) {
    if (args.empty()) {
        error("lint needs at least one FILE or DIR");
        return kUsage;
    }
    for (const std::string& a : args)
        if (a.rfind("--", 0) == 0) {
            error("lint: unknown option " + a);
            return kUsage;
        }
    ScratchFolder scratch;
    Tally tally;
    for (const std::string& arg : args) {
        if (isFolder(arg))
            lintFolder(arg, scratch, tally);
        else
            tally.add(lintFile(arg, scratch));
    }
    std::cout << tally.files << (tally.files == 1 ? " file, " : " files, ") << tally.warnings
              << (tally.warnings == 1 ? " warning" : " warnings");
    if (tally.errors)
        std::cout << ", " << tally.errors << (tally.errors == 1 ? " error" : " errors");
    std::cout << '\n';
    return tally.warnings || tally.errors ? kFailed : kOk;
}

}  // namespace

const Command kLint = {
    "lint", "FILE|DIR...",
    "reports, as FILE:LINE: warning: ..., what a read by the library would lose or change\n"
    "      in each file (folders recursively): cut values, items past a capacity, text\n"
    "      without a GBK form, ignored elements and attributes, numbers that read otherwise\n"
    "      than they look or past 32 bits, repeated elements of which one survives; exit 1\n"
    "      when any",
    lint};

}  // namespace tool
