// What the library prints where the tool has other plans for the descriptor.
#pragma once

#include <string>

namespace vornak::tool {

/// Takes what is written to a descriptor into memory, until it is destroyed or its text is taken.
class DivertedOutput {
public:
    explicit DivertedOutput(int descriptor);
    ~DivertedOutput();
    DivertedOutput(const DivertedOutput &) = delete;
    DivertedOutput &operator=(const DivertedOutput &) = delete;

    std::string take();

private:
    void restore();

    int descriptor_, memory_, saved_;
};

} // namespace vornak::tool
