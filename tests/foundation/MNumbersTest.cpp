#include "foundation/MNumbers.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(Numbers, FloatToIntegerIsDefinedForEveryInput) {
    constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(ToInteger(-2.9F), -2);
    EXPECT_EQ(ToInteger(2147483520.0F), 2147483520);
    EXPECT_EQ(ToInteger(2147483647.5), 2147483647);
    EXPECT_EQ(ToInteger(-2147483648.0), lowest);
    for (const double outside :
         {2147483648.0, -2147483649.0, 1e300, -1e300, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
        EXPECT_EQ(ToInteger(outside), lowest) << outside;
        EXPECT_EQ(ToInteger(static_cast<float>(outside)), lowest) << outside;
    }
}
