// The Profile record's lifecycle: release and deep copy.
#include <cstdlib>
#include <cstring>

#include "profile/profile.h"

namespace kel::profile {

void releaseTexts(char* (&texts)[kLangSlots], int slots) noexcept {
    for (int s = 0; s < slots; ++s) std::free(texts[s]);
}

void releaseItems(ConfigItem* items, int count, int slots) noexcept {
    if (!items) return;
    for (int k = 0; k < count; ++k) {
        ConfigItem& item = items[k];
        releaseTexts(item.label, slots);
        releaseTexts(item.description, slots);
        for (int j = 0; j < kel::countWithin(item.listEntries, item.listEntryCount); ++j)
            releaseTexts(item.listEntries[j].label, slots);
        std::free(item.listEntries);
    }
    std::free(items);
}

}  // namespace kel::profile

namespace {

using namespace kel::profile;

// Heap copies of the texts of slots 0 to slots - 1; an empty text gives
// null. False when a copy cannot be allocated.
bool copyTexts(char* (&to)[kLangSlots], char* const (&from)[kLangSlots], int slots) {
    for (int s = 0; s < slots; ++s) {
        to[s] = kel::dupText(from[s]);
        if (!to[s] && from[s] && *from[s]) return false;
    }
    return true;
}

// A zero-filled array of exactly n records (a block without room for any
// record when n is 0); false only when the allocation fails.
template <class T>
bool allocExactly(T*& to, int n) {
    to = kel::allocRecords<T>(static_cast<std::size_t>(n));
    return to != nullptr;
}

bool copyItem(ConfigItem& to, const ConfigItem& from, Profile& owner, int slots) {
    to.readyOnly = from.readyOnly;
    to.displayType = from.displayType;
    to.valueType = from.valueType;
    to.listEntryCount = kel::countWithin(from.listEntries, from.listEntryCount);
    to.defaultInt = from.defaultInt;
    kel::copyField(to.name, from.name);
    kel::copyField(to.group, from.group);
    kel::copyField(to.defaultValue, from.defaultValue);
    to.owner = &owner;
    if (!copyTexts(to.label, from.label, slots) ||
        !copyTexts(to.description, from.description, slots) ||
        !allocExactly(to.listEntries, to.listEntryCount))
        return false;
    for (int j = 0; j < to.listEntryCount; ++j) {
        ListEntry& entry = to.listEntries[j];
        kel::copyField(entry.value, from.listEntries[j].value);
        entry.owner = &to;
        if (!copyTexts(entry.label, from.listEntries[j].label, slots)) return false;
    }
    return true;
}

bool copyInto(Profile& to, const Profile& from) {
    to.langCount = from.langCount;
    to.isSysProfile = from.isSysProfile;
    to.type = from.type;
    to.device = from.device;
    to.groupId = from.groupId;
    to.configItemCount = kel::countWithin(from.configItems, from.configItemCount);
    kel::copyField(to.fileName, from.fileName);
    kel::copyField(to.name, from.name);
    kel::copyField(to.format, from.format);
    kel::copyField(to.extName, from.extName);
    int slots = kel::countWithin(from.langCount, kLangSlots);
    if (!copyTexts(to.langNames, from.langNames, slots) ||
        !copyTexts(to.displayName, from.displayName, slots) ||
        !copyTexts(to.desc, from.desc, slots) ||
        !copyTexts(to.groupDisplayName, from.groupDisplayName, slots) ||
        !allocExactly(to.configItems, to.configItemCount))
        return false;
    // On a failure the items after k are still zero, so releasing the copy
    // reaches exactly what was copied.
    for (int k = 0; k < to.configItemCount; ++k)
        if (!copyItem(to.configItems[k], from.configItems[k], to, slots)) return false;
    return true;
}

}  // namespace

void freeProfile(Profile* record) {
    if (!record) return;
    int slots = kel::countWithin(record->langCount, kLangSlots);
    releaseItems(record->configItems,
                 kel::countWithin(record->configItems, record->configItemCount), slots);
    releaseTexts(record->langNames, slots);
    releaseTexts(record->displayName, slots);
    releaseTexts(record->desc, slots);
    releaseTexts(record->groupDisplayName, slots);
}

void freePtrProfile(Profile** cell) {
    if (!cell) return;
    freeProfile(*cell);
    std::free(cell);
}

void copyProfile(Profile* target, const Profile* source) {
    if (!target) return;
    std::memset(target, 0, sizeof *target);
    if (!source || copyInto(*target, *source)) return;
    freeProfile(target);
    std::memset(target, 0, sizeof *target);
}
