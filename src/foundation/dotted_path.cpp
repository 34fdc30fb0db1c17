// One value of any XML file, named by a dotted path below the root element:
// Main.Name is the element Name inside the root's child Main. Values are
// taken and given as libxml2 holds them (UTF-8); nothing is converted.
#include <libxml/chvalid.h>
#include <libxml/entities.h>
#include <libxml/tree.h>

#include <cstring>

#include "core/xml.h"
#include "kelProfile.h"

namespace {

constexpr std::size_t kMaxComponentLength = 511;

// One piece of a dotted path, pointing into the path.
struct Component {
    const char* text;
    std::size_t length;
};

// The first two components of path and how many there are. Pieces between
// dots count even when empty; a trailing '.' ends the path without adding
// an empty one; an empty path has none.
int splitPath(const char* path, Component (&first)[2]) noexcept {
    int count = 0;
    const char* piece = path ? path : "";
    while (*piece) {
        const char* dot = std::strchr(piece, '.');
        std::size_t length = dot ? static_cast<std::size_t>(dot - piece) : std::strlen(piece);
        if (count < 2) first[count] = {piece, length};
        ++count;
        if (!dot) break;
        piece = dot + 1;
    }
    return count;
}

// The first element child of parent named exactly c.
xmlNode* child(xmlNode* parent, const Component& c) noexcept {
    for (xmlNode* n : kel::elements(parent)) {
        const char* name = reinterpret_cast<const char*>(n->name);
        if (std::strncmp(name, c.text, c.length) == 0 && name[c.length] == 0) return n;
    }
    return nullptr;
}

// The element a path of one or two components names, or null. Longer paths
// name nothing (so neither does one of more than five components), nor does
// one with a component over 511 bytes, the most a component may hold.
xmlNode* find(xmlNode* root, const char* path) noexcept {
    Component c[2];
    int count = splitPath(path, c);
    if (count < 1 || count > 2) return nullptr;
    for (int i = 0; i < count; ++i)
        if (c[i].length > kMaxComponentLength) return nullptr;
    xmlNode* target = child(root, c[0]);
    return count == 2 ? child(target, c[1]) : target;
}

}  // namespace

int getXmlValue(const char* file, const char* path, char* out) {
    kel::ReadDoc doc(file);
    if (!doc) return 1;
    xmlNode* target = find(doc.root(), path);
    if (target && out) {
        kel::XmlText value = kel::content(target);
        if (value) std::strcpy(out, value.get());
    }
    return doc.finish();
}

long getXmlValue(const char* file, const char* path, char* out, unsigned long size) {
    if (out && size > 0) out[0] = 0;
    kel::ReadDoc doc(file);
    if (!doc) return -1;
    long needed = -2;
    if (xmlNode* target = find(doc.root(), path)) {
        kel::XmlText value = kel::content(target);
        std::size_t len = value ? std::strlen(value.get()) : 0;
        if (out && size > 0) {
            std::size_t n = kel::fitLength(value.get(), len, size - 1, kel::Enc::Utf8);
            std::memcpy(out, value.get(), n);
            out[n] = 0;
        }
        needed = static_cast<long>(len);
    }
    doc.finish();
    return needed;
}

namespace {

// Whether text starts a reference that means one character: a character
// reference of a character XML allows, or a predefined entity.
bool startsReference(const char* text) noexcept {
    const char* semi = std::strchr(text + 1, ';');
    if (!semi || semi == text + 1) return false;
    std::size_t len = static_cast<std::size_t>(semi - text - 1);
    const char* name = text + 1;
    if (name[0] == '#') {
        bool hex = len > 1 && name[1] == 'x';
        std::size_t first = hex ? 2 : 1;
        if (len == first || len > 12) return false;
        unsigned long code = 0;
        for (std::size_t i = first; i < len; ++i) {
            char c = name[i];
            int digit = c >= '0' && c <= '9'          ? c - '0'
                        : hex && c >= 'a' && c <= 'f' ? c - 'a' + 10
                        : hex && c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                      : -1;
            if (digit < 0) return false;
            code = code * (hex ? 16 : 10) + static_cast<unsigned long>(digit);
            if (code > 0x10FFFF) return false;
        }
        return xmlIsChar(static_cast<unsigned int>(code));
    }
    // The five entities every XML document knows. An entity the document
    // declares is taken literally too: it may be unparsed, unbalanced or
    // too large to expand, and the file would no longer read.
    static const char* const kPredefined[] = {"amp", "lt", "gt", "quot", "apos"};
    for (const char* known : kPredefined)
        if (std::strlen(known) == len && std::strncmp(name, known, len) == 0) return true;
    return false;
}

// value with every ampersand that starts no meaningful reference written as
// "&amp;", so that the text set is the text meant and the file stays
// readable.
kel::HeapPtr<char> literalAmpersands(const char* value) noexcept {
    std::size_t len = std::strlen(value);
    std::size_t extra = 0;
    for (const char* p = value; (p = std::strchr(p, '&')); ++p)
        if (!startsReference(p)) extra += 4;
    kel::HeapPtr<char> out(static_cast<char*>(kel::allocZeroed(len + extra + 1, 1)));
    if (!out) return out;
    char* w = out.get();
    for (const char* p = value; *p; ++p) {
        *w++ = *p;
        if (*p == '&' && !startsReference(p)) {
            std::memcpy(w, "amp;", 4);
            w += 4;
        }
    }
    *w = 0;
    return out;
}

}  // namespace

int setXmlValue(const char* file, const char* path, const char* value) {
    // A value XML cannot hold would make the file unreadable: it is refused
    // and the file left as it was.
    if (value && !kel::isXmlText(value)) return 1;
    kel::ReadDoc doc(file);
    if (!doc) return 1;
    xmlDoc* tree = doc.root()->doc;
    if (xmlNode* target = find(doc.root(), path)) {
        kel::HeapPtr<char> text = literalAmpersands(value ? value : "");
        if (!text) return 1;
        xmlNodeSetContent(target, reinterpret_cast<const xmlChar*>(text.get()));
    }
    // Rewritten as parsed, without indentation, whether or not anything
    // changed.
    if (kel::saveDoc(tree, file, false) != 0) return 1;
    return doc.finish();
}
