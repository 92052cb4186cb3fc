// Signals that interrupt whatever waits.
#pragma once

#include <csignal>
#include <sys/time.h>

namespace vornak::test {

/// Interrupts this process every few milliseconds, without a restart. One at a time.
class Alarms {
public:
    explicit Alarms(long milliseconds)
    {
        s_count = 0;
        struct sigaction action {};
        action.sa_handler = [](int) { s_count = s_count + 1; };
        sigaction(SIGALRM, &action, &saved_);
        const itimerval often{{0, milliseconds * 1000}, {0, milliseconds * 1000}};
        setitimer(ITIMER_REAL, &often, nullptr);
    }
    ~Alarms()
    {
        const itimerval never{};
        setitimer(ITIMER_REAL, &never, nullptr);
        sigaction(SIGALRM, &saved_, nullptr);
    }
    Alarms(const Alarms &) = delete;
    Alarms &operator=(const Alarms &) = delete;

    int count() const { return s_count; }

private:
    static inline volatile std::sig_atomic_t s_count = 0;
    struct sigaction saved_ {};
};

} // namespace vornak::test
