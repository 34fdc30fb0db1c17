// How much the library costs beyond libxml2 itself, in process CPU time.
//
// Loading folders of generated profiles (512 files of 20 items, 64 files of
// 200 items) with praseXMLFolder is measured against libxml2 parsing the
// same files: parse + free; parse + free + xmlCleanupParser/xmlMemoryDump
// (what every read of the library ended with while it reset libxml2's
// process-wide state); and the floor the record
// contract sets (that parse plus the zeroed blocks every read record must
// own: the block of records, each file's items, each item's room for 20
// list entries). Python lxml loading the same folder into dicts is measured
// too (bench/lxml_folder.py, when python3 with lxml is found).
//
// Warm figures: every variant runs once untimed, then the variants take
// turns for a number of rounds, so that each sees the same machine load;
// the median of each is kept. Cold figures: each run is a fresh process
// (this program started again), the variants again taking turns; the same
// runs give the peak memory. Every family's reader and writer is measured
// warm on its example file, against libxml2 parsing it (readers) or copying
// the parsed tree and saving it (writers).
//
//   folder_bench [--rounds N]     the table
//   folder_bench --generate DIR   writes the two folders into DIR
//   folder_bench --repeat parse|cleanup|floor|texts|loader FOLDER N
//                                 one variant N times warm, for profilers
//   folder_bench --instructions [N]
//                                 the cold loads' instructions under
//                                 callgrind, medians of N runs (3)
//   folder_bench --cold parse|cleanup|floor|texts|loader|memory FOLDER
//                                 one cold run (what the table spawns); under
//                                 valgrind --tool=callgrind
//                                 --collect-atstart=no it counts the load
//                                 alone
#include <fcntl.h>
#include <iconv.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlmemory.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "kelProfile.h"

// Under callgrind, a cold run counts the instructions of its load alone.
#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#define KEL_BENCH_COUNTS 1
#else
#define KEL_BENCH_COUNTS 0
#define CALLGRIND_TOGGLE_COLLECT
#endif

namespace fs = std::filesystem;

namespace {

// The baselines parse as a program using libxml2 would; the floor parses as
// the library does (from a descriptor, with a context of its own, into the
// same tree, short texts kept inside their nodes).
constexpr int kParseOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
constexpr int kLibraryParseOptions = kParseOptions | XML_PARSE_COMPACT;

double cpuMs() {
    timespec ts;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return ts.tv_sec * 1e3 + ts.tv_nsec / 1e6;
}

double median(std::vector<double> v) {
    if (v.empty()) return 0;
    std::sort(v.begin(), v.end());
    std::size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

// ---- the generated folders ---------------------------------------------------

// One configuration item in English and Chinese; every other one a list.
void addItem(std::string& xml, int file, int item, int items) {
    std::string n = std::to_string(item);
    bool list = item % 2 == 0;
    xml += "    <ConfigItem name=\"video.option" + n + "\" group=\"" +
           (item < items / 2 ? "video" : "audio") + "\" readyOnly=\"" +
           (item % 7 == 0 ? "1" : "0") + "\" displayType=\"" + (list ? "list" : "input") +
           "\" valueType=\"" + (list ? "string" : "int") + "\">\n";
    xml += "      <Label lang=\"en\">Option " + n + " of profile " + std::to_string(file) +
           "</Label>\n";
    xml += "      <Label lang=\"zh\">选项 " + n + " 画面尺寸</Label>\n";
    xml += "      <Description lang=\"en\">What option " + n +
           " changes in the converted file, in a sentence.</Description>\n";
    xml +=
        "      <Description lang=\"zh\">选项 " + n + " 改变输出文件的画面和声音。</Description>\n";
    if (list) {
        xml +=
            "      <ListItem lang=\"en\">Same as "
            "source,1920x1080,1280x720,960x540,640x360</ListItem>\n";
        xml +=
            "      <ListItem lang=\"zh\">与源相同,1920x1080,1280x720,960x540,640x360</ListItem>\n";
        xml += "      <ListValue>0.0,1920x1080,1280x720,960x540,640x360</ListValue>\n";
        xml += "      <DefaultValue>2</DefaultValue>\n";
    } else {
        xml += "      <ListValue></ListValue>\n      <DefaultValue>2500</DefaultValue>\n";
    }
    xml += "    </ConfigItem>\n";
}

std::string profile(int file, int items) {
    std::string n = std::to_string(file);
    std::string xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<Profiles>
  <Main>
    <Name>MP4 HD )" + n +
                      R"(</Name>
    <DisplayName lang="en">MP4 HD video )" +
                      n + R"(</DisplayName>
    <DisplayName lang="zh">MP4 高清视频 )" +
                      n + R"(</DisplayName>
    <Desc lang="en">H.264 video with AAC audio, for players and phones.</Desc>
    <Desc lang="zh">H.264 视频与 AAC 音频，适用于播放器和手机。</Desc>
    <Format>mp4</Format>
    <ExtName>mp4</ExtName>
    <IsSysProfile>1</IsSysProfile>
    <Type>2</Type>
    <Device>)" + std::to_string(file % 5) +
                      R"(</Device>
  </Main>
  <Group>
    <ID>3</ID>
    <DisplayName lang="en">HD video</DisplayName>
    <DisplayName lang="zh">高清视频</DisplayName>
  </Group>
  <Config>
)";
    for (int item = 0; item < items; ++item) addItem(xml, file, item, items);
    return xml + "  </Config>\n</Profiles>\n";
}

