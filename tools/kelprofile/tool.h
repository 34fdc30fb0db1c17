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

class Fields;
class Lint;

// One kind of file the tool knows.
struct Family {
    const char* name;
    // How the tool knows the family, for the message about an unknown root:
    // the root element's name in quotes, or a description.
    const char* roots;
    // Whether a document with this root element is of this family.
    bool (*recognise)(const xmlNode* root);
    // Reads the file and visits every field of its records; false when the
    // library cannot read it.
    bool (*show)(const char* path, Fields& out);
    // Reads src and writes the record to dst with the library's writer:
    // 0 on success. Null for families the library only reads.
    int (*rewrite)(const char* src, const char* dst);
    // Fills a cleared record from the fields (write's JSON) and, when they
    // were accepted, saves it to dst with the library's writer: 0 saved, 1
    // not. Null for families the library only reads.
    int (*write)(Fields& from, const char* dst);
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

// How a record holds a text.
enum class Code { Utf8, Gbk };

// Converts text between the code sets "UTF-8" and "gbk"; false when it has
// no form in the target.
bool convert(const char* to, const char* from, const std::string& in, std::string& out);

// Record text as shown: UTF-8, converted from GBK for a GBK field. A byte
// with no character of the field's code is shown as \xNN, and a backslash
// that would read as such as \x5C, so that every record text has one shown
// form and back (fromShown).
std::string shown(const char* text, std::size_t width, Code code);
// The record bytes of a shown text; false with why when it has none (a
// character without a GBK form, a NUL or other control character).
bool fromShown(const std::string& text, Code code, std::string& bytes, std::string& why);

// Heap texts of the records hold at most 1023 bytes.
constexpr std::size_t kHeapText = 1024;

// The fields of a record, in order. Each record has one description (a
// describe function in its family's file) that visits them: show prints
// what it visits as text or JSON, and write fills a cleared record from
// JSON through the same description, so no field is printed under one
// name and read under another.
class Fields {
public:
    virtual ~Fields() = default;
    // True when the visit fills the record, false when it only shows it.
    virtual bool filling() const { return false; }
    // Whether what was filled may be saved (no field was refused).
    virtual bool accepted() { return true; }

    // A text in a fixed field of width bytes, the terminator included.
    virtual void text(const char* name, char* field, std::size_t width, Code code) = 0;
    template <std::size_t N>
    void text(const char* name, char (&field)[N], Code code) {
        text(name, field, N, code);
    }
    // A heap text of at most 1023 bytes, or null; emptyIsNull: the reader
    // keeps an empty text as null.
    virtual void heap(const char* name, char*& field, Code code, bool emptyIsNull = false) = 0;
    virtual void number(const char* name, int32_t& field) = 0;
    // A type code of a profile or option item, shown "20 (list)"; word
    // gives the word of a code, "" for one the files do not use.
    virtual void type(const char* name, int32_t& field, const char* (*word)(int)) = 0;
    // A nested block of fields, ended by close().
    virtual void open(const char* name) = 0;
    virtual void close() = 0;
    // A list of at most capacity items: count is how many the record holds;
    // gives how many to visit. Its items are blocks (item(i), the fields,
    // close()) or heap texts (heapAt). endList() ends it.
    virtual int list(const char* name, int count, int capacity) = 0;
    virtual void item(int index) = 0;
    virtual void heapAt(int index, char*& field, Code code, bool emptyIsNull = false) = 0;
    virtual void endList() = 0;
    // Refuses the named field of the current block when a record holding
    // it could not come from a file (filling only).
    virtual void refuse(const char* name, const std::string& why) {
        (void)name;
        (void)why;
    }
};

// A record block the tool fills, of room for at least one record, as the
// library's readers leave even an empty list (throws bad_alloc).
void* allocate(std::size_t count, std::size_t size);

// A list of records in one malloc block with its count: shown, or filled
// (the block has room for at least room records). each(fields, record)
// describes one record.
template <class T, class Each>
int records(Fields& f, const char* name, T*& items, int32_t& count, int capacity, Each each,
            int room = 1) {
    int n = f.list(name, items ? count : 0, capacity);
    if (f.filling()) {
        items = static_cast<T*>(allocate(n > room ? n : room, sizeof(T)));
        count = n;
    }
    for (int i = 0; i < n; ++i) {
        f.item(i);
        each(f, items[i]);
        f.close();
    }
    f.endList();
    return n;
}

// A list of heap texts, such as one text per language slot.
inline int texts(Fields& f, const char* name, char** items, int count, int capacity, Code code,
                 bool emptyIsNull = false) {
    int n = f.list(name, count, capacity);
    for (int i = 0; i < n; ++i) f.heapAt(i, items[i], code, emptyIsNull);
    f.endList();
    return n;
}

// The text form of show, on a stream.
std::unique_ptr<Fields> textFields(std::ostream& out);

// kelprofile show --json FILE...
int showJson(const std::vector<std::string>& paths);

// kelprofile write on a JSON text read from name: saves out from the record
// it holds, or prints on errors why not (out then untouched); the exit status.
int writeRecord(const std::string& text, const std::string& name, const std::string& out,
                std::ostream& errors);

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
