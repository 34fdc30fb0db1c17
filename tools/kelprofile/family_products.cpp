// Product information files: root "products", one record per product. The
// library only reads them, so lint checks the file directly.
#include <cstdlib>

#include "checks.h"
#include "family.h"
#include "xml.h"

namespace tool {

namespace {

void describeProduct(Fields& f, ProductInfo& product) {
    f.text("title", product.title, Code::Gbk);
    f.text("content", product.content, Code::Gbk);
    f.text("buttonName", product.buttonName, Code::Gbk);
    f.text("linkURl", product.linkURl, Code::Gbk);
}

struct Products : RecordTraits<RecordArray> {
    static int read(const char* path, RecordArray& r) { return praseProductXmlFile(path, &r); }
    static void release(RecordArray& r) { std::free(r.records); }
    static void describe(Fields& f, RecordArray& r) {
        auto* products = static_cast<ProductInfo*>(r.records);
        records(f, "product", products, r.count, INT32_MAX, describeProduct);
    }
};

// ---- lint: what the reader keeps of the file ----------------------------------

// A product's elements, each a GBK text of its field's width.
const Taken kFields[] = {{"title", Kind::Text, sizeof(ProductInfo{}.title)},
                         {"content", Kind::Text, sizeof(ProductInfo{}.content)},
                         {"buttonName", Kind::Text, sizeof(ProductInfo{}.buttonName)},
                         {"linkURl", Kind::Text, sizeof(ProductInfo{}.linkURl)},
                         {nullptr, Kind::Text, 0}};

void lintProducts(const xmlNode* root, Lint& lint) {
    static const char* const kRoot[] = {"product", nullptr};
    static const char* const kNames[] = {"title", "content", "buttonName", "linkURl", nullptr};
    lint.unknownChildren(root, "", kRoot);
    for (const xmlNode* product : elementChildren(root)) {
        if (!named(product, "product")) continue;
        lint.unknownChildren(product, "product", kNames);
        for (const Taken* t = kFields; t->name; ++t) {
            // An element without text leaves its field as it was.
            lint.repeated(product, "product", t->name, false);
            for (const xmlNode* c : elementChildren(product))
                if (named(c, t->name))
                    lint.text(c, std::string("product/") + t->name, content(c), t->width, true);
        }
    }
}

}  // namespace

const Family kProducts = readOnly<Products>("product information", "products", lintProducts, true);

}  // namespace tool
