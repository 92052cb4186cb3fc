#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <gmock/gmock.h>

namespace vornak::test {
namespace {

ProcessResult subtitles(std::vector<std::string> arguments, const std::string &input = {})
{
    arguments.insert(arguments.begin(), {VORNAK_CLI, "subtitles"});
    return run(arguments, input);
}

TEST(SubtitlesCommand, ListsThoseOfEachVideoAndNothingElse)
{
    const TempDir temp;
    for (const char *name :
         {"a.mkv", "a.srt", "a.-x\n.vtt", "b/c.mp4", "b/c\x1b[1m.SRT", "b/d.mkv"})
        temp.write(name, "");
    const std::string folder = temp / "";
    const std::string a = folder + "a.mkv: 2 subtitle files\n  vtt, -x\\x0a: a.-x\\x0a.vtt\n"
                                   "  srt, no language: a.srt\n  plain SRT: a.srt\n";
    const std::string c = folder + "b/c.mp4: 1 subtitle file\n  srt, [1m: c\\x1b[1m.SRT\n";
    const std::string d = folder + "b/d.mkv: no subtitle files\n";
    const struct {
        std::vector<std::string> arguments;
        std::string input, out;
    } cases[] = {
        {{folder}, "", a + c + d},
        {{folder + "b/d.mkv", folder + "a.mkv"}, "", d + a},
        {{"-"}, folder + "b\n" + folder + "a.mkv\n", c + d + a},
    };
    for (const auto &row : cases) {
        const ProcessResult result = subtitles(row.arguments, row.input);
        EXPECT_EQ(result.out, row.out);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.status, 0);
    }
}

TEST(SubtitlesCommand, SaysWhenTheListIsFull)
{
    const TempDir temp;
    const std::string video = temp.write("film.mkv", "");
    for (int i = 1; i <= 9; ++i) {
        EXPECT_EQ(subtitles({video}).out.find("all that a list holds"), std::string::npos);
        temp.write("film." + std::to_string(i) + ".srt", "");
    }
    EXPECT_NE(subtitles({video}).out.find("film.mkv: 9 subtitle files, all that a list holds\n"),
              std::string::npos);
    EXPECT_NE(subtitles({"--json", video}).out.find("\"full\":true,\"plainSrt\":null"),
              std::string::npos);
}

TEST(SubtitlesCommand, GoesOnAfterWhatItCannotSearch)
{
    const TempDir temp;
    std::string folder = temp / "";
    const std::string video = temp.write("film.mkv", "");
    folder.insert(0, 1024 - folder.size(), '/');
    const ProcessResult result = subtitles({folder + "film.mkv", "/dev/null", video});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, video + ": no subtitle files\n");
    EXPECT_EQ(result.err, "vornak: " + folder +
                              "film.mkv: its folder's path is longer than 1023 characters\n"
                              "vornak: /dev/null: neither a file nor a folder\n");
}

TEST(SubtitlesCommand, ComplainsBetweenTheLinesOfTheJson)
{
    const TempDir temp;
    const std::string video = temp.write("film.mkv", "");
    const ProcessResult result =
        run({"sh", "-c", R"("$0" subtitles --json "$1" /dev/null "$1" 2>&1)", VORNAK_CLI, video});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out,
                testing::HasSubstr("\nvornak: /dev/null: neither a file nor a folder\n{"));
}

} // namespace
} // namespace vornak::test
