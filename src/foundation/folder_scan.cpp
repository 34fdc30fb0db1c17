// Finding every XML file below a folder: the folder's own files first, then
// each subfolder in listing order, to any depth.
//
// On 32-bit glibc the build asks for 64-bit file offsets and inode numbers
// (_FILE_OFFSET_BITS=64): without them scandir and stat fail with EOVERFLOW
// for an inode number or a directory position past 32 bits, which
// filesystems with 64-bit inode numbers or hashed directories hand out, and
// a folder would look empty or end the process. Elsewhere the plain calls
// are 64-bit already.
#include <dirent.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/text.h"
#include "foundation/folder_loader.h"
#include "kelProfile.h"

namespace {

constexpr std::size_t kJoinSize = 1024;  // a folder joined with an entry name

// The folders one scan has entered. Each is entered once: a symbolic link
// that loops back would otherwise never end, and links that reach the same
// folder by many ways would make the scan's time grow with the number of
// ways rather than the number of folders.
class Visited {
public:
    static constexpr int kCapacity = 4096;
    Visited() noexcept : folders_(kel::allocRecords<Folder>(kCapacity)) {}
    // Records the folder; false when it was entered before, or when no more
    // folders can be recorded (the scan then goes no deeper).
    bool enter(const struct stat& st) noexcept {
        if (!folders_) return false;
        for (int i = 0; i < count_; ++i)
            if (folders_.get()[i].dev == st.st_dev && folders_.get()[i].ino == st.st_ino)
                return false;
        if (count_ == kCapacity) return false;
        folders_.get()[count_++] = {st.st_dev, st.st_ino};
        return true;
    }

private:
    struct Folder {
        dev_t dev;
        ino_t ino;
    };
    kel::HeapPtr<Folder> folders_;
    int count_ = 0;
};

// "folder/name" into out; false when it does not fit.
bool join(char (&out)[kJoinSize], const char* folder, const char* name) noexcept {
    int n = std::snprintf(out, sizeof out, "%s/%s", folder, name);
    return n >= 0 && static_cast<std::size_t>(n) < sizeof out;
}

// The status of a listed entry, links followed. An entry without one (gone
// since the listing, a dangling link, a folder that can be listed but not
// searched) ends the process: the host relies on complete folders.
struct stat statOrExit(const char* path) noexcept {
    struct stat st;
    if (stat(path, &st) != 0) {
        std::perror("stat()");
        std::exit(1);
    }
    return st;
}

bool hasXmlExtension(const char* name) noexcept {
    const char* dot = std::strrchr(name, '.');
    return dot && (std::strcmp(dot + 1, "xml") == 0 || std::strcmp(dot + 1, "XML") == 0);
}

bool isDotOrDotDot(const char* name) noexcept {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

// Appends the path of a file of folder (of folderLen bytes, without a
// trailing '/') when there is room in the list and the path fits the
// readers' path buffer.
void appendFile(const char* folder, int folderLen, const char* name, int* count,
                char** names) noexcept {
    if (*count >= kel::kMaxFolderFiles) return;
    char path[kel::kMaxFolderPath];
    int n = std::snprintf(path, sizeof path, "%.*s/%s", folderLen, folder, name);
    if (n < 0 || static_cast<std::size_t>(n) >= sizeof path) return;
    if (char* copy = kel::dupText(path)) names[(*count)++] = copy;
}

void scan(const char* folder, int* count, char** names, Visited& visited) noexcept {
    struct dirent** entries = nullptr;
    int listed = scandir(folder, &entries, nullptr, nullptr);
    if (listed < 0) return;

    int folderLen = static_cast<int>(std::strlen(folder));
    if (folderLen > 0 && folder[folderLen - 1] == '/') --folderLen;

    // Files now; subfolders are kept, in listing order, for after them.
    struct Subfolder {
        struct dirent* entry;
        struct stat st;
    };
    auto* subfolders = kel::allocRecords<Subfolder>(static_cast<std::size_t>(listed) + 1);
    int subfolderCount = 0;
    for (int i = 0; i < listed; ++i) {
        struct dirent* entry = entries[i];
        char joined[kJoinSize];
        // An entry whose path does not fit is left out, with everything
        // below it: none of those paths would fit either.
        if (join(joined, folder, entry->d_name)) {
            struct stat st = statOrExit(joined);
            // Regular files only: a FIFO, socket or device named .xml would
            // block the reader or never end.
            if (S_ISREG(st.st_mode)) {
                if (hasXmlExtension(entry->d_name))
                    appendFile(folder, folderLen, entry->d_name, count, names);
            } else if (S_ISDIR(st.st_mode) && !isDotOrDotDot(entry->d_name) && subfolders) {
                subfolders[subfolderCount++] = {entry, st};
                continue;
            }
        }
        std::free(entry);
    }

    for (int i = 0; i < subfolderCount; ++i) {
        char joined[kJoinSize];
        if (*count < kel::kMaxFolderFiles && join(joined, folder, subfolders[i].entry->d_name) &&
            visited.enter(subfolders[i].st))
            scan(joined, count, names, visited);
        std::free(subfolders[i].entry);
    }
    std::free(subfolders);
    std::free(entries);
}

}  // namespace

bool isDir(const char* folder, const struct dirent* entry) {
    char joined[kJoinSize];
    if (!folder || !entry || !join(joined, folder, entry->d_name)) return false;
    return S_ISDIR(statOrExit(joined).st_mode);
}

int getXMLName(char* folder, int* count, char** names) {
    if (!folder || !count || !names || *count < 0) return 0;
    Visited visited;
    struct stat st;
    // Without the status of the starting folder, a link back to it is only
    // caught one level further down.
    if (stat(folder, &st) == 0) visited.enter(st);
    scan(folder, count, names, visited);
    return 0;
}
