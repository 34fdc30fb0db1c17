#include "input.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "tool.h"

namespace fs = std::filesystem;

namespace tool {

namespace {

// What a status that is not a regular file's is, for a message.
const char* kindOf(mode_t mode) {
    if (S_ISDIR(mode)) return "a folder";
    if (S_ISFIFO(mode)) return "a FIFO";
    if (S_ISCHR(mode) || S_ISBLK(mode)) return "a device";
    if (S_ISSOCK(mode)) return "a socket";
    return "not a regular file";
}

std::string megabytes(std::size_t bytes) {
    return bytes % (1 << 20) == 0 ? std::to_string(bytes >> 20) + " MB"
                                  : std::to_string(bytes) + " bytes";
}

// Reads fd to its end or past limit; false when it passes the limit or a
// read fails.
bool readAll(int fd, std::size_t limit, std::string& bytes, std::string& why) {
    char buffer[65536];
    for (;;) {
        ssize_t n = read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            why = std::string("cannot read it: ") + std::strerror(errno);
            return false;
        }
        if (n == 0) return true;
        if (bytes.size() + static_cast<std::size_t>(n) > limit) {
            why = "larger than the " + megabytes(limit) + " kelprofile reads";
            return false;
        }
        bytes.append(buffer, static_cast<std::size_t>(n));
    }
}

class Fd {
public:
    explicit Fd(int fd) : fd_(fd) {}
    ~Fd() {
        if (fd_ >= 0) close(fd_);
    }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int get() const { return fd_; }

private:
    int fd_;
};

}  // namespace

bool readBounded(const std::string& path, std::size_t limit, std::string& bytes, std::string& why) {
    bytes.clear();
    if (path == "-") return readAll(STDIN_FILENO, limit, bytes, why);
    // Opened without waiting, so that a FIFO with no writer does not hold
    // the tool; what is not a regular file is refused before any read.
    Fd fd(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat st;
    if (fd.get() < 0) {
        why = errno == ENOENT ? "no such file"
                              : std::string("cannot open it: ") + std::strerror(errno);
        return false;
    }
    if (fstat(fd.get(), &st) != 0) {
        why = std::string("cannot read it: ") + std::strerror(errno);
        return false;
    }
    if (!S_ISREG(st.st_mode)) {
        why = std::string(kindOf(st.st_mode)) + ", not a file";
        return false;
    }
    if (static_cast<unsigned long long>(st.st_size) > limit) {
        why = std::to_string(st.st_size) + " bytes, larger than the " + megabytes(limit) +
              " kelprofile reads";
        return false;
    }
    // Reads block again: a regular file never waits.
    fcntl(fd.get(), F_SETFL, fcntl(fd.get(), F_GETFL) & ~O_NONBLOCK);
    bytes.reserve(static_cast<std::size_t>(st.st_size));
    return readAll(fd.get(), limit, bytes, why);
}

bool isFolder(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

namespace {

bool hasXmlExtension(const std::string& name) {
    std::size_t dot = name.rfind('.');
    return dot != std::string::npos &&
           (name.compare(dot, 4, ".xml") == 0 || name.compare(dot, 4, ".XML") == 0) &&
           dot + 4 == name.size();
}

using FolderId = std::pair<dev_t, ino_t>;

struct Folder {
    std::string path;
    FolderId id;
};

// Lists one folder in name order (links followed; an entry without a
// status, gone or a dangling link, is passed over): its XML files go to
// found, its subfolders to the returned list.
std::vector<Folder> list(const std::string& folder, std::vector<FoundFile>& found) {
    std::vector<Folder> folders;
    DIR* dir = opendir(folder.c_str());
    if (!dir) return folders;
    std::vector<std::string> names;
    while (const struct dirent* e = readdir(dir))
        if (std::strcmp(e->d_name, ".") != 0 && std::strcmp(e->d_name, "..") != 0)
            names.push_back(e->d_name);
    closedir(dir);
    std::sort(names.begin(), names.end());
    std::string prefix = !folder.empty() && folder.back() == '/' ? folder : folder + '/';
    for (const std::string& name : names) {
        std::string path = prefix + name;
        struct stat st;
        if (stat(path.c_str(), &st) != 0) continue;
        if (S_ISREG(st.st_mode) && hasXmlExtension(name))
            found.push_back({path, path.size() <= KELPROFILE_FOLDER_PATH});
        if (S_ISDIR(st.st_mode)) folders.push_back({path, {st.st_dev, st.st_ino}});
    }
    return folders;
}

}  // namespace

std::vector<FoundFile> xmlFilesBelow(const std::string& folder) {
    std::vector<FoundFile> found;
    std::vector<FolderId> entered;
    struct stat st;
    if (stat(folder.c_str(), &st) == 0) entered.push_back({st.st_dev, st.st_ino});
    // Folders still to list, last in first out, so that each folder's
    // subfolders are finished before its next sibling is begun. A folder is
    // entered when its turn comes: one reached by two ways is listed under
    // the way met first in the descent, as the loaders list it.
    std::vector<Folder> pending = list(folder, found);
    std::reverse(pending.begin(), pending.end());
    while (!pending.empty()) {
        Folder next = std::move(pending.back());
        pending.pop_back();
        if (std::find(entered.begin(), entered.end(), next.id) != entered.end()) continue;
        entered.push_back(next.id);
        std::vector<Folder> below = list(next.path, found);
        pending.insert(pending.end(), std::make_move_iterator(below.rbegin()),
                       std::make_move_iterator(below.rend()));
    }
    return found;
}

ScratchFolder::ScratchFolder() {
    std::error_code ec;
    fs::path base = fs::temp_directory_path(ec);
    std::string pattern = ((ec ? fs::path("/tmp") : base) / "kelprofile-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("cannot make a temporary folder");
    path_ = pattern;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ec;
    fs::remove_all(path_, ec);
}

}  // namespace tool
