// Writing one profile file from two records: the settings profile gives
// everything but the translations, the texts profile gives its languages
// and the translated texts, item by item in the same order.
#include <cstring>

#include "profile/profile.h"

using namespace kel::profile;

namespace {

// The value that marks a list entry whose label is translated.
bool isTranslatedValue(const ListEntry& entry) {
    return std::strcmp(entry.value, "0.0") == 0;
}

bool hasTranslatedValue(const ConfigItem& item) {
    for (int j = 0; j < kel::countWithin(item.listEntries, item.listEntryCount); ++j)
        if (isTranslatedValue(item.listEntries[j])) return true;
    return false;
}

// The translated label of entry 0 in a slot, "" when there is none.
const char* translatedLabel(const ConfigItem& texts, int slot) {
    const char* label = kel::countWithin(texts.listEntries, texts.listEntryCount) > 0
                            ? texts.listEntries[0].label[slot]
                            : nullptr;
    return label ? label : "";
}

// The list labels of a settings item: one untagged "ListItem" with its own
// first-language labels, or, when one of its values is "0.0", one tagged
// "ListItem" per language of the texts profile, where a "0.0" in entry 0
// takes the translated label. texts is null for an item without a
// counterpart, which is written as not translated.
void addListLabels(Writer& w, xmlNode* node, const ConfigItem& item, const ConfigItem* texts,
                   const Languages& langs) {
    bool translated = texts && hasTranslatedValue(item);
    for (int s = 0; s < langs.slots(); ++s) {
        w.joined.clear();
        for (int j = 0; j < kel::countWithin(item.listEntries, item.listEntryCount); ++j) {
            const ListEntry& entry = item.listEntries[j];
            if (j == 0 && translated && isTranslatedValue(entry)) {
                w.joined.add(0, translatedLabel(*texts, s));
            } else {
                w.joined.add(j, entry.label[0]);
            }
        }
        if (!w.addListLabels(node, translated ? langs.tag(s) : nullptr)) continue;
        if (!translated) break;
    }
}

}  // namespace

int32_t megXmlFile(const char* path, const Profile* settings, const Profile* texts) {
    if (!settings || !texts) return 1;
    const Profile& s = *settings;
    const Profile& t = *texts;
    Languages langs(t);
    Writer w;

    xmlNode* main = kel::addElement(w.root(), "Main");
    w.addAsIs(main, "Name", kel::field(s.name).text);
    // Slot 0 holds the settings profile's own texts, the other slots the
    // translations; every slot is written, a missing text as "".
    for (int slot = 0; slot < langs.slots(); ++slot)
        w.add(main, "DisplayName", slot == 0 ? s.displayName[0] : t.displayName[slot],
              langs.tag(slot));
    for (int slot = 0; slot < langs.slots(); ++slot)
        w.add(main, "Desc", slot == 0 ? s.desc[0] : t.desc[slot], langs.tag(slot));
    w.addSettings(main, s);
    w.addGroup(s);

    xmlNode* config = kel::addElement(w.root(), "Config");
    for (int k = 0; k < kel::countWithin(s.configItems, s.configItemCount); ++k) {
        const ConfigItem& item = s.configItems[k];
        const ConfigItem* translation =
            k < kel::countWithin(t.configItems, t.configItemCount) ? &t.configItems[k] : nullptr;
        xmlNode* node = w.addConfigItem(config, item);
        if (translation) w.addItemTexts(node, *translation, langs);
        addListLabels(w, node, item, translation, langs);
        w.addValues(node, item);
    }
    return w.save(path);
}
