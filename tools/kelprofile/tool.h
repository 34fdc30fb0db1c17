// kelprofile: a person's view of the library. Each file family and each
// command registers itself here, so adding a family touches one file.
#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace tool {

class Printer;
class Lint;

// One kind of file the tool knows.
struct Family {
    const char* name;
    // How the tool knows the family, for the message about an unknown root:
    // the root element's name in quotes, or a description.
    const char* roots;
    // Whether a document with this root element is of this family.
    bool (*recognise)(const xmlNode* root);
    // Reads the file and prints every field of its records; false when the
    // library cannot read it.
    bool (*show)(const char* path, Printer& out);
    // Reads src and writes the record to dst with the library's writer:
    // 0 on success. Null for families the library only reads.
    int (*rewrite)(const char* src, const char* dst);
    // For families the library only reads: reports what a read would lose
    // or change, from the parsed file. Families with a writer leave it null:
    // lint compares the file with what the writer makes of its record.
    void (*lint)(const xmlNode* root, Lint& lint);
    // Whether the records hold element text in GBK.
    bool gbk;
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

using Doc = std::unique_ptr<xmlDoc, void (*)(xmlDoc*)>;

// A file parsed for the tool, with line numbers; on failure doc is null and
// error says why, in the form "FILE:LINE:COLUMN: error: ..." (or "FILE:
// error: ..." when there is no place in the file to name).
struct Parsed {
    Doc doc{nullptr, xmlFreeDoc};
    const Family* family = nullptr;
    std::string error;
};

// Parses a file and finds its family by the root element.
Parsed identify(const std::string& path);

// Record text (GBK) as UTF-8 for display; unconvertible bytes as \xNN.
std::string utf8(const char* gbk);

// Receives the fields of a record, labelled, with nesting. The text form
// prints "label: value" lines; the JSON form builds an object.
class Printer {
public:
    virtual ~Printer() = default;
    Printer& text(const char* label, const char* value) {  // UTF-8 text
        put(label, -1, value, false);
        return *this;
    }
    Printer& gbk(const char* label, const char* value) {  // GBK record text
        put(label, -1, value, true);
        return *this;
    }
    // One element of a list of texts, such as a language slot.
    Printer& textAt(const char* label, int index, const char* value) {
        put(label, index, value, false);
        return *this;
    }
    Printer& gbkAt(const char* label, int index, const char* value) {
        put(label, index, value, true);
        return *this;
    }
    virtual Printer& number(const char* label, long value) = 0;
    // Starts a nested block "label:"; an index >= 0 makes it an element of
    // the list "label".
    virtual Printer& open(const char* label, int index = -1) = 0;
    virtual Printer& close() = 0;

protected:
    virtual void put(const char* label, int index, const char* value, bool gbk) = 0;
};

// The text form, on a stream.
std::unique_ptr<Printer> textPrinter(std::ostream& out);

// kelprofile show --json FILE...
int showJson(const std::vector<std::string>& paths);

// The findings of lint on one file: "FILE:LINE: warning: ..." lines.
class Lint {
public:
    explicit Lint(std::string path) : path_(std::move(path)) {}
    // A finding at a node of the file (its line), or at the file.
    void warn(const xmlNode* at, const std::string& message);
    // Checks shared by the direct checks of read-only families. what names
    // the element or attribute, as "frames/frameRc@x".
    // A text that goes into a field of width bytes (a terminator included);
    // gbk: converted to GBK first, as element text of GBK records is.
    void text(const xmlNode* at, const std::string& what, const std::string& value,
              std::size_t width, bool gbk);
    // A decimal number read as atoi reads it.
    void number(const xmlNode* at, const std::string& what, const std::string& value);
    // Elements and attributes other than the given ones, which the reader
    // ignores; names is a null-terminated list.
    void unknownChildren(const xmlNode* parent, const std::string& where, const char* const* names);
    void unknownAttributes(const xmlNode* element, const std::string& where,
                           const char* const* names);
    // Items of one name past a capacity.
    void capacity(const xmlNode* parent, const std::string& where, const char* item, int capacity);
    // Elements of one name of which the last replaces the earlier ones (a
    // last one without text does not, unless emptyReplaces).
    void repeated(const xmlNode* parent, const std::string& where, const char* name,
                  bool emptyReplaces);
    int count() const { return static_cast<int>(found_.size()); }
    // Prints the findings in line order; their number.
    int print(std::ostream& out);

private:
    std::string path_;
    std::vector<std::pair<long, std::string>> found_;
};

// The text of a node's attribute, "" when absent; present tells which.
std::string attribute(const xmlNode* node, const char* name, bool* present = nullptr);
// The whole text content of a node.
std::string content(const xmlNode* node);
// The element children of a node.
std::vector<const xmlNode*> elementChildren(const xmlNode* node);
bool named(const xmlNode* node, const char* name);

// Prints an error message "kelprofile: ..." on stderr.
void error(const std::string& message);

}  // namespace tool
