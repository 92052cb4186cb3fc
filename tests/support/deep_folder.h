// A folder whose path is longer than the system takes.
#pragma once

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace vornak::test {

/// Lies below an existing folder; made and reached by steps that are short enough.
class DeepFolder {
public:
    explicit DeepFolder(const std::string &above) : above_(above)
    {
        enter();
        std::filesystem::current_path(before_);
    }

    /// Writes a file and its parent directories.
    void write(const std::string &name, std::string_view content) const
    {
        enter();
        std::filesystem::create_directories(std::filesystem::path("./" + name).parent_path());
        std::ofstream(name, std::ios::binary) << content;
        std::filesystem::current_path(before_);
    }

private:
    void enter() const
    {
        const std::string name(250, 'd');
        std::filesystem::current_path(above_);
        for (int i = 0; i < 17; ++i) { // 17 * 251 bytes
            std::filesystem::create_directory(name);
            if (chdir(name.c_str()) != 0) throw std::runtime_error("chdir failed");
        }
    }

    std::string above_;
    std::filesystem::path before_ = std::filesystem::current_path();
};

} // namespace vornak::test
