// Product information files.
#include <cstring>
#include <string>

#include "kelProfile.h"
#include "support.h"

namespace {

using Products = Owned<Zeroed<RecordArray, releaseBlock<ProductInfo>>, praseProductXmlFile>;

class ProductFile : public ::testing::Test {
protected:
    int read(const std::string& xml) {
        return result.read(writeFile(dir.file("products.xml"), xml));
    }
    const ProductInfo& product(int k) { return itemOf<ProductInfo>(*result, k); }
    TempDir dir;
    Products result;
};

TEST_F(ProductFile, ReadsProductsInFileOrder) {
    std::string zh = kUtf8Zhongwen;
    ASSERT_EQ(read("<products><product><title>" + zh +
                   "</title><content>body</content><buttonName>Buy</buttonName>"
                   "<linkURl>https://example.com/a</linkURl><title></title>"
                   "<linkURL>wrong case</linkURL></product>"
                   "<other><title>not a product</title></other>"
                   "<product><title>only a title</title></product></products>"),
              0);
    ASSERT_EQ(result->count, 2);
    EXPECT_STREQ(product(0).title, kGbkZhongwen);
    EXPECT_STREQ(product(0).content, "body");
    EXPECT_STREQ(product(0).buttonName, "Buy");
    EXPECT_STREQ(product(0).linkURl, "https://example.com/a");
    EXPECT_STREQ(product(1).title, "only a title");
    EXPECT_STREQ(product(1).content, "");
    EXPECT_STREQ(product(1).buttonName, "");
    EXPECT_STREQ(product(1).linkURl, "");

    ASSERT_EQ(read("<products><item/></products>"), 0);
    EXPECT_EQ(result->count, 0);
}

}  // namespace
