// A root directory that looks like the appliance's, for programs to run in.
#pragma once

#include "tests/support/private_mounts.h"
#include "tests/support/process.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <list>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace vornak::test {

/// The machine's own programs and libraries, with empty /share, /tmp, /dev/shm and /sbin. Only
/// after enterPrivateMounts(); one at a time.
class StandInAppliance {
public:
    StandInAppliance()
    {
        const std::filesystem::path tools = std::filesystem::path(VORNAK_CLI).parent_path();
        const int toolFolder = open(tools.c_str(), O_PATH | O_CLOEXEC); // /mnt may be covering it
        add("none", "", "tmpfs");
        for (const auto &entry : std::filesystem::directory_iterator("/")) {
            const std::string name = entry.path();
            if (name == kRoot || name == "/share" || name == "/tmp") continue;
            if (entry.is_symlink())
                std::filesystem::copy_symlink(entry.path(), kRoot + name);
            else if (entry.is_directory())
                bind(name, name);
        }
        for (const char *own : {"/share", "/tmp"}) std::filesystem::create_directory(at(own));
        for (const char *own : {"/dev/shm", "/usr/sbin"}) add("none", own, "tmpfs");
        if (!std::filesystem::exists(at(VORNAK_CLI)))
            bind("/proc/self/fd/" + std::to_string(toolFolder), tools);
        close(toolFolder);
    }

    /// Whether everything could be mounted.
    bool isComplete() const { return complete_; }

    /// Where the appliance's `path` lies.
    static std::string at(const std::string &path) { return kRoot + path; }

    static void write(const std::string &path, std::string_view content)
    {
        const std::filesystem::path file = at(path);
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
    }

    static void link(const std::string &target, const std::string &path)
    {
        std::filesystem::create_directory_symlink(target, at(path));
    }

    /// Puts the query tool in its place, which answers with /answers/KEY.
    static void installQueryTool()
    {
        write("/usr/sbin/tolvex", "#!/bin/sh\ncat \"/answers/$4\"\n");
        std::filesystem::permissions(at("/usr/sbin/tolvex"), std::filesystem::perms::all);
    }

    /// Runs a command of the shell in /share, with the tool in PATH.
    static ProcessResult run(const std::string &command)
    {
        const std::string path = std::filesystem::path(VORNAK_CLI).parent_path();
        return test::run({"chroot", kRoot, "/usr/bin/env", "PATH=" + path + ":/usr/bin", "/bin/sh",
                          "-c", "cd /share; " + command});
    }

private:
    static constexpr const char *kRoot = "/mnt";

    void add(const char *source, const std::string &path, const char *type, unsigned long flags = 0)
    {
        const bool mounted =
            static_cast<bool>(mounts_.emplace_front(source, at(path), type, flags));
        complete_ = complete_ && mounted;
    }

    void bind(const std::string &source, const std::string &path)
    {
        std::filesystem::create_directories(at(path));
        add(source.c_str(), path, nullptr, MS_BIND | MS_REC);
    }

    std::list<ScopedMount> mounts_; // the last one first, which is how they go
    bool complete_ = true;
};

} // namespace vornak::test
