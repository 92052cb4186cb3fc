// Runs a fuzz target on a fixed number of mutations of files, the same ones each time.
// Arguments: the number, a dictionary of what may be put in, then the files.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size);

namespace {

/// The entries of a libFuzzer dictionary: a text in quotes each line, its odd bytes as "\\xff".
std::vector<std::string> readDictionary(const std::string &path)
{
    std::vector<std::string> entries;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with('"')) continue;
        std::string &entry = entries.emplace_back();
        for (std::size_t i = 1; i + 1 < line.size(); ++i) {
            const bool isByte = line.compare(i, 2, "\\x") == 0;
            if (line[i] == '\\' && !isByte) ++i;
            entry +=
                isByte ? static_cast<char>(std::stoi(line.substr(i + 2, 2), nullptr, 16)) : line[i];
            if (isByte) i += 3;
        }
    }
    return entries;
}

class Mutator {
public:
    Mutator(const std::vector<std::string> &files, const std::vector<std::string> &pieces)
        : files_(files), pieces_(pieces)
    {}

    std::string next()
    {
        std::string text = files_[below(files_.size())];
        for (std::size_t changes = 1 + below(3); changes > 0; --changes) change(text);
        return text;
    }

private:
    std::size_t below(std::size_t end) { return end > 0 ? random_() % end : 0; }

    void change(std::string &text)
    {
        const std::size_t at = below(text.size() + 1);
        const std::size_t length = below(std::min<std::size_t>(text.size() - at, 200) + 1);
        switch (below(6)) {
        case 0:
            text.insert(at, pieces_[below(pieces_.size())]);
            break;
        case 1:
            text.replace(at, std::min<std::size_t>(length, 4), pieces_[below(pieces_.size())]);
            break;
        case 2:
            text.erase(at, length);
            break;
        case 3:
            text.insert(below(text.size() + 1), text.substr(at, length));
            break;
        case 4:
            text.insert(at, 1, static_cast<char>(below(256)));
            break;
        case 5:
            text.insert(at, 1 + below(2000), static_cast<char>(below(256)));
            break;
        }
    }

    const std::vector<std::string> &files_, &pieces_;
    std::mt19937 random_; // seeded as it is by default: the same numbers on every machine
};

} // namespace

int main(int argc, char **argv)
{
    std::vector<std::string> files;
    for (int i = 3; i < argc; ++i) {
        std::ifstream file(argv[i], std::ios::binary);
        files.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        if (!file) return std::printf("cannot read %s\n", argv[i]), 2;
    }
    const std::vector<std::string> pieces = readDictionary(argc > 2 ? argv[2] : "");
    if (files.empty() || pieces.empty())
        return std::printf("usage: %s NUMBER DICTIONARY FILE...\n", argv[0]), 2;
    if (dup2(open("/dev/null", O_WRONLY), 2) < 0) return 2; // the warnings of a million names

    Mutator mutator(files, pieces);
    for (int left = std::atoi(argv[1]); left > 0; --left) {
        const std::string text = mutator.next();
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(text.data()), text.size());
    }
}
