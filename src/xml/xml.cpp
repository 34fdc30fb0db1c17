#include "xml/xml.h"

#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>

#include "kelProfile.h"

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
    XmlText v = attr(n, name);
    return v.empty() ? 0 : std::atoi(v.get());
}

XmlText content(const xmlNode* n) noexcept {
    return XmlText(n ? xmlNodeGetContent(n) : nullptr);
}

std::size_t fitLength(const char* s, std::size_t len, std::size_t cap, Enc enc) noexcept {
    if (len <= cap) return len;
    const auto* u = reinterpret_cast<const unsigned char*>(s);
    if (enc == Enc::Utf8) {
        // Step back over at most three continuation bytes of the character
        // that the cut would split.
        std::size_t n = cap;
        for (int i = 0; i < 3 && n > 0 && (u[n] & 0xC0) == 0x80; ++i) --n;
        return (u[n] & 0xC0) == 0x80 ? cap : n;
    }
    // GBK: a lead byte from 0x81 takes the next byte with it.
    std::size_t i = 0;
    while (i < cap) {
        std::size_t step = (u[i] >= 0x81 && u[i] <= 0xFE && i + 1 < len) ? 2 : 1;
        if (i + step > cap) break;
        i += step;
    }
    return i;
}

void copyField(char* dst, std::size_t width, const char* src, Enc enc) noexcept {
    if (!dst || width == 0 || !src || !*src) return;
    std::size_t n = fitLength(src, std::strlen(src), width - 1, enc);
    std::memmove(dst, src, n);
    dst[n] = 0;
}

char* dupText(const char* src) noexcept {
    return (src && *src) ? strdup(src) : nullptr;
}

RecordText Converter::toRecord(const char* utf8) noexcept {
    if (const char* converted = toRecordOrNull(utf8)) return {converted, Enc::Gbk};
    return {utf8, Enc::Utf8};
}

const char* Converter::toRecordOrNull(const char* utf8) noexcept {
    if (!utf8) return nullptr;
    return toGbk_.run(utf8, std::strlen(utf8), buf_, kSize) == 0 ? buf_ : nullptr;
}

const char* Converter::toFile(const char* gbk) noexcept {
    if (!gbk) return "";
    return toUtf8_.run(gbk, std::strlen(gbk), buf_, kSize) == 0 ? buf_ : "";
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

Decimal::Decimal(int32_t v) noexcept {
    itoa(v, text, 10);
}

}  // namespace kel