// A temporary folder, removed at exit.
class TempFolder {
public:
    TempFolder() {
        std::string pattern = (fs::temp_directory_path() / "kelprofile-bench-XXXXXX").string();
        if (!mkdtemp(pattern.data())) std::abort();
        path_ = pattern;
    }
    ~TempFolder() {
        std::error_code ec;
        fs::remove_all(path_, ec);
    }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

// A folder of generated profiles; paths in the order the scan finds them.
struct ProfileFolder {
    ProfileFolder(int files, int items) : files(files), items(items) {}
    int files;
    int items;
    fs::path path;
    std::vector<std::string> paths;
    std::uintmax_t bytes = 0;

    void write(const fs::path& parent) {
        path = parent / (std::to_string(files) + "x" + std::to_string(items));
        fs::create_directories(path);
        for (int i = 0; i < files; ++i) {
            char name[32];
            std::snprintf(name, sizeof name, "profile%04d.xml", i);
            std::string text = profile(i, items);
            std::ofstream(path / name, std::ios::binary) << text;
            paths.push_back((path / name).string());
            bytes += text.size();
        }
    }
    std::string label() const {
        return std::to_string(files) + " files x " + std::to_string(items) + " items";
    }
};

// ---- the variants of one folder load ----------------------------------------

void parseAndFree(const std::vector<std::string>& paths, bool cleanup) {
    for (const std::string& path : paths) {
        xmlFreeDoc(xmlReadFile(path.c_str(), nullptr, kParseOptions));
        if (cleanup) {
            xmlCleanupParser();
            xmlMemoryDump();
        }
    }
}

xmlNode* child(xmlNode* parent, const char* name) {
    for (xmlNode* n = parent ? parent->children : nullptr; n; n = n->next)
        if (n->type == XML_ELEMENT_NODE &&
            std::strcmp(reinterpret_cast<const char*>(n->name), name) == 0)
            return n;
    return nullptr;
}

// The conversion a read of one file cannot do without: one descriptor from
// UTF-8 to GBK, opened at the first text that needs it and closed with the
// file (a read may keep none across calls), and one iconv call for each
// text holding a character beyond ASCII, into a buffer of 1024 bytes. An
// ASCII text needs none: both code pages write it as the same bytes.
class FloorConversion {
public:
    FloorConversion() = default;
    FloorConversion(const FloorConversion&) = delete;
    FloorConversion& operator=(const FloorConversion&) = delete;
    ~FloorConversion() {
        if (cd_ != reinterpret_cast<iconv_t>(-1)) iconv_close(cd_);
    }
    // The text of element n, when it is one text node, in record form: in
    // the buffer when converted, else where it stands; null for none.
    const char* text(const xmlNode* n) {
        const xmlNode* t = n->children;
        if (!t || t->next || t->type != XML_TEXT_NODE || !t->content) return nullptr;
        const auto* s = reinterpret_cast<const unsigned char*>(t->content);
        const unsigned char* p = s;
        while (*p && *p < 0x80) ++p;
        if (!*p) return reinterpret_cast<const char*>(s);
        std::size_t len =
            static_cast<std::size_t>(p - s) + std::strlen(reinterpret_cast<const char*>(p));
        if (cd_ == reinterpret_cast<iconv_t>(-1)) cd_ = iconv_open("gbk", "UTF-8");
        char* in = const_cast<char*>(reinterpret_cast<const char*>(s));
        char* out = buffer_;
        std::size_t room = sizeof buffer_ - 1;
        iconv(cd_, &in, &len, &out, &room);
        *out = 0;
        return buffer_;
    }
    // The texts of parent's element children; with texts given, also the
    // heap copies the record owns of them (see copies).
    void children(const xmlNode* parent, std::vector<void*>* texts = nullptr) {
        for (const xmlNode* n = parent ? parent->children : nullptr; n; n = n->next) {
            if (n->type != XML_ELEMENT_NODE) continue;
            const char* s = text(n);
            if (texts && s) copies(n, s, *texts);
        }
    }

private:
    // A record owns a heap copy of each text in a language: in these files,
    // each element with an attribute ("lang"). A list of labels ("ListItem")
    // gives one copy a piece between commas.
    static void copies(const xmlNode* n, const char* s, std::vector<void*>& texts) {
        if (!n->properties) return;
        bool list = n->name[0] == 'L' && n->name[1] == 'i';
        for (;;) {
            const char* comma = list ? std::strchr(s, ',') : nullptr;
            std::size_t len = comma ? static_cast<std::size_t>(comma - s) : std::strlen(s);
            auto* copy = static_cast<char*>(std::malloc(len + 1));
            std::memcpy(copy, s, len);
            copy[len] = 0;
            texts.push_back(copy);
            if (!comma) return;
            s = comma + 1;
        }
    }

