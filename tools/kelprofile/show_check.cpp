// kelprofile show and kelprofile check.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "kelProfile.h"
#include "tool.h"

namespace fs = std::filesystem;

namespace {

int show(const std::vector<std::string>& args) {
    bool json = !args.empty() && args[0] == "--json";
    std::vector<std::string> paths(args.begin() + (json ? 1 : 0), args.end());
    if (paths.empty()) {
        tool::error("show needs at least one FILE");
        return tool::kUsage;
    }
    if (json) return tool::showJson(paths);
    int status = tool::kOk;
    for (const std::string& path : paths) {
        tool::Parsed parsed = tool::identify(path);
        if (!parsed.family) {
            std::cerr << parsed.error << '\n';
            status = tool::kFailed;
            continue;
        }
        std::cout << "== " << path << " (" << parsed.family->name << ")\n";
        if (!parsed.family->show(path.c_str(), *tool::textFields(std::cout))) {
            std::cerr << path << ": error: the library cannot read it\n";
            status = tool::kFailed;
        }
    }
    return status;
}

bool isXmlName(const fs::path& p) {
    std::string ext = p.extension().string();
    return ext == ".xml" || ext == ".XML";
}

// Every field the family prints, without the file name, which a round trip
// through another path changes by design.
std::vector<std::string> dump(const tool::Family& family, const char* path, bool& ok) {
    std::ostringstream out;
    ok = family.show(path, *tool::textFields(out));
    std::vector<std::string> lines;
    std::istringstream in(out.str());
    for (std::string line; std::getline(in, line);)
        if (line.find("fileName:") == std::string::npos) lines.push_back(line);
    return lines;
}

// "" when the file reads back the same after a write, else what differs.
std::string roundTrip(const tool::Family& family, const fs::path& file, const fs::path& scratch) {
    bool ok = false;
    std::vector<std::string> before = dump(family, file.c_str(), ok);
    if (!ok) return "the library cannot read it";
    if (!family.rewrite) return "";
    fs::path copy = scratch / "copy.xml";
    if (family.rewrite(file.c_str(), copy.c_str()) != 0) return "the library cannot write it back";
    std::vector<std::string> after = dump(family, copy.c_str(), ok);
    if (!ok) return "the written file cannot be read back";
    for (std::size_t i = 0; i < before.size() || i < after.size(); ++i) {
        std::string a = i < before.size() ? before[i] : "(nothing)";
        std::string b = i < after.size() ? after[i] : "(nothing)";
        if (a != b) return "changed in the round trip: '" + a + "' became '" + b + "'";
    }
    return "";
}

// Records a folder loader of the library reads from a folder, released.
template <class Record>
int loaded(int (*load)(const char*, RecordArray*), void (*release)(Record*), const char* folder) {
    RecordArray result{nullptr, 0};
    load(folder, &result);
    for (int i = 0; i < result.count; ++i) release(&static_cast<Record*>(result.records)[i]);
    std::free(result.records);
    return result.count;
}

struct LoaderCounts {
    int profiles;
    int menus;
    int options;
};

// What the library's folder loaders read from a folder.
LoaderCounts runLoaders(const char* folder) {
    return {loaded<Profile>(praseXMLFolder, freeProfile, folder),
            loaded<DVDMenu>(
                praseDVDXMLFolder, [](DVDMenu*) {}, folder),
            loaded<TempOption>(
                praseOPtionXMLFolder, [](TempOption* r) { std::free(r->tempItems); }, folder)};
}

int check(const std::vector<std::string>& args) {
    if (args.size() != 1) {
        tool::error("check needs exactly one DIR");
        return tool::kUsage;
    }
    std::error_code ec;
    if (!fs::is_directory(args[0], ec)) {
        tool::error(args[0] + ": not a folder");
        return tool::kFailed;
    }
    std::string pattern = (fs::temp_directory_path() / "kelprofile-check-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        tool::error("cannot make a temporary folder");
        return tool::kFailed;
    }
    fs::path scratch = pattern;

    std::vector<fs::path> files;
    for (fs::recursive_directory_iterator
             it(args[0], fs::directory_options::skip_permission_denied, ec),
         end;
         it != end; it.increment(ec)) {
        if (ec) break;
        if (it->is_regular_file(ec) && isXmlName(it->path())) files.push_back(it->path());
    }
    std::sort(files.begin(), files.end());

    int ok = 0, failed = 0, unknown = 0;
    for (const fs::path& file : files) {
        tool::Parsed parsed = tool::identify(file.string());
        const tool::Family* family = parsed.family;
        if (!family) {
            std::cout << "skip    " << parsed.error << '\n';
            ++unknown;
            continue;
        }
        std::string problem = roundTrip(*family, file, scratch);
        if (problem.empty()) {
            std::cout << "ok      " << file.string() << " (" << family->name
                      << (family->rewrite ? ")\n" : "; read only: the library has no writer)\n");
            ++ok;
        } else {
            std::cout << "FAILED  " << file.string() << " (" << family->name << "): " << problem
                      << '\n';
            ++failed;
        }
    }
    fs::remove_all(scratch, ec);
    std::cout << files.size() << " files: " << ok << " ok, " << failed << " failed, " << unknown
              << " not recognised\n";

    // The host loads whole folders at once; its loaders do not look at the
    // root element, so they count every file that parses.
    LoaderCounts counts = runLoaders(args[0].c_str());
    // The readers do not look at the root's name, so each loader takes every
    // file that parses; say so, lest the counts read as a classification.
    std::cout << "folder loaders (any well-formed file counts, whatever its root): praseXMLFolder "
              << counts.profiles << ", praseDVDXMLFolder " << counts.menus
              << ", praseOPtionXMLFolder " << counts.options;
    if (files.size() > 512) std::cout << " (they take at most 512 files)";
    std::cout << '\n';
    return failed ? tool::kFailed : tool::kOk;
}

tool::RegisterCommand showCommand(
    {"show", "[--json] FILE...",
     "prints the records of each file, record text shown as UTF-8; with --json one JSON\n"
     "      array of {path, family, record} objects",
     show});
tool::RegisterCommand checkCommand(
    {"check", "DIR",
     "reads every known file below DIR, writes it back to a temporary folder, reads it again\n"
     "      and reports per file whether every field survived; then how many files the\n"
     "      library's folder loaders read from DIR",
     check});

}  // namespace
