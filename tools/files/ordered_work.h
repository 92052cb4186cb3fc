// Work on many items by all cores, with the results in the order of the items.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace vornak::tool {

/// The state of one workInOrder(). Results wait in a ring of fixed size, which bounds the memory
/// however many items there are: nobody takes an item whose place is still occupied.
///
/// Whoever has finished an item emits all that is ready, unless another is about it. So nobody
/// sleeps or is woken between items, and what is ready never waits for a list of names that is
/// slow to come (a general pipeline may hand a ready result to the very thread that then reads).
template <class Item, class Result>
class OrderedWork {
public:
    explicit OrderedWork(std::size_t places) : ring_(places) {}

    template <class Next, class Work, class Emit>
    void runWorker(Next &next, Work &work, Emit &emit)
    {
        try {
            std::size_t number = 0;
            while (std::optional<Item> item = takeItem(next, number)) {
                put(number, work(std::move(*item)));
                emitReady(emit);
            }
        } catch (...) {
            fail(std::current_exception());
        }
    }

    void fail(std::exception_ptr error)
    {
        const std::lock_guard lock(mutex_);
        if (!error_) error_ = std::move(error);
        roomCame_.notify_all();
    }

    void rethrow() const
    {
        if (error_) std::rethrow_exception(error_);
    }

private:
    /// `next` is called by one worker at a time, outside the lock that emitting needs.
    template <class Next>
    std::optional<Item> takeItem(Next &next, std::size_t &number)
    {
        const std::lock_guard turn(turn_);
        {
            std::unique_lock lock(mutex_);
            roomCame_.wait(lock, [&] { return error_ || taken_ - emitted_ < ring_.size(); });
            if (error_ || ended_) return std::nullopt;
        }
        std::optional<Item> item = next();
        const std::lock_guard lock(mutex_);
        if (item)
            number = taken_++;
        else
            ended_ = true;
        return item;
    }

    void put(std::size_t number, Result result)
    {
        const std::lock_guard lock(mutex_);
        ring_[number % ring_.size()] = std::move(result);
    }

    template <class Emit>
    void emitReady(Emit &emit)
    {
        std::unique_lock lock(mutex_);
        if (emits_) return;
        emits_ = true;
        while (std::optional<Result> ready =
                   std::exchange(ring_[emitted_ % ring_.size()], std::nullopt)) {
            lock.unlock();
            emit(std::move(*ready));
            lock.lock();
            ++emitted_;
            roomCame_.notify_one();
        }
        emits_ = false;
    }

    std::mutex turn_, mutex_;
    std::condition_variable roomCame_;
    std::vector<std::optional<Result>> ring_;
    std::size_t taken_ = 0, emitted_ = 0;
    bool ended_ = false, emits_ = false;
    std::exception_ptr error_;
};

/**
 * Calls `work` with each item of `next` (an optional, empty at the end) on `threads` threads,
 * this one among them, and `emit` with the results, one at a time and in the order of the items.
 * What any of them throws ends the work and is thrown again.
 */
template <class Next, class Work, class Emit>
void workInOrder(unsigned threads, Next next, Work work, Emit emit)
{
    using Item = typename std::invoke_result_t<Next &>::value_type;
    using Result = std::invoke_result_t<Work &, Item>;
    constexpr std::size_t kAhead = 8; // results a thread may have waiting for a slow item

    OrderedWork<Item, Result> shared(std::max(threads, 1U) * kAhead);
    {
        std::vector<std::jthread> others;
        try {
            for (unsigned i = 1; i < threads; ++i)
                others.emplace_back([&] { shared.runWorker(next, work, emit); });
        } catch (...) {
            shared.fail(std::current_exception());
        }
        shared.runWorker(next, work, emit);
    }
    shared.rethrow();
}

} // namespace vornak::tool
