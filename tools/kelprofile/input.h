// What the tool takes from the file system: a file's bytes under the
// library's own admission rules, the XML files below a folder as the
// library's folder loaders see them, and a scratch folder.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tool {

// The bytes of a regular file of at most limit bytes, read as they are (a
// compressed file is not inflated); "-" reads standard input, within the
// same limit. False with why (no file name) when the file is missing,
// unreadable, a folder, a FIFO, a device or larger than the limit: nothing
// waits on a FIFO or a device, and nothing reads past the limit.
bool readBounded(const std::string& path, std::size_t limit, std::string& bytes, std::string& why);

// A file below a folder, with the number of bytes of its path.
struct FoundFile {
    std::string path;
    // Whether a folder load reads it: its path fits the loaders' path
    // buffer.
    bool loadable;
};

// The .xml and .XML regular files below folder as the library's folder
// loaders find them: links followed, each folder entered once, a folder's
// own files before its subfolders'. Within a folder the files and the
// subfolders are in name order (the loaders take the system's listing
// order), so that a report is the same on every machine. No limit on the
// count: the loaders read the first 512 they list.
std::vector<FoundFile> xmlFilesBelow(const std::string& folder);

// Whether path names a folder (links followed).
bool isFolder(const std::string& path);

// A temporary folder of this run, removed with everything in it.
class ScratchFolder {
public:
    ScratchFolder();  // throws std::runtime_error when none can be made
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    // The path of a file name in the folder.
    std::string file(const char* name) const { return path_ + '/' + name; }

private:
    std::string path_;
};

}  // namespace tool
