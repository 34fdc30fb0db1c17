// Product information files.
#include <cstdlib>
#include <cstring>
#include <string>

#include "kelProfile.h"
#include "support.h"

namespace {

class ProductFile : public ::testing::Test {
protected:
    ~ProductFile() override { std::free(result.records); }
    int read(const std::string& xml) {
        std::free(result.records);
        writeFile(dir.file("products.xml"), xml);
        return praseProductXmlFile(dir.file("products.xml").c_str(), &result);
    }
    const ProductInfo& product(int k) const { return static_cast<ProductInfo*>(result.records)[k]; }
    TempDir dir;
    RecordArray result{nullptr, 0};
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
    ASSERT_EQ(result.count, 2);
    EXPECT_STREQ(product(0).title, kGbkZhongwen);
    EXPECT_STREQ(product(0).content, "body");
    EXPECT_STREQ(product(0).buttonName, "Buy");
    EXPECT_STREQ(product(0).linkURl, "https://example.com/a");
    EXPECT_STREQ(product(1).title, "only a title");
    EXPECT_STREQ(product(1).content, "");
    EXPECT_STREQ(product(1).buttonName, "");
    EXPECT_STREQ(product(1).linkURl, "");

    ASSERT_EQ(read("<products><item/></products>"), 0);
    EXPECT_EQ(result.count, 0);
}

TEST_F(ProductFile, OverLongTextsAreCutToTheirFields) {
    std::string longText(3000, 'x');
    ASSERT_EQ(read("<p><product><title>" + longText + "</title><content>" + longText +
                   "</content></product></p>"),
              0);
    EXPECT_EQ(std::strlen(product(0).title), 255u);
    EXPECT_EQ(std::strlen(product(0).content), 2047u);
}

TEST_F(ProductFile, FailedReadsLeaveNoRecords) {
    for (const char* text : {"", "<products><product>", "<?xml version=\"1.0\"?>"}) {
        result.count = 5;
        EXPECT_EQ(read(text), 1) << text;
        EXPECT_TRUE(!result.records && result.count == 0) << text;
    }
    result.count = 5;
    EXPECT_EQ(praseProductXmlFile(dir.file("missing.xml").c_str(), &result), 1);
    EXPECT_TRUE(!result.records && result.count == 0);
    EXPECT_EQ(praseProductXmlFile(dir.file("products.xml").c_str(), nullptr), 1);
}

}  // namespace
