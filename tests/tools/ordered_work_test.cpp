#include "tools/files/ordered_work.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <stdexcept>

namespace vornak::test {
namespace {

using tool::workInOrder;

/// The numbers below `end`, one after the other.
auto numbers(int end)
{
    return [end, n = 0]() mutable { return n < end ? std::optional<int>(n++) : std::nullopt; };
}

TEST(OrderedWork, EmitsInOrderWhateverTakesLonger)
{
    for (const unsigned threads : {0U, 1U, 2U, 7U}) {
        std::vector<int> emitted;
        workInOrder(
            threads, numbers(300),
            [](int n) {
                if (n % 50 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(5));
                return n * 2;
            },
            [&](int n) { emitted.push_back(n); });
        ASSERT_EQ(emitted.size(), 300U) << threads;
        for (int i = 0; i < 300; ++i) EXPECT_EQ(emitted[static_cast<std::size_t>(i)], i * 2);
    }
}

TEST(OrderedWork, TakesNoMoreThanItsPlacesAheadOfASlowItem)
{
    std::atomic<int> taken = 0;
    int mostAhead = 0;
    int emitted = 0;
    workInOrder(
        2,
        [&, next = numbers(500)]() mutable {
            ++taken;
            return next();
        },
        [](int n) {
            if (n == 0) std::this_thread::sleep_for(std::chrono::milliseconds(50));
            return n;
        },
        [&](int) { mostAhead = std::max(mostAhead, taken - emitted++); });
    EXPECT_EQ(emitted, 500);
    EXPECT_LE(mostAhead, 17); // 2 threads with 8 places each, and the end
    EXPECT_GE(mostAhead, 16); // the others did not wait for the slow one
}

TEST(OrderedWork, EmitsWhatIsReadyWhileANameAndASlowItemAreAwaited)
{
    std::atomic<int> taken = 0, emitted = 0;
    std::atomic<bool> inTime = true;
    const auto await = [&](const std::atomic<int> &count) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (count < 16 && inTime) inTime = std::chrono::steady_clock::now() < end;
    };
    workInOrder(
        2,
        [&, next = numbers(18)]() mutable {
            if (taken == 18) await(emitted); // the list is slow to go on
            const auto number = next();
            ++taken;
            return number;
        },
        [&](int n) {
            if (n == 0) await(taken); // so that all places are occupied
            if (n == 16) await(emitted);
            return n;
        },
        [&](int) { ++emitted; });
    EXPECT_TRUE(inTime);
    EXPECT_EQ(emitted, 18);
}

TEST(OrderedWork, HandsOnWhatAnyStepThrows)
{
    const auto fail = [](bool now) {
        if (now) throw std::runtime_error("stop");
    };
    for (const int step : {0, 1, 2}) {
        int count = 0;
        EXPECT_THROW(workInOrder(
                         3,
                         [&, next = numbers(100)]() mutable {
                             fail(step == 0 && count++ == 9);
                             return next();
                         },
                         [&](int n) {
                             fail(step == 1 && n == 9);
                             return n;
                         },
                         [&](int n) { fail(step == 2 && n == 9); }),
                     std::runtime_error)
            << step;
    }
}

} // namespace
} // namespace vornak::test
