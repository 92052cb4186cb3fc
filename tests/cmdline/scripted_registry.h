// A registry whose answers a test chooses; the program exports it in place of the host's.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vornak::test {

struct ScriptedRegistry {
    // whole texts, with whatever stands before the name; an id without one is refused
    std::map<int, std::string> codecs;
    std::map<std::pair<int, int>, std::string> profiles; ///< by codec id and profile bits
    struct Container {
        std::string name;
        std::optional<std::string> subtype; ///< nothing: the buffer is left alone
    };
    std::map<int, Container> containers;

    int calls = 0;
    bool clearedBuffers = true; ///< every buffer so far arrived cleared
};

extern ScriptedRegistry g_registry;

} // namespace vornak::test
