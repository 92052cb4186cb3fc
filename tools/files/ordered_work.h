// Work on many items by all cores, with the results in the order of the items.
#pragma once

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
template <class Item, class Result>
class OrderedWork {
public:
    explicit OrderedWork(std::size_t places) : ring_(places) {}

    template <class Next, class Work>
    void runWorker(Next &next, Work &work)
    {
        try {
            std::size_t place = 0;
            while (std::optional<Item> item = takeItem(next, place)) {
                Result result = work(std::move(*item));
                const std::lock_guard lock(mutex_);
                ring_[place] = std::move(result);
                changed_.notify_all();
            }
        } catch (...) {
            fail(std::current_exception());
        }
    }

    /// Hands the results out as they come up, until the last.
    template <class Emit>
    void emitAll(Emit &emit)
    {
        while (std::optional<Result> result = nextResult()) {
            emit(std::move(*result));
            const std::lock_guard lock(mutex_);
            ring_[emitted_++ % ring_.size()].reset();
            changed_.notify_all();
        }
    }

    void fail(std::exception_ptr error)
    {
        const std::lock_guard lock(mutex_);
        if (!error_) error_ = std::move(error);
        changed_.notify_all();
    }

    void rethrow() const
    {
        if (error_) std::rethrow_exception(error_);
    }

private:
    /// `next` is called by one worker at a time, outside the lock that emitting needs: a list of
    /// names may be slow to come.
    template <class Next>
    std::optional<Item> takeItem(Next &next, std::size_t &place)
    {
        const std::lock_guard turn(turn_);
        {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, [&] { return error_ || taken_ - emitted_ < ring_.size(); });
            if (error_ || ended_) return std::nullopt;
        }
        std::optional<Item> item = next();
        const std::lock_guard lock(mutex_);
        if (item)
            place = taken_++ % ring_.size();
        else
            ended_ = true;
        changed_.notify_all();
        return item;
    }

    std::optional<Result> nextResult()
    {
        std::unique_lock lock(mutex_);
        std::optional<Result> &head = ring_[emitted_ % ring_.size()];
        changed_.wait(lock, [&] { return error_ || head || (ended_ && emitted_ == taken_); });
        if (error_ || !head) return std::nullopt;
        return std::move(head);
    }

    std::mutex turn_, mutex_;
    std::condition_variable changed_;
    std::vector<std::optional<Result>> ring_;
    std::size_t taken_ = 0, emitted_ = 0;
    bool ended_ = false;
    std::exception_ptr error_;
};

/**
 * Calls `work` with each item of `next` (an optional, empty at the end) on `threads` threads,
 * and `emit` with the results on this one, in the order of the items. What any of them throws
 * ends the work and is thrown again.
 */
template <class Next, class Work, class Emit>
void workInOrder(unsigned threads, Next next, Work work, Emit emit)
{
    using Item = typename std::invoke_result_t<Next &>::value_type;
    using Result = std::invoke_result_t<Work &, Item>;
    constexpr std::size_t kAhead = 8; // results a thread may have waiting for a slow item
    if (threads == 0) threads = 1;

    OrderedWork<Item, Result> shared(threads * kAhead);
    {
        std::vector<std::jthread> workers;
        try {
            for (unsigned i = 0; i < threads; ++i)
                workers.emplace_back([&] { shared.runWorker(next, work); });
            shared.emitAll(emit);
        } catch (...) {
            shared.fail(std::current_exception());
        }
    }
    shared.rethrow();
}

} // namespace vornak::tool
