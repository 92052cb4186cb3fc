// The containers of a rule, and which of them is put into.
#pragma once

#include "tools/import/rules.h"

#include <vector>

namespace vornak::tool {

/// What is known of a file beside its sound, while rules for the sound are made.
struct Surrounding {
    bool isMusic;
    int picture; ///< its codec; 0: any
    const std::vector<Wish> &wishes;
};

/// The ways' containers, each once. The first is one into which sound of the codec and the picture
/// can be put, or it is marked that nothing is; a wildcard is the last.
std::vector<ContainerRule> containersOf(const std::vector<const Way *> &ways, int sound,
                                        const Surrounding &surrounding);

} // namespace vornak::tool
