#include "tools/transcode/ffmpeg_line.h"

#include <fmt/ranges.h>
#include <gtest/gtest.h>

namespace vornak::test {
namespace {

constexpr int kMp4 = 8, kMatroska = 12, kApe = 4;

TEST(StockOptions, SpeakAStockVocabulary)
{
    const struct {
        const char *limits, *options;
        int formatId;
        const char *arguments;
    } cases[] = {
        {"", "-f wav -num_frames 441000 -c:a pcm_s16le", 2, "-f wav -c:a pcm_s16le"},
        {"", " \t-f  mp4\n-c:v copy ", kMp4, "-f mp4 -c:v copy"},
        {"", "-f mkvtimestamp_v2 -vprofile high -aprofile aac_low", kMatroska,
         "-f matroska -profile:v high -profile:a aac_low"},
        {"", "-f mpeg2video -vp main -vlevel 31 -vb 2M -ab 96k -s 576p", 17,
         "-f vob -profile:v main -level:v 31 -b:v 2M -b:a 96k -vf scale=-2:576"},
        {"", "-f avi -s 640x480 -s p -vf", 9, "-f avi -s 640x480 -s p -vf"}, // no such row
        {"", "-f wav -write_bext 1 -c:a copy", 2, "-f wav -write_bext 1 -c:a copy"},
        // a container that the profile has no option for
        {"", " -c:v copy -c:a copy", kMp4 | 6 << 16, "-f mp4 -c:v copy -c:a copy"},
        {"", "-c:v copy", kMatroska, "-f matroska -c:v copy"},
        {"", "-c:a copy", kApe, "-c:a copy"},
        // limits stand before the profile's options, which settle what they name
        {" -ac 2 -b:a 128000", "-f mp4 -c:a aac", kMp4, "-ac 2 -b:a 128000 -f mp4 -c:a aac"},
        {" -ac 6 -ar 48000", "-f mp4 -c:a aac -ac 2", kMp4, "-ar 48000 -f mp4 -c:a aac -ac 2"},
        {" -vb 4000000 -ab 96000", "-f mp4 -b:v 1M", kMp4, "-b:a 96000 -f mp4 -b:v 1M"},
        {" -b:v 4000000 -b:v 9000000", "-f mp4", kMp4, "-b:v 9000000 -f mp4"},
        // picture sizes
        {" -vf scale=1280:720", "-f mp4 -c:v libx264", kMp4,
         "-vf scale=1280:720 -f mp4 -c:v libx264"},
        {" -s 720p", "-f mp4 -c:v libx264", kMp4, "-vf scale=-2:720 -f mp4 -c:v libx264"},
        {" -vf scale=1280:720", "-f mp4 -vf yadif", kMp4, "-f mp4 -vf yadif,scale=1280:720"},
        {" -s 720p", "-f mp4 -filter:v yadif", kMp4, "-f mp4 -vf yadif,scale=-2:720"},
        {" -vf scale=1280:720", "-f mp4 -vf yadif,scale=640:-2", kMp4,
         "-f mp4 -vf yadif,scale=640:-2"},
        {" -vf scale=1280:720", "-f mp4 -s 640x360", kMp4, "-f mp4 -s 640x360"},
        {" -vf scale=1280:720 -vf scale=1280:720", "-f mp4 -vf yadif", kMp4,
         "-f mp4 -vf yadif,scale=1280:720"},
        {" -vf scale=1280:720 -vf scale=640:360", "-f mp4", kMp4, "-vf scale=640:360 -f mp4"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(fmt::format(
                      "{}", fmt::join(tool::stockArguments(c.limits, c.options, c.formatId), " ")),
                  c.arguments);
}

TEST(OutputName, HasTheContainersExtension)
{
    const std::pair<int, const char *> cases[] = {
        {kMatroska, "mkv"},
        {kMatroska | 12 << 16, "webm"},
        {kMatroska | 99 << 16, "mkv"},
        {kMp4, "mp4"},
        {kMp4 | 1 << 16, "m4a"},
        {kMp4 | 11 << 16, "mov"},
        {64, "dts"},
        {87, "mxf"},
        {1000, "out"},
    };
    for (const auto &[formatId, extension] : cases)
        EXPECT_EQ(tool::outputName("a/film.avi", formatId),
                  std::string("a/film.avi.transcoded.") + extension);
}

} // namespace
} // namespace vornak::test
