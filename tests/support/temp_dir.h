// A directory for the files of one test, gone with it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vornak::test {

class TempDir {
public:
    TempDir()
    {
        std::string name = std::filesystem::temp_directory_path() / "vornak-test-XXXXXX";
        if (!mkdtemp(name.data())) throw std::runtime_error("mkdtemp failed");
        path_ = name;
    }
    ~TempDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;

    const std::filesystem::path &path() const { return path_; }

    /// The path of `name` in the directory, as text.
    std::string operator/(std::string_view name) const { return path_ / name; }

    /// Writes a file and its parent directories; returns its path.
    std::string write(std::string_view name, std::string_view content) const
    {
        const std::filesystem::path file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }

private:
    std::filesystem::path path_;
};

} // namespace vornak::test
