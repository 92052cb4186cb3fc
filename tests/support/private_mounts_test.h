// A fixture whose tests have mounts of their own, or are skipped.
#pragma once

#include "tests/support/private_mounts.h"

#include <gtest/gtest.h>

namespace vornak::test {

/// What derives from it calls its SetUp() first, and goes on unless IsSkipped().
class PrivateMountsTest : public testing::Test {
protected:
    void SetUp() override
    {
        static const std::string s_WhyNot = enterPrivateMounts();
        if (!s_WhyNot.empty()) GTEST_SKIP() << s_WhyNot;
    }
};

} // namespace vornak::test
