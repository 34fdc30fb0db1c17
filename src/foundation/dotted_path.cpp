// One value of any XML file, named by a dotted path below the root element:
// Main.Name is the element Name inside the root's child Main. Values are
// taken and given as libxml2 holds them (UTF-8); nothing is converted.
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

int setXmlValue(const char* file, const char* path, const char* value) {
    kel::QuietErrors quiet;
    kel::ReadDoc doc(file);
    if (!doc) return 1;
    if (xmlNode* target = find(doc.root(), path))
        xmlNodeSetContent(target, reinterpret_cast<const xmlChar*>(value));
    // Rewritten as parsed, without indentation, whether or not anything
    // changed; a save that fails is not reported.
    xmlSaveFileEnc(file, doc.root()->doc, "UTF-8");
    return doc.finish();
}
