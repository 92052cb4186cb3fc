// What a call writes to standard output or standard error, through the C library or not.
#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace vornak::test {

/// Redirects a descriptor into a temporary file until it is destroyed or its text is taken.
class Capture {
public:
    explicit Capture(int descriptor) : descriptor_(descriptor), file_(std::tmpfile())
    {
        if (!file_) throw std::runtime_error("tmpfile failed");
        std::fflush(nullptr);
        saved_ = dup(descriptor_);
        dup2(fileno(file_), descriptor_);
    }
    ~Capture()
    {
        restore();
        std::fclose(file_);
    }
    Capture(const Capture &) = delete;
    Capture &operator=(const Capture &) = delete;

    /// Ends the redirection and returns what was written meanwhile.
    std::string take()
    {
        restore();
        std::string text;
        std::rewind(file_);
        char buffer[4096];
        while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, file_))
            text.append(buffer, got);
        return text;
    }

private:
    void restore()
    {
        if (saved_ < 0) return;
        std::fflush(nullptr);
        dup2(saved_, descriptor_);
        close(saved_);
        saved_ = -1;
    }

    int descriptor_;
    std::FILE *file_;
    int saved_ = -1;
};

} // namespace vornak::test
