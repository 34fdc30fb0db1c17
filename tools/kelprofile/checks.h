// The findings of lint on one file, and the checks they come from: shared
// by the rewrite comparison of families with a writer and by the direct
// checks of families the library only reads.
#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace tool {

// What an attribute or element holds, as the reader takes it.
enum class Kind {
    Text,         // a text cut to width bytes, its terminator included
    Number,       // a decimal number read into 32 bits
    DisplayType,  // a display type word ("list", "input", ...)
    ValueType,    // a value type word ("int", "string", "double")
};

// One attribute or element a reader takes, with what it holds.
struct Taken {
    const char* name;
    Kind kind;
    std::size_t width;  // for texts
};

// A value as a finding quotes it: at most 40 bytes, never cut inside a
// UTF-8 character, on one line.
std::string quote(const std::string& value);

// A decimal number written as such: optional blanks, a sign, digits, and
// blanks after them.
bool plainNumber(const std::string& text);

// For a number written as such whose value does not fit in 32 bits, what
// the hosts read: "reads as 100 on a 64-bit host and as 2147483647 on a
// 32-bit one"; "" for a number that fits. A 64-bit host keeps its low 32
// bits, a 32-bit one stops at the nearest bound.
std::string outside32Bits(const std::string& text);

// The GBK form of UTF-8 text as a reader of GBK records converts it.
enum class GbkForm { Fits, TooLong, None };
GbkForm toGbk(const std::string& utf8Text, std::string& gbk);

// The findings of lint on one file: "FILE:LINE: warning: ..." lines.
class Lint {
public:
    explicit Lint(std::string path) : path_(std::move(path)) {}
    // A finding at a node of the file (its line), or at the file.
    void warn(const xmlNode* at, const std::string& message);

    // what names the element or attribute, as "frames/frameRc@x".
    // A text that goes into a field of width bytes (a terminator included);
    // gbk: converted to GBK first, as element text of GBK records is.
    void text(const xmlNode* at, const std::string& what, const std::string& value,
              std::size_t width, bool gbk);
    // A decimal number read into 32 bits.
    void number(const xmlNode* at, const std::string& what, const std::string& value);
    // A type word; display: a display type, else a value type.
    void typeWord(const xmlNode* at, const std::string& what, const std::string& word,
                  bool display);
    // The attributes of an element: the taken ones checked by their kind,
    // the others reported as ignored. taken ends with a null name.
    void attributes(const xmlNode* element, const std::string& where, const Taken* taken);
    // Elements other than the given ones, which the reader ignores; names
    // is a null-terminated list.
    void unknownChildren(const xmlNode* parent, const std::string& where, const char* const* names);
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

// "parent/child" as findings name places.
std::string childPath(const std::string& path, const xmlNode* child);

}  // namespace tool
