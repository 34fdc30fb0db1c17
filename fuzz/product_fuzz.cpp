// Product information: the input read as a product file.
#include <cstdlib>

#include "kelProfile.h"
#include "support.h"

KELFUZZ_TARGET(product) {
    std::string input = kelfuzz::writeInput("input.xml", data, size);
    RecordArray result{reinterpret_cast<void*>(1), -1};
    if (praseProductXmlFile(input.c_str(), &result) != 0) {
        KELFUZZ_CHECK(result.records == nullptr && result.count == 0);
        return 0;
    }
    KELFUZZ_CHECK(result.count >= 0 && result.records != nullptr);
    const auto* products = static_cast<const ProductInfo*>(result.records);
    for (int32_t i = 0; i < result.count; ++i) {
        KELFUZZ_CHECK(kelfuzz::terminated(products[i].title));
        KELFUZZ_CHECK(kelfuzz::terminated(products[i].content));
        KELFUZZ_CHECK(kelfuzz::terminated(products[i].buttonName));
        KELFUZZ_CHECK(kelfuzz::terminated(products[i].linkURl));
    }
    std::free(result.records);
    return 0;
}
