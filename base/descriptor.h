// The owner of an open file.
#pragma once

#include <unistd.h>

namespace vornak {

class Descriptor {
public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    ~Descriptor()
    {
        if (number_ >= 0) close(number_);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    explicit operator bool() const noexcept { return number_ >= 0; }
    int get() const noexcept { return number_; }

private:
    int number_;
};

} // namespace vornak
