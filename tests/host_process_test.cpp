// The library inside the host's process: folder loads that pass over
// entries without a status and keep the same stack at any depth, reads that
// parse the same whatever libxml2 defaults the calling thread has set, and
// saves that leave alone a file the caller could not write in place.
#include <dirent.h>
#include <libxml/parser.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "kelProfile.h"
#include "support.h"

namespace {

// The paths getXMLName finds below folder.
std::vector<std::string> scan(const std::string& folder) {
    char* names[512];
    int count = 0;
    getXMLName(const_cast<char*>(folder.c_str()), &count, names);
    std::vector<std::string> paths(names, names + count);
    for (int i = 0; i < count; ++i) std::free(names[i]);
    return paths;
}

// call's result (0 to 254) from a process without root's powers: a child
// that became "nobody" when the tests run as root, else this process. -1
// when the child could not give up root.
int asUnprivileged(const std::function<int()>& call) {
    if (geteuid() != 0) return call();
    pid_t child = fork();
    if (child == 0) {
        if (setgid(65534) != 0 || setuid(65534) != 0) _exit(255);
        _exit(call() & 0xFF);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) != 255 ? WEXITSTATUS(status) : -1;
}

TEST(HostProcess, EntriesWithoutAStatusArePassedOverAndTheScanGoesOn) {
    TempDir dir;
    writeFile(dir.file("a.xml"), "<x/>");
    writeFile(dir.file("sub/b.xml"), "<x/>");
    writeFile(dir.file("locked/c.xml"), "<x/>");
    fs::create_symlink(dir.file("a-gone.xml"), dir.file(".#a.xml"));  // an editor's lock file
    fs::create_symlink(dir.file("self.xml"), dir.file("self.xml"));
    fs::create_directory_symlink(dir.file("nowhere"), dir.file("shortcut"));
    dirent entry{};
    std::strcpy(entry.d_name, "shortcut");
    EXPECT_FALSE(isDir(dir.path().c_str(), &entry));

    // A folder that can be listed but not searched: its files have no status.
    ASSERT_EQ(chmod(dir.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(dir.file("locked").c_str(), 0644), 0);
    int found = asUnprivileged([&] {
        RecordArray profiles{};
        praseXMLFolder(dir.path().c_str(), &profiles);
        releaseBlock<Profile, freeProfile>(&profiles);
        return static_cast<int>(scan(dir.path()).size()) * 10 + profiles.count;
    });
    if (found < 0) GTEST_SKIP() << "the tests run as root and cannot become another user";
    EXPECT_EQ(found, 22) << "a.xml and sub/b.xml, found and read";
}

// A folder tree as deep as the scan's paths allow (1,023 bytes), with a file
// every 40 levels while file paths fit (511 bytes).
struct DeepTree {
    explicit DeepTree(const TempDir& dir) {
        std::string folder = dir.path().string();
        for (int level = 1; folder.size() + 2 <= 1023; ++level) {
            folder += "/d";
            if (level % 40 == 0 && folder.size() + 6 <= 511) files.push_back(folder + "/f.xml");
        }
        fs::create_directories(folder);
        for (const std::string& f : files)
            writeFile(f, "<Profiles><Main><Name>n</Name></Main></Profiles>");
    }
    std::vector<std::string> files;
};

TEST(HostProcess, ADeepFolderTreeLoadsOnASmallThreadStack) {
    TempDir dir;
    DeepTree tree(dir);
    ASSERT_GE(tree.files.size(), 5u);
    // 512 KiB: a secondary thread's stack on macOS.
    struct Job {
        std::string root;
        std::vector<std::string> found;
        int loaded = -1;
    } job{dir.path().string(), {}, -1};
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setstacksize(&attr, 512 * 1024);
    pthread_t thread;
    auto run = [](void* p) -> void* {
        auto* j = static_cast<Job*>(p);
        j->found = scan(j->root);
        RecordArray profiles{};
        praseXMLFolder(j->root.c_str(), &profiles);
        j->loaded = profiles.count;
        releaseBlock<Profile, freeProfile>(&profiles);
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attr, run, &job), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attr);
    EXPECT_EQ(job.found, tree.files);
    EXPECT_EQ(job.loaded, static_cast<int>(tree.files.size()));
}

TEST(HostProcess, AFileTheCallerMayNotWriteIsNotReplaced) {
    TempDir dir;
    ASSERT_EQ(chmod(dir.path().c_str(), 0777), 0);
    const std::string kept = "<tempOption><optionItem name=\"a\">old</optionItem></tempOption>";
    std::string locked = writeFile(dir.file("locked.xml"), kept);
    ASSERT_EQ(chmod(locked.c_str(), 0444), 0);
    std::string fresh = dir.file("new.xml");
    int results = asUnprivileged([&] {
        TempOptionItem item{"a", "new"};
        TempOption record{&item, 1, 0, ""};
        return saveOptionXmlFile(locked.c_str(), &record) * 100 +
               setXmlValue(locked.c_str(), "optionItem", "new") * 10 +
               saveOptionXmlFile(fresh.c_str(), &record);
    });
    if (results < 0) GTEST_SKIP() << "the tests run as root and cannot become another user";
    EXPECT_EQ(results, 110) << "both refused for the read-only file; the new one saved";
    EXPECT_EQ(readFile(locked), kept);
    EXPECT_TRUE(fs::exists(fresh));
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()), 2)
        << "a temporary file was left behind";
}

