#include "core/xml.h"

#include <fcntl.h>
#include <libxml/SAX2.h>
#include <libxml/chvalid.h>
#include <libxml/entities.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>
#include <libxml/xmlsave.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace kel {

namespace {
void discard(void*, const char*, ...) {}

// libxml2 is set up once in the process, by the first document the library
// reads or builds, and never reset: the host and the system's own
// frameworks use the same libxml2, and xmlCleanupParser would destroy its
// locks under them. The process ends with it set up, as libxml2 asks.
void setUpLibxml2() noexcept {
    static const bool ready = (xmlInitParser(), true);
    (void)ready;
}
}  // namespace

// libxml2 keeps the generic error handler per thread (it is built with
// threads on Debian and on macOS), so silencing it here leaves every other
// thread's handler alone.
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
bool spend(const xmlNode* n, std::size_t& budget, int entityDepth) noexcept {
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
                if (entityDepth > 64) return false;
                if (entity->children) {
                    if (!spend(entity->children, budget, entityDepth + 1)) return false;
                } else if (static_cast<std::size_t>(entity->length) > budget) {
                    return false;
                } else {
                    budget -= static_cast<std::size_t>(entity->length);
                }
                break;
            }
            case XML_ELEMENT_NODE:
                // Elements nest at most 256 deep (libxml2's own bound); only
                // entity references count towards the entity depth.
                for (const xmlAttr* a = n->properties; a; a = a->next)
                    if (!spend(a->children, budget, entityDepth)) return false;
                if (!spend(n->children, budget, entityDepth)) return false;
                break;
            default:
                break;
        }
    }
    return true;
}

struct ParserDeleter {
    void operator()(xmlParserCtxt* p) const noexcept { xmlFreeParserCtxt(p); }
};
using ParserPtr = std::unique_ptr<xmlParserCtxt, ParserDeleter>;

// The context refuses every external load asked of it: an external DTD
// subset or entity never reaches the parse.
xmlParserInput* refuseExternal(void*, const xmlChar*, const xmlChar*) {
    return nullptr;
}

// A parser context with the library's own settings. libxml2 copies the
// calling thread's defaults into every new context (entity substitution,
// loading the external DTD, validation, dropping blank text), and the
// options of a read only add to them: a host thread that turned one on
// (libxslt does) would make a read load local files named by an entity
// into records and saved files. So the context is set back to libxml2's
// own defaults here, on the context alone, touching no process-wide or
// thread-wide setting.
ParserPtr newParser() noexcept {
    ParserPtr parser(xmlNewParserCtxt());
    if (!parser) return parser;
    xmlParserCtxt* p = parser.get();
    p->options = 0;
    p->replaceEntities = 0;
    p->loadsubset = 0;
    p->validate = 0;
    p->pedantic = 0;
    p->keepBlanks = 1;
    if (p->sax) {
        p->sax->ignorableWhitespace = xmlSAX2Characters;
        p->sax->resolveEntity = refuseExternal;
    }
    return parser;
}

}  // namespace

ReadDoc::ReadDoc(const char* path) noexcept {
    setUpLibxml2();
    if (!path) return;
    // The file is opened once and parsed from that descriptor, so what was
    // checked is what is read: only a regular file (a FIFO or a device
    // would block or never end), never standard input for "-", never a
    // compressed file inflated behind the size limit's back.
    int fd = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return;
    struct Closer {
        int fd;
        ~Closer() { close(fd); }
    } closer{fd};
    struct stat st;
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size > kMaxFileSize) return;
    QuietErrors quiet;
    ParserPtr parser = newParser();
    if (!parser) return;
    // No network access and no messages. Whitespace between elements stays
    // in the tree as text nodes, and neither a DTD nor an external entity is
    // ever loaded. Short texts are kept inside their nodes: the same tree,
    // with fewer allocations.
    constexpr int kOptions =
        XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_COMPACT;
    doc_.reset(xmlCtxtReadFd(parser.get(), fd, path, nullptr, kOptions));
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

WriteDoc::WriteDoc(const char* rootName) noexcept
    : doc_((setUpLibxml2(), xmlNewDoc(BAD_CAST "1.0"))) {
    if (!doc_) return;
    root_ = xmlNewNode(nullptr, BAD_CAST rootName);
    if (root_) xmlDocSetRootElement(doc_.get(), root_);
}

