// The main title of a disc, as the library finds it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vornak::tool {

struct DiscPart {
    std::string name;
    std::int64_t size; ///< bytes
};

/// A file that may belong to some title, and isn't counted for any.
struct UncountedPart {
    std::string name;
    int error; ///< the errno of looking at it
};

struct DiscTitle {
    std::string kind;          ///< "DVD" or "Blu-ray"
    std::string index;         ///< path of the index file below the disc's root
    std::string folder;        ///< of the parts, below the disc's root, ending in "/"
    std::optional<int> number; ///< title set of a DVD
    std::int64_t size = 0;     ///< bytes of all parts
    std::vector<DiscPart> parts;
    std::vector<UncountedPart> uncounted; ///< so that another title may be the main one
};

struct DiscError {
    std::string code, message;
};

using DiscResult = std::variant<DiscTitle, DiscError>;

/// @param root  of the disc, ending in "/"
DiscResult readDisc(const std::string &root);

} // namespace vornak::tool
