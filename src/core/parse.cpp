#include "core/parse.h"

#include <fcntl.h>
#include <libxml/SAX2.h>
#include <libxml/entities.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kel {

namespace {
void discard(void*, const char*, ...) {}
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

}  // namespace kel