namespace {

// A new file beside path, created for writing with mode (the umask
// applied by the kernel) under a name no other file has: the folder of
// path, then ".kelprofile-", the process, a count of this process's
// temporary files and a few bits of the clock. Another process or thread
// holding the name makes it try the next. The descriptor, or -1; name then
// names the file created.
int createBeside(const char* path, mode_t mode, HeapPtr<char>& name) noexcept {
    static std::atomic<unsigned long> made{0};
    static const char kPrefix[] = ".kelprofile-";
    const char* slash = std::strrchr(path, '/');
    std::size_t folder = slash ? static_cast<std::size_t>(slash - path) + 1 : 0;
    std::size_t size = folder + sizeof kPrefix + 3 * 20;
    name.reset(static_cast<char*>(allocZeroed(size, 1)));
    if (!name) return -1;
    std::memcpy(name.get(), path, folder);
    for (int attempt = 0; attempt < 100; ++attempt) {
        struct timespec now {};
        clock_gettime(CLOCK_REALTIME, &now);
        std::snprintf(name.get() + folder, size - folder, "%s%lu-%lu-%lx", kPrefix,
                      static_cast<unsigned long>(getpid()), made.fetch_add(1) + 1,
                      static_cast<unsigned long>(now.tv_nsec) & 0xFFFFF);
        int fd = open(name.get(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (fd >= 0 || errno != EEXIST) return fd;
    }
    return -1;
}

// Flushes a written file to the disk. Where the system has F_FULLFSYNC
// (macOS), fsync hands the data to the drive without making the drive write
// its cache; the full flush is asked for first, and fsync stands in where
// the file system refuses it.
bool flushToDisk(int fd) noexcept {
#ifdef F_FULLFSYNC
    if (fcntl(fd, F_FULLFSYNC) == 0) return true;
#endif
    return fsync(fd) == 0;
}

// Writes doc to an open descriptor and makes it durable; false when any
// byte could not be written. The writes go through a callback of ours that
// writes every byte or reports the failure: libxml2's own descriptor output
// takes a short write (a full disk, a file size limit) for success.
bool writeTo(int fd, xmlDoc* doc, bool indent) noexcept {
    struct Sink {
        int fd;
        bool failed;
    } sink{fd, false};
    auto write = [](void* context, const char* buffer, int len) -> int {
        auto* s = static_cast<Sink*>(context);
        for (int done = 0; done < len;) {
            ssize_t n = ::write(s->fd, buffer + done, static_cast<std::size_t>(len - done));
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) {
                s->failed = true;
                return -1;
            }
            done += static_cast<int>(n);
        }
        return len;
    };
    QuietErrors quiet;
    xmlSaveCtxt* output = xmlSaveToIO(write, nullptr, &sink, "UTF-8", indent ? XML_SAVE_FORMAT : 0);
    if (!output) return false;
    bool ok = xmlSaveDoc(output, doc) != -1;
    ok = xmlSaveClose(output) != -1 && ok;
    return ok && !sink.failed && flushToDisk(fd);
}

}  // namespace

bool isXmlText(const char* text) noexcept {
    if (!text) return true;
    if (!isUtf8(text)) return false;
    const auto* p = reinterpret_cast<const unsigned char*>(text);
    std::size_t len = 0;
    while (*p) {
        unsigned c = *p;
        int more = c < 0x80 ? 0 : c < 0xE0 ? 1 : c < 0xF0 ? 2 : 3;
        unsigned code = more == 0 ? c : c & (0x3F >> more);
        for (int i = 1; i <= more; ++i) code = (code << 6) | (p[i] & 0x3F);
        if (!xmlIsChar(code)) return false;
        p += more + 1;
        len += static_cast<std::size_t>(more) + 1;
    }
    return len <= kMaxXmlText;
}

namespace {

// Whether every text and attribute value below n is text XML can hold, so
// that the file written reads back.
bool holdsXmlText(const xmlNode* n) noexcept {
    for (; n; n = n->next) {
        if (n->type == XML_ELEMENT_NODE) {
            for (const xmlAttr* a = n->properties; a; a = a->next)
                if (!holdsXmlText(a->children)) return false;
            if (!holdsXmlText(n->children)) return false;
        } else if (n->type == XML_TEXT_NODE || n->type == XML_CDATA_SECTION_NODE) {
            if (!isXmlText(reinterpret_cast<const char*>(n->content))) return false;
        }
    }
    return true;
}

}  // namespace

int32_t saveDoc(xmlDoc* doc, const char* path, bool indent) noexcept {
    if (!doc || !path || !*path) return 1;
    // A text XML cannot hold would be written as it is and leave a file no
    // reader accepts: the save is refused and the old file kept.
    if (!holdsXmlText(doc->children)) return 1;
    // A link is written through: the file it names is the one replaced (a
    // link to nothing is refused).
    HeapPtr<char> resolved;
    struct stat st;
    if (lstat(path, &st) == 0 && S_ISLNK(st.st_mode)) {
        resolved.reset(realpath(path, nullptr));
        if (!resolved) return 1;
        path = resolved.get();
    }
    bool exists = stat(path, &st) == 0;
    if (exists && !S_ISREG(st.st_mode)) return 1;
    // A file the process may not write in place is not replaced behind its
    // owner's back, as an editor would not: its mode says it is to be kept.
    if (exists && access(path, W_OK) != 0) return 1;

    // A new file is created 0666 less the umask, by the kernel; a replaced
    // one is made private first and then given the old file's mode, so no
    // one reads the new content whom the old mode would have kept out.
    HeapPtr<char> temp;
    int fd = createBeside(path, exists ? 0600 : 0666, temp);
    if (fd < 0) return 1;
    bool ok = true;
    if (exists) {
        // The replaced file keeps its owner where the process may give it
        // (as root, say); otherwise the new file is the process's own.
        if (fchown(fd, st.st_uid, st.st_gid) != 0) {
            // Not allowed: the file keeps the process's owner.
        }
        ok = fchmod(fd, st.st_mode & 07777) == 0;
    }
    ok = ok && writeTo(fd, doc, indent);
    ok = close(fd) == 0 && ok;
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
