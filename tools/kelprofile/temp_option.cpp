// Temporary option files in kelprofile.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "kelProfile.h"
#include "tool.h"

namespace {

bool recognise(const xmlNode* root) {
    return std::strcmp(reinterpret_cast<const char*>(root->name), "tempOption") == 0;
}

using tool::Code;

void describeItem(tool::Fields& f, TempOptionItem& item) {
    f.text("name", item.name, Code::Utf8);
    f.text("value", item.value, Code::Gbk);
}

void describe(tool::Fields& f, TempOption& r) {
    f.number("isSystem", r.isSystem);
    f.text("profileName", r.profileName, Code::Gbk);
    tool::records(f, "optionItem", r.tempItems, r.tempItemCount, INT32_MAX, describeItem);
}

bool show(const char* path, tool::Fields& f) {
    TempOption record;
    if (praseOptionXmlFile(path, &record) != 0) return false;
    describe(f, record);
    std::free(record.tempItems);
    return true;
}

// The file holds only the items: a read takes "isSystem" and "profileName"
// from the last items of those names, so a record that says otherwise
// would not survive its save.
void refuseWhatTheItemsDoNotSay(tool::Fields& f, const TempOption& r) {
    TempOption items{};
    items.tempItems = r.tempItems;
    items.tempItemCount = r.tempItemCount;
    for (int i = 0; i < r.tempItemCount; ++i) {
        TempOptionItem& item = r.tempItems[i];
        if (std::strcmp(item.name, "profileName") == 0)
            std::memcpy(items.profileName, item.value, sizeof item.value);
        else if (std::strcmp(item.name, "isSystem") == 0)
            items.isSystem = kelAtoi(item.value);
    }
    if (items.isSystem != r.isSystem)
        f.refuse("isSystem", std::to_string(r.isSystem) + ", but the items say " +
                                 std::to_string(items.isSystem) +
                                 "; the file keeps only the items");
    if (std::strcmp(items.profileName, r.profileName) != 0)
        f.refuse("profileName",
                 "not what the item \"profileName\" says; the file keeps only "
                 "the items");
}

int write(tool::Fields& from, const char* dst) {
    TempOption record{};
    describe(from, record);
    refuseWhatTheItemsDoNotSay(from, record);
    int result = from.accepted() ? saveOptionXmlFile(dst, &record) : 1;
    std::free(record.tempItems);
    return result;
}

int rewrite(const char* src, const char* dst) {
    TempOption record;
    if (praseOptionXmlFile(src, &record) != 0) return 1;
    int result = saveOptionXmlFile(dst, &record);
    std::free(record.tempItems);
    return result;
}

tool::RegisterFamily family({"temporary options", "\"tempOption\"", recognise, show, rewrite, write,
                             nullptr, true});

}  // namespace
