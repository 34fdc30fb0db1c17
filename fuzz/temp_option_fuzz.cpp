// Temporary options: the input read, saved, and the saved file read back
// with the same items under the same names.
#include <cstdlib>
#include <cstring>

#include "kelProfile.h"
#include "support.h"

namespace {

void checkOption(const TempOption& o) {
    KELFUZZ_CHECK(o.tempItemCount >= 0);
    KELFUZZ_CHECK(o.tempItems != nullptr);
    KELFUZZ_CHECK(kelfuzz::terminated(o.profileName));
    for (int32_t i = 0; i < o.tempItemCount; ++i) {
        KELFUZZ_CHECK(kelfuzz::terminated(o.tempItems[i].name));
        KELFUZZ_CHECK(kelfuzz::terminated(o.tempItems[i].value));
    }
}

}  // namespace

KELFUZZ_TARGET(temp_option) {
    std::string input = kelfuzz::writeInput("input.xml", data, size);
    TempOption original;
    if (praseOptionXmlFile(input.c_str(), &original) != 0) {
        KELFUZZ_CHECK(kelfuzz::cleared(original));
        return 0;
    }
    checkOption(original);

    std::string saved = kelfuzz::scratchFile("saved.xml");
    KELFUZZ_CHECK(saveOptionXmlFile(saved.c_str(), &original) == 0);
    TempOption back;
    KELFUZZ_CHECK(praseOptionXmlFile(saved.c_str(), &back) == 0);
    checkOption(back);
    // Names are written as read; values may change when they have no GBK
    // form, but every item comes back.
    KELFUZZ_CHECK(back.tempItemCount == original.tempItemCount);
    for (int32_t i = 0; i < back.tempItemCount; ++i)
        KELFUZZ_CHECK(std::strcmp(back.tempItems[i].name, original.tempItems[i].name) == 0);

    std::free(back.tempItems);
    std::free(original.tempItems);
    return 0;
}
