// kelprofile check: whether every file below a folder survives a read, a
// write and a second read, and what the library's folder loaders read.
#include <cstdlib>
#include <iostream>
#include <sstream>

#include "commands.h"
#include "input.h"
#include "printer.h"
#include "xml.h"

namespace tool {

namespace {

// Every field the family prints, without the file name, which a round trip
// through another path changes by design.
std::vector<std::string> dump(const Family& family, const std::string& path, bool& ok) {
    std::ostringstream out;
    ok = family.show(path.c_str(), *textFields(out));
    std::vector<std::string> lines;
    std::istringstream in(out.str());
    for (std::string line; std::getline(in, line);)
        if (line.find("fileName:") == std::string::npos) lines.push_back(line);
    return lines;
}

// The first line two dumps differ in, as "'a' became 'b'"; "" when none.
std::string firstChange(const std::vector<std::string>& before,
                        const std::vector<std::string>& after) {
    for (std::size_t i = 0; i < before.size() || i < after.size(); ++i) {
        std::string a = i < before.size() ? before[i] : "(nothing)";
        std::string b = i < after.size() ? after[i] : "(nothing)";
        if (a != b) return "changed in the round trip: '" + a + "' became '" + b + "'";
    }
    return "";
}

// "" when the file reads back the same after a write, else what differs.
std::string roundTrip(const Family& family, const std::string& file, const ScratchFolder& scratch) {
    bool ok = false;
    std::vector<std::string> before = dump(family, file, ok);
    if (!ok) return "the library cannot read it";
    if (!family.rewrite) return "";
    std::string copy = scratch.file("copy.xml");
    if (family.rewrite(file.c_str(), copy.c_str()) != 0) return "the library cannot write it back";
    std::vector<std::string> after = dump(family, copy, ok);
    if (!ok) return "the written file cannot be read back";
    return firstChange(before, after);
}

struct Tally {
    int ok = 0, failed = 0, unknown = 0;
};

// Checks one file and prints its line.
void checkFile(const FoundFile& file, const ScratchFolder& scratch, Tally& tally) {
    Parsed parsed = identify(file.path);
    const Family* family = parsed.family;
    if (!family) {
        std::cout << "skip    " << parsed.error << '\n';
        ++tally.unknown;
        return;
    }
    std::string problem = roundTrip(*family, file.path, scratch);
    if (!problem.empty()) {
        std::cout << "FAILED  " << file.path << " (" << family->name << "): " << problem << '\n';
        ++tally.failed;
        return;
    }
    std::cout << "ok      " << file.path << " (" << family->name
              << (family->rewrite ? ")" : "; read only: the library has no writer)")
              << (file.loadable ? "" : "; its path is too long for the folder loaders") << '\n';
    ++tally.ok;
}

// How many records a folder loader of the library reads from a folder.
template <class Record>
int loaded(int (*load)(const char*, RecordArray*), void (*release)(Record*), const char* folder) {
    RecordArray result{nullptr, 0};
    load(folder, &result);
    for (int i = 0; i < result.count; ++i) release(&static_cast<Record*>(result.records)[i]);
    std::free(result.records);
    return result.count;
}

// The loaders do not look at the root element, so each takes every file
// that parses; the line says so, lest the counts read as a classification.
void printLoaderCounts(const std::string& folder, std::size_t files) {
    const char* f = folder.c_str();
    std::cout << "folder loaders (any well-formed file counts, whatever its root): praseXMLFolder "
              << loaded<Profile>(praseXMLFolder, freeProfile, f) << ", praseDVDXMLFolder "
              << loaded<DVDMenu>(
                     praseDVDXMLFolder, [](DVDMenu*) {}, f)
              << ", praseOPtionXMLFolder "
              << loaded<TempOption>(
                     praseOPtionXMLFolder, [](TempOption* r) { std::free(r->tempItems); }, f);
    if (files > static_cast<std::size_t>(kFolderFiles))
        std::cout << " (they take at most " << kFolderFiles << " files)";
    std::cout << '\n';
}

int check(const std::vector<std::string>& args) {
    if (args.size() != 1) {
        error("check needs exactly one DIR");
        return kUsage;
    }
    if (!isFolder(args[0])) {
        fileError(args[0], "not a folder");
        return kFailed;
    }
    ScratchFolder scratch;
    std::vector<FoundFile> files = xmlFilesBelow(args[0]);
    Tally tally;
    for (const FoundFile& file : files) checkFile(file, scratch, tally);
    std::cout << files.size() << (files.size() == 1 ? " file: " : " files: ") << tally.ok << " ok, "
              << tally.failed << " failed, " << tally.unknown << " not recognised\n";
    printLoaderCounts(args[0], files.size());
    return tally.failed ? kFailed : kOk;
}

}  // namespace

const Command kCheck = {
    "check", "DIR",
    "reads every known file below DIR, writes it back to a temporary folder, reads it again\n"
    "      and reports per file whether every field survived; then how many files the\n"
    "      library's folder loaders read from DIR",
    check};

}  // namespace tool
