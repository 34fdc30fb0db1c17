// Every family read and written on four threads at once, each on its own
// files and records, beside a fifth thread that uses libxml2 directly, as
// the host's system frameworks do: each must get what one thread alone gets.
// The ThreadSanitizer build runs this test too.
#include <libxml/parser.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <functional>
#include <thread>

#include "support.h"

namespace {

const std::string kExamples = KELPROFILE_SOURCE_DIR "/examples/";

// A reader's result, its writer's result and the file written.
template <class Record, class Read, class Save, class Release>
std::string readAndSave(const char* in, const std::string& out, Read read, Save save,
                        Release release) {
    Record record{};
    std::string result = std::to_string(read((kExamples + in).c_str(), &record));
    result += std::to_string(save(out.c_str(), &record));
    release(&record);
    return result + readFile(out);
}

std::string text(const char* s) {
    return s ? s : "(null)";
}

std::string bytes(const void* p, std::size_t n) {
    return std::string(static_cast<const char*>(p), n);
}

using Job = std::function<std::string(const TempDir&)>;
const std::vector<Job> kJobs = {
    [](const TempDir& d) {
        return readAndSave<Profile>("profiles/hd-video.xml", d.file("p"), praseXmlFile, saveXmlFile,
                                    freeProfile);
    },
    [](const TempDir& d) {
        return readAndSave<TempOption>("options/user-preset.xml", d.file("t"), praseOptionXmlFile,
                                       saveOptionXmlFile, freeTempItems);
    },
    [](const TempDir& d) {
        return readAndSave<Customize>("customize/web-showcase.xml", d.file("c"),
                                      praseCustomizeXmlFile, saveCustomizeXmlFile, freeCustomize);
    },
    [](const TempDir& d) {
        KELProject* p = createKELProject(nullptr);
        std::string result = std::to_string(
            openWebPlayerXmlFile((kExamples + "webplayer/travel-showreel.xml").c_str(), p));
        result += std::to_string(saveWebPlayerXmlFile(d.file("w").c_str(), p));
        freeKELProject(&p);
        return result + readFile(d.file("w"));
    },
    [](const TempDir&) {
        DVDMenu m{};
        int32_t rc = praseDVDMenuXmlFile((kExamples + "dvd/film-strip.xml").c_str(), &m);
        return std::to_string(rc) + bytes(&m, sizeof m);
    },
    [](const TempDir&) {
        GroupOPtion* g = createGroupOPtion(nullptr);
        int32_t rc = praseOPtionXmlFile((kExamples + "options/export-settings.xml").c_str(), g);
        const OptionItem& last = g->optionItems[g->optionItemCount - 1];
        std::string result = std::to_string(rc) + last.name + text(last.description) +
                             text(last.childItems[last.childItemCount - 1].values);
        freeGroupOPtion(&g);
        return result;
    },
    [](const TempDir&) {
        RecordArray r{};
        int32_t rc = praseProductXmlFile((kExamples + "products/products.xml").c_str(), &r);
        std::string result = std::to_string(rc) + bytes(r.records, r.count * sizeof(ProductInfo));
        std::free(r.records);
        return result;
    },
    [](const TempDir& d) {  // a folder scan, and a value set and read back
        RecordArray r{};
        praseXMLFolder((kExamples + "profiles").c_str(), &r);
        releaseBlock<Profile, freeProfile>(&r);
        writeFile(d.file("v"), readFile(kExamples + "profiles/audio-mp3.xml"));
        char value[64] = "";
        std::string result = std::to_string(r.count) +
                             std::to_string(setXmlValue(d.file("v").c_str(), "Main.Name", "T"));
        return result + std::to_string(getXmlValue(d.file("v").c_str(), "Main.Name", value, 64)) +
               value;
    },
};

// Another libxml2 user: it keeps one document open across the library's
// calls, parses and walks small ones, and relies on its own error handler,
// which libxml2 keeps per thread. Counts what went wrong.
void countError(void* seen, const char*, ...) {
    ++*static_cast<int*>(seen);
}

void otherLibxml2User(const std::atomic<bool>& stop, std::atomic<int>& faults) {
    int errors = 0;
    xmlSetGenericErrorFunc(&errors, countError);
    const char doc[] = "<a><b n='1'/><b n='2'/></a>";
    xmlDoc* kept = xmlReadMemory(doc, sizeof doc - 1, "kept.xml", nullptr, 0);
    while (!stop) {
        xmlDoc* fresh = xmlReadMemory(doc, sizeof doc - 1, "fresh.xml", nullptr, 0);
        for (xmlDoc* d : {kept, fresh}) {
            xmlNode* second = d ? xmlDocGetRootElement(d)->children->next : nullptr;
            xmlChar* n = second ? xmlGetProp(second, BAD_CAST "n") : nullptr;
            faults += !n || n[0] != '2';
            xmlFree(n);
        }
        xmlFreeDoc(fresh);
        int before = errors;
        xmlFreeDoc(xmlReadMemory("<a>", 3, "bad.xml", nullptr, 0));
        faults += errors == before;
    }
    xmlFreeDoc(kept);
    xmlSetGenericErrorFunc(nullptr, nullptr);
}

TEST(Threads, EveryFamilyOnManyThreadsGivesWhatOneThreadGives) {
    std::vector<std::string> expected;
    TempDir alone;
    for (const Job& job : kJobs) expected.push_back(job(alone));
    std::atomic<bool> stop{false};
    std::vector<std::atomic<int>> faults(kJobs.size() + 1);  // per job, then the other user
    std::atomic<int> rounds{0};
    std::vector<std::thread> threads;
    threads.emplace_back(otherLibxml2User, std::cref(stop), std::ref(faults.back()));
    for (std::size_t t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            TempDir own;
            // Each thread starts at another family, so that all meet all.
            for (std::size_t i = t; !stop; ++i, ++rounds)
                faults[i % kJobs.size()] +=
                    kJobs[i % kJobs.size()](own) != expected[i % kJobs.size()];
        });
    std::this_thread::sleep_for(std::chrono::seconds(3));
    stop = true;
    for (std::thread& t : threads) t.join();
    for (std::size_t i = 0; i < faults.size(); ++i) EXPECT_EQ(faults[i], 0) << "job " << i;
    EXPECT_GT(rounds, static_cast<int>(4 * kJobs.size()));
}

