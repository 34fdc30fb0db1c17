// The library on several threads at once, beside another user of libxml2 in
// the same process, as in the host: a loading thread reads a folder of
// profiles while the main thread reads a customization, and the system's
// own frameworks parse XML with the same libxml2 on threads of their own.
// Every thread reads and writes every family on its own files and records;
// what each gets must equal what one thread alone gets. Built with
// ThreadSanitizer too, where any data race fails the run.
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

#include "support.h"

namespace {

const std::string kExamples = KELPROFILE_SOURCE_DIR "/examples/";

// What a writer writes for the record a reader read: the file's bytes.
template <class Record, class Read, class Save, class Release>
std::string readAndSave(const std::string& in, const std::string& out, Read read, Save save,
                        Release release) {
    Record record{};
    std::string result = std::to_string(read(in.c_str(), &record));
    result += std::to_string(save(out.c_str(), &record));
    release(&record);
    return result + readFile(out);
}

template <class Record>
std::string bytesOf(const Record* records, int count) {
    return std::string(reinterpret_cast<const char*>(records), sizeof(Record) * count);
}

std::string text(const char* s) {
    return s ? std::string(s) + '|' : "null|";
}

// Every family's job: from an example file to what the thread compares,
// writing only into its own folder.
using Job = std::function<std::string(const TempDir&)>;
const std::vector<Job> kJobs = {
    [](const TempDir& dir) {
        return readAndSave<Profile>(kExamples + "profiles/hd-video.xml", dir.file("p.xml"),
                                    praseXmlFile, saveXmlFile, freeProfile);
    },
    [](const TempDir& dir) {
        return readAndSave<TempOption>(kExamples + "options/user-preset.xml", dir.file("t.xml"),
                                       praseOptionXmlFile, saveOptionXmlFile,
                                       [](TempOption* r) { std::free(r->tempItems); });
    },
    [](const TempDir& dir) {
        return readAndSave<Customize>(kExamples + "customize/web-showcase.xml", dir.file("c.xml"),
                                      praseCustomizeXmlFile, saveCustomizeXmlFile, freeCustomize);
    },
    [](const TempDir& dir) {
        KELProject* project = nullptr;
        createKELProject(&project);
        std::string result = std::to_string(
            openWebPlayerXmlFile((kExamples + "webplayer/travel-showreel.xml").c_str(), project));
        result += std::to_string(saveWebPlayerXmlFile(dir.file("w.xml").c_str(), project));
        freeKELProject(&project);
        return result + readFile(dir.file("w.xml"));
    },
    [](const TempDir&) {
        DVDMenu menu{};
        int32_t rc = praseDVDMenuXmlFile((kExamples + "dvd/film-strip.xml").c_str(), &menu);
        return std::to_string(rc) + bytesOf(&menu, 1);
    },
    [](const TempDir&) {
        GroupOPtion* group = nullptr;
        createGroupOPtion(&group);
        std::string result = std::to_string(
            praseOPtionXmlFile((kExamples + "options/export-settings.xml").c_str(), group));
        for (int i = 0; i < group->optionItemCount; ++i) {
            const OptionItem& item = group->optionItems[i];
            result += bytesOf(&item, 1).substr(0, offsetof(OptionItem, description));
            result += text(item.description);
            for (int j = 0; j < item.childItemCount; ++j) {
                const ChildOptionItem& child = item.childItems[j];
                result += bytesOf(&child, 1).substr(0, offsetof(ChildOptionItem, values));
                result += text(child.values) + text(child.defaultValue) + text(child.description);
            }
        }
        freeGroupOPtion(&group);
        return result;
    },
    [](const TempDir&) {
        RecordArray products{};
        int32_t rc = praseProductXmlFile((kExamples + "products/products.xml").c_str(), &products);
        std::string result = std::to_string(rc) +
                             bytesOf(static_cast<ProductInfo*>(products.records), products.count);
        std::free(products.records);
        return result;
    },
    [](const TempDir& dir) {
        // The folder loader: a scan and a read per file, then each saved.
        RecordArray profiles{};
        praseXMLFolder((kExamples + "profiles").c_str(), &profiles);
        std::string result = std::to_string(profiles.count);
        for (int i = 0; i < profiles.count; ++i) {
            Profile* p = static_cast<Profile*>(profiles.records) + i;
            result += std::to_string(saveXmlFile(dir.file("f.xml").c_str(), p));
            result += readFile(dir.file("f.xml"));  // after the save
            freeProfile(p);
        }
        std::free(profiles.records);
        return result;
    },
    [](const TempDir& dir) {
        std::string copy = dir.file("v.xml");
        writeFile(copy, readFile(kExamples + "profiles/audio-mp3.xml"));
        char value[64] = "";
        std::string result = std::to_string(setXmlValue(copy.c_str(), "Main.Name", "Thread"));
        result += std::to_string(getXmlValue(copy.c_str(), "Main.Name", value, sizeof value));
        return result + value;
    },
};

// Another libxml2 user of the process: it keeps one document open across
// the library's calls, parses and walks small ones, and relies on its own
// error handler, which libxml2 keeps per thread.
void otherLibxml2User(const std::atomic<bool>& stop, std::atomic<int>& faults,
                      std::atomic<int>& handlerFaults) {
    struct Counter {
        static void count(void* seen, const char*, ...) { ++*static_cast<int*>(seen); }
    };
    int errorsSeen = 0;
    xmlSetGenericErrorFunc(&errorsSeen, Counter::count);
    const char kDoc[] = "<a><b n='1'>x</b><b n='2'>y</b></a>";
    xmlDoc* kept = xmlReadMemory(kDoc, sizeof kDoc - 1, "kept.xml", nullptr, 0);
    while (!stop) {
        xmlDoc* doc = xmlReadMemory(kDoc, sizeof kDoc - 1, "small.xml", nullptr, 0);
        for (xmlDoc* d : {doc, kept}) {
            int elements = 0;
            for (xmlNode* n = d ? xmlDocGetRootElement(d)->children : nullptr; n; n = n->next) {
                xmlChar* attr = xmlGetProp(n, BAD_CAST "n");
                elements += attr != nullptr;
                xmlFree(attr);
            }
            if (elements != 2) ++faults;
        }
        xmlFreeDoc(doc);
        // A document that is not well formed reaches this thread's handler.
        int before = errorsSeen;
        xmlFreeDoc(xmlReadMemory("<a>", 3, "bad.xml", nullptr, 0));
        if (errorsSeen == before) ++handlerFaults;
    }
    xmlFreeDoc(kept);
    xmlSetGenericErrorFunc(nullptr, nullptr);
}

TEST(Threads, EveryFamilyOnManyThreadsGivesWhatOneThreadGives) {
    std::vector<std::string> expected;
    {
        TempDir dir;
        for (const Job& job : kJobs) expected.push_back(job(dir));
    }
    std::atomic<bool> stop{false};
    // Mismatches per job, then those of the other user's documents and of
    // its error handler.
    std::vector<std::atomic<int>> faults(kJobs.size() + 2);
    std::atomic<int> rounds{0};
    std::thread other(otherLibxml2User, std::cref(stop), std::ref(faults[kJobs.size()]),
                      std::ref(faults[kJobs.size() + 1]));
    std::vector<std::thread> workers;
    for (int t = 0; t < 4; ++t)
        workers.emplace_back([&, t] {
            TempDir dir;
            // Each thread starts at another family, so that all of them
            // meet all of the others.
            for (std::size_t i = t; !stop; ++i, ++rounds)
                if (kJobs[i % kJobs.size()](dir) != expected[i % kJobs.size()])
                    ++faults[i % kJobs.size()];
        });
    std::this_thread::sleep_for(std::chrono::seconds(3));
    stop = true;
    for (std::thread& w : workers) w.join();
    other.join();
    for (std::size_t i = 0; i < faults.size(); ++i) EXPECT_EQ(faults[i], 0) << "job " << i;
    EXPECT_GT(rounds, static_cast<int>(4 * kJobs.size()));
}

}  // namespace
