// A file that can't be opened at once.
#pragma once

#include <csignal>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace vornak::test {

/// Holds a write lease on a file until somebody opens it. Giving it up takes a signal, which
/// interrupts what waits for that in this process. One at a time.
class LeasedFile {
public:
    explicit LeasedFile(const std::string &path)
    {
        s_leased = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        held_ = fcntl(s_leased, F_SETLEASE, F_WRLCK) == 0;
        struct sigaction release {};
        release.sa_handler = [](int) { fcntl(s_leased, F_SETLEASE, F_UNLCK); };
        sigaction(SIGIO, &release, &saved_);
    }
    ~LeasedFile()
    {
        sigaction(SIGIO, &saved_, nullptr);
        close(s_leased);
    }
    LeasedFile(const LeasedFile &) = delete;
    LeasedFile &operator=(const LeasedFile &) = delete;

    /// False where the file system has no leases.
    explicit operator bool() const { return held_; }

private:
    static inline volatile std::sig_atomic_t s_leased = -1;
    bool held_;
    struct sigaction saved_ {};
};

} // namespace vornak::test
