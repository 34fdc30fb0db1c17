// kelprofile show: the records of files, as text or as JSON.
#include <iostream>

#include "commands.h"
#include "input.h"
#include "printer.h"
#include "xml.h"

namespace tool {

namespace {

// The files the arguments name: a folder stands for the XML files below it.
std::vector<std::string> filesOf(const std::vector<std::string>& args) {
    std::vector<std::string> files;
    for (const std::string& arg : args) {
        if (!isFolder(arg)) {
            files.push_back(arg);
            continue;
        }
        for (const FoundFile& f : xmlFilesBelow(arg)) files.push_back(f.path);
    }
    return files;
}

// The family of a file, or null with the error printed.
const Family* familyOfFile(const std::string& path) {
    Parsed parsed = identify(path);
    if (!parsed.family) std::cerr << parsed.error << '\n';
    return parsed.family;
}

int showText(const std::vector<std::string>& paths) {
    int status = kOk;
    for (const std::string& path : paths) {
        const Family* family = familyOfFile(path);
        if (!family) {
            status = kFailed;
            continue;
        }
        std::cout << "== " << path << " (" << family->name << ")\n";
        if (!family->show(path.c_str(), *textFields(std::cout))) {
            fileError(path, "the library cannot read it");
            status = kFailed;
        }
    }
    return status;
}

int showJson(const std::vector<std::string>& paths) {
    Json all = Json::array();
    int status = kOk;
    for (const std::string& path : paths) {
        const Family* family = familyOfFile(path);
        Json record;
        if (family && !recordJson(*family, path, record)) {
            fileError(path, "the library cannot read it");
            family = nullptr;
        }
        if (!family) {
            status = kFailed;
            continue;
        }
        all.push_back({{"path", path}, {"family", family->name}, {"record", std::move(record)}});
    }
    // Record text is UTF-8 by now; a path that is not is shown with U+FFFD.
    std::cout << all.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    return status;
}

int show(const std::vector<std::string>& args) {
    bool json = !args.empty() && args[0] == "--json";
    std::vector<std::string> rest(args.begin() + (json ? 1 : 0), args.end());
    if (rest.empty()) {
        error("show needs at least one FILE or DIR");
        return kUsage;
    }
    std::vector<std::string> paths = filesOf(rest);
    return json ? showJson(paths) : showText(paths);
}

}  // namespace

const Command kShow = {
    "show", "[--json] FILE|DIR...",
    "prints the records of each file (folders: every XML file below them), record text shown\n"
    "      as UTF-8; with --json one JSON array of {path, family, record} objects",
    show};

}  // namespace tool
