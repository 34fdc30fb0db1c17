#include "core/save.h"

#include <fcntl.h>
#include <libxml/chvalid.h>
#include <libxml/xmlsave.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "core/memory.h"
#include "core/parse.h"
#include "core/text.h"

namespace kel {

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

}  // namespace kel
