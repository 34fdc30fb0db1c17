// Conversion profiles in kelprofile.
#include <cstdint>
#include <cstring>
#include <string>

#include "kelProfile.h"
#include "tool.h"

namespace {

bool recognise(const xmlNode* root) {
    return std::strcmp(reinterpret_cast<const char*>(root->name), "Profiles") == 0;
}

constexpr int kLangSlots = 10;
constexpr int kListCapacity = 20;  // a reader makes room for 20 choices

using tool::Code;

void describeItem(tool::Fields& f, ConfigItem& item, int slots) {
    f.text("name", item.name, Code::Utf8);
    f.text("group", item.group, Code::Utf8);
    f.number("readyOnly", item.readyOnly);
    f.type("displayType", item.displayType, findDisplayStr);
    f.type("valueType", item.valueType, findValueType);
    tool::texts(f, "label", item.label, slots, slots, Code::Gbk);
    tool::texts(f, "description", item.description, slots, slots, Code::Gbk);
    tool::records(
        f, "listEntry", item.listEntries, item.listEntryCount, kListCapacity,
        [&](tool::Fields& f, ListEntry& entry) {
            f.text("value", entry.value, Code::Gbk);
            tool::texts(f, "label", entry.label, slots, slots, Code::Gbk);
            entry.owner = &item;
        },
        kListCapacity);
    // A list item keeps its default as the position of a choice.
    if (item.displayType == 20)
        f.number("defaultInt", item.defaultInt);
    else
        f.text("defaultValue", item.defaultValue, Code::Gbk);
}

void describe(tool::Fields& f, Profile& p) {
    f.text("fileName", p.fileName, Code::Utf8);
    f.text("name", p.name, Code::Gbk);
    f.number("langCount", p.langCount);
    int declared = p.langCount;
    int slots = f.list("language", p.langCount, kLangSlots);
    for (int s = 0; s < slots; ++s) {
        f.item(s);
        f.heap("lang", p.langNames[s], Code::Utf8);
        f.heap("displayName", p.displayName[s], Code::Gbk);
        f.heap("desc", p.desc[s], Code::Gbk);
        f.heap("groupDisplayName", p.groupDisplayName[s], Code::Gbk);
        f.close();
    }
    f.endList();
    if (f.filling()) {
        // The record owns the slots filled, whatever langCount said.
        p.langCount = slots;
        if (slots < 1 || slots != declared)
            f.refuse("langCount", std::to_string(declared) + ", but \"language\" has " +
                                      std::to_string(slots) + (slots == 1 ? " slot" : " slots") +
                                      " (a read gives 1 to 10)");
    }
    f.text("format", p.format, Code::Gbk);
    f.text("extName", p.extName, Code::Gbk);
    f.number("isSysProfile", p.isSysProfile);
    f.number("type", p.type);
    f.number("device", p.device);
    f.number("groupId", p.groupId);
    tool::records(f, "configItem", p.configItems, p.configItemCount, INT32_MAX,
                  [&](tool::Fields& f, ConfigItem& item) {
                      describeItem(f, item, slots);
                      item.owner = &p;
                  });
}

bool show(const char* path, tool::Fields& f) {
    Profile record;
    if (praseXmlFile(path, &record) != 0) return false;
    describe(f, record);
    freeProfile(&record);
    return true;
}

int write(tool::Fields& from, const char* dst) {
    Profile record{};
    describe(from, record);
    int result = from.accepted() ? saveXmlFile(dst, &record) : 1;
    freeProfile(&record);
    return result;
}

int rewrite(const char* src, const char* dst) {
    Profile record;
    if (praseXmlFile(src, &record) != 0) return 1;
    int result = saveXmlFile(dst, &record);
    freeProfile(&record);
    return result;
}

tool::RegisterFamily family({"conversion profiles", "\"Profiles\"", recognise, show, rewrite, write,
                             nullptr, true});

}  // namespace
