// kelprofile: a person's view of the library. Each file family and each
// command registers itself here, so adding a family touches one file.
#pragma once

#include <libxml/tree.h>

#include <ostream>
#include <string>
#include <vector>

namespace tool {

// One kind of file the tool knows.
struct Family {
    const char* name;
    // Whether a document with this root element is of this family.
    bool (*recognise)(const xmlNode* root);
    // Reads the file and prints every field of its records; false when the
    // library cannot read it.
    bool (*show)(const char* path, std::ostream& out);
    // Reads src and writes the record to dst with the library's writer:
    // 0 on success. Null for families the library only reads.
    int (*rewrite)(const char* src, const char* dst);
};

// A subcommand: kelprofile NAME ARGS...; returns the exit status.
struct Command {
    const char* name;
    const char* usage;    // arguments, for --help
    const char* summary;  // one line, for --help
    int (*run)(const std::vector<std::string>& args);
};

constexpr int kOk = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 2;

std::vector<Family>& families();
std::vector<Command>& commands();

struct RegisterFamily {
    explicit RegisterFamily(const Family& f) { families().push_back(f); }
};
struct RegisterCommand {
    explicit RegisterCommand(const Command& c) { commands().push_back(c); }
};

// The family of a file by its root element, or null (also when the file
// does not parse).
const Family* familyOf(const char* path);

// Record text (GBK) as UTF-8 for display; unconvertible bytes as \xNN.
std::string utf8(const char* gbk);

// Prints "label: value" lines with nesting.
class Printer {
public:
    explicit Printer(std::ostream& out) : out_(out) {}
    Printer& text(const char* label, const char* value);  // UTF-8 text
    Printer& gbk(const char* label, const char* value);   // GBK record text
    Printer& number(const char* label, long value);
    // Starts a nested block "label:" (the index is appended when >= 0).
    Printer& open(const char* label, int index = -1);
    Printer& close();

private:
    void indent();
    std::ostream& out_;
    int depth_ = 0;
};

// Prints an error message "kelprofile: ..." on stderr.
void error(const std::string& message);

}  // namespace tool
