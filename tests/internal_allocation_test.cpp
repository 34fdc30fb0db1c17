// Allocation failures: every allocation a full read makes is made to fail
// in turn, from the first until the read no longer reaches the failing one.
// After each failure the reader must give 1 with a cleared record, and the
// sanitizer build proves nothing leaks and nothing is touched after release.
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

#include "core/memory.h"
#include "foundation/folder_loader.h"
#include "kelProfile.h"
#include "support.h"

namespace {

// Calls run(failed) with the n-th allocation failing, for n = 1, 2, ...,
// until a run makes fewer than n allocations; failed tells whether this run
// met its failing allocation. Returns how many runs met one.
template <class Run>
long everyAllocationFails(Run&& run) {
    long failures = 0;
    for (long n = 1;; ++n) {
        kel::fault::failAllocation(n);
        struct Reset {
            ~Reset() { kel::fault::failAllocation(0); }
        } reset;
        run([&] { return kel::fault::allocations() >= n; });
        if (kel::fault::allocations() < n) return failures;
        ++failures;
    }
}

// Rich files of the families whose reads allocate much: a profile with ten
// languages, list entries labelled in each and a second "Config" that
// replaces the first; option items with child items; the example project
// with a play list and an add-ons list met twice, so that failures also
// come while the earlier ones are being replaced.
std::string data(const char* name) {
    return readFile(KELPROFILE_SOURCE_DIR "/tests/data/allocation/" + std::string(name));
}
const std::string kProfile = data("ten-languages.xml");

// What one read left: its result, whether the record is as a failed read
// must leave it, and a few of its values when it succeeded.
struct Outcome {
    int rc;
    bool cleared;
    std::string content;
};

// One family's read of a rich file, and how many of its allocations there are.
struct FamilyRead {
    const char* name;
    std::string xml;
    std::function<Outcome(const char* path)> read;
    std::string content;  // what the whole read gives
    long leastFailures, mostFailures;
};

class AllocationFailure : public ::testing::Test {
protected:
    TempDir dir;
};

TEST_F(AllocationFailure, EveryFamilysReadGivesOneAndAClearedRecord) {
    std::string profilePath = writeFile(dir.file("p.xml"), kProfile);
    Profile source;
    ASSERT_EQ(praseXmlFile(profilePath.c_str(), &source), 0);
    GroupOPtion* group = createGroupOPtion(nullptr);  // read again and again
    ASSERT_NE(group, nullptr);

    const FamilyRead families[] = {
        {"profile", kProfile,
         [](const char* path) {
             Profile p;
             Profile expected{};  // a failed read keeps only the file name
             std::strcpy(expected.fileName, "p.xml");
             Outcome o{praseXmlFile(path, &p), std::memcmp(&p, &expected, sizeof p) == 0,
                       std::to_string(p.langCount)};
             freeProfile(&p);
             return o;
         },
         "10", 101, 100000},
        // A copy gives no result: a failed one is a cleared record.
        {"profile copy", "",
         [&](const char*) {
             Profile copy;
             copyProfile(&copy, &source);
             Outcome o{isCleared(copy), isCleared(copy), std::to_string(copy.configItemCount)};
             freeProfile(&copy);
             return o;
         },
         "3", 101, 100000},
        {"temporary options", R"(<tempOption><optionItem name="profileName">p</optionItem>
           <optionItem name="isSystem">1</optionItem></tempOption>)",
         [](const char* path) {
             TempOption r;
             Outcome o{praseOptionXmlFile(path, &r), isCleared(r), r.profileName};
             std::free(r.tempItems);
             return o;
         },
         "p", 1, 1},
        // A menu template lives in the record's own arrays: its read allocates
        // nothing of the library's, and so cannot fail on it.
        {"menu template", R"(<menu><bgImageName>bg.png</bgImageName>
           <frames frameImgName="f.png"><frameRc x="1" y="2" w="3" h="4"/></frames></menu>)",
         [](const char* path) {
             DVDMenu r;
             return Outcome{praseDVDMenuXmlFile(path, &r), isCleared(r), r.bgImageName};
         },
         "bg.png", 0, 0},
        {"option group", data("option-group.xml"),
         [&](const char* path) {
             int rc = praseOPtionXmlFile(path, group);
             bool whole = rc == 0 && group->optionItemCount == 3;
             return Outcome{rc, isCleared(*group),
                            whole ? std::string("3 ") + group->optionItems[2].childItems[1].values
                                  : std::to_string(group->optionItemCount)};
         },
         "3 w", 1 + 3 * (1 + 1 + 2 * 4), 1 + 3 * (1 + 1 + 2 * 4)},
        {"products", "<products><product><title>t</title></product></products>",
         [](const char* path) {
             RecordArray r{nullptr, 9};
             int rc = praseProductXmlFile(path, &r);
             Outcome o{rc, !r.records && r.count == 0,
                       r.count == 1 ? static_cast<ProductInfo*>(r.records)->title : ""};
             std::free(r.records);
             return o;
         },
         "t", 1, 1},
        // Two "swfOption" elements: the second replaces the player and the
        // adverts the first allocated.
        {"customization",
         R"(<root><profileName>p</profileName><swfOption><playOption hideDelay="1"/>
           <insertADOption name="i"/><ADOption name="a"/><ADOption name="b"/></swfOption>
           <swfOption><playOption hideDelay="2"/><insertADOption name="j"/><ADOption name="c"/>
           </swfOption></root>)",
         [](const char* path) {
             Customize r;
             int rc = praseCustomizeXmlFile(path, &r);
             Outcome o{rc, isCleared(r),
                       rc ? "" : std::to_string(r.playOption->hideDelay) + r.adOptions[0].name};
             freeCustomize(&r);
             return o;
         },
         "2c", 6, 6},
        {"web-player project", data("project-lists-twice.xml"),
         [](const char* path) {
             KELProject stale{};
             KELProject* p = &stale;
             if (!createKELProject(&p)) return Outcome{1, p == nullptr, ""};
             int rc = openWebPlayerXmlFile(path, p);
             Outcome o{rc, isCleared(*p),
                       rc ? ""
                          : std::to_string(p->playItemCount) + " " +
                                std::to_string(p->addOns.count) + " " + p->publishPath};
             freeKELProject(&p);
             EXPECT_EQ(p, nullptr);
             return o;
         },
         "3 3 /video/travel", 21, 100000},
    };
    for (const FamilyRead& family : families) {
        SCOPED_TRACE(family.name);
        std::string path = writeFile(dir.file("p.xml"), family.xml);
        long failures = everyAllocationFails([&](auto failed) {
            Outcome o = family.read(path.c_str());
            if (failed()) {
                EXPECT_EQ(o.rc, 1);
                EXPECT_TRUE(o.cleared);
            } else {
                EXPECT_EQ(o.rc, 0);
                EXPECT_EQ(o.content, family.content);
            }
        });
        EXPECT_GE(failures, family.leastFailures);
        EXPECT_LE(failures, family.mostFailures);
    }
    freeGroupOPtion(&group);
    freeProfile(&source);
}

