// Temporary option files in kelprofile.
#include <cstdlib>
#include <cstring>

#include "kelProfile.h"
#include "tool.h"

namespace {

bool recognise(const xmlNode* root) {
    return std::strcmp(reinterpret_cast<const char*>(root->name), "tempOption") == 0;
}

bool show(const char* path, tool::Printer& p) {
    TempOption record;
    if (praseOptionXmlFile(path, &record) != 0) return false;
    p.number("isSystem", record.isSystem).gbk("profileName", record.profileName);
    for (int i = 0; i < record.tempItemCount; ++i)
        p.open("optionItem", i)
            .text("name", record.tempItems[i].name)
            .gbk("value", record.tempItems[i].value)
            .close();
    std::free(record.tempItems);
    return true;
}

int rewrite(const char* src, const char* dst) {
    TempOption record;
    if (praseOptionXmlFile(src, &record) != 0) return 1;
    int result = saveOptionXmlFile(dst, &record);
    std::free(record.tempItems);
    return result;
}

tool::RegisterFamily family({"temporary options", "\"tempOption\"", recognise, show, rewrite,
                             nullptr, true});

}  // namespace
