// Writing a profile file from one Profile record, and the parts of a
// profile document that the merge writes the same way.
#include <cstring>

#include "profile/profile.h"

namespace kel::profile {

void JoinedList::clear() noexcept {
    buf_[0] = 0;
    len_ = 0;
    full_ = false;
}

void JoinedList::add(int position, const char* piece) noexcept {
    if (!piece || full_) return;
    std::size_t comma = position > 0 ? 1 : 0;
    std::size_t n = std::strlen(piece);
    if (len_ + comma + n >= sizeof buf_) {
        full_ = true;
        return;
    }
    if (comma) buf_[len_++] = ',';
    std::memcpy(buf_ + len_, piece, n + 1);
    len_ += n;
}

xmlNode* Writer::add(xmlNode* parent, const char* name, const char* text,
                     const char* lang) noexcept {
    xmlNode* node = addText(parent, name, converter_.toFile(text));
    if (lang) setAttr(node, "lang", lang);
    return node;
}

xmlNode* Writer::addAsIs(xmlNode* parent, const char* name, const char* text) noexcept {
    return addText(parent, name, isUtf8(text) ? text : converter_.toFile(text));
}

void Writer::addPerLanguage(xmlNode* parent, const char* name, char* const (&texts)[kLangSlots],
                            const Languages& langs) noexcept {
    for (int s = 0; s < langs.slots(); ++s)
        if (texts[s]) add(parent, name, texts[s], langs.tag(s));
}

void Writer::addSettings(xmlNode* main, const Profile& p) noexcept {
    addAsIs(main, "Format", field(p.format).text);
    addAsIs(main, "ExtName", field(p.extName).text);
    addInt(main, "IsSysProfile", p.isSysProfile);
    addInt(main, "Type", p.type);
    addInt(main, "Device", p.device);
}

void Writer::addGroup(const Profile& p) noexcept {
    xmlNode* group = addElement(root(), "Group");
    addInt(group, "ID", p.groupId);
    addPerLanguage(group, "DisplayName", p.groupDisplayName, Languages(p));
}

xmlNode* Writer::addConfigItem(xmlNode* config, const ConfigItem& item) noexcept {
    xmlNode* node = addElement(config, "ConfigItem");
    setAttr(node, "name", field(item.name).text);
    setAttr(node, "group", field(item.group).text);
    setAttrInt(node, "readyOnly", item.readyOnly);
    setAttr(node, "displayType", findDisplayStr(item.displayType));
    setAttr(node, "valueType", findValueType(item.valueType));
    return node;
}

void Writer::addItemTexts(xmlNode* node, const ConfigItem& item, const Languages& langs) noexcept {
    addPerLanguage(node, "Label", item.label, langs);
    addPerLanguage(node, "Description", item.description, langs);
}

bool Writer::addListLabels(xmlNode* node, const char* lang) noexcept {
    if (joined.empty()) return false;
    add(node, "ListItem", joined.text(), lang);
    return true;
}

void Writer::addValues(xmlNode* node, const ConfigItem& item) noexcept {
    joined.clear();
    for (int j = 0; j < kel::countWithin(item.listEntries, item.listEntryCount); ++j)
        joined.add(j, field(item.listEntries[j].value).text);
    add(node, "ListValue", joined.text());
    if (item.displayType == kListDisplayType) {
        addInt(node, "DefaultValue", item.defaultInt);
    } else {
        addAsIs(node, "DefaultValue", field(item.defaultValue).text);
    }
}

}  // namespace kel::profile

using namespace kel::profile;

int32_t saveXmlFile(const char* path, const Profile* record) {
    if (!record) return 1;
    const Profile& p = *record;
    Languages langs(p);
    Writer w;

    xmlNode* main = kel::addElement(w.root(), "Main");
    w.add(main, "Name", kel::field(p.name).text);
    w.addPerLanguage(main, "DisplayName", p.displayName, langs);
    w.addPerLanguage(main, "Desc", p.desc, langs);
    w.addSettings(main, p);
    w.addGroup(p);

    xmlNode* config = kel::addElement(w.root(), "Config");
    for (int k = 0; k < kel::countWithin(p.configItems, p.configItemCount); ++k) {
        const ConfigItem& item = p.configItems[k];
        xmlNode* node = w.addConfigItem(config, item);
        w.addItemTexts(node, item, langs);
        for (int s = 0; s < langs.slots(); ++s) {
            w.joined.clear();
            for (int j = 0; j < kel::countWithin(item.listEntries, item.listEntryCount); ++j)
                w.joined.add(j, item.listEntries[j].label[s]);
            w.addListLabels(node, langs.tag(s));
        }
        w.addValues(node, item);
    }
    return w.save(path);
}