    iconv_t cd_ = reinterpret_cast<iconv_t>(-1);
    char buffer_[1024];
};

// A file parsed as the library parses it: from a descriptor, by a parser
// context of its own, into the same tree.
xmlDoc* libraryParse(const std::string& path) {
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return nullptr;
    xmlParserCtxt* parser = xmlNewParserCtxt();
    xmlDoc* doc =
        parser ? xmlCtxtReadFd(parser, fd, path.c_str(), nullptr, kLibraryParseOptions) : nullptr;
    xmlFreeParserCtxt(parser);
    close(fd);
    return doc;
}

// The library's parse, the conversion of the texts a profile read converts
// (the children of "Main", "Group" and each configuration item), and the
// zeroed blocks a read of every file must leave, allocated as a reader
// allocates them: the records, and per file its items and each item's 20
// list entries. Blocks collects them. With texts, the floor also makes the
// heap copies of the texts in a language that the records own (display
// names, descriptions, labels, each list label), as blocks of their own
// with their bytes copied; not the copies of the language names (two a
// file), a lower floor than the contract's.
void contractFloor(const std::vector<std::string>& paths, std::vector<void*>& blocks,
                   bool texts = false) {
    std::vector<void*>* copies = texts ? &blocks : nullptr;
    blocks.push_back(std::calloc(paths.size(), sizeof(Profile)));
    for (const std::string& path : paths) {
        xmlDoc* doc = libraryParse(path);
        xmlNode* root = xmlDocGetRootElement(doc);
        FloorConversion conversion;
        conversion.children(child(root, "Main"), copies);
        conversion.children(child(root, "Group"), copies);
        xmlNode* config = child(root, "Config");
        std::size_t items = 0;
        for (xmlNode* n = config ? config->children : nullptr; n; n = n->next)
            if (n->type == XML_ELEMENT_NODE) ++items;
        blocks.push_back(std::calloc(items, sizeof(ConfigItem)));
        for (xmlNode* n = config ? config->children : nullptr; n; n = n->next) {
            if (n->type != XML_ELEMENT_NODE) continue;
            blocks.push_back(std::calloc(20, sizeof(ListEntry)));
            conversion.children(n, copies);
        }
        xmlFreeDoc(doc);
    }
}

void releaseBlocks(std::vector<void*>& blocks) {
    for (void* block : blocks) std::free(block);
    blocks.clear();
}

RecordArray loadFolder(const fs::path& folder) {
    RecordArray result{nullptr, 0};
    praseXMLFolder(folder.c_str(), &result);
    return result;
}

void releaseFolder(RecordArray& result) {
    auto* records = static_cast<Profile*>(result.records);
    for (int i = 0; i < result.count; ++i) freeProfile(&records[i]);
    std::free(records);
    result = {nullptr, 0};
}

// ---- running variants ---------------------------------------------------------

// A variant runs once and gives the CPU milliseconds of what it measures
// (negative when it cannot run).
struct Variant {
    std::string name;
    std::function<double()> run;
};

// Times work, then runs release untimed.
Variant timed(std::string name, std::function<void()> work, std::function<void()> release = {}) {
    return {std::move(name), [work, release] {
                double start = cpuMs();
                work();
                double ms = cpuMs() - start;
                if (release) release();
                return ms;
            }};
}

// Each variant once untimed, then rounds turns of all; the median of each.
std::vector<double> interleaved(const std::vector<Variant>& variants, int rounds) {
    for (const Variant& v : variants) v.run();
    std::vector<std::vector<double>> times(variants.size());
    for (int r = 0; r < rounds; ++r)
        for (std::size_t i = 0; i < variants.size(); ++i) {
            double ms = variants[i].run();
            if (ms >= 0) times[i].push_back(ms);
        }
    std::vector<double> medians;
    for (const auto& t : times) medians.push_back(median(t));
    return medians;
}

// The output of a command, or "" when it fails. The command is spawned
// without copying this process's page tables (as fork would), so that the
// heap of the warm runs is not made copy-on-write, which would charge a
// page fault for each page the next run writes.
std::string output(const std::vector<std::string>& args) {
    int fds[2];
    if (pipe(fds) != 0) return "";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], 1);
    posix_spawn_file_actions_addclose(&actions, fds[0]);
    posix_spawn_file_actions_addclose(&actions, fds[1]);
    std::vector<char*> argv;
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    pid_t pid;
    bool spawned = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    std::string text;
    char buf[4096];
    for (ssize_t n; spawned && (n = read(fds[0], buf, sizeof buf)) > 0;) text.append(buf, n);
    close(fds[0]);
    int status = 0;
    if (!spawned || waitpid(pid, &status, 0) != pid) return "";
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? text : "";
}

