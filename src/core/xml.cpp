#include "core/xml.h"

#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>

#include <cstdio>

namespace kel {

namespace {
void discard(void*, const char*, ...) {}
}  // namespace

QuietErrors::QuietErrors() noexcept : oldFunc_(xmlGenericError), oldCtx_(xmlGenericErrorContext) {
    xmlSetGenericErrorFunc(nullptr, discard);
}

QuietErrors::~QuietErrors() {
    xmlSetGenericErrorFunc(oldCtx_, oldFunc_);
}

ReadDoc::ReadDoc(const char* path) noexcept {
    if (!path) return;
    QuietErrors quiet;
    // No network access and no messages; otherwise libxml2's defaults, so
    // whitespace between elements stays in the tree as text nodes.
    doc_.reset(
        xmlReadFile(path, nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    if (doc_) root_ = xmlDocGetRootElement(doc_.get());
}

int32_t ReadDoc::finish() noexcept {
    root_ = nullptr;
    doc_.reset();
    xmlCleanupParser();
    xmlMemoryDump();
    return 0;
}

int countElements(xmlNode* parent, const char* name) noexcept {
    int n = 0;
    for (xmlNode* child : elements(parent, name)) {
        (void)child;
        ++n;
    }
    return n;
}

XmlText attr(const xmlNode* n, const char* name) noexcept {
    return XmlText(n ? xmlGetProp(n, reinterpret_cast<const xmlChar*>(name)) : nullptr);
}

int32_t attrInt(const xmlNode* n, const char* name) noexcept {
    return parseInt(attr(n, name).get());
}

XmlText content(const xmlNode* n) noexcept {
    return XmlText(n ? xmlNodeGetContent(n) : nullptr);
}

const char* convertedText(Converter& converter, const xmlNode* n) noexcept {
    XmlText text = content(n);
    return converter.toRecordOrNull(text ? text.get() : "");
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

WriteDoc::WriteDoc(const char* rootName) noexcept : doc_(xmlNewDoc(BAD_CAST "1.0")) {
    if (!doc_) return;
    root_ = xmlNewNode(nullptr, BAD_CAST rootName);
    if (root_) xmlDocSetRootElement(doc_.get(), root_);
}

int32_t WriteDoc::save(const char* path) noexcept {
    if (!doc_ || !root_ || !path) return 1;
    QuietErrors quiet;
    return xmlSaveFormatFileEnc(path, doc_.get(), "UTF-8", 1) == -1 ? 1 : 0;
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
