#include "server/compareVersions.h"

#include <gtest/gtest.h>

namespace {

using mdlUtility::compareVersions;
using mdlUtility::parseVersion;
using Numbers = std::array<long, 4>;

TEST(CompareVersions, ReadsUpToFourNumbersInEitherForm) {
    EXPECT_EQ(parseVersion("1.3.0.13"), (Numbers{1, 3, 0, 13}));
    EXPECT_EQ(parseVersion("1.3(0.13)"), (Numbers{1, 3, 0, 13}));
    EXPECT_EQ(parseVersion("4.12"), (Numbers{4, 12, 0, 0}));
    EXPECT_EQ(parseVersion("1.2.3.4.5(6)"), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(parseVersion("1..beta.7 "), (Numbers{1, 0, 0, 7}));
    EXPECT_EQ(parseVersion(""), Numbers{});
}

TEST(CompareVersions, DecidesAtTheFirstDifferentNumber) {
    const std::pair<const char*, const char*> newer[] = {{"1.3.0.14", "1.3.0.13"},
                                                         {"1.10", "1.9.9.9"},
                                                         {"2.0", "1.99.99.99"},
                                                         {"0.0.0.1", ""},
                                                         {"1.3(1.0)", "1.3.0.99"}};
    for (const auto& [a, b] : newer) {
        EXPECT_EQ(compareVersions(a, b), 1) << a;
        EXPECT_EQ(compareVersions(b, a), -1) << a;
    }
    EXPECT_EQ(compareVersions("1.3.0.13", "1.3(0.13)"), 0);
    EXPECT_EQ(compareVersions("1.3", "1.3.0.0"), 0);
}

}  // namespace
