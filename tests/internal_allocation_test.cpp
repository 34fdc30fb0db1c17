// Allocation failures: every allocation a full read makes is made to fail
// in turn, from the first until the read no longer reaches the failing one.
// After each failure the reader must give 1 with a cleared record, and the
// sanitizer build proves nothing leaks and nothing is touched after release.
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/memory.h"
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

template <class T>
bool allZero(const T& record) {
    static const T zero{};
    return std::memcmp(&record, &zero, sizeof record) == 0;
}

// A profile with ten languages, list entries with labels in each, and a
// second "Config" that replaces the first.
std::string tenLanguageProfile() {
    std::string langs[10];
    for (int i = 0; i < 10; ++i) langs[i] = "l" + std::to_string(i);
    std::string xml = "<Profiles><Main><Name>n</Name>";
    for (const auto& l : langs) xml += "<DisplayName lang=\"" + l + "\">d" + l + "</DisplayName>";
    xml += "<Desc lang=\"l0\">x</Desc></Main><Group><ID>1</ID>";
    xml += "<DisplayName lang=\"l3\">g</DisplayName></Group>";
    xml += "<Config><ConfigItem name=\"old\"><Label>o</Label></ConfigItem></Config><Config>";
    for (int k = 0; k < 3; ++k) {
        xml += "<ConfigItem name=\"i" + std::to_string(k) + "\" displayType=\"list\">";
        for (const auto& l : langs) {
            xml += "<Label lang=\"" + l + "\">L</Label><Description lang=\"" + l +
                   "\">D</Description>";
            xml += "<ListItem lang=\"" + l + "\">a,b,c,extra</ListItem>";
        }
        xml += "<ListValue>1,2,3</ListValue><DefaultValue>2</DefaultValue></ConfigItem>";
    }
    return xml + "</Config></Profiles>";
}

class AllocationFailure : public ::testing::Test {
protected:
    TempDir dir;
};

TEST_F(AllocationFailure, ProfileReadAndCopy) {
    std::string path = dir.file("p.xml");
    writeFile(path, tenLanguageProfile());
    long failures = everyAllocationFails([&](auto failed) {
        Profile p;
        int rc = praseXmlFile(path.c_str(), &p);
        if (failed()) {
            EXPECT_EQ(rc, 1);
            Profile expected{};
            std::strcpy(expected.fileName, "p.xml");
            EXPECT_EQ(std::memcmp(&p, &expected, sizeof p), 0);
        } else {
            EXPECT_EQ(rc, 0);
            EXPECT_EQ(p.langCount, 10);
        }
        freeProfile(&p);
    });
    EXPECT_GT(failures, 100);

    Profile source;
    ASSERT_EQ(praseXmlFile(path.c_str(), &source), 0);
    failures = everyAllocationFails([&](auto failed) {
        Profile copy;
        copyProfile(&copy, &source);
        if (failed()) {
            EXPECT_TRUE(allZero(copy));
        } else {
            EXPECT_EQ(copy.configItemCount, 3);
        }
        freeProfile(&copy);
    });
    EXPECT_GT(failures, 100);
    freeProfile(&source);
}

TEST_F(AllocationFailure, TemporaryOptionsAndDvdTemplates) {
    std::string options = dir.file("o.xml");
    writeFile(options, R"(<tempOption><optionItem name="profileName">p</optionItem>
      <optionItem name="isSystem">1</optionItem></tempOption>)");
    EXPECT_EQ(everyAllocationFails([&](auto failed) {
                  TempOption record;
                  int rc = praseOptionXmlFile(options.c_str(), &record);
                  EXPECT_EQ(rc, failed() ? 1 : 0);
                  if (failed()) {
                      EXPECT_TRUE(allZero(record));
                  }
                  std::free(record.tempItems);
              }),
              1);

    // A menu template lives in the record's own arrays: its read allocates
    // nothing of the library's, and so cannot fail on it.
    std::string menu = dir.file("m.xml");
    writeFile(menu, R"(<menu><bgImageName>bg.png</bgImageName>
      <frames frameImgName="f.png"><frameRc x="1" y="2" w="3" h="4"/></frames></menu>)");
    EXPECT_EQ(everyAllocationFails([&](auto) {
                  DVDMenu record;
                  EXPECT_EQ(praseDVDMenuXmlFile(menu.c_str(), &record), 0);
              }),
              0);
}

