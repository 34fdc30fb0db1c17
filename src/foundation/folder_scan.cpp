// Finding every XML file below a folder: the folder's own files first, then
// each subfolder in listing order, to any depth.
//
// On 32-bit glibc the build asks for 64-bit file offsets and inode numbers
// (_FILE_OFFSET_BITS=64): without them scandir and stat fail with EOVERFLOW
// for an inode number or a directory position past 32 bits, which
// filesystems with 64-bit inode numbers or hashed directories hand out, and
// its files would be passed over. Elsewhere the plain calls are 64-bit
// already.
#include <dirent.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <utility>

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

// "folder/name", the folder taken as its first folderLen bytes, into out
// of size bytes; false when it does not fit.
bool joinPath(char* out, std::size_t size, const char* folder, std::size_t folderLen,
              const char* name) noexcept {
    std::size_t nameLen = std::strlen(name);
    if (folderLen + 1 + nameLen >= size) return false;
    std::memcpy(out, folder, folderLen);
    out[folderLen] = '/';
    std::memcpy(out + folderLen + 1, name, nameLen + 1);
    return true;
}

// "folder/name" into out; false when it does not fit.
bool join(char (&out)[kJoinSize], const char* folder, const char* name) noexcept {
    return joinPath(out, sizeof out, folder, std::strlen(folder), name);
}

// The status of a path, links followed; false when it has none. The
// library runs inside the host, and entries come and go while it scans (its
// own saves among them, through their temporary files): an entry without a
// status (gone since the listing, a dangling or looping link, a folder that
// can be listed but not searched) is passed over as if it were not there.
bool statusOf(const char* path, struct stat& st) noexcept {
    return stat(path, &st) == 0;
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
    if (!joinPath(path, sizeof path, folder, static_cast<std::size_t>(folderLen), name)) return;
    if (char* copy = kel::dupText(path)) names[(*count)++] = copy;
}

// The folders a scan has still to list, last in first out: each listed
// folder's subfolders go on top in reverse listing order, so the first is
// finished before the second is begun, as a recursive descent would; but
// the stack is on the heap, and a tree of any depth takes the same stack
// of the thread that scans it.
class Pending {
public:
    Pending() noexcept = default;
    Pending(const Pending&) = delete;
    Pending& operator=(const Pending&) = delete;
    ~Pending() {
        while (count_ > 0) std::free(folders_.get()[--count_].path);
    }
    struct Folder {
        char* path;  // heap copy, the caller's once popped
        struct stat st;
    };
    bool empty() const noexcept { return count_ == 0; }
    // Adds a folder; false when there is no room for it (it is then left out).
    bool push(const char* path, const struct stat& st) noexcept {
        if (count_ == capacity_ && !grow()) return false;
        char* copy = kel::dupText(path);
        if (!copy) return false;
        folders_.get()[count_++] = {copy, st};
        return true;
    }
    Folder pop() noexcept { return folders_.get()[--count_]; }
    // Puts the folders pushed since the stack held from folders in reverse
    // order, so that the first pushed comes off first.
    void reverseFrom(std::size_t from) noexcept {
        for (std::size_t i = from, j = count_; i + 1 < j; ++i, --j)
            std::swap(folders_.get()[i], folders_.get()[j - 1]);
    }
    std::size_t size() const noexcept { return count_; }

private:
    bool grow() noexcept {
        std::size_t capacity = capacity_ ? capacity_ * 2 : 64;
        kel::HeapPtr<Folder> bigger(kel::allocRecords<Folder>(capacity));
        if (!bigger) return false;
        if (count_) std::memcpy(bigger.get(), folders_.get(), count_ * sizeof(Folder));
        folders_ = std::move(bigger);
        capacity_ = capacity;
        return true;
    }
    kel::HeapPtr<Folder> folders_;
    std::size_t count_ = 0;
    std::size_t capacity_ = 0;
};

// Lists one folder: its XML files go to the list, its subfolders on top of
// pending, to be listed after it in listing order.
void listFolder(const char* folder, int* count, char** names, Pending& pending) noexcept {
    struct dirent** entries = nullptr;
    int listed = scandir(folder, &entries, nullptr, nullptr);
    if (listed < 0) return;
    kel::HeapPtr<struct dirent*> listing(entries);

    int folderLen = static_cast<int>(std::strlen(folder));
    if (folderLen > 0 && folder[folderLen - 1] == '/') --folderLen;

    std::size_t firstSubfolder = pending.size();
    for (int i = 0; i < listed; ++i) {
        kel::HeapPtr<struct dirent> entry(entries[i]);
        const char* name = entry->d_name;
        char joined[kJoinSize];
        struct stat st;
        // An entry whose path does not fit is left out, with everything
        // below it: none of those paths would fit either.
        if (!join(joined, folder, name) || !statusOf(joined, st)) continue;
        // Regular files only: a FIFO, socket or device named .xml would
        // block the reader or never end.
        if (S_ISREG(st.st_mode)) {
            if (hasXmlExtension(name)) appendFile(folder, folderLen, name, count, names);
        } else if (S_ISDIR(st.st_mode) && !isDotOrDotDot(name)) {
            pending.push(joined, st);
        }
    }
    pending.reverseFrom(firstSubfolder);
}

}  // namespace

bool isDir(const char* folder, const struct dirent* entry) {
    char joined[kJoinSize];
    struct stat st;
    if (!folder || !entry || !join(joined, folder, entry->d_name)) return false;
    return statusOf(joined, st) && S_ISDIR(st.st_mode);
}

int getXMLName(char* folder, int* count, char** names) {
    if (!folder || !count || !names || *count < 0) return 0;
    Visited visited;
    struct stat st;
    // Without the status of the starting folder, a link back to it is only
    // caught one level further down.
    if (statusOf(folder, st)) visited.enter(st);
    Pending pending;
    listFolder(folder, count, names, pending);
    // Each folder is entered when its turn comes, not when it is found: a
    // folder reached by two ways is listed under the way met first in the
    // descent.
    while (!pending.empty() && *count < kel::kMaxFolderFiles) {
        Pending::Folder next = pending.pop();
        kel::HeapPtr<char> path(next.path);
        if (visited.enter(next.st)) listFolder(path.get(), count, names, pending);
    }
    return 0;
}
