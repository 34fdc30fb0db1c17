// Option groups: the input read into a group from createGroupOPtion, then
// read again into the same group (which releases the first read's items),
// and the group released.
#include "kelProfile.h"
#include "support.h"

namespace {

void checkGroup(const GroupOPtion& g) {
    KELFUZZ_CHECK(g.optionItemCount >= 0);
    KELFUZZ_CHECK(g.optionItemCount == 0 || g.optionItems != nullptr);
    for (int32_t i = 0; i < g.optionItemCount; ++i) {
        const OptionItem& item = g.optionItems[i];
        KELFUZZ_CHECK(kelfuzz::terminated(item.name));
        KELFUZZ_CHECK(kelfuzz::boundedText(item.description));
        KELFUZZ_CHECK(item.childItemCount >= 0);
        KELFUZZ_CHECK(item.childItemCount == 0 || item.childItems != nullptr);
        for (int32_t k = 0; k < item.childItemCount; ++k) {
            const ChildOptionItem& child = item.childItems[k];
            KELFUZZ_CHECK(kelfuzz::terminated(child.name));
            KELFUZZ_CHECK(kelfuzz::boundedText(child.values));
            KELFUZZ_CHECK(kelfuzz::boundedText(child.defaultValue));
            KELFUZZ_CHECK(kelfuzz::boundedText(child.description));
        }
    }
}

}  // namespace

KELFUZZ_TARGET(option_group) {
    std::string input = kelfuzz::writeInput("input.xml", data, size);
    GroupOPtion* group = createGroupOPtion(nullptr);
    KELFUZZ_CHECK(group != nullptr);
    for (int pass = 0; pass < 2; ++pass) {
        if (praseOPtionXmlFile(input.c_str(), group) != 0) {
            KELFUZZ_CHECK(group->optionItems == nullptr && group->optionItemCount == 0);
            break;
        }
        checkGroup(*group);
    }
    freeGroupOPtion(&group);
    KELFUZZ_CHECK(group == nullptr);
    return 0;
}
