// Temporary option files: a flat list of named values under "tempOption".
#include <cstring>

#include "kelProfile.h"
#include "xml/xml.h"

namespace {
constexpr const char* kItem = "optionItem";
}

int32_t praseOptionXmlFile(const char* path, TempOption* record) {
    std::memset(record, 0, sizeof *record);
    kel::ReadDoc doc(path);
    if (!doc) return 1;

    int count = kel::countElements(doc.root(), kItem);
    auto* items = kel::allocRecords<TempOptionItem>(count);
    if (!items) return 1;
    record->tempItems = items;
    record->tempItemCount = count;

    kel::Converter converter;
    TempOptionItem* item = items;
    for (xmlNode* node : kel::elements(doc.root(), kItem)) {
        kel::XmlText text = kel::content(node);
        converter.toRecord(text.get()).copyTo(item->value);
        kel::copyAttr(item->name, node, "name");
        if (std::strcmp(item->name, "profileName") == 0) {
            kel::copyField(record->profileName, item->value, kel::Enc::Gbk);
        } else if (std::strcmp(item->name, "isSystem") == 0) {
            record->isSystem = kelAtoi(item->value);
        }
        ++item;
    }
    return doc.finish();
}

int32_t saveOptionXmlFile(const char* path, const TempOption* record) {
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
