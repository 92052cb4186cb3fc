// Runs a program to its end and keeps what it printed.
#pragma once

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace vornak::test {

struct ProcessResult {
    int status = -1; ///< exit status, or 128 and the signal that ended it
    std::string out;
    std::string err;
};

/// Runs `arguments` (the program first, looked up in PATH) with `input` on standard input.
inline ProcessResult run(const std::vector<std::string> &arguments, const std::string &input = {})
{
    struct File {
        std::FILE *file = std::tmpfile();
        File()
        {
            if (!file) throw std::runtime_error("tmpfile failed");
        }
        ~File() { std::fclose(file); }
        File(const File &) = delete;
        File &operator=(const File &) = delete;
        std::string text() const
        {
            std::string all;
            std::rewind(file);
            char buffer[4096];
            while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, file))
                all.append(buffer, got);
            return all;
        }
    } in, out, err;
    std::fwrite(input.data(), 1, input.size(), in.file);
    std::fflush(in.file);
    std::rewind(in.file);

    std::vector<char *> argv;
    argv.reserve(arguments.size() + 1);
    for (const std::string &argument : arguments)
        argv.push_back(const_cast<char *>(argument.c_str()));
    argv.push_back(nullptr);

    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("fork failed");
    if (child == 0) {
        dup2(fileno(in.file), 0);
        dup2(fileno(out.file), 1);
        dup2(fileno(err.file), 2);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {}
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), out.text(),
            err.text()};
}

} // namespace vornak::test
