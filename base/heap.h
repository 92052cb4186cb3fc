// Owners of blocks of the process heap, the memory that crosses the library's border.
#pragma once

#include <cstdlib>
#include <memory>

namespace vornak {

struct Free {
    void operator()(void *block) const noexcept { std::free(block); }
};

using HeapText = std::unique_ptr<char, Free>;

} // namespace vornak
