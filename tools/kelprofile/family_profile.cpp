// Conversion profiles: root "Profiles", GBK texts in up to ten languages.
#include "family.h"

namespace tool {

namespace {

// A list item's room for choices, as the library's reader leaves it.
constexpr int kListCapacity = kListRoom;
static_assert(sizeof(Profile{}.desc) / sizeof(char*) == kLanguages, "the header's capacity");
static_assert(sizeof(ListEntry{}.label) / sizeof(char*) == kLanguages, "the header's capacity");

void describeItem(Fields& f, ConfigItem& item, int slots) {
    f.text("name", item.name, Code::Utf8);
    f.text("group", item.group, Code::Utf8);
    f.number("readyOnly", item.readyOnly);
    f.type("displayType", item.displayType, findDisplayStr);
    f.type("valueType", item.valueType, findValueType);
    texts(f, "label", item.label, slots, slots, Code::Gbk);
    texts(f, "description", item.description, slots, slots, Code::Gbk);
    records(
        f, "listEntry", item.listEntries, item.listEntryCount, kListCapacity,
        [&](Fields& f, ListEntry& entry) {
            f.text("value", entry.value, Code::Gbk);
            texts(f, "label", entry.label, slots, slots, Code::Gbk);
            entry.owner = &item;
        },
        kListCapacity);
    // A list item keeps its default as the position of a choice.
    if (item.displayType == 20)
        f.number("defaultInt", item.defaultInt);
    else
        f.text("defaultValue", item.defaultValue, Code::Gbk);
}

struct Profiles : RecordTraits<Profile> {
    static int read(const char* path, Profile& p) { return praseXmlFile(path, &p); }
    static int save(const char* path, Profile& p) { return saveXmlFile(path, &p); }
    static void release(Profile& p) { freeProfile(&p); }

    static void describe(Fields& f, Profile& p) {
        f.text("fileName", p.fileName, Code::Utf8);
        f.text("name", p.name, Code::Gbk);
        f.number("langCount", p.langCount);
        int declared = p.langCount;
        int slots = f.list("language", p.langCount, kLanguages);
        for (int s = 0; s < slots; ++s) {
            f.item(s);
            f.heap("lang", p.langNames[s], Code::Utf8);
            f.heap("displayName", p.displayName[s], Code::Gbk);
            f.heap("desc", p.desc[s], Code::Gbk);
            f.heap("groupDisplayName", p.groupDisplayName[s], Code::Gbk);
            f.close();
        }
        f.endList();
        settleCount(f, "langCount", p.langCount, declared, slots, kLanguages, "language", 1);
        f.text("format", p.format, Code::Gbk);
        f.text("extName", p.extName, Code::Gbk);
        f.number("isSysProfile", p.isSysProfile);
        f.number("type", p.type);
        f.number("device", p.device);
        f.number("groupId", p.groupId);
        records(f, "configItem", p.configItems, p.configItemCount, INT32_MAX,
                [&](Fields& f, ConfigItem& item) {
                    describeItem(f, item, slots);
                    item.owner = &p;
                });
    }
};

}  // namespace

const Family kProfiles = writable<Profiles>("conversion profiles", "Profiles", true);

}  // namespace tool