TEST_F(AllocationFailure, FolderLoadersLoseFilesNeverMemory) {
    writeFile(dir.file("a.xml"), tenLanguageProfile());
    writeFile(dir.file("sub/b.xml"), tenLanguageProfile());
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

TEST_F(AllocationFailure, OptionGroupsAndProducts) {
    std::string groupFile = dir.file("g.xml");
    std::string xml = "<groupOption>";
    for (int k = 0; k < 3; ++k) {
        xml += "<optionItem name=\"i\"><Description>d</Description>";
        for (int j = 0; j < 2; ++j)
            xml +=
                "<childOptionItem><Values>v</Values><DefaultValue>x</DefaultValue>"
                "<Description>c</Description><Values>w</Values></childOptionItem>";
        xml += "</optionItem>";
    }
    writeFile(groupFile, xml + "</groupOption>");
    GroupOPtion* group = createGroupOPtion(nullptr);
    ASSERT_NE(group, nullptr);
    long failures = everyAllocationFails([&](auto failed) {
        int rc = praseOPtionXmlFile(groupFile.c_str(), group);
        EXPECT_EQ(rc, failed() ? 1 : 0);
        if (failed()) {
            EXPECT_TRUE(allZero(*group));
        } else {
            ASSERT_EQ(group->optionItemCount, 3);
            EXPECT_STREQ(group->optionItems[2].childItems[1].values, "w");
        }
    });
    EXPECT_EQ(failures, 1 + 3 * (1 + 1 + 2 * 4));
    freeGroupOPtion(&group);

    std::string products = dir.file("p.xml");
    writeFile(products, "<products><product><title>t</title></product></products>");
    EXPECT_EQ(everyAllocationFails([&](auto failed) {
                  RecordArray result{nullptr, 9};
                  int rc = praseProductXmlFile(products.c_str(), &result);
                  EXPECT_EQ(rc, failed() ? 1 : 0);
                  EXPECT_EQ(result.count, failed() ? 0 : 1);
                  if (failed()) {
                      EXPECT_EQ(result.records, nullptr);
                  }
                  std::free(result.records);
              }),
              1);
}

TEST_F(AllocationFailure, CustomizationRead) {
    // Two "swfOption" elements: the second replaces the player and the
    // adverts the first allocated.
    std::string path = dir.file("c.xml");
    writeFile(path, R"(<root><profileName>p</profileName><swfOption><playOption hideDelay="1"/>
      <insertADOption name="i"/><ADOption name="a"/><ADOption name="b"/></swfOption>
      <swfOption><playOption hideDelay="2"/><insertADOption name="j"/><ADOption name="c"/>
      </swfOption></root>)");
    EXPECT_EQ(everyAllocationFails([&](auto failed) {
                  Customize record;
                  int rc = praseCustomizeXmlFile(path.c_str(), &record);
                  if (failed()) {
                      EXPECT_EQ(rc, 1);
                      EXPECT_TRUE(allZero(record));
                  } else {
                      EXPECT_EQ(rc, 0);
                      EXPECT_EQ(record.playOption->hideDelay, 2);
                      EXPECT_STREQ(record.adOptions[0].name, "c");
                  }
                  freeCustomize(&record);
              }),
              6);
}

TEST_F(AllocationFailure, WebPlayerProjectRead) {
    // The example project, with a play list and an add-ons list met twice, so
    // that failures also come while the earlier ones are being replaced.
    std::string text =
        readFile(std::string(KELPROFILE_SOURCE_DIR) + "/examples/webplayer/travel-showreel.xml");
    std::string::size_type end = text.find("</ZorvanWebPlayerPrj>");
    text.insert(end, "<playlist><playitem><advertitem/></playitem></playlist>" +
                         text.substr(text.find("<playlist>"),
                                     text.find("<optionFileName>") - text.find("<playlist>")));
    std::string path = dir.file("w.xml");
    writeFile(path, text);
    long failures = everyAllocationFails([&](auto failed) {
        KELProject stale{};
        KELProject* project = &stale;
        if (!createKELProject(&project)) {
            EXPECT_TRUE(failed());
            EXPECT_EQ(project, nullptr);
            return;
        }
        int rc = openWebPlayerXmlFile(path.c_str(), project);
        if (failed()) {
            EXPECT_EQ(rc, 1);
            EXPECT_TRUE(allZero(*project));
        } else {
            EXPECT_EQ(rc, 0);
            EXPECT_EQ(project->playItemCount, 3);
            EXPECT_EQ(project->addOns.count, 3);
            EXPECT_STREQ(project->publishPath, "/video/travel");
        }
        freeKELProject(&project);
        EXPECT_EQ(project, nullptr);
    });
    EXPECT_GT(failures, 20);
}

}  // namespace
