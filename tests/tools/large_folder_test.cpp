// That what a folder costs grows as its entries do.
#include "tests/support/process.h"
#include "tests/support/temp_dir.h"
#include "tests/support/usage.h"

#include <cstdio>
#include <filesystem>

namespace vornak::test {
namespace {

constexpr const char *kProfile = R"(<DEVICE NAME="any"><VIDEO>
  <VCODEC NAME="any"><ACODEC NAME="any"><FORMAT NAME="any"/></ACODEC></VCODEC>
</VIDEO></DEVICE>
)";

/// A new link to `file`; file systems bound how many a file has.
void linkTo(std::string &file, const std::string &name)
{
    std::error_code full;
    std::filesystem::create_hard_link(file, name, full);
    if (!full) return;
    std::filesystem::copy_file(file, name);
    file = name;
}

class LargeFolder : public testing::TestWithParam<int> {
protected:
    void SetUp() override
    {
        dir_.write("p.xml", kProfile);
        dir_.write("empty", "");
        const ProcessResult made =
            run({"ffmpeg", "-v", "error", "-f", "lavfi", "-i", "testsrc=s=32x32:d=0.2", "-c:v",
                 "mpeg4", dir_ / "film.mkv"});
        ASSERT_EQ(made.status, 0) << made.err;
    }

    /// Films with as many subtitle files each as the parameter says.
    std::string makeFolder(int entries) const
    {
        const std::string folder = dir_ / std::to_string(entries);
        std::filesystem::create_directory(folder);
        std::string film = dir_ / "film.mkv", empty = dir_ / "empty";
        const char *const endings[] = {".srt", ".en.srt", ".de.vtt"};
        for (int i = 0; i < entries / (1 + GetParam()); ++i) {
            const std::string stem = folder + "/a film of number " + std::to_string(i);
            linkTo(film, stem + ".mkv");
            for (int j = 0; j < GetParam(); ++j) linkTo(empty, stem + endings[j]);
        }
        return folder;
    }

    TempDir dir_;
};

TEST_P(LargeFolder, CostsAsItsEntriesDo)
{
    constexpr int kFew = 10'000, kMany = 100'000;
    const std::string few = makeFolder(kFew), many = makeFolder(kMany);
    const std::vector<std::string> commands[] = {
        {VORNAK_CLI, "decide", "-p", dir_ / "p.xml", "--json"},
        {VORNAK_CLI, "subtitles", "--json"}};
    for (std::vector<std::string> command : commands) {
        command.push_back(few);
        const Usage ofFew = usageOf(command);
        command.back() = many;
        const Usage ofMany = usageOf(command);
        EXPECT_LT(ofMany.seconds, 15 * ofFew.seconds) << command[1];
        EXPECT_LT((ofMany.memory - ofFew.memory) * 1024, 200L * kMany) << command[1];
        std::printf("%s: %d entries %.2f s, %ld KB; %d entries %.2f s, %ld KB\n",
                    command[1].c_str(), kFew, ofFew.seconds, ofFew.memory, kMany, ofMany.seconds,
                    ofMany.memory);
    }
}

INSTANTIATE_TEST_SUITE_P(WithSubtitleFiles, LargeFolder, testing::Values(0, 3));

} // namespace
} // namespace vornak::test
