// Conversion profiles: what the record's lifecycle, the reader and the two
// writers share. A profile file looks like
//   Profiles / Main    (Name, DisplayName*, Desc*, Format, ExtName,
//                       IsSysProfile, Type, Device)
//            / Group   (ID, DisplayName*)
//            / Config  / ConfigItem* (Label*, Description*, ListItem*,
//                                     ListValue, DefaultValue)
// where * repeats once per language ("lang" attribute) or per item.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/xml.h"
#include "kelProfile.h"

namespace kel::profile {

constexpr int kLangSlots = 10;     // every per-language array
constexpr int kListCapacity = 20;  // list entries the reader makes room for
constexpr int kListDisplayType = 20;

// Releases the texts of slots 0 to slots - 1.
void releaseTexts(char* (&texts)[kLangSlots], int slots) noexcept;
// Releases everything count items own (texts of slots 0 to slots - 1),
// then the array itself.
void releaseItems(ConfigItem* items, int count, int slots) noexcept;

// ---- writing -------------------------------------------------------------

// The languages one loop of elements runs over: slot names become "lang"
// tags when the profile has two or more languages.
class Languages {
public:
    explicit Languages(const Profile& p) noexcept
        : names_(p.langNames),
          slots_(kel::countWithin(p.langCount, kLangSlots)),
          tagged_(p.langCount >= 2) {}
    int slots() const noexcept { return slots_; }
    // The tag of a slot, or null for an untagged element.
    const char* tag(int slot) const noexcept { return tagged_ ? names_[slot] : nullptr; }

private:
    char* const* names_;
    int slots_;
    bool tagged_;
};

// A comma-joined list text, placed by list position: every position but
// the first is preceded by a comma. The text stays within 1023 bytes; the
// first piece that does not fit whole ends it.
class JoinedList {
public:
    void clear() noexcept;
    // Appends piece (nothing for null) at list position.
    void add(int position, const char* piece) noexcept;
    const char* text() const noexcept { return buf_; }
    bool empty() const noexcept { return len_ == 0; }

private:
    char buf_[1024] = "";
    std::size_t len_ = 0;
    bool full_ = false;
};

// A profile document under construction and its conversion buffer.
class Writer {
public:
    Writer() noexcept : doc_("Profiles") {}
    xmlNode* root() const noexcept { return doc_.root(); }
    // An element holding record text converted to UTF-8 (null text and
    // text that does not convert give an empty element), tagged when lang
    // is not null.
    xmlNode* add(xmlNode* parent, const char* name, const char* text,
                 const char* lang = nullptr) noexcept;
    // An element holding a field the file keeps as the record does: written
    // as it is when it is valid UTF-8, else converted from GBK (the reader
    // converted it), so that every file written reads back.
    xmlNode* addAsIs(xmlNode* parent, const char* name, const char* text) noexcept;
    // One tagged element per slot whose text is not null.
    void addPerLanguage(xmlNode* parent, const char* name, char* const (&texts)[kLangSlots],
                        const Languages& langs) noexcept;
    // "Format", "ExtName", "IsSysProfile", "Type" and "Device" of "Main".
    void addSettings(xmlNode* main, const Profile& p) noexcept;
    // "Group" with its ID and its display names in p's own languages.
    void addGroup(const Profile& p) noexcept;
    // A "ConfigItem" with its five attributes.
    xmlNode* addConfigItem(xmlNode* config, const ConfigItem& item) noexcept;
    // "Label" and "Description" of every language.
    void addItemTexts(xmlNode* node, const ConfigItem& item, const Languages& langs) noexcept;
    // "ListItem" holding the joined labels, unless they are empty; whether
    // it was written.
    bool addListLabels(xmlNode* node, const char* lang) noexcept;
    // "ListValue" (always) and "DefaultValue".
    void addValues(xmlNode* node, const ConfigItem& item) noexcept;
    int32_t save(const char* path) noexcept { return doc_.save(path); }

    JoinedList joined;  // filled by the caller before addListLabels

private:
    WriteDoc doc_;
    Converter converter_;
};

}  // namespace kel::profile
