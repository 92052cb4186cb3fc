// Mounts that this process alone sees and that end with it.
#pragma once

#include <cerrno>
#include <cstring>
#include <sched.h>
#include <string>
#include <sys/mount.h>

namespace vornak::test {

/// Moves the process, which must have one thread, into a mount namespace of its own.
/// Returns why that can't be, or the empty text.
inline std::string enterPrivateMounts()
{
    if (unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0)
        return {};
    return std::string("no mount namespace of its own: ") + std::strerror(errno);
}

/// A mount that is undone with the object.
class ScopedMount {
public:
    ScopedMount(const char *source, std::string target, const char *type, unsigned long flags = 0)
        : target_(std::move(target)),
          mounted_(mount(source, target_.c_str(), type, flags, nullptr) == 0)
    {}
    ~ScopedMount()
    {
        if (mounted_) umount2(target_.c_str(), MNT_DETACH);
    }
    ScopedMount(const ScopedMount &) = delete;
    ScopedMount &operator=(const ScopedMount &) = delete;

    explicit operator bool() const { return mounted_; }

private:
    std::string target_;
    bool mounted_;
};

} // namespace vornak::test
