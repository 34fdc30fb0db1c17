#include "core/xml.h"

#include <libxml/entities.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

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

namespace {

// Takes from budget the text a node list holds with every entity reference
// expanded (each node costing at least one byte); false once it runs out.
// Entity references are left in the tree, and every read of an element's
// text expands them again: this keeps a small file from standing for
// gigabytes of text.
bool spend(const xmlNode* n, std::size_t& budget, int depth) noexcept {
    for (; n; n = n->next) {
        if (budget == 0) return false;
        --budget;
        switch (n->type) {
            case XML_TEXT_NODE:
            case XML_CDATA_SECTION_NODE: {
                std::size_t len = n->content ? std::strlen(reinterpret_cast<char*>(n->content)) : 0;
                if (len > budget) return false;
                budget -= len;
                break;
            }
            case XML_ENTITY_REF_NODE: {
                // The reference's child is the entity's declaration; its
                // children are the entity's parsed content, when it has any.
                const auto* entity = reinterpret_cast<const xmlEntity*>(n->children);
                if (!entity) break;
                if (depth > 64) return false;
                if (entity->children) {
                    if (!spend(entity->children, budget, depth + 1)) return false;
                } else if (static_cast<std::size_t>(entity->length) > budget) {
                    return false;
                } else {
                    budget -= static_cast<std::size_t>(entity->length);
                }
                break;
            }
            case XML_ELEMENT_NODE:
                for (const xmlAttr* a = n->properties; a; a = a->next)
                    if (!spend(a->children, budget, depth + 1)) return false;
                if (!spend(n->children, budget, depth + 1)) return false;
                break;
            default:
                break;
        }
    }
    return true;
}

}  // namespace

ReadDoc::ReadDoc(const char* path) noexcept {
    if (!path) return;
    // Only regular files: a FIFO or a device would block or never end.
    // The 64-bit status: on 32-bit x86 the plain one fails for a file with
    // an inode number past 32 bits.
    struct stat64 st;
    if (stat64(path, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size > kMaxFileSize) return;
    QuietErrors quiet;
    // No network access and no messages; otherwise libxml2's defaults, so
    // whitespace between elements stays in the tree as text nodes, and
    // neither a DTD nor an external entity is ever loaded. Short texts are
    // kept inside their nodes: the same tree, with fewer allocations.
    constexpr int kOptions =
        XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_COMPACT;
    doc_.reset(xmlReadFile(path, nullptr, kOptions));
    if (!doc_) return;
    // Only a document type can declare entities; without one the text is
    // the file's own and cannot exceed its size.
    std::size_t budget = static_cast<std::size_t>(st.st_size) + kMaxExpansion;
    bool entities = doc_->intSubset || doc_->extSubset;
    if (entities && !spend(doc_->children, budget, 0)) {
        doc_.reset();
        return;
    }
    root_ = xmlDocGetRootElement(doc_.get());
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

namespace {
// The text of a node list that is one text node, read in place; null when
// the list is anything else (empty, several nodes, entity references).
const xmlChar* singleText(const xmlNode* list) noexcept {
    if (!list || list->next || list->content == nullptr) return nullptr;
    return list->type == XML_TEXT_NODE || list->type == XML_CDATA_SECTION_NODE ? list->content
                                                                               : nullptr;
}

bool hasDocumentType(const xmlNode* n) noexcept {
    return n->doc && (n->doc->intSubset || n->doc->extSubset);
}
}  // namespace

// Both read the tree in place where they can, and leave every other case to
// libxml2's own copy, so the text is always the one xmlGetProp and
// xmlNodeGetContent give.
XmlText attr(const xmlNode* n, const char* name) noexcept {
    if (!n) return {};
    if (n->type == XML_ELEMENT_NODE) {
        const xmlAttr* a = n->properties;
        while (a && std::strcmp(reinterpret_cast<const char*>(a->name), name) != 0) a = a->next;
        if (a) {
            if (const xmlChar* text = singleText(a->children)) return XmlText::inTree(text);
        } else if (!hasDocumentType(n)) {
            return {};  // absent, and no document type to declare a default
        }
    }
    return XmlText(xmlGetProp(n, reinterpret_cast<const xmlChar*>(name)));
}

int32_t attrInt(const xmlNode* n, const char* name) noexcept {
    return parseInt(attr(n, name).get());
}

XmlText content(const xmlNode* n) noexcept {
    if (!n) return {};
    if (n->type == XML_ELEMENT_NODE) {
        static const xmlChar kEmpty[] = "";
        if (!n->children) return XmlText::inTree(kEmpty);
        if (const xmlChar* text = singleText(n->children)) return XmlText::inTree(text);
    }
    return XmlText(xmlNodeGetContent(n));
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

int32_t saveDoc(xmlDoc* doc, const char* path, bool indent) noexcept {
    if (!doc || !path || !*path) return 1;
    // A link is written through: the file it names is the one replaced.
    HeapPtr<char> resolved;
    struct stat64 st;
    if (lstat64(path, &st) == 0 && S_ISLNK(st.st_mode)) {
        resolved.reset(realpath(path, nullptr));
        if (!resolved) return 1;
        path = resolved.get();
    }
    mode_t mode;
    if (stat64(path, &st) == 0) {
        if (!S_ISREG(st.st_mode)) return 1;
        mode = st.st_mode & 07777;
    } else {
        mode_t mask = umask(0);
        umask(mask);
        mode = 0666 & ~mask;
    }

    std::size_t len = std::strlen(path);
    HeapPtr<char> temp(static_cast<char*>(allocZeroed(len + 8, 1)));
    if (!temp) return 1;
    std::memcpy(temp.get(), path, len);
    std::memcpy(temp.get() + len, ".XXXXXX", 8);
    int fd = mkstemp(temp.get());
    if (fd < 0) return 1;
    bool ok = fchmod(fd, mode) == 0;
    close(fd);
    if (ok) {
        QuietErrors quiet;
        ok = xmlSaveFormatFileEnc(temp.get(), doc, "UTF-8", indent ? 1 : 0) != -1;
    }
    if (ok) ok = rename(temp.get(), path) == 0;
    if (!ok) unlink(temp.get());
    return ok ? 0 : 1;
}

int32_t WriteDoc::save(const char* path) noexcept {
    if (!root_) return 1;
    return saveDoc(doc_.get(), path, true);
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
