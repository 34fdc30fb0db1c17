// The tree of a document, as readers walk it and writers build it:
// owning handles for documents and libxml2's strings, a node's children by
// element name, attribute and element-text access, counted arrays of
// records, tables that bind attributes to record fields, and building.
#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <type_traits>

#include "core/memory.h"
#include "core/text.h"

namespace kel {

// Sets libxml2 up once in the process, before the first document the
// library reads or builds; it is never reset.
void setUpLibxml2() noexcept;

struct DocDeleter {
    void operator()(xmlDoc* d) const noexcept { xmlFreeDoc(d); }
};
using DocPtr = std::unique_ptr<xmlDoc, DocDeleter>;

// Text of a document (element content or attribute value), or none: read
// in place when the tree holds it as one text node, else a copy that
// libxml2 handed out, released with the handle. Valid while the document
// lives.
class XmlText {
public:
    XmlText() noexcept = default;
    // Takes ownership of a copy from libxml2 (null: none).
    explicit XmlText(xmlChar* copy) noexcept : s_(copy), copy_(copy) {}
    // Text that stays in the tree.
    static XmlText inTree(const xmlChar* s) noexcept {
        XmlText t;
        t.s_ = s;
        return t;
    }
    const char* get() const noexcept { return reinterpret_cast<const char*>(s_); }
    bool empty() const noexcept { return !s_ || s_[0] == 0; }
    explicit operator bool() const noexcept { return s_ != nullptr; }

private:
    struct Deleter {
        void operator()(xmlChar* s) const noexcept { xmlFree(s); }
    };
    const xmlChar* s_ = nullptr;
    std::unique_ptr<xmlChar, Deleter> copy_;
};

// Whether a name in the tree (an element's or an attribute's) is name. The
// first bytes are compared in place: they tell most names of a family
// apart without a call.
inline bool sameName(const xmlChar* treeName, const char* name) noexcept {
    return treeName[0] == static_cast<unsigned char>(name[0]) &&
           std::strcmp(reinterpret_cast<const char*>(treeName), name) == 0;
}

// Whether n is an element with exactly this name.
inline bool isElement(const xmlNode* n, const char* name) noexcept {
    return n && n->type == XML_ELEMENT_NODE && sameName(n->name, name);
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

namespace detail {
// The text of a node list that is one text node, read in place; null when
// the list is anything else (empty, several nodes, entity references).
inline const xmlChar* singleText(const xmlNode* list) noexcept {
    if (!list || list->next || list->content == nullptr) return nullptr;
    return list->type == XML_TEXT_NODE || list->type == XML_CDATA_SECTION_NODE ? list->content
                                                                               : nullptr;
}
// libxml2's own copies, for what the tree does not hold as one text.
XmlText propCopy(const xmlNode* n, const char* name) noexcept;
XmlText contentCopy(const xmlNode* n) noexcept;
}  // namespace detail

// Both read the tree in place where they can (inline: readers ask for
// thousands of them), and leave every other case to libxml2's own copy, so
// the text is always the one xmlGetProp and xmlNodeGetContent give.
//
// Attribute value as in the file (UTF-8), or none. The first attribute of
// that name whatever its namespace, else a default the document type
// declares.
inline XmlText attr(const xmlNode* n, const char* name) noexcept {
    if (!n) return {};
    if (n->type == XML_ELEMENT_NODE) {
        const xmlAttr* a = n->properties;
        while (a && !sameName(a->name, name)) a = a->next;
        if (a) {
            if (const xmlChar* text = detail::singleText(a->children)) return XmlText::inTree(text);
        } else if (!(n->doc && (n->doc->intSubset || n->doc->extSubset))) {
            return {};  // absent, and no document type to declare a default
        }
    }
    return detail::propCopy(n, name);
}
// Decimal attribute as atoi reads it; absent or empty gives 0.
int32_t attrInt(const xmlNode* n, const char* name) noexcept;
// The whole text content of a node and its descendants ("" for an element
// without any).
inline XmlText content(const xmlNode* n) noexcept {
    if (!n) return {};
    if (n->type == XML_ELEMENT_NODE) {
        static const xmlChar kEmpty[] = "";
        if (!n->children) return XmlText::inTree(kEmpty);
        if (const xmlChar* text = detail::singleText(n->children)) return XmlText::inTree(text);
    }
    return detail::contentCopy(n);
}
// The text content of an element converted to record text (GBK), in the
// converter's buffer until its next conversion; null when it does not
// convert, and a reader then skips the element, attributes and all.
const char* convertedText(Converter& converter, const xmlNode* n) noexcept;
// An attribute copied into a field unconverted; absent or empty leaves the
// field as it was.
template <std::size_t N>
void copyAttr(char (&dst)[N], const xmlNode* n, const char* name) noexcept {
    copyField(dst, N, attr(n, name).get(), Enc::Utf8);
}

// Reads the children of parent named name into one zero-filled block of
// records allocated at its final size (a 0-byte block when there are
// none): fill(record, node) fills each in document order and may return
// false to report an allocation failure of its own. False when the block
// or a fill failed; items and count then describe what was allocated, so
// the record's release function reaches it.
template <class T, class Fill>
bool readArray(xmlNode* parent, const char* name, T*& items, int32_t& count, Fill&& fill) noexcept {
    int n = countElements(parent, name);
    items = allocRecords<T>(static_cast<std::size_t>(n));
    count = items ? n : 0;
    if (!items) return false;
    T* item = items;
    bool ok = true;
    for (xmlNode* node : elements(parent, name)) {
        if constexpr (std::is_same_v<decltype(fill(*item, node)), bool>) {
            ok = fill(*item++, node) && ok;
        } else {
            fill(*item++, node);
        }
    }
    return ok;
}

// One attribute of an element bound to a field of a record: its name, what
// kind of field it feeds, and where the field lies. Readers and writers of
// an element share one table, so they cannot disagree on names or order.
struct Binding {
    enum Kind : unsigned char {
        Text,    // a fixed text field, copied as in the file
        Int,     // a 32-bit number, decimal as atoi reads it
        Colour,  // a 32-bit number, decimal or "0x%x" as the writer is asked
    };
    const char* name;
    Kind kind;
    std::size_t offset;
    std::size_t width;
};
#define KEL_TEXT(Record, field, attrName)                                              \
    ::kel::Binding {                                                                   \
        attrName, ::kel::Binding::Text, offsetof(Record, field), sizeof(Record::field) \
    }
#define KEL_INT(Record, field, attrName)                                        \
    ::kel::Binding {                                                            \
        attrName, ::kel::Binding::Int, offsetof(Record, field), sizeof(int32_t) \
    }
#define KEL_COLOUR(Record, field, attrName)                                        \
    ::kel::Binding {                                                               \
        attrName, ::kel::Binding::Colour, offsetof(Record, field), sizeof(int32_t) \
    }

// A read-only view of a constant table, made from the array itself, so a
// table is passed with its length and walked with a range for.
template <class T>
class Table {
public:
    template <std::size_t N>
    constexpr Table(const T (&rows)[N]) noexcept : begin_(rows), end_(rows + N) {}
    constexpr const T* begin() const noexcept { return begin_; }
    constexpr const T* end() const noexcept { return end_; }

private:
    const T* begin_;
    const T* end_;
};
using Bindings = Table<Binding>;

// Reads a table's attributes of n into record: text cut to its field (absent
// or empty leaves the field as it was), numbers as atoi reads them (absent
// gives 0).
void readAttrs(const xmlNode* n, void* record, Bindings table) noexcept;
template <class R>
void readAttrs(const xmlNode* n, R& record, Bindings table) noexcept {
    readAttrs(n, static_cast<void*>(&record), table);
}

enum class ColourForm { Decimal, Hex };
// Writes a table's attributes from record in table order: text fields read
// no further than their width, numbers in decimal, colours as asked.
void writeAttrs(xmlNode* n, const void* record, Bindings table,
                ColourForm colours = ColourForm::Decimal) noexcept;
template <class R>
void writeAttrs(xmlNode* n, const R& record, Bindings table,
                ColourForm colours = ColourForm::Decimal) noexcept {
    writeAttrs(n, static_cast<const void*>(&record), table, colours);
}

// A document of version "1.0" under construction, with its root element.
class WriteDoc {
public:
    explicit WriteDoc(const char* rootName) noexcept;
    xmlNode* root() const noexcept { return root_; }
    // Saves indented, in UTF-8, as saveDoc saves (core/save.cpp). 0 when
    // saved, 1 when the save failed.
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

}  // namespace kel
