// Every family read and written on four threads at once, each on its own
// files and records, beside a fifth thread that uses libxml2 directly, as
// the host's system frameworks do: each must get what one thread alone gets.
// The ThreadSanitizer build runs this test too.
#include <libxml/parser.h>

#include <atomic>
#include <chrono>
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

}  // namespace
