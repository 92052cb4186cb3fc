// What a run of a program costs.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace vornak::test {

struct Usage {
    long memory = 0;    ///< the most that was in use, KB
    double seconds = 0; ///< of the processors
};

/// Runs `arguments`, the program's path first, with nothing on standard output. It ends with 0.
inline Usage usageOf(const std::vector<std::string> &arguments)
{
    std::vector<char *> argv;
    for (const std::string &argument : arguments)
        argv.push_back(const_cast<char *>(argument.c_str()));
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        execv(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    EXPECT_EQ(wait4(child, &status, 0, &usage), child);
    EXPECT_EQ(status, 0);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return {usage.ru_maxrss, seconds(usage.ru_utime) + seconds(usage.ru_stime)};
}

} // namespace vornak::test
