// The host's functions that mounting calls, with a hand on them.
#pragma once

#include <functional>
#include <optional>

namespace vornak::test {

struct HostFunctions {
    int conversions = 0;                ///< names converted so far
    int failing = 0;                    ///< the conversion, counted from 1, that fails; 0: none
    std::function<void()> onConversion; ///< what else a conversion does
    bool canFork = true;                ///< the C library's fork(), too, is the program's
    std::optional<int> number;          ///< the unique number, in place of the stand-in host's
};

/// For the program that exports the functions; set anew by each test.
inline HostFunctions &hostFunctions()
{
    static HostFunctions functions;
    return functions;
}

} // namespace vornak::test
