// kelprofile write: a record from the JSON show --json prints, saved with
// the library's writer of its family.
#include <iostream>

#include "commands.h"
#include "input.h"
#include "json_source.h"
#include "record_filler.h"

namespace tool {

namespace {

// The names of the families with a writer, for messages.
std::string writable() {
    std::string names;
    for (const Family* f : families())
        if (f->write) names += std::string(names.empty() ? "\"" : ", \"") + f->name + '"';
    return names;
}

// The object {path, family, record} of the document: show --json prints an
// array of one, and the object alone is taken too. Null when there is none.
const Json* recordObject(const Json& document, std::string& at, Findings& findings) {
    at = "$";
    if (document.is_array() && document.size() != 1) {
        findings.at(0, "$: " + std::to_string(document.size()) +
                           " records; write takes one, as show --json prints it for one file");
        return nullptr;
    }
    const Json* object = &document;
    if (document.is_array()) {
        at = "$[0]";
        object = &document[0];
    }
    if (!object->is_object()) {
        findings.at(0, "$: one object {path, family, record} expected, as show --json prints it");
        return nullptr;
    }
    for (const auto& [key, value] : object->items())
        if (key != "path" && key != "family" && key != "record")
            findings.about(at + step(key), "no such field here");
    return object;
}

// The family the object names, when it has a writer.
const Family* writerOf(const Json& object, const std::string& at, Findings& findings) {
    auto family = object.find("family");
    if (family == object.end() || !family->is_string()) {
        findings.about(at + ".family", "missing, or not a text");
        return nullptr;
    }
    const Family* chosen = familyNamed(family->get<std::string>());
    if (!chosen)
        findings.about(
            at + ".family",
            family->dump() + " is not a family kelprofile knows; it writes " + writable());
    else if (!chosen->write)
        findings.about(at + ".family", "the library only reads files of this family (" +
                                           family->dump() + "); it has no writer for them");
    return chosen && chosen->write ? chosen : nullptr;
}

// Fills the family's record from its JSON and saves it to out when nothing
// was refused; the exit status.
int saveFilled(const Family& family, const Json& record, const std::string& at,
               const std::string& out, Findings& findings, std::ostream& errors) {
    auto filler = recordFiller(record, at + ".record", findings);
    int saved = family.write(*filler, out.c_str());
    if (!filler->accepted() || !findings.empty()) return kFailed;
    if (saved == 0) return kOk;
    errors << out << ": error: the library cannot write it\n";
    return kFailed;
}

int write(const std::vector<std::string>& args) {
    if (args.size() != 2) {
        error("write needs JSON (a file, or - for standard input) and OUT");
        return kUsage;
    }
    const std::string& source = args[0];
    std::string text, why;
    if (!readBounded(source, kMaxJsonBytes, text, why)) {
        fileError(source == "-" ? "<stdin>" : source, why);
        return kFailed;
    }
    return writeRecord(text, source == "-" ? "<stdin>" : source, args[1], std::cerr);
}

}  // namespace

int writeRecord(const std::string& text, const std::string& name, const std::string& out,
                std::ostream& errors) {
    Findings findings(name, text);
    Json document;
    int status = kFailed;
    std::string at;
    const Json* object =
        parseJson(text, document, findings) ? recordObject(document, at, findings) : nullptr;
    if (object) {
        const Family* family = writerOf(*object, at, findings);
        auto record = object->find("record");
        if (record == object->end() || !record->is_object())
            findings.about(at + ".record", "missing, or not an object");
        else if (family)
            status = saveFilled(*family, *record, at, out, findings, errors);
    }
    findings.print(errors);
    return status;
}

const Command kWrite = {
    "write", "JSON OUT",
    "saves OUT with the library's writer from one record as show --json prints it (JSON is a\n"
    "      file, or - for standard input); refuses, with each value's place in the JSON, what\n"
    "      the record could not hold as given, and then leaves OUT untouched",
    write};

}  // namespace tool
