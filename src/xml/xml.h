// The layer every reader and writer stands on: owning handles for libxml2
// documents and strings, walking a node's children by element name,
// attribute and element-text access, bounded copies into fixed fields, the
// UTF-8/GBK conversion of record text, and building and saving documents.
//
// Library code allocates with the C allocator only, so nothing here throws
// and no exception can reach the C interface.
#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "foundation/encoding.h"

namespace kel {

// ---- ownership -------------------------------------------------------------

struct FreeDeleter {
    void operator()(void* p) const noexcept { std::free(p); }
};
// A block from malloc/calloc/strdup.
template <class T>
using HeapPtr = std::unique_ptr<T, FreeDeleter>;

// calloc of n records of T (a zero-filled block; a 0-byte block for n == 0).
template <class T>
T* allocRecords(std::size_t n) {
    return static_cast<T*>(std::calloc(n == 0 ? 1 : n, sizeof(T)));
}

struct DocDeleter {
    void operator()(xmlDoc* d) const noexcept { xmlFreeDoc(d); }
};
using DocPtr = std::unique_ptr<xmlDoc, DocDeleter>;

// A string handed out by libxml2 (content or attribute value), or none.
class XmlText {
public:
    explicit XmlText(xmlChar* s = nullptr) noexcept : s_(s) {}
    const char* get() const noexcept { return reinterpret_cast<const char*>(s_.get()); }
    bool empty() const noexcept { return !s_ || s_.get()[0] == 0; }
    explicit operator bool() const noexcept { return s_ != nullptr; }

private:
    struct Deleter {
        void operator()(xmlChar* s) const noexcept { xmlFree(s); }
    };
    std::unique_ptr<xmlChar, Deleter> s_;
};

// Keeps libxml2's error and warning messages off stderr for its lifetime:
// the library reports through result codes only.
class QuietErrors {
public:
    QuietErrors() noexcept;
    ~QuietErrors();
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

private:
    xmlGenericErrorFunc oldFunc_;
    void* oldCtx_;
};

// ---- reading ---------------------------------------------------------------

// A parsed file. Empty when the file is missing, unreadable or not well
// formed, or when the document has no root element.
class ReadDoc {
public:
    explicit ReadDoc(const char* path) noexcept;
    xmlNode* root() const noexcept { return root_; }
    explicit operator bool() const noexcept { return root_ != nullptr; }
    // Ends a successful read: releases the tree, resets libxml2's global
    // parser state and returns 0.
    int32_t finish() noexcept;

private:
    DocPtr doc_;
    xmlNode* root_ = nullptr;
};

// Whether n is an element with exactly this name.
inline bool isElement(const xmlNode* n, const char* name) noexcept {
    return n && n->type == XML_ELEMENT_NODE &&
           std::strcmp(reinterpret_cast<const char*>(n->name), name) == 0;
}

// The element children of a node in document order, optionally only those
// of one name: for (xmlNode* item : elements(root, "optionItem")) ...
class Elements {
public:
    class iterator {
    public:
        iterator(xmlNode* n, const char* name) noexcept : n_(n), name_(name) { skip(); }
        xmlNode* operator*() const noexcept { return n_; }
        iterator& operator++() noexcept {
            n_ = n_->next;
            skip();
            return *this;
        }
        bool operator!=(const iterator& o) const noexcept { return n_ != o.n_; }