TEST_F(AllocationFailure, FolderLoadersLoseFilesNeverMemory) {
    writeFile(dir.file("a.xml"), kProfile);
    writeFile(dir.file("sub/b.xml"), kProfile);
    writeFile(dir.file("sub/deeper/c.xml"), "<Profiles/>");
    std::string folder = dir.path().string();
    long failures = everyAllocationFails([&](auto failed) {
        RecordArray result{nullptr, 7};
        EXPECT_EQ(praseXMLFolder(folder.c_str(), &result), 0);
        EXPECT_LE(result.count, 3);
        if (!failed()) {
            EXPECT_EQ(result.count, 3);
        }
        if (!result.records) {
            EXPECT_EQ(result.count, 0);
        }
        for (int i = 0; i < result.count; ++i)
            freeProfile(&static_cast<Profile*>(result.records)[i]);
        std::free(result.records);
    });
    EXPECT_GT(failures, 200);
}

// The bound of one folder load, made small: files within their own bound
// are read while the load's bound lasts, and a file refused by its own
// bound costs the load nothing.
TEST_F(AllocationFailure, AFolderLoadIsBoundedAsAWhole) {
    const int items = 600;
    const std::size_t perFile = items * (sizeof(ConfigItem) + 20 * sizeof(ListEntry));
    const std::string file =
        "<Profiles><Config>" + repeat("<ConfigItem/>", items) + "</Config></Profiles>";
    for (int i = 0; i < 6; ++i) writeFile(dir.file("sub/" + std::to_string(i) + ".xml"), file);
    // Listed first, and refused by the bound of its own read.
    writeFile(dir.file("huge.xml"),
              "<Profiles><Config>" + repeat("<ConfigItem/>", 3000) + "</Config></Profiles>");
    RecordArray result{};
    kel::loadFolder<Profile, praseXmlFile>(dir.path().c_str(), &result,
                                           7 * sizeof(Profile) + 3 * perFile + perFile / 2);
    EXPECT_EQ(result.count, 3);
    for (int i = 0; i < result.count; ++i) freeProfile(&static_cast<Profile*>(result.records)[i]);
    std::free(result.records);
    // The library's own loader reads them all.
    ASSERT_EQ(praseXMLFolder(dir.path().c_str(), &result), 0);
    EXPECT_EQ(result.count, 6);
    for (int i = 0; i < result.count; ++i) freeProfile(&static_cast<Profile*>(result.records)[i]);
    std::free(result.records);
}

}  // namespace
