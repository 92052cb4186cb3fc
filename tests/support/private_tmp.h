// An empty /tmp of this process's own.
#pragma once

#include "tests/support/private_mounts.h"

#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <string>
#include <unistd.h>

namespace vornak::test {

/// Private mounts with a new /tmp among them, which is the working directory, too.
class PrivateTmp {
public:
    /// @param keep  a directory that stays where it is though it may lie in /tmp
    explicit PrivateTmp(const std::string &keep = "/") : whyNot_(enterPrivateMounts())
    {
        if (!whyNot_.empty()) return;
        const int kept = open(keep.c_str(), O_PATH | O_CLOEXEC);
        tmp_.emplace("tmpfs", "/tmp", "tmpfs");
        if (!*tmp_) whyNot_ = "no tmpfs for /tmp";
        std::filesystem::current_path("/tmp");
        if (!std::filesystem::exists(keep)) {
            std::filesystem::create_directories(keep);
            const std::string source = "/proc/self/fd/" + std::to_string(kept);
            kept_.emplace(source.c_str(), keep, nullptr, MS_BIND);
        }
        close(kept);
    }
    ~PrivateTmp() { std::filesystem::current_path("/"); }
    PrivateTmp(const PrivateTmp &) = delete;
    PrivateTmp &operator=(const PrivateTmp &) = delete;

    /// Why there is none, or the empty text.
    const std::string &whyNot() const { return whyNot_; }

private:
    std::string whyNot_;
    std::optional<ScopedMount> tmp_, kept_;
};

} // namespace vornak::test