TEST(HostProcess, ATargetAtTheTopOfItsOwnMountSaves) {
    // The temporary file goes beside the target, on the target's own file
    // system, or the rename over the target could not work.
    const std::string path = "/dev/shm/kelprofile-" + std::to_string(getpid()) + ".xml";
    if (!fs::is_directory("/dev/shm") || access("/dev/shm", W_OK) != 0)
        GTEST_SKIP() << "no writable /dev/shm";
    TempOptionItem item{"a", "b"};
    TempOption record{&item, 1, 0, ""};
    EXPECT_EQ(saveOptionXmlFile(path.c_str(), &record), 0);
    EXPECT_EQ(setXmlValue(path.c_str(), "optionItem", "c"), 0);
    EXPECT_NE(readFile(path).find(">c<"), std::string::npos);
    std::remove(path.c_str());
}

// ---- parsing that no thread's libxml2 defaults can widen -------------------

std::string text(const char* s) {
    return s ? s : "";
}

// Files whose text names a local file through an external entity, an entity
// a parameter entity declares and one the external DTD declares: what a
// read makes of each, on a thread whose defaults substitute entities, load
// the external DTD and validate, must hold no byte of those files and be
// what a thread with libxml2's defaults gets.
class WidenedDefaults : public ::testing::Test {
protected:
    void SetUp() override {
        writeFile(dir.file("secret.txt"), "LEAKED-FILE");
        writeFile(dir.file("pe.ent"), "<!ENTITY peLeak \"LEAKED-PE\">");
        writeFile(dir.file("ext.dtd"), "<!ENTITY dtdLeak \"LEAKED-DTD\">");
        std::string url = "file://" + dir.path().string();
        prolog = "<!DOCTYPE r SYSTEM \"" + url + "/ext.dtd\" [\n<!ENTITY % pe SYSTEM \"" + url +
                 "/pe.ent\">\n%pe;\n<!ENTITY x SYSTEM \"" + url + "/secret.txt\">\n]>\n";
    }

