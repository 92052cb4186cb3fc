// Descriptors and child processes, counted before and after a family of tests.
#pragma once

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace vornak::test {

inline std::ptrdiff_t openDescriptors()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// The children of this process, ended ones that nobody waited for included.
inline std::ptrdiff_t children()
{
    std::ptrdiff_t count = 0;
    for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream list(task.path() / "children");
        count += std::distance(std::istream_iterator<int>(list), {});
    }
    return count;
}

/// A fixture whose tests together must leave as many descriptors and children as they found.
class LeakCheck : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_descriptors = openDescriptors();
        s_children = children();
    }
    static void TearDownTestSuite()
    {
        EXPECT_EQ(openDescriptors(), s_descriptors);
        EXPECT_EQ(children(), s_children);
    }

private:
    static inline std::ptrdiff_t s_descriptors, s_children;
};

} // namespace vornak::test
