// Temporary option files: the writer (what a read makes of a file is a
// session, tests/data/tool/readers.t).
#include <cstdlib>
#include <cstring>
#include <string>

#include "kelProfile.h"
#include "support.h"

namespace {

TEST(TempOptionFile, WritesItemsInOrderAndInvalidGbkAsEmptyItems) {
    TempDir dir;
    TempOptionItem items[3] = {};
    std::strcpy(items[0].name, "profileName");
    std::strcpy(items[0].value, kGbkZhongwen);
    std::strcpy(items[1].name, "broken");
    std::strcpy(items[1].value, "\x81");  // a lead byte without its trail byte
    std::strcpy(items[2].name, "a&b");
    std::strcpy(items[2].value, "<1>");
    TempOption out{};
    out.tempItems = items;
    out.tempItemCount = 3;
    out.isSystem = 1;  // not written by itself
    std::string path = dir.file("saved.xml");
    ASSERT_EQ(saveOptionXmlFile(path.c_str(), &out), 0);
    EXPECT_EQ(readFile(path), golden("options/written-items.xml", readFile(path)));

    out.tempItemCount = 0;
    ASSERT_EQ(saveOptionXmlFile(path.c_str(), &out), 0);
    EXPECT_EQ(readFile(path), std::string(kDecl) + "<tempOption/>\n");

    EXPECT_EQ(saveOptionXmlFile(dir.file("no/such/folder/x.xml").c_str(), &out), 1);
}

}  // namespace
