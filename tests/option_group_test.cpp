// Option group files: a group read again (what a read makes of a file is a
// session, tests/data/tool/readers.t).
#include <string>

#include "kelProfile.h"
#include "support.h"

namespace {

class OptionGroupFile : public ::testing::Test {
protected:
    OptionGroupFile() { createGroupOPtion(&group); }
    ~OptionGroupFile() override { freeGroupOPtion(&group); }
    int read(const std::string& xml) {
        writeFile(dir.file("group.xml"), xml);
        return praseOPtionXmlFile(dir.file("group.xml").c_str(), group);
    }
    TempDir dir;
    GroupOPtion* group = nullptr;
};

// The fuzz replay reads every file twice into one group; here a failed read
// follows a successful one, and the sanitizer build fails on a leak.
TEST_F(OptionGroupFile, AFailedReadReleasesTheEarlierItemsAndLeavesTheGroupEmpty) {
    const std::string rich =
        "<g><optionItem><Description>d</Description><childOptionItem>"
        "<Values>v</Values></childOptionItem></optionItem></g>";
    ASSERT_EQ(read(rich), 0);
    EXPECT_EQ(praseOPtionXmlFile(dir.file("missing.xml").c_str(), group), 1);
    EXPECT_TRUE(!group->optionItems && group->optionItemCount == 0);
}

}  // namespace
