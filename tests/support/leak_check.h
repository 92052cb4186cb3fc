// A fixture whose tests together must leave as many descriptors and children as they found.
#pragma once

#include "tests/support/leftovers.h"

#include <gtest/gtest.h>

namespace vornak::test {

class LeakCheck : public testing::Test {
protected:
    static void SetUpTestSuite() { s_before = countLeftovers(); }
    static void TearDownTestSuite()
    {
        const Leftovers after = countLeftovers();
        EXPECT_EQ(after.descriptors, s_before.descriptors);
        EXPECT_EQ(after.children, s_before.children);
    }

private:
    static inline Leftovers s_before;
};

} // namespace vornak::test
