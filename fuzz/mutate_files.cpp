// Runs a fuzz target on a fixed number of mutations of files, the same ones each time.
// Arguments: the number, then the files.
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

const char *const s_Pieces[] = {
    "<ACODEC NAME='aac' ",
    "<FORMAT NAME='mp4' ",
    "<VCODEC NAME='h264' ",
    "<DEVICE NAME='d'>",
    "<MUSIC>",
    "<VIDEO>",
    "</ACODEC>",
    "</VCODEC>",
    "</MUSIC>",
    "</VIDEO>",
    "</DEVICE>",
    "/>",
    ">",
    "<",
    "'",
    "\"",
    "|",
    "||",
    " ",
    "K",
    "M",
    "-",
    "99999999999",
    "NAME=''",
    "PROFILE='main|?'",
    "MAXFREQUENCY='44.1K'",
    "PLAY_EXCEPTION=",
    "&",
    "&#0;",
    "&#x41;",
    "&lt;",
    "<!--",
    "-->",
    "<![CDATA[",
    "]]>",
    "<?xml encoding='latin1'?>",
    "<!DOCTYPE x [",
    "\xff\xfe",
    "\xef\xbb\xbf",
    "\xc3",
};

class Mutator {
public:
    explicit Mutator(const std::vector<std::string> &files) : files_(files) {}

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
            text.insert(at, s_Pieces[below(std::size(s_Pieces))]);
            break;
        case 1:
            text.replace(at, std::min<std::size_t>(length, 4),
                         s_Pieces[below(std::size(s_Pieces))]);
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

    const std::vector<std::string> &files_;
    std::mt19937 random_; // seeded as it is by default: the same numbers on every machine
};

} // namespace

int main(int argc, char **argv)
{
    std::vector<std::string> files;
    for (int i = 2; i < argc; ++i) {
        std::ifstream file(argv[i], std::ios::binary);
        files.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        if (!file) return std::printf("cannot read %s\n", argv[i]), 2;
    }
    if (files.empty()) return std::printf("usage: %s NUMBER FILE...\n", argv[0]), 2;
    if (dup2(open("/dev/null", O_WRONLY), 2) < 0) return 2; // the warnings of a million names

    Mutator mutator(files);
    for (int left = std::atoi(argv[1]); left > 0; --left) {
        const std::string text = mutator.next();
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(text.data()), text.size());
    }
}
