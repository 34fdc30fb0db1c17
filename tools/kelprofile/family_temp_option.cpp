// Temporary option files: root "tempOption", a list of named values.
#include <cstdlib>
#include <cstring>

#include "family.h"

namespace tool {

namespace {

void describeItem(Fields& f, TempOptionItem& item) {
    f.text("name", item.name, Code::Utf8);
    f.text("value", item.value, Code::Gbk);
}

struct TemporaryOptions : RecordTraits<TempOption> {
    static int read(const char* path, TempOption& r) { return praseOptionXmlFile(path, &r); }
    static int save(const char* path, TempOption& r) { return saveOptionXmlFile(path, &r); }
    static void release(TempOption& r) { std::free(r.tempItems); }

    static void describe(Fields& f, TempOption& r) {
        f.number("isSystem", r.isSystem);
        f.text("profileName", r.profileName, Code::Gbk);
        records(f, "optionItem", r.tempItems, r.tempItemCount, INT32_MAX, describeItem);
    }

    // The file holds only the items: a read takes "isSystem" and
    // "profileName" from the last items of those names, so a record that
    // says otherwise would not survive its save.
    static void check(Fields& f, TempOption& r) {
        TempOption items{};
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
                     "not what the item \"profileName\" says; the file keeps only the items");
    }
};

}  // namespace

const Family kTemporaryOptions =
    writable<TemporaryOptions>("temporary options", "tempOption", true);

}  // namespace tool
