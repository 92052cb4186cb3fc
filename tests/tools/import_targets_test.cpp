// What an imported profile's first rules tell ffmpeg, so that it makes what they take.
#include "tools/import/targets.h"

#include "base/media_ids.h"

#include <gmock/gmock.h>

namespace vornak::tool {
namespace {

using testing::HasSubstr;

Limits sound(int codec, Range bitrate, Range channels = {}, Range rate = {})
{
    return {.codec = codec, .bitrate = bitrate, .channels = channels, .sampleRate = rate};
}

// The greatest bit rate that is usual and taken; what a limit takes exactly is taken.
TEST(ImportTargets, KeepTheirLimits)
{
    const struct {
        Limits limits;
        std::string option;
    } sounds[] = {
        {sound("mp3"_codec, {}), "-c:a libmp3lame -b:a 192k -ac 2 -ar 48000"},
        {sound("mp3"_codec, {0, 128000}), "-c:a libmp3lame -b:a 128k -ac 2 -ar 48000"},
        {sound("mp3"_codec, {0, 127999}), "-c:a libmp3lame -b:a 112k -ac 2 -ar 48000"},
        {sound("mp3"_codec, {256000, 0}), "-c:a libmp3lame -b:a 256k -ac 2 -ar 48000"},
        {sound("mp3"_codec, {321000, 0}), ""},
        {sound("mp3"_codec, {0, 31999}), ""},
        {sound("aac"_codec, {0, 128000}), "-c:a aac -b:a 96k -ac 2 -ar 48000"}, // which overshoots
        {sound("ac3"_codec, {}), "-c:a ac3 -b:a 448k -ar 48000"},
        {sound("ac3"_codec, {}, {0, 2}), "-c:a ac3 -b:a 192k -ac 2 -ar 48000"},
        {sound("ac3"_codec, {}, {6, 0}, {0, 44100}), "-c:a ac3 -b:a 448k -ac 6 -ar 44100"},
        {sound("flac"_codec, {}), "-c:a flac -ar 48000"},
        {sound("flac"_codec, {0, 6 * 48000 * 16}), "-c:a flac -ar 48000"},
        {sound("flac"_codec, {0, 6 * 48000 * 16 - 1}), ""},
        {sound("pcm_s16le"_codec, {}, {}, {0, 8000}), "-c:a pcm_s16le -ac 2 -ar 8000"},
        {sound("cook"_codec, {}), ""},
    };
    for (const auto &c : sounds) EXPECT_EQ(targetOption(c.limits), c.option);

    const auto picture = [](int level, Range width, Range height, Range bitrate) {
        return Limits{.codec = "h264"_codec,
                      .bitrate = bitrate,
                      .level = level,
                      .width = width,
                      .height = height};
    };
    const struct {
        Limits limits;
        std::string level, rates, size;
    } pictures[] = {
        {picture(0, {}, {}, {}), "4.1", "8000k 12000k", "1920 1080"},
        {picture(52, {}, {}, {}), "4.1", "8000k 12000k", "1920 1080"},
        {picture(39, {}, {}, {}), "3.9", "4000k 6000k", "1280 720"},
        {picture(30, {}, {}, {}), "3.0", "2000k 3000k", "720 576"},
        {picture(0, {0, 721}, {0, 577}, {0, 2000000}), "4.1", "1000k 1500k", "720 576"},
        {picture(0, {0, 352}, {0, 288}, {}), "4.1", "500k 800k", "352 288"},
        {picture(0, {0, 176}, {0, 144}, {}), "4.1", "150k 250k", "176 144"},
        {picture(0, {}, {}, {9000000, 10000000}), "4.1", "9500k 10000k", "1920 1080"},
    };
    for (const auto &c : pictures) {
        const std::string option = targetOption(c.limits);
        const std::size_t gap = c.rates.find(' '), times = c.size.find(' ');
        EXPECT_THAT(option, HasSubstr(" -level " + c.level + " "));
        EXPECT_THAT(option, HasSubstr(" -b:v " + c.rates.substr(0, gap) + " -maxrate " +
                                      c.rates.substr(gap + 1) + " "));
        EXPECT_THAT(option, HasSubstr("abs(iw-" + c.size.substr(0, times) + ")"));
        EXPECT_THAT(option, HasSubstr("abs(ih-" + c.size.substr(times + 1) + ")"));
    }
    EXPECT_EQ(targetOption(picture(0, {}, {}, {0, 10000})), "");
    EXPECT_THAT(targetOption(picture(0, {1921, 0}, {1081, 0}, {})), HasSubstr("scale=1922:1082"));
}

} // namespace
} // namespace vornak::tool
