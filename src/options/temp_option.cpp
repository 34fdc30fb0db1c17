// Temporary option files: a flat list of named values under "tempOption".
#include <cstring>

#include "core/xml.h"
#include "kelProfile.h"

namespace {
constexpr const char* kItem = "optionItem";
}

int32_t praseOptionXmlFile(const char* path, TempOption* record) {
    if (!record) return 1;
    kel::Converter converter;
    auto readItem = [&](TempOptionItem& item, xmlNode* node) {
        kel::XmlText text = kel::content(node);
        converter.toRecord(text.get()).copyTo(item.value);
        kel::copyAttr(item.name, node, "name");
        if (std::strcmp(item.name, "profileName") == 0) {
            kel::copyField(record->profileName, item.value, kel::Enc::Gbk);
        } else if (std::strcmp(item.name, "isSystem") == 0) {
            record->isSystem = kel::parseInt(item.value);
        }
    };
    return kel::readFile(
        path, [&] { std::memset(record, 0, sizeof *record); },
        [&](xmlNode* root) {
            return kel::readArray(root, kItem, record->tempItems, record->tempItemCount, readItem);
        },
        [] {});
}

int32_t saveOptionXmlFile(const char* path, const TempOption* record) {
    if (!record || (record->tempItemCount > 0 && !record->tempItems)) return 1;
    kel::WriteDoc doc("tempOption");
    kel::Converter converter;
    for (int32_t i = 0; i < record->tempItemCount; ++i) {
        const TempOptionItem& item = record->tempItems[i];
        xmlNode* node =
            kel::addText(doc.root(), kItem, converter.toFile(kel::field(item.value).text));
        kel::setAttr(node, "name", kel::field(item.name).text);
    }
    return doc.save(path);
}
