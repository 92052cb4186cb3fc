// Folders of a disc with files of any size, which take no room on the real disc.
#pragma once

#include "include/vornak.h"
#include "tests/support/leak_check.h"
#include "tests/support/temp_dir.h"

#include <cstring>
#include <vector>

namespace vornak::test {

constexpr std::int64_t kGiga = 1'000'000'000;

struct DiscFile {
    const char *name;
    std::int64_t size;
};

inline void writeSparse(const TempDir &temp, const std::string &name, std::int64_t size)
{
    std::filesystem::resize_file(temp.write(name, ""), size);
}

/// The path of a directory, ending in "/", made `length` characters long by slashes in front.
inline std::string longFolder(const TempDir &temp, std::size_t length)
{
    const std::string folder = temp / "";
    return std::string(length - folder.size(), '/') + folder;
}

/// Sets every byte of a record, so that what a call leaves alone can be told.
template <class Record>
void fill(Record &record)
{
    std::memset(&record, 0xA5, sizeof record);
}

template <class Record>
bool sameBytes(const Record &left, const Record &right)
{
    const auto bytes = [](const Record &record) {
        return std::string_view(reinterpret_cast<const char *>(&record), sizeof record);
    };
    return bytes(left) == bytes(right);
}

} // namespace vornak::test
