// A file whose path is longer than the system takes.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace vornak::test {

/// Writes a file below an existing folder, 17 folders down with 251 bytes each, in steps.
inline void writeDeep(const std::string &above, const std::string &name, std::string_view content)
{
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(above);
    for (int i = 0; i < 17; ++i) {
        std::filesystem::create_directory(std::string(250, 'd'));
        std::filesystem::current_path(std::string(250, 'd'));
    }
    std::filesystem::create_directories(std::filesystem::path("./" + name).parent_path());
    std::ofstream(name, std::ios::binary) << content;
    std::filesystem::current_path(before);
}

} // namespace vornak::test
