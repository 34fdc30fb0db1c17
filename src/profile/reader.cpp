// Reading a profile file into a Profile record, and the language table that
// hands out the record's language slots.
#include <cstdlib>
#include <cstring>

#include "profile/profile.h"

using namespace kel::profile;

namespace {
// Whether a language name of the table is name. Names are two letters in
// practice ("en", "zh"): those are told apart in place, without a call.
bool sameLanguage(const char* known, const char* name) noexcept {
    // Each byte is read only past an equal byte of both that is not the end.
    for (int i = 0; i < 3; ++i) {
        if (known[i] != name[i]) return false;
        if (name[i] == 0) return true;
    }
    return std::strcmp(known + 3, name + 3) == 0;
}
}  // namespace

int getLangIndex(int& count, char** table, const char* name) {
    if (!name) return 0;
    if (!table) return -1;
    int known = kel::countWithin(count, kLangSlots);
    for (int i = 0; i < known; ++i)
        if (table[i] && sameLanguage(table[i], name)) return i;
    if (known == kLangSlots) return -1;
    char* copy = kel::dupBytes(name, std::strlen(name));
    if (!copy) return -1;
    table[known] = copy;
    count = known + 1;
    return known;
}

namespace {

using kel::isElement;

int decimal(const char* text) {
    return kel::parseInt(text);
}

// A comma-separated list text ("ListItem" or "ListValue") of at most 1023
// bytes, split in place into at most 20 pieces.
class ListText {
public:
    void assign(kel::RecordText text) noexcept {
        enc_ = text.enc;
        len_ = text.len ? kel::fitLength(text.text, text.len, sizeof buf_ - 1, enc_) : 0;
        std::memcpy(buf_, text.text ? text.text : "", len_);
        buf_[len_] = 0;
    }
    kel::Enc enc() const noexcept { return enc_; }
    // Calls piece(m, text, len) for every piece m: a trailing comma adds
    // none, empty pieces between commas count. Returns the number of pieces.
    template <class F>
    int split(F&& piece) noexcept {
        int m = 0;
        char* end = buf_ + len_;
        for (char* rest = buf_; rest < end && m < kListCapacity;) {
            auto* comma = static_cast<char*>(std::memchr(rest, ',', end - rest));
            char* stop = comma ? comma : end;
            *stop = 0;
            piece(m++, rest, static_cast<std::size_t>(stop - rest));
            if (!comma) break;
            rest = comma + 1;
        }
        return m;
    }

private:
    char buf_[1024];  // only its first len_ bytes and terminator are read
    std::size_t len_ = 0;
    kel::Enc enc_ = kel::Enc::Gbk;
};

class Reader {
public:
    explicit Reader(Profile& p) noexcept : p_(p) {}

    // Fills the record from the root's "Main", "Group" and "Config"
    // children; false when an allocation failed.
    bool read(xmlNode* root) noexcept {
        for (xmlNode* part : kel::elements(root)) {
            if (!ok_) break;
            if (isElement(part, "Main")) {
                readMain(part);
            } else if (isElement(part, "Group")) {
                readGroup(part);
            } else if (isElement(part, "Config")) {
                readConfig(part);
            }
        }
        if (p_.langCount == 0) p_.langCount = 1;
        return ok_;
    }

private:
    void readMain(xmlNode* main) noexcept {
        for (xmlNode* child : kel::elements(main)) {
            kel::XmlText raw = kel::content(child);
            kel::RecordText text = converter_.toRecord(raw.get());
            if (isElement(child, "Name")) {
                text.copyTo(p_.name);
            } else if (isElement(child, "DisplayName")) {
                store(p_.displayName, child, text);
            } else if (isElement(child, "Desc")) {
                store(p_.desc, child, text);
            } else if (isElement(child, "Format")) {
                text.copyTo(p_.format);
            } else if (isElement(child, "ExtName")) {
                text.copyTo(p_.extName);
            } else if (isElement(child, "IsSysProfile")) {
                p_.isSysProfile = decimal(raw.get());
            } else if (isElement(child, "Type")) {
                p_.type = decimal(raw.get());
            } else if (isElement(child, "Device")) {
                p_.device = decimal(raw.get());
            }
        }
    }

    void readGroup(xmlNode* group) noexcept {
        for (xmlNode* child : kel::elements(group)) {
            kel::XmlText raw = kel::content(child);
            if (isElement(child, "ID")) {
                p_.groupId = decimal(raw.get());
            } else if (isElement(child, "DisplayName")) {
                store(p_.groupDisplayName, child, converter_.toRecord(raw.get()));
            }
        }
    }