std::string gSelf;  // this program, for the cold runs
std::string gLxml;  // the lxml script, or "" when python3 has no lxml

// The lxml script loading folder in a fresh interpreter, after warmup
// untimed loads.
Variant lxml(const fs::path& folder, int warmup) {
    return {"lxml", [folder, warmup] {
                if (gLxml.empty()) return -1.0;
                std::string out = output({"/usr/bin/python3", gLxml, folder.string(), "--warmup",
                                          std::to_string(warmup), "--rounds", "1"});
                return out.empty() ? -1.0 : std::atof(out.c_str());
            }};
}

// One cold run in a fresh process: its CPU ms, and the growth of its
// resident memory during the run (KiB) in peak.
Variant cold(const std::string& what, const fs::path& folder,
             std::vector<double>* peaks = nullptr) {
    return {what, [what, folder, peaks] {
                std::string out = output({gSelf, "--cold", what, folder.string()});
                double ms = -1, peak = 0;
                if (std::sscanf(out.c_str(), "%lf %lf", &ms, &peak) != 2) return -1.0;
                if (peaks) peaks->push_back(peak);
                return ms;
            }};
}

long residentKiB() {
    long pages = 0, resident = 0;
    if (FILE* f = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
        std::fclose(f);
    }
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

std::size_t heapInUse() {
    struct mallinfo2 m = mallinfo2();
    return m.uordblks + m.hblkhd;
}

// The child of a cold run: runs one variant once in this fresh process and
// prints its CPU ms and the growth of the resident memory it caused.
int coldChild(const std::string& what, const fs::path& folder) {
    std::vector<std::string> paths;
    for (const auto& e : fs::directory_iterator(folder)) paths.push_back(e.path().string());
    std::sort(paths.begin(), paths.end());
    long before = residentKiB();
    double start = cpuMs();
    CALLGRIND_TOGGLE_COLLECT;
    if (what == "parse") {
        parseAndFree(paths, false);
    } else if (what == "cleanup") {
        parseAndFree(paths, true);
    } else if (what == "floor" || what == "texts") {
        std::vector<void*> blocks;
        contractFloor(paths, blocks, what == "texts");
    } else if (what == "loader") {
        RecordArray result = loadFolder(folder);
        if (result.count != static_cast<int>(paths.size())) return 1;
    } else if (what == "memory") {
        CALLGRIND_TOGGLE_COLLECT;
        // What the contract needs at the peak: the records a load leaves,
        // and one parsed document (the largest) beside them.
        std::size_t base = heapInUse();
        RecordArray result = loadFolder(folder);
        std::size_t records = heapInUse() - base;
        (void)result;  // the process ends with the records still held
        std::string largest = *std::max_element(paths.begin(), paths.end(),
                                                [](const std::string& a, const std::string& b) {
                                                    return fs::file_size(a) < fs::file_size(b);
                                                });
        base = heapInUse();
        xmlDoc* doc = libraryParse(largest);
        std::size_t document = heapInUse() - base;
        xmlFreeDoc(doc);
        std::printf("%zu %zu\n", records, document);
        return 0;
    } else {
        return 1;
    }
    CALLGRIND_TOGGLE_COLLECT;
    double ms = cpuMs() - start;
    struct rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%.3f %ld\n", ms, usage.ru_maxrss - before);
    return 0;
}

// One variant run times in this process on a folder (for profilers): prints
// the CPU ms of each run.
int repeat(const std::string& what, const fs::path& folder, int times) {
    std::vector<std::string> paths;
    for (const auto& e : fs::directory_iterator(folder)) paths.push_back(e.path().string());
    std::sort(paths.begin(), paths.end());
    std::vector<void*> blocks;
    RecordArray loaded{nullptr, 0};
    Variant v = what == "floor" || what == "texts"
                    ? timed(
                          what, [&] { contractFloor(paths, blocks, what == "texts"); },
                          [&] { releaseBlocks(blocks); })
                : what == "loader" ? timed(
                                         what, [&] { loaded = loadFolder(folder); },
                                         [&] { releaseFolder(loaded); })
                                   : timed(what, [&] { parseAndFree(paths, what == "cleanup"); });
    for (int i = 0; i < times; ++i) std::printf("%.2f\n", v.run());
    return 0;
}

// Warm runs in this process take a heap that is already grown and stays
// so: nothing is given back to the system between runs and no block is
// mapped on its own, whatever the order in which a variant releases its
// blocks (else a variant whose last free happens to reach the top of the
// heap would pay its page faults again on every run). The cold runs keep
// the allocator's defaults, as a host starts with them. The library itself
// never tunes the allocator: these settings are process-wide, the host's.
void keepHeapGrown() {
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
}

// ---- the table ------------------------------------------------------------------

void row(const char* what, double ms, std::initializer_list<double> baselines) {
    std::printf("| %-34s | %9.2f |", what, ms);
    for (double b : baselines) {
        if (b > 0) {
            std::printf(" %6.2fx |", ms / b);
        } else {
            std::printf(" %7s |", "-");
        }
    }
    std::printf("\n");
}

void folderRows(const ProfileFolder& folder, int rounds) {
    std::vector<void*> blocks;
    RecordArray loaded{nullptr, 0};
    const auto& paths = folder.paths;
    std::vector<Variant> warm = {
        timed("parse", [&] { parseAndFree(paths, false); }),
        timed("cleanup", [&] { parseAndFree(paths, true); }),
        timed(
            "floor", [&] { contractFloor(paths, blocks); }, [&] { releaseBlocks(blocks); }),
        timed(
            "texts", [&] { contractFloor(paths, blocks, true); }, [&] { releaseBlocks(blocks); }),
        timed(
            "loader", [&] { loaded = loadFolder(folder.path); }, [&] { releaseFolder(loaded); }),
        lxml(folder.path, 1),
    };
    std::vector<double> w = interleaved(warm, rounds);
    std::string label = folder.label() + ", warm";
    row(label.c_str(), w[4], {w[0], w[1], w[2], w[3], w[5]});

    std::vector<double> peaks;
    std::vector<Variant> fresh = {
        cold("parse", folder.path), cold("cleanup", folder.path),        cold("floor", folder.path),
        cold("texts", folder.path), cold("loader", folder.path, &peaks), lxml(folder.path, 0),
    };
    std::vector<double> c = interleaved(fresh, rounds);
    label = folder.label() + ", cold";
    row(label.c_str(), c[4], {c[0], c[1], c[2], c[3], c[5]});

    std::size_t records = 0, document = 0;
    std::sscanf(output({gSelf, "--cold", "memory", folder.path.string()}).c_str(), "%zu %zu",
                &records, &document);
    double peakMiB = median(peaks) / 1024, neededMiB = (records + document) / 1048576.0;
    std::printf("| %-34s | %6.1f MiB peak, %.2fx the %.1f MiB of records + one document |\n",
                (folder.label() + ", memory").c_str(), peakMiB,
                neededMiB > 0 ? peakMiB / neededMiB : 0, neededMiB);
}

// ---- instructions ------------------------------------------------------------------

// The instructions of one cold run of a variant under callgrind, counting
// the load alone; negative when valgrind cannot run it.
double instructions(const std::string& what, const fs::path& folder) {
    std::string out = output({"valgrind", "--tool=callgrind", "--collect-atstart=no",
                              "--callgrind-out-file=/dev/null", "--log-fd=1", gSelf, "--cold", what,
                              folder.string()});
    std::size_t at = out.find("Collected : ");
    return at == std::string::npos ? -1.0 : std::atof(out.c_str() + at + 12);
}

// Cold runs of every variant under callgrind, taking turns: the median of
// each in millions of instructions, and the loader's over the others'.
// Instructions repeat from run to run (libxml2's hash seeds move them by
// less than a tenth of a percent), where CPU time moves with the machine.
int instructionTable(int runs) {
    if (!KEL_BENCH_COUNTS) {
        std::printf("built without valgrind/callgrind.h: install valgrind and build again\n");
        return 1;
    }
    TempFolder scratch;
    ProfileFolder small{512, 20}, large{64, 200};
    small.write(scratch.path());
    large.write(scratch.path());
    std::printf(
        "Millions of instructions (callgrind Ir) of one load in a fresh process, "
        "medians of %d runs\n\n",
        runs);
    std::printf("| %-26s | %9s | %9s | %9s | %9s | %7s | %7s | %7s |\n", "praseXMLFolder, cold",
                "loader", "floor", "+texts", "parse", "/floor", "/+texts", "/parse");
    std::string cell(11, '-'), ratio(9, '-');
    std::printf("|%s|%s|%s|%s|%s|%s|%s|%s|\n", std::string(28, '-').c_str(), cell.c_str(),
                cell.c_str(), cell.c_str(), cell.c_str(), ratio.c_str(), ratio.c_str(),
                ratio.c_str());
    for (const ProfileFolder* folder : {&small, &large}) {
        std::vector<Variant> variants;
        for (const char* what : {"loader", "floor", "texts", "parse"}) {
            fs::path path = folder->path;
            std::string name = what;
            variants.push_back({name, [name, path] { return instructions(name, path) / 1e6; }});
        }
        // No untimed run first: a count does not depend on what ran before.
        std::vector<std::vector<double>> counts(variants.size());
        for (int r = 0; r < runs; ++r)
            for (std::size_t i = 0; i < variants.size(); ++i) {
                double m = variants[i].run();
                if (m < 0) {
                    std::printf("valgrind could not run the %s variant\n",
                                variants[i].name.c_str());
                    return 1;
                }
                counts[i].push_back(m);
            }
        double loader = median(counts[0]), floor = median(counts[1]), texts = median(counts[2]),
               parse = median(counts[3]);
        std::printf("| %-26s | %9.1f | %9.1f | %9.1f | %9.1f | %6.3fx | %6.3fx | %6.3fx |\n",
                    folder->label().c_str(), loader, floor, texts, parse, loader / floor,
                    loader / texts, loader / parse);
    }
    return 0;
}

// ---- the other families ---------------------------------------------------------

constexpr int kReads = 200;  // reads or writes of one file per run

fs::path example(const char* name) {
    return fs::path(KELPROFILE_SOURCE_DIR) / "examples" / name;
}

// A reader on its file against libxml2's parse + free of it.
void readerRow(const char* what, const fs::path& file, std::function<void()> readOnce,
               std::function<void()> releaseAll, int rounds) {
    std::vector<std::string> paths(kReads, file.string());
    std::vector<Variant> variants = {
        timed("parse", [&] { parseAndFree(paths, false); }),
        timed(
            "reader",
            [&] {
                for (int i = 0; i < kReads; ++i) readOnce();
            },
            releaseAll),
    };
    std::vector<double> t = interleaved(variants, rounds);
    row(what, t[1], {t[0]});
}

// A writer against libxml2 copying the tree of the file the writer wrote
// and saving it the same way.
void writerRow(const char* what, const fs::path& target, std::function<int()> writeOnce,
               int rounds) {
    if (writeOnce() != 0) {
        std::printf("| %-34s | the writer failed |\n", what);
        return;
    }
    xmlDoc* written = xmlReadFile(target.c_str(), nullptr, kParseOptions);
    std::string copyPath = target.string() + ".copy.xml";
    std::vector<Variant> variants = {
        timed("copy+save",
              [&] {
                  for (int i = 0; i < kReads; ++i) {
                      xmlDoc* copy = xmlCopyDoc(written, 1);
                      xmlSaveFormatFileEnc(copyPath.c_str(), copy, "UTF-8", 1);
                      xmlFreeDoc(copy);
                  }
              }),
        timed("writer",
              [&] {
                  for (int i = 0; i < kReads; ++i) writeOnce();
              }),
    };
    std::vector<double> t = interleaved(variants, rounds);
    xmlFreeDoc(written);
    row(what, t[1], {t[0]});
}

void familyRows(const ProfileFolder& folder, const fs::path& scratch, int rounds) {
    std::printf("\n| %-34s | %9s | %7s |\n|%s|%s|%s|\n", "reader (200 reads of one file)", "ms",
                "/parse+free", std::string(36, '-').c_str(), std::string(11, '-').c_str(),
                std::string(13, '-').c_str());
    auto readerRowOf = [&](const char* what, const fs::path& file, auto& records, auto read,
                           auto release) {
        records.resize(kReads);
        int next = 0;
        readerRow(
            what, file, [&] { read(file.c_str(), &records[next++ % kReads]); },
            [&] {
                for (auto& r : records) release(r);
                next = 0;
            },
            rounds);
    };
    std::vector<Profile> profiles;
    readerRowOf("profile (20 items)", folder.paths[0], profiles, praseXmlFile,
                [](Profile& p) { freeProfile(&p); });
    std::vector<Customize> customs;
    readerRowOf("customization", example("customize/web-showcase.xml"), customs,
                praseCustomizeXmlFile, [](Customize& c) {
                    freeCustomize(&c);
                    std::memset(&c, 0, sizeof c);
                });
    std::vector<KELProject*> projects;
    readerRowOf(
        "web-player project", example("webplayer/travel-showreel.xml"), projects,
        [](const char* path, KELProject** p) { openWebPlayerXmlFile(path, createKELProject(p)); },
        [](KELProject*& p) { freeKELProject(&p); });
    std::vector<GroupOPtion*> groups;
    readerRowOf(
        "option group", example("options/export-settings.xml"), groups,
        [](const char* path, GroupOPtion** g) { praseOPtionXmlFile(path, createGroupOPtion(g)); },
        [](GroupOPtion*& g) { freeGroupOPtion(&g); });
    std::vector<TempOption> temps;
    readerRowOf("temporary options", example("options/last-session.xml"), temps, praseOptionXmlFile,
                [](TempOption& t) {
                    std::free(t.tempItems);
                    t.tempItems = nullptr;
                });
    std::vector<RecordArray> products;
    readerRowOf("products", example("products/products.xml"), products, praseProductXmlFile,
                [](RecordArray& a) {
                    std::free(a.records);
                    a.records = nullptr;
                });
    std::vector<DVDMenu> menus;
    readerRowOf("DVD menu template", example("dvd/film-strip.xml"), menus, praseDVDMenuXmlFile,
                [](DVDMenu&) {});

    std::printf("\n| %-34s | %9s | %7s |\n|%s|%s|%s|\n", "writer (200 writes of one file)", "ms",
                "/tree copy+save", std::string(36, '-').c_str(), std::string(11, '-').c_str(),
                std::string(17, '-').c_str());
    fs::path out = scratch / "written.xml";
    Profile p{};
    praseXmlFile(folder.paths[0].c_str(), &p);
    writerRow(
        "profile (20 items)", out, [&] { return saveXmlFile(out.c_str(), &p); }, rounds);
    freeProfile(&p);
    Customize c{};
    praseCustomizeXmlFile(example("customize/web-showcase.xml").c_str(), &c);
    writerRow(
        "customization", out, [&] { return saveCustomizeXmlFile(out.c_str(), &c); }, rounds);
    freeCustomize(&c);
    KELProject* project = createKELProject(nullptr);
    openWebPlayerXmlFile(example("webplayer/travel-showreel.xml").c_str(), project);
    writerRow(
        "web-player project", out, [&] { return saveWebPlayerXmlFile(out.c_str(), project); },
        rounds);
    freeKELProject(&project);
    TempOption t{};
    praseOptionXmlFile(example("options/last-session.xml").c_str(), &t);
    writerRow(
        "temporary options", out, [&] { return saveOptionXmlFile(out.c_str(), &t); }, rounds);
    std::free(t.tempItems);
    // The DVD writers take records no file is read into: a full menu page
    // and a disc of two pages of six titles.
    static DVDSubpicture page{};
    std::snprintf(page.highlight, sizeof page.highlight, "menu-highlight.png");
    std::snprintf(page.select, sizeof page.select, "menu-select.png");
    std::snprintf(page.image, sizeof page.image, "menu.png");
    page.btnCount = 15;
    for (int i = 0; i < 15; ++i) page.buttons[i] = {{}, {}, 40 + 200 * (i % 3), 60 * i, 180, 50};
    writerRow(
        "DVD menu page (spumux)", out, [&] { return saveDVDMenuXml(out.c_str(), &page); }, rounds);
    static DVDMenuPage pages[2]{};
    for (DVDMenuPage& pg : pages) {
        pg.titleCount = 6;
        for (int i = 0; i < 6; ++i) {
            DVDTitle& title = pg.titles[i];
            std::snprintf(title.videoFormat, sizeof title.videoFormat, "PAL");
            std::snprintf(title.aspect, sizeof title.aspect, "16:9");
            std::snprintf(title.audioLang, sizeof title.audioLang, "en");
            std::snprintf(title.audioFormat, sizeof title.audioFormat, "ac3");
            std::snprintf(title.vobFile, sizeof title.vobFile, "/media/disc/title%d.mpg", i);
        }
    }
    DVDDisc disc{pages, 2, 0, "/media/disc/menus"};
    writerRow(
        "DVD disc (dvdauthor)", out, [&] { return saveDVDXml(out.c_str(), &disc); }, rounds);
}

std::string machine() {
    std::string cpu = "unknown CPU";
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);)
        if (line.rfind("model name", 0) == 0) {
            cpu = line.substr(line.find(':') + 2);
            break;
        }
    struct utsname u;
    uname(&u);
    return cpu + ", " + std::to_string(sysconf(_SC_NPROCESSORS_ONLN)) + " cores, " + u.sysname +
           " " + u.release;
}

}  // namespace

