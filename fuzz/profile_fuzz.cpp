// Conversion profiles: the input read as a profile, then deep-copied; the
// original and the copy saved and merged, and every saved file read back.
#include <cstring>

#include "kelProfile.h"
#include "support.h"

namespace {

constexpr int kSlots = 10;
constexpr int kListCapacity = 20;

// Heap texts of the language slots in use are bounded; slots past langCount
// hold nothing.
void checkTexts(char* const (&texts)[kSlots], int langCount) {
    for (int s = 0; s < kSlots; ++s) {
        KELFUZZ_CHECK(kelfuzz::boundedText(texts[s]));
        if (s >= langCount) KELFUZZ_CHECK(texts[s] == nullptr);
    }
}

void checkProfile(const Profile& p) {
    KELFUZZ_CHECK(kelfuzz::terminated(p.fileName));
    KELFUZZ_CHECK(kelfuzz::terminated(p.name));
    KELFUZZ_CHECK(kelfuzz::terminated(p.format));
    KELFUZZ_CHECK(kelfuzz::terminated(p.extName));
    KELFUZZ_CHECK(p.langCount >= 1 && p.langCount <= kSlots);
    for (int s = p.langCount; s < kSlots; ++s) KELFUZZ_CHECK(p.langNames[s] == nullptr);
    checkTexts(p.displayName, p.langCount);
    checkTexts(p.desc, p.langCount);
    checkTexts(p.groupDisplayName, p.langCount);
    KELFUZZ_CHECK(p.configItemCount >= 0);
    KELFUZZ_CHECK(p.configItemCount == 0 || p.configItems != nullptr);
    for (int k = 0; k < p.configItemCount; ++k) {
        const ConfigItem& item = p.configItems[k];
        KELFUZZ_CHECK(kelfuzz::terminated(item.name));
        KELFUZZ_CHECK(kelfuzz::terminated(item.group));
        KELFUZZ_CHECK(kelfuzz::terminated(item.defaultValue));
        KELFUZZ_CHECK(item.owner == &p);
        checkTexts(item.label, p.langCount);
        checkTexts(item.description, p.langCount);
        KELFUZZ_CHECK(item.listEntryCount >= 0 && item.listEntryCount <= kListCapacity);
        KELFUZZ_CHECK(item.listEntries != nullptr);
        for (int j = 0; j < item.listEntryCount; ++j) {
            const ListEntry& entry = item.listEntries[j];
            KELFUZZ_CHECK(kelfuzz::terminated(entry.value));
            KELFUZZ_CHECK(entry.owner == &item);
            checkTexts(entry.label, p.langCount);
        }
    }
}

// A heap text and its copy say the same (a copy of an empty text may be
// null).
bool sameText(const char* a, const char* b) {
    return std::strcmp(a ? a : "", b ? b : "") == 0;
}

bool sameTexts(char* const (&a)[kSlots], char* const (&b)[kSlots]) {
    for (int s = 0; s < kSlots; ++s)
        if (!sameText(a[s], b[s])) return false;
    return true;
}

void checkSameProfile(const Profile& a, const Profile& b) {
    KELFUZZ_CHECK(std::strcmp(a.fileName, b.fileName) == 0 && std::strcmp(a.name, b.name) == 0 &&
                  std::strcmp(a.format, b.format) == 0 && std::strcmp(a.extName, b.extName) == 0);
    KELFUZZ_CHECK(a.langCount == b.langCount && a.isSysProfile == b.isSysProfile &&
                  a.type == b.type && a.device == b.device && a.groupId == b.groupId);
    KELFUZZ_CHECK(sameTexts(a.langNames, b.langNames) && sameTexts(a.displayName, b.displayName) &&
                  sameTexts(a.desc, b.desc) && sameTexts(a.groupDisplayName, b.groupDisplayName));
    KELFUZZ_CHECK(a.configItemCount == b.configItemCount);
    for (int k = 0; k < a.configItemCount; ++k) {
        const ConfigItem& x = a.configItems[k];
        const ConfigItem& y = b.configItems[k];
        KELFUZZ_CHECK(std::strcmp(x.name, y.name) == 0 && std::strcmp(x.group, y.group) == 0 &&
                      std::strcmp(x.defaultValue, y.defaultValue) == 0);
        KELFUZZ_CHECK(x.readyOnly == y.readyOnly && x.displayType == y.displayType &&
                      x.valueType == y.valueType && x.defaultInt == y.defaultInt);
        KELFUZZ_CHECK(sameTexts(x.label, y.label) && sameTexts(x.description, y.description));
        KELFUZZ_CHECK(x.listEntryCount == y.listEntryCount);
        for (int j = 0; j < x.listEntryCount; ++j) {
            KELFUZZ_CHECK(std::strcmp(x.listEntries[j].value, y.listEntries[j].value) == 0);
            KELFUZZ_CHECK(sameTexts(x.listEntries[j].label, y.listEntries[j].label));
        }
    }
}

// A file the library saved reads back as a profile.
void checkReadsBack(const std::string& path) {
    Profile back;
    KELFUZZ_CHECK(praseXmlFile(path.c_str(), &back) == 0);
    checkProfile(back);
    freeProfile(&back);
}

}  // namespace

KELFUZZ_TARGET(profile) {
    std::string input = kelfuzz::writeInput("input.xml", data, size);
    Profile original;
    if (praseXmlFile(input.c_str(), &original) != 0) {
        // Cleared, but for the file name taken from the path.
        KELFUZZ_CHECK(std::strcmp(original.fileName, "input.xml") == 0);
        std::memset(original.fileName, 0, sizeof original.fileName);
        KELFUZZ_CHECK(kelfuzz::cleared(original));
        return 0;
    }
    checkProfile(original);

    Profile copy;
    copyProfile(&copy, &original);
    checkProfile(copy);
    checkSameProfile(original, copy);

    // A copy turns empty texts into null ones, which the writer leaves out
    // (an empty list label then loses its place in the joined list), so the
    // original and its copy may save differently; a copy of the copy
    // changes nothing more and saves to the same file as the copy.
    std::string saved = kelfuzz::scratchFile("saved.xml");
    std::string savedCopy = kelfuzz::scratchFile("saved-copy.xml");
    std::string savedCopyOfCopy = kelfuzz::scratchFile("saved-copy-of-copy.xml");
    KELFUZZ_CHECK(saveXmlFile(saved.c_str(), &original) == 0);
    KELFUZZ_CHECK(saveXmlFile(savedCopy.c_str(), &copy) == 0);
    Profile copyOfCopy;
    copyProfile(&copyOfCopy, &copy);
    KELFUZZ_CHECK(saveXmlFile(savedCopyOfCopy.c_str(), &copyOfCopy) == 0);
    freeProfile(&copyOfCopy);
    KELFUZZ_CHECK(kelfuzz::readBytes(savedCopy) == kelfuzz::readBytes(savedCopyOfCopy));
    checkReadsBack(saved);
    checkReadsBack(savedCopy);

    std::string merged = kelfuzz::scratchFile("merged.xml");
    KELFUZZ_CHECK(megXmlFile(merged.c_str(), &copy, &original) == 0);
    checkReadsBack(merged);

    freeProfile(&copy);
    freeProfile(&original);
    return 0;
}