    private:
        void skip() noexcept {
            while (n_ && !(n_->type == XML_ELEMENT_NODE && (!name_ || isElement(n_, name_))))
                n_ = n_->next;
        }
        xmlNode* n_;
        const char* name_;
    };
    Elements(xmlNode* parent, const char* name) noexcept
        : first_(parent ? parent->children : nullptr), name_(name) {}
    iterator begin() const noexcept { return {first_, name_}; }
    iterator end() const noexcept { return {nullptr, name_}; }

private:
    xmlNode* first_;
    const char* name_;
};
inline Elements elements(xmlNode* parent, const char* name = nullptr) noexcept {
    return {parent, name};
}
int countElements(xmlNode* parent, const char* name) noexcept;

// Attribute value as in the file (UTF-8), or none.
XmlText attr(const xmlNode* n, const char* name) noexcept;
// Decimal attribute as atoi reads it; absent or empty gives 0.
int32_t attrInt(const xmlNode* n, const char* name) noexcept;
// The whole text content of a node and its descendants.
XmlText content(const xmlNode* n) noexcept;

// ---- fixed fields ----------------------------------------------------------

enum class Enc { Utf8, Gbk };

// Longest prefix of s (len bytes) of at most cap bytes that ends on a whole
// character of the encoding.
std::size_t fitLength(const char* s, std::size_t len, std::size_t cap, Enc enc) noexcept;

// Copies src into a field of width bytes, cut to fit; a null or empty src
// leaves the field as it was.
void copyField(char* dst, std::size_t width, const char* src, Enc enc) noexcept;
template <std::size_t N>
void copyField(char (&dst)[N], const char* src, Enc enc = Enc::Utf8) noexcept {
    copyField(dst, N, src, enc);
}
// An attribute copied into a field unconverted.
template <std::size_t N>
void copyAttr(char (&dst)[N], const xmlNode* n, const char* name) noexcept {
    copyField(dst, N, attr(n, name).get(), Enc::Utf8);
}

// A heap copy of src, or null for a null or empty src.
char* dupText(const char* src) noexcept;

// ---- record text -----------------------------------------------------------

// Text in the encoding a record holds it in, pointing into the converter's
// buffer or into the source: valid until the next conversion.
struct RecordText {
    const char* text;
    Enc enc;
    bool empty() const noexcept { return !text || !*text; }
    template <std::size_t N>
    void copyTo(char (&dst)[N]) const noexcept {
        copyField(dst, N, text, enc);
    }
    char* dup() const noexcept { return dupText(text); }
};

// The one 1024-byte conversion buffer of a read or a write, converting as
// covert does.
class Converter {
public:
    static constexpr std::size_t kSize = 1024;
    // File text (UTF-8) to record text (GBK). When the text does not convert,
    // the unconverted text is kept.
    RecordText toRecord(const char* utf8) noexcept;
    // As toRecord, but null when the text does not convert.
    const char* toRecordOrNull(const char* utf8) noexcept;
    // Record text (GBK) to file text (UTF-8); "" when it does not convert.
    const char* toFile(const char* gbk) noexcept;

private:
    char buf_[kSize];
    Conversion toGbk_{"gbk", "UTF-8"};
    Conversion toUtf8_{"UTF-8", "gbk"};
};

// ---- writing ---------------------------------------------------------------

// A document of version "1.0" under construction, with its root element.
class WriteDoc {
public:
    explicit WriteDoc(const char* rootName) noexcept;
    xmlNode* root() const noexcept { return root_; }
    // Saves indented, in UTF-8. 0 when saved, 1 when the save failed.
    int32_t save(const char* path) noexcept;

private:
    DocPtr doc_;
    xmlNode* root_ = nullptr;
};

// An empty child element.
xmlNode* addElement(xmlNode* parent, const char* name) noexcept;
// A child element holding text (escaped on output). Null text gives an
// element without content, "" an element with empty content.
xmlNode* addText(xmlNode* parent, const char* name, const char* text) noexcept;
// A child element holding a decimal number.
xmlNode* addInt(xmlNode* parent, const char* name, int32_t value) noexcept;
// Attributes; a null value is written as "".
void setAttr(xmlNode* n, const char* name, const char* value) noexcept;
void setAttrInt(xmlNode* n, const char* name, int32_t value) noexcept;

// A record's fixed text field as a terminated string, read no further than
// the field's width: writers take record fields through it, so a field the
// host left without a terminator is never read past its end.
template <std::size_t N>
struct FieldText {
    explicit FieldText(const char (&field)[N]) noexcept {
        std::size_t n = strnlen(field, N);
        std::memcpy(text, field, n);
        text[n] = 0;
    }
    char text[N + 1];
};
template <std::size_t N>
FieldText<N> field(const char (&f)[N]) noexcept {
    return FieldText<N>(f);
}

// Decimal text of a number, as the files hold it.
struct Decimal {
    explicit Decimal(int32_t v) noexcept;
    char text[16];
};

}  // namespace kel
