// Conversion profiles in kelprofile.
#include <cstring>
#include <string>

#include "kelProfile.h"
#include "tool.h"

namespace {

bool recognise(const xmlNode* root) {
    return std::strcmp(reinterpret_cast<const char*>(root->name), "Profiles") == 0;
}

// One text per language slot.
void perLanguage(tool::Printer& p, const char* label, char* const (&texts)[10], int slots) {
    for (int s = 0; s < slots; ++s) p.gbkAt(label, s, texts[s]);
}

std::string typeName(int code, const char* name) {
    return std::to_string(code) + " (" + name + ")";
}

void showItem(tool::Printer& p, const ConfigItem& item, int k, int slots) {
    p.open("configItem", k)
        .text("name", item.name)
        .text("group", item.group)
        .number("readyOnly", item.readyOnly)
        .text("displayType", typeName(item.displayType, findDisplayStr(item.displayType)).c_str())
        .text("valueType", typeName(item.valueType, findValueType(item.valueType)).c_str());
    perLanguage(p, "label", item.label, slots);
    perLanguage(p, "description", item.description, slots);
    for (int j = 0; j < item.listEntryCount && item.listEntries; ++j) {
        p.open("listEntry", j).gbk("value", item.listEntries[j].value);
        perLanguage(p, "label", item.listEntries[j].label, slots);
        p.close();
    }
    if (item.displayType == 20) {
        p.number("defaultInt", item.defaultInt);
    } else {
        p.gbk("defaultValue", item.defaultValue);
    }
    p.close();
}

bool show(const char* path, tool::Printer& p) {
    Profile record;
    if (praseXmlFile(path, &record) != 0) return false;
    int slots = record.langCount;  // 1 to 10 after a read
    p.text("fileName", record.fileName)
        .gbk("name", record.name)
        .number("langCount", record.langCount);
    for (int s = 0; s < slots; ++s)
        p.open("language", s)
            .text("lang", record.langNames[s])
            .gbk("displayName", record.displayName[s])
            .gbk("desc", record.desc[s])
            .gbk("groupDisplayName", record.groupDisplayName[s])
            .close();
    p.gbk("format", record.format)
        .gbk("extName", record.extName)
        .number("isSysProfile", record.isSysProfile)
        .number("type", record.type)
        .number("device", record.device)
        .number("groupId", record.groupId);
    for (int k = 0; k < record.configItemCount; ++k) showItem(p, record.configItems[k], k, slots);
    freeProfile(&record);
    return true;
}

int rewrite(const char* src, const char* dst) {
    Profile record;
    if (praseXmlFile(src, &record) != 0) return 1;
    int result = saveXmlFile(dst, &record);
    freeProfile(&record);
    return result;
}

tool::RegisterFamily family({"conversion profiles", "\"Profiles\"", recognise, show, rewrite,
                             nullptr, true});

}  // namespace