    void readConfig(xmlNode* config) noexcept {
        // A later "Config" replaces the items of an earlier one.
        releaseItems(p_.configItems, kel::countWithin(p_.configItems, p_.configItemCount),
                     kLangSlots);
        if (!kel::readArray(config, "ConfigItem", p_.configItems, p_.configItemCount,
                            [this](ConfigItem& item, xmlNode* node) { readItem(item, node); }))
            ok_ = false;
    }

    void readItem(ConfigItem& item, xmlNode* node) noexcept {
        kel::copyAttr(item.name, node, "name");
        kel::copyAttr(item.group, node, "group");
        item.readyOnly = kel::attrInt(node, "readyOnly");
        item.displayType = findDisplayType(const_cast<char*>(kel::attr(node, "displayType").get()));
        item.valueType = findValueType(const_cast<char*>(kel::attr(node, "valueType").get()));
        item.owner = &p_;
        item.listEntries = kel::allocRecords<ListEntry>(kListCapacity);
        if (!item.listEntries) {
            ok_ = false;
            return;
        }

        ListText values;
        labelledEntries_ = 0;
        for (xmlNode* child : kel::elements(node)) {
            kel::XmlText raw = kel::content(child);
            if (raw.empty()) continue;
            kel::RecordText text = converter_.toRecord(raw.get());
            if (isElement(child, "Label")) {
                store(item.label, child, text);
            } else if (isElement(child, "Description")) {
                store(item.description, child, text);
            } else if (isElement(child, "ListItem")) {
                storeListLabels(item, child, text);
            } else if (isElement(child, "ListValue")) {
                values.assign(text);
            } else if (isElement(child, "DefaultValue")) {
                if (item.displayType == kListDisplayType) {
                    item.defaultInt = decimal(raw.get());
                } else {
                    text.copyTo(item.defaultValue);
                }
            }
        }

        item.listEntryCount = values.split([&](int m, const char* piece, std::size_t len) {
            ListEntry& entry = item.listEntries[m];
            kel::copyField(entry.value, piece, len, values.enc());
            entry.owner = &item;
        });
        // Labels of entries without a value lie beyond listEntryCount, where
        // freeProfile does not look.
        for (int j = item.listEntryCount; j < labelledEntries_; ++j) {
            char*(&labels)[kLangSlots] = item.listEntries[j].label;
            releaseTexts(labels, kLangSlots);
            std::memset(labels, 0, sizeof labels);
        }
    }

    // The slot of an element's language: 0 without "lang", -1 for a
    // language that finds no free slot.
    int slotOf(const xmlNode* n) noexcept {
        kel::XmlText lang = kel::attr(n, "lang");
        if (!lang) return 0;
        int slot = getLangIndex(p_.langCount, p_.langNames, lang.get());
        if (slot < 0 && p_.langCount < kLangSlots) ok_ = false;  // the name was not copied
        return slot;
    }

    // Replaces the text in the element's language slot by a copy of text.
    void store(char* (&texts)[kLangSlots], const xmlNode* n, kel::RecordText text) noexcept {
        int slot = slotOf(n);
        if (slot >= 0) replace(texts[slot], text.text ? text.text : "", text.len, text.enc);
    }

    // Piece m of a "ListItem" becomes the label of list entry m.
    void storeListLabels(ConfigItem& item, const xmlNode* n, kel::RecordText text) noexcept {
        int slot = slotOf(n);
        if (slot < 0) return;
        ListText labels;
        labels.assign(text);
        int pieces = labels.split([&](int m, const char* piece, std::size_t len) {
            replace(item.listEntries[m].label[slot], piece, len, labels.enc());
        });
        if (pieces > labelledEntries_) labelledEntries_ = pieces;
    }

    void replace(char*& field, const char* text, std::size_t len, kel::Enc enc) noexcept {
        if (!kel::replaceText(field, text, len, enc)) ok_ = false;
    }

    Profile& p_;
    kel::Converter converter_;
    int labelledEntries_ = 0;  // list entries of the current item given a label
    bool ok_ = true;
};

}  // namespace

int32_t praseXmlFile(const char* path, Profile* record) {
    if (!record) return 1;
    // The file name is taken from the path before the file is opened, and
    // stays whatever happens to the read.
    const char* slash = path ? std::strrchr(path, '/') : nullptr;
    return kel::readFile(
        path,
        [&] {
            std::memset(record, 0, sizeof *record);
            if (slash) kel::copyField(record->fileName, slash + 1);
        },
        [&](xmlNode* root) { return Reader(*record).read(root); }, [&] { freeProfile(record); });
}
