// Finding every XML file below a folder: the folder's own files first, then
// each subfolder in listing order, to any depth.
//
// Listings and statuses use the 64-bit forms of the calls (the same calls on
// 64-bit targets): on 32-bit x86 the plain ones fail with EOVERFLOW for an
// inode number or a directory position past 32 bits, which filesystems with
// 64-bit inode numbers or hashed directories hand out, and a folder would
// then look empty or end the process. isDir still takes the host's plain
// struct dirent.
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

// A folder on the way from where the scan started down to the folder being
// listed. A directory already on this way is reached again only through a
// symbolic link that loops back; entering it would never end.
struct Descent {
    dev_t dev;
    ino64_t ino;
    const Descent* up;
    bool contains(const struct stat64& st) const noexcept {
        for (const Descent* d = this; d; d = d->up)
            if (d->dev == st.st_dev && d->ino == st.st_ino) return true;
        return false;
    }
};

// "folder/name" into out; false when it does not fit.
bool join(char (&out)[kJoinSize], const char* folder, const char* name) noexcept {
    int n = std::snprintf(out, sizeof out, "%s/%s", folder, name);
    return n >= 0 && static_cast<std::size_t>(n) < sizeof out;
}

// The status of a listed entry, links followed. An entry without one (gone
// since the listing, a dangling link, a folder that can be listed but not
// searched) ends the process: the host relies on complete folders.
struct stat64 statOrExit(const char* path) noexcept {
    struct stat64 st;
    if (stat64(path, &st) != 0) {
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

void scan(const char* folder, int* count, char** names, const Descent* descent) noexcept {
    struct dirent64** entries = nullptr;
    int listed = scandir64(folder, &entries, nullptr, nullptr);
    if (listed < 0) return;

    int folderLen = static_cast<int>(std::strlen(folder));
    if (folderLen > 0 && folder[folderLen - 1] == '/') --folderLen;

    // Files now; subfolders are kept, in listing order, for after them.
    struct Subfolder {
        struct dirent64* entry;
        dev_t dev;
        ino64_t ino;
    };
    auto* subfolders = kel::allocRecords<Subfolder>(static_cast<std::size_t>(listed) + 1);
    int subfolderCount = 0;
    for (int i = 0; i < listed; ++i) {
        struct dirent64* entry = entries[i];
        char joined[kJoinSize];
        // An entry whose path does not fit is left out, with everything
        // below it: none of those paths would fit either.
        if (join(joined, folder, entry->d_name)) {
            struct stat64 st = statOrExit(joined);
            if (!S_ISDIR(st.st_mode)) {
                if (hasXmlExtension(entry->d_name))
                    appendFile(folder, folderLen, entry->d_name, count, names);
            } else if (!isDotOrDotDot(entry->d_name) && !descent->contains(st) && subfolders) {
                subfolders[subfolderCount++] = {entry, st.st_dev, st.st_ino};
                continue;
            }
        }
        std::free(entry);
    }

    for (int i = 0; i < subfolderCount; ++i) {
        char joined[kJoinSize];
        if (*count < kel::kMaxFolderFiles && join(joined, folder, subfolders[i].entry->d_name)) {
            Descent here{subfolders[i].dev, subfolders[i].ino, descent};
            scan(joined, count, names, &here);
        }
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
    // Without the status of the starting folder, a link back to it is only
    // caught one level further down.
    Descent start{0, 0, nullptr};
    struct stat64 st;
    if (stat64(folder, &st) == 0) start = {st.st_dev, st.st_ino, nullptr};
    scan(folder, count, names, &start);
    return 0;
}