// The process's umask as the kernel reports it, without setting it (which
// reading it through umask would do); -1 where the system does not say.
int currentUmask() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("Umask:", 0) == 0) return std::stoi(line.substr(6), nullptr, 8);
    return -1;
}

TEST(Threads, SavesOfNewFilesLeaveTheUmaskAloneAndApplyIt) {
    mode_t before = umask(027);
    if (currentUmask() != 027) GTEST_SKIP() << "the kernel does not report the umask";
    TempDir dir;
    std::atomic<bool> stop{false};
    std::atomic<int> changed{0};
    std::thread watcher([&] {
        while (!stop) changed += currentUmask() != 027;
    });
    std::vector<std::thread> savers;
    for (int t = 0; t < 4; ++t)
        savers.emplace_back([&, t] {
            TempOptionItem item{"a", "b"};
            TempOption record{&item, 1, 0, ""};
            for (int i = 0; i < 50; ++i) {
                std::string path = dir.file(std::to_string(t) + "-" + std::to_string(i) + ".xml");
                EXPECT_EQ(saveOptionXmlFile(path.c_str(), &record), 0);
            }
        });
    for (std::thread& t : savers) t.join();
    stop = true;
    watcher.join();
    umask(before);
    EXPECT_EQ(changed, 0) << "the umask changed while files were saved";
    int files = 0;
    for (const auto& entry : fs::directory_iterator(dir.path())) {
        ++files;
        EXPECT_EQ(entry.status().permissions(), fs::perms(0640)) << entry.path();
    }
    EXPECT_EQ(files, 200);
}

// A folder that changes while it is loaded: the library's own saves of one
// of its files on one thread, files and folders made and removed on
// another, links to nothing made and removed. Every load returns, and
// finds every file that stays, the one replaced by saves among them.
TEST(Threads, FolderLoadsBesideSavesAndEntriesThatComeAndGo) {
    TempDir dir;
    for (const char* name : {"audio-mp3.xml", "hd-video.xml"})
        writeFile(dir.file(name), readFile(kExamples + "profiles/" + name));
    writeFile(dir.file("saved.xml"), readFile(kExamples + "profiles/audio-mp3.xml"));
    std::atomic<bool> stop{false};
    std::atomic<int> failedSaves{0};
    std::thread saver([&] {
        Profile p{};
        praseXmlFile((kExamples + "profiles/audio-mp3.xml").c_str(), &p);
        while (!stop) failedSaves += saveXmlFile(dir.file("saved.xml").c_str(), &p) != 0;
        freeProfile(&p);
    });
    std::thread churn([&] {
        for (int i = 0; !stop; ++i) {
            std::string n = std::to_string(i % 8);
            writeFile(dir.file("c" + n + ".xml"), "<Profiles/>");
            fs::create_directories(dir.file("sub" + n + "/deeper"));
            writeFile(dir.file("sub" + n + "/deeper/s.xml"), "<Profiles/>");
            std::error_code ec;
            fs::create_symlink(dir.file("gone"), dir.file("dangling" + n + ".xml"), ec);
            fs::remove(dir.file("c" + std::to_string((i + 4) % 8) + ".xml"), ec);
            fs::remove_all(dir.file("sub" + std::to_string((i + 4) % 8)), ec);
            fs::remove(dir.file("dangling" + std::to_string((i + 4) % 8) + ".xml"), ec);
        }
    });
    int loads = 0, short_ = 0;
    for (auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1500);
         std::chrono::steady_clock::now() < end; ++loads) {
        RecordArray r{};
        praseXMLFolder(dir.path().c_str(), &r);
        int stable = 0;
        for (int i = 0; i < r.count; ++i) {
            std::string name = itemOf<Profile>(r, i).fileName;
            stable += name == "audio-mp3.xml" || name == "hd-video.xml" || name == "saved.xml";
        }
        short_ += stable != 3;
        releaseBlock<Profile, freeProfile>(&r);
    }
    stop = true;
    saver.join();
    churn.join();
    EXPECT_GT(loads, 10);
    EXPECT_EQ(short_, 0) << "loads that missed a file that was always there";
    EXPECT_EQ(failedSaves, 0);
}

}  // namespace
