// Product information files: "product" elements under a root of any name,
// each with optional "title", "content", "buttonName" and "linkURl" texts,
// kept in GBK (or as the file's UTF-8 when a text has no GBK form).
#include "core/xml.h"
#include "kelProfile.h"

namespace {

using kel::isElement;

// Fills a product from its text elements; an empty text leaves its field as
// it was, so a repeated element replaces the earlier text only when it has
// text of its own.
void readProduct(ProductInfo& product, xmlNode* node, kel::Converter& converter) {
    for (xmlNode* part : kel::elements(node)) {
        kel::XmlText raw = kel::content(part);
        kel::RecordText text = converter.toRecord(raw.get());
        if (isElement(part, "title")) {
            text.copyTo(product.title);
        } else if (isElement(part, "content")) {
            text.copyTo(product.content);
        } else if (isElement(part, "buttonName")) {
            text.copyTo(product.buttonName);
        } else if (isElement(part, "linkURl")) {
            text.copyTo(product.linkURl);
        }
    }
}

}  // namespace

int32_t praseProductXmlFile(const char* path, RecordArray* result) {
    if (!result) return 1;
    kel::Converter converter;
    ProductInfo* products = nullptr;
    int32_t count = 0;
    return kel::readFile(
        path,
        [&] {
            std::free(products);
            products = nullptr;
            result->records = nullptr;
            result->count = 0;
        },
        [&](xmlNode* root) {
            if (!kel::readArray(root, "product", products, count,
                                [&](ProductInfo& product, xmlNode* node) {
                                    readProduct(product, node, converter);
                                }))
                return false;
            result->records = products;
            result->count = count;
            return true;
        },
        [] {});
}