    // Everything each family's read gives, as text: what its writer saves
    // of the record, or the record's own bytes and texts.
    std::vector<std::string> everyRead(const std::string& tag) {
        const std::string t = "T&x;&peLeak;&dtdLeak;";
        auto in = [&](const std::string& name, const std::string& body) {
            return writeFile(dir.file(tag + name), prolog + body);
        };
        const std::string out = dir.file(tag + "out.xml");
        auto saved = [&](int rc) { return std::to_string(rc) + readFile(out); };
        KELProject* project = createKELProject(nullptr);
        GroupOPtion* group = createGroupOPtion(nullptr);
        Profile profile{};
        Customize customize{};
        TempOption options{};
        DVDMenu menu{};
        RecordArray products{};
        std::string v = in("v.xml", "<r><Main><Name>" + t + "</Name><Other>o</Other></Main></r>");
        char value[256] = "";
        std::vector<std::string> got = {
            saved(praseXmlFile(in("p.xml", "<P><Main><Name>" + t + "</Name><Desc>" + t +
                                               "</Desc></Main></P>")
                                   .c_str(),
                               &profile) +
                  saveXmlFile(out.c_str(), &profile)),
            saved(praseCustomizeXmlFile(
                      in("c.xml", "<root><profileName>" + t + "</profileName></root>").c_str(),
                      &customize) +
                  saveCustomizeXmlFile(out.c_str(), &customize)),
            saved(openWebPlayerXmlFile(
                      in("w.xml", "<ZorvanWebPlayerPrj><option>" + t + "</option><playskin>" + t +
                                      "</playskin></ZorvanWebPlayerPrj>")
                          .c_str(),
                      project) +
                  saveWebPlayerXmlFile(out.c_str(), project)),
            saved(praseOptionXmlFile(in("t.xml", "<tempOption><optionItem name=\"profileName\">" +
                                                     t + "</optionItem></tempOption>")
                                         .c_str(),
                                     &options) +
                  saveOptionXmlFile(out.c_str(), &options)),
            std::to_string(praseDVDMenuXmlFile(
                in("d.xml", "<m><thumbnailName>" + t + "</thumbnailName></m>").c_str(), &menu)) +
                std::string(reinterpret_cast<char*>(&menu), sizeof menu),
            std::to_string(
                praseOPtionXmlFile(in("g.xml", "<groupOption><optionItem name=\"o\"><Description>" +
                                                   t + "</Description></optionItem></groupOption>")
                                       .c_str(),
                                   group)) +
                text(group->optionItemCount ? group->optionItems[0].description : nullptr),
            std::to_string(praseProductXmlFile(
                in("r.xml", "<products><product><title>" + t + "</title></product></products>")
                    .c_str(),
                &products)) +
                std::string(static_cast<char*>(products.records),
                            products.count * sizeof(ProductInfo)),
            (getXmlValue(v.c_str(), "Main.Name", value, sizeof value) < 0 ? "1" : "0") +
                std::string(value),
            std::to_string(setXmlValue(v.c_str(), "Main.Other", "set")) + readFile(v)};
        freeProfile(&profile);
        freeCustomize(&customize);
        freeKELProject(&project);
        std::free(options.tempItems);
        freeGroupOPtion(&group);
        std::free(products.records);
        return got;
    }

    TempDir dir;
    std::string prolog;
};

TEST_F(WidenedDefaults, NoLocalFileReachesARecordAValueOrASavedFile) {
    std::vector<std::string> plain = everyRead("plain-"), widened;
    std::thread thread([&] {
        xmlSubstituteEntitiesDefault(1);
        xmlLoadExtDtdDefaultValue = XML_DETECT_IDS | XML_COMPLETE_ATTRS;
        xmlDoValidityCheckingDefaultValue = 1;
        xmlKeepBlanksDefault(0);
        widened = everyRead("widened-");
    });
    thread.join();
    ASSERT_EQ(widened.size(), plain.size());
    for (std::size_t i = 0; i < plain.size(); ++i) {
        EXPECT_EQ(plain[i][0], '0') << "read " << i << " failed: the check would prove nothing";
        EXPECT_EQ(widened[i].find("LEAKED"), std::string::npos) << "read " << i;
        // The same result but for the file names, which differ by their tag.
        std::string same = widened[i];
        for (std::size_t at; (at = same.find("widened-")) != std::string::npos;)
            same.replace(at, 8, "plain-");
        EXPECT_EQ(same, plain[i]) << "read " << i;
    }
}

}  // namespace
