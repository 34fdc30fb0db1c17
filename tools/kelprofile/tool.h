// kelprofile: a person's view of the library. What every part of the tool
// shares: exit statuses, error lines, the description of a record's fields,
// and the kinds of file it knows.
#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "kelProfile.h"

namespace tool {

constexpr int kOk = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 2;

// "kelprofile: message" on standard error, for usage and other errors that
// belong to no file.
void error(const std::string& message);
// "FILE: error: message" on standard error: the one form in which every
// command reports a file it cannot read, recognise or write (with a line
// and column when the file has a place to name, as identify gives them).
void fileError(const std::string& path, const std::string& message);

// ---- the fields of a record -------------------------------------------------

// How a record holds a text.
enum class Code { Utf8, Gbk };

// Capacities of the records, from the library's header.
constexpr int kLanguages = KELPROFILE_LANGUAGES;
constexpr int kListRoom = KELPROFILE_LIST_ENTRIES;
constexpr int kAddOns = KELPROFILE_ADDONS;
constexpr std::size_t kHeapText = KELPROFILE_HEAP_TEXT + 1;  // with its terminator
constexpr int kFolderFiles = KELPROFILE_FOLDER_FILES;

// The fields of a record, in order. Each family describes its record once
// (a describe function in its family's file): show prints what it visits
// as text or JSON, and write fills a cleared record from JSON through the
// same description, so no field is printed under one name and read under
// another.
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
    // A cleared block of count records of size bytes (at least one), for a
    // record being filled; null, with the list refused, when the record
    // would pass what one read of the library may allocate.
    virtual void* allocate(const char* name, std::size_t count, std::size_t size);
};

// A cleared block of count records of size bytes, at least one (throws
// bad_alloc).
void* allocate(std::size_t count, std::size_t size);

// A list of records in one malloc block with its count: shown, or filled
// (the block has room for at least room records, as the library's reader
// leaves it). each(fields, record) describes one record.
template <class T, class Each>
int records(Fields& f, const char* name, T*& items, int32_t& count, int capacity, Each each,
            int room = 1) {
    int n = f.list(name, items ? count : 0, capacity);
    if (f.filling()) {
        items = static_cast<T*>(
            f.allocate(name, static_cast<std::size_t>(n > room ? n : room), sizeof(T)));
        if (!items) n = 0;
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

// After a fill of a list whose length a count field gives too: the record
// owns the slots filled, and a count that says otherwise is refused (a
// count past the capacity as such: the list is refused for its length).
// least: the fewest slots a read gives.
void settleCount(Fields& f, const char* name, int32_t& count, int declared, int filled,
                 int capacity, const char* list, int least = 0);

// A list of heap texts, such as one text per language slot.
inline int texts(Fields& f, const char* name, char** items, int count, int capacity, Code code,
                 bool emptyIsNull = false) {
    int n = f.list(name, count, capacity);
    for (int i = 0; i < n; ++i) f.heapAt(i, items[i], code, emptyIsNull);
    f.endList();
    return n;
}

// ---- the kinds of file ----------------------------------------------------------

class Lint;

// One kind of file the tool knows: an entry of the table in families.cpp.
struct Family {
    const char* name;
    // The root element's name, or null for a family known by its content.
    const char* root;
    // For a family known by its content: whether a document with this root
    // element is one, and the words for the message about an unknown root.
    bool (*recognise)(const xmlNode* root);
    const char* described;
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

// The families in the order that decides a file that more than one would
// take (a family known by its root's name before one known by content) and
// that --help lists.
const std::vector<const Family*>& families();
// The family of a parsed document's root element, or null.
const Family* familyOf(const xmlNode* root);
// The family of the given name, or null.
const Family* familyNamed(const std::string& name);

// ---- commands ---------------------------------------------------------------

// A subcommand: kelprofile NAME ARGS...; returns the exit status.
struct Command {
    const char* name;
    const char* usage;    // arguments, for --help
    const char* summary;  // one line, for --help
    int (*run)(const std::vector<std::string>& args);
};

}  // namespace tool
