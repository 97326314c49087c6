#include "tessarium/tessarium.h"
#include <gtest/gtest.h>
TEST(Smoke, Version) { EXPECT_STREQ(qv7::tessarium::version(), "4.8.0.0"); }
