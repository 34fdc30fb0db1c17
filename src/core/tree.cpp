#include "core/tree.h"

#include <libxml/parser.h>

#include <cstdio>

namespace kel {

// libxml2 is set up once in the process, by the first document the library
// reads or builds, and never reset: the host and the system's own
// frameworks use the same libxml2, and xmlCleanupParser would destroy its
// locks under them. The process ends with it set up, as libxml2 asks.
void setUpLibxml2() noexcept {
    static const bool ready = (xmlInitParser(), true);
    (void)ready;
}

int countElements(xmlNode* parent, const char* name) noexcept {
    int n = 0;
    for (xmlNode* child : elements(parent, name)) {
        (void)child;
        ++n;
    }
    return n;
}

namespace detail {
XmlText propCopy(const xmlNode* n, const char* name) noexcept {
    return XmlText(xmlGetProp(n, reinterpret_cast<const xmlChar*>(name)));
}

XmlText contentCopy(const xmlNode* n) noexcept {
    return XmlText(xmlNodeGetContent(n));
}
}  // namespace detail

int32_t attrInt(const xmlNode* n, const char* name) noexcept {
    return parseInt(attr(n, name).get());
}

const char* convertedText(Converter& converter, const xmlNode* n) noexcept {
    // The text may be a copy that goes with this function's XmlText.
    XmlText text = content(n);
    return converter.toRecordInBuffer(text ? text.get() : "");
}

namespace {
template <class T>
T* at(void* record, const Binding& b) noexcept {
    return reinterpret_cast<T*>(static_cast<char*>(record) + b.offset);
}
template <class T>
const T* at(const void* record, const Binding& b) noexcept {
    return reinterpret_cast<const T*>(static_cast<const char*>(record) + b.offset);
}
}  // namespace

void readAttrs(const xmlNode* n, void* record, Bindings table) noexcept {
    for (const Binding& b : table) {
        XmlText value = attr(n, b.name);
        if (b.kind == Binding::Text) {
            copyField(at<char>(record, b), b.width, value.get(), Enc::Utf8);
        } else {
            *at<int32_t>(record, b) = parseInt(value.get());
        }
    }
}

void writeAttrs(xmlNode* n, const void* record, Bindings table, ColourForm colours) noexcept {
    for (const Binding& b : table) {
        if (b.kind == Binding::Text) {
            setAttr(n, b.name, FieldText<1024>(at<char>(record, b), b.width).text);
        } else if (b.kind == Binding::Colour && colours == ColourForm::Hex) {
            char hex[16];
            std::snprintf(hex, sizeof hex, "0x%x", static_cast<unsigned>(*at<int32_t>(record, b)));
            setAttr(n, b.name, hex);
        } else {
            setAttrInt(n, b.name, *at<int32_t>(record, b));
        }
    }
}

WriteDoc::WriteDoc(const char* rootName) noexcept
    : doc_((setUpLibxml2(), xmlNewDoc(BAD_CAST "1.0"))) {
    if (!doc_) return;
    root_ = xmlNewNode(nullptr, BAD_CAST rootName);
    if (root_) xmlDocSetRootElement(doc_.get(), root_);
}

xmlNode* addElement(xmlNode* parent, const char* name) noexcept {
    return parent ? xmlNewChild(parent, nullptr, BAD_CAST name, nullptr) : nullptr;
}

xmlNode* addText(xmlNode* parent, const char* name, const char* text) noexcept {
    return parent ? xmlNewTextChild(parent, nullptr, BAD_CAST name, BAD_CAST text) : nullptr;
}

xmlNode* addInt(xmlNode* parent, const char* name, int32_t value) noexcept {
    return addText(parent, name, Decimal(value).text);
}

void setAttr(xmlNode* n, const char* name, const char* value) noexcept {
    if (n) xmlNewProp(n, BAD_CAST name, BAD_CAST(value ? value : ""));
}

void setAttrInt(xmlNode* n, const char* name, int32_t value) noexcept {
    setAttr(n, name, Decimal(value).text);
}

}  // namespace kel