int main(int argc, char** argv) {
    gSelf = fs::canonical("/proc/self/exe").string();
    if (argc == 4 && std::strcmp(argv[1], "--cold") == 0) return coldChild(argv[2], argv[3]);
    if (argc == 5 && std::strcmp(argv[1], "--repeat") == 0) {
        keepHeapGrown();
        return repeat(argv[2], argv[3], std::atoi(argv[4]));
    }
    if (argc >= 2 && std::strcmp(argv[1], "--instructions") == 0)
        return instructionTable(argc >= 3 ? std::max(1, std::atoi(argv[2])) : 3);
    if (argc == 3 && std::strcmp(argv[1], "--generate") == 0) {
        // The two folders, kept for profilers and the lxml script.
        ProfileFolder{512, 20}.write(argv[2]);
        ProfileFolder{64, 200}.write(argv[2]);
        return 0;
    }
    int rounds = 15;
    if (argc == 3 && std::strcmp(argv[1], "--rounds") == 0)
        rounds = std::max(1, std::atoi(argv[2]));

    fs::path script = fs::path(KELPROFILE_SOURCE_DIR) / "bench" / "lxml_folder.py";
    if (output({"/usr/bin/python3", "-c", "import lxml; print(1)"}) == "1\n") gLxml = script;

    keepHeapGrown();
    TempFolder scratch;
    ProfileFolder small{512, 20}, large{64, 200};
    small.write(scratch.path());
    large.write(scratch.path());

    char date[32];
    std::time_t now = std::time(nullptr);
    std::strftime(date, sizeof date, "%Y-%m-%d", std::localtime(&now));
    std::printf("kelProfile benchmark, %s, %s\n", date, machine().c_str());
    std::printf(
        "Process CPU ms per load of a folder, medians of %d rounds with the variants taking "
        "turns;\nwarm after one untimed run of each, cold in fresh processes. Each ratio is "
        "praseXMLFolder's\ntime over the column's.%s\n\n",
        rounds, gLxml.empty() ? " (lxml: python3-lxml not installed)" : "");
    std::printf("| %-34s | %9s | %7s | %7s | %7s | %7s | %7s |\n", "praseXMLFolder", "ms", "/parse",
                "/+clean", "/floor", "/+texts", "/lxml");
    std::string ratio(9, '-');
    std::printf("|%s|%s|%s|%s|%s|%s|%s|\n", std::string(36, '-').c_str(),
                std::string(11, '-').c_str(), ratio.c_str(), ratio.c_str(), ratio.c_str(),
                ratio.c_str(), ratio.c_str());
    folderRows(small, rounds);
    folderRows(large, rounds);
    familyRows(small, scratch.path(), rounds);
    return 0;
}
