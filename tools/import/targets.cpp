#include "tools/import/targets.h"

#include "base/media_ids.h"
#include "tools/import/limits.h"
#include "tools/import/said_limits.h"
#include "tools/profile/id_names.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <optional>
#include <span>
#include <vector>

namespace vornak::tool {
namespace {

constexpr int kGreatestBitrate = 100'000'000;

int mostOf(Range range, int otherwise)
{
    return range.most == 0 ? otherwise : std::min(range.most, otherwise);
}

std::string bitrateText(int bitrate)
{
    return fmt::format("{}k", bitrate / 1000);
}

// Encoders in the order in which they are preferred. Of the profiles, the first that is taken
// becomes the picture's, by the option behind it.
struct ProfileOption {
    const char *profile, *option;
};
struct PictureEncoder {
    int codec;
    const char *option;
    ProfileOption profiles[4];
};
constexpr PictureEncoder s_PictureEncoders[] = {
    {"h264"_codec,
     "-c:v libx264 -preset veryfast",
     {{"high", " -profile:v high -pix_fmt yuv420p"},
      {"main", " -profile:v main -pix_fmt yuv420p"},
      {"baseline", " -profile:v baseline -pix_fmt yuv420p"},
      // which is what x264 makes of baseline, but doesn't know by this name
      {"constrained_baseline",
       " -x264-params cabac=0:bframes=0:8x8dct=0:weightp=0 -pix_fmt yuv420p"}}},
    {"hevc"_codec,
     "-c:v libx265 -preset veryfast",
     {{"main", " -pix_fmt yuv420p"}, {"main10", " -pix_fmt yuv420p10le"}}},
    {"mpeg2video"_codec, "-c:v mpeg2video", {{"main", " -pix_fmt yuv420p"}}},
    {"mpeg4"_codec, "-c:v mpeg4", {{"simple", " -pix_fmt yuv420p"}}},
    {"vp9"_codec,
     "-c:v libvpx-vp9 -deadline realtime -cpu-used 6",
     {{"profile0", " -pix_fmt yuv420p"}}},
    {"vp8"_codec,
     "-c:v libvpx -deadline realtime -cpu-used 6",
     {{"profile0", " -pix_fmt yuv420p"}}},
    {"av1"_codec, "-c:v libsvtav1 -preset 10", {{"main", " -pix_fmt yuv420p"}}},
    {"mpeg1video"_codec, "-c:v mpeg1video", {{"", " -pix_fmt yuv420p"}}},
    {"msmpeg4v3"_codec, "-c:v msmpeg4", {{"", " -pix_fmt yuv420p"}}},
    {"wmv2"_codec, "-c:v wmv2", {{"", " -pix_fmt yuv420p"}}},
    {"theora"_codec, "-c:v libtheora", {{"", " -pix_fmt yuv420p"}}},
    {"flv1"_codec, "-c:v flv", {{"", " -pix_fmt yuv420p"}}},
    {"mjpeg"_codec, "-c:v mjpeg", {{"baseline", " -pix_fmt yuvj420p"}}},
};

// The greatest picture that a level is for, by usual sizes.
constexpr struct {
    int codec;
    int level; // up to this
    int width, height;
} s_LevelSizes[] = {
    {"h264"_codec, 19, 352, 288},  {"h264"_codec, 29, 352, 576},   {"h264"_codec, 30, 720, 576},
    {"h264"_codec, 39, 1280, 720}, {"hevc"_codec, 59, 352, 288},   {"hevc"_codec, 89, 640, 360},
    {"hevc"_codec, 92, 960, 540},  {"hevc"_codec, 119, 1280, 720},
};

struct Size {
    int width, height;
};

/// The size that a made picture has at most.
Size targetSize(const Limits &limits)
{
    Size size{1920, 1080};
    for (const auto &row : s_LevelSizes) {
        if (row.codec != limits.codec || limits.level == 0 || limits.level > row.level) continue;
        size = {row.width, row.height};
        break;
    }
    const auto fitted = [](Range range, int usual) { // even, as most encoders need it
        return std::max(mostOf(range, usual) / 2 * 2, (range.least + 1) / 2 * 2);
    };
    return {fitted(limits.width, size.width), fitted(limits.height, size.height)};
}

struct Rates {
    int usual, most;
};

/// The bit rates of a made picture, or nothing where none is taken.
std::optional<Rates> targetRates(const Limits &limits, Size size)
{
    const int area = size.width * size.height;
    Rates rates = area > 1280 * 720  ? Rates{8'000'000, 12'000'000}
                  : area > 720 * 576 ? Rates{4'000'000, 6'000'000}
                  : area > 352 * 288 ? Rates{2'000'000, 3'000'000}
                  : area > 176 * 144 ? Rates{500'000, 800'000}
                                     : Rates{150'000, 250'000};
    rates.most = std::min(rates.most, mostOf(limits.bitrate, kGreatestBitrate) / 4 * 3);
    rates.usual = std::min(rates.usual, rates.most / 3 * 2);
    if (limits.bitrate.least > rates.usual) {
        rates.usual = limits.bitrate.least / 2 + mostOf(limits.bitrate, kGreatestBitrate) / 2;
        rates.most = mostOf(limits.bitrate, kGreatestBitrate);
    }
    if (rates.usual < 10'000) return std::nullopt;
    return rates;
}

/// The filter that fits a picture into the size, keeps its shape and never enlarges it. The sum is
/// the smaller of two numbers, without the comma that would end a filter.
std::string scaleFilter(const Limits &limits, Size size)
{
    if (isLimitedBelow(limits)) return fmt::format("scale={}:{}", size.width, size.height);
    return fmt::format("scale=(iw+{0}-abs(iw-{0}))/2:(ih+{1}-abs(ih-{1}))/2"
                       ":force_original_aspect_ratio=decrease:force_divisible_by=2",
                       size.width, size.height);
}

std::string filters(const Limits &limits, Size size)
{
    const bool needsSteadyRate = (playExceptions(limits) & playExceptionsNamed("vfr")) != 0;
    return fmt::format(" -vf yadif=deint=1,{}{}", needsSteadyRate ? "fps=source_fps," : "",
                       scaleFilter(limits, size));
}

/// The option for the first profile that is taken; null: none is.
const char *findProfileOption(const PictureEncoder &encoder, const Limits &limits)
{
    for (const ProfileOption &row : encoder.profiles) {
        if (!row.profile) break;
        const bool isTaken =
            limits.profiles == 0 || (limits.profiles & profilesNamed(row.profile)) != 0;
        const bool has10Bit = std::string_view(row.option).ends_with("10le");
        if (isTaken && !(has10Bit && playExceptions(limits) != 0)) return row.option;
    }
    return nullptr;
}

/// Empty: the encoder chooses by itself. Nothing: it can't keep the limit.
std::optional<std::string> levelOption(const Limits &limits)
{
    if (limits.codec != "h264"_codec) return "";
    const int level = limits.level == 0 ? 41 : std::min(limits.level, 41);
    if (level < 10) return std::nullopt;
    return fmt::format(" -level {}.{}", level / 10, level % 10);
}

struct SoundEncoder {
    int codec;
    const char *option;
    const char *profile; // that it makes; empty: the codec has none
    int channels;        // that are made of more; 0: as many as the source has
    int stereo, more;    // kbit/s, of two channels and of more; 0: lossless
    int most;            // kbit/s
    bool isExact;        // keeps the bit rate that it is told
    std::vector<int> rates;
};

const std::vector<int> kMpegRates = {48000, 44100, 32000, 24000, 22050, 16000};
const std::vector<int> kAacRates = {48000, 44100, 32000, 24000, 22050, 16000, 11025, 8000};
const std::vector<int> kDolbyRates = {48000, 44100, 32000};
const std::vector<int> kAnyRates = {48000, 44100, 32000, 24000, 22050, 16000, 8000, 96000};

const std::vector<SoundEncoder> &soundEncoders()
{
    static const std::vector<SoundEncoder> s_Encoders = {
        {"aac"_codec, "-c:a aac", "lc", 2, 160, 160, 320, false, kAacRates},
        {"ac3"_codec, "-c:a ac3", "", 0, 192, 448, 640, true, kDolbyRates},
        {"mp3"_codec, "-c:a libmp3lame", "", 2, 192, 192, 320, true, kMpegRates},
        {"eac3"_codec, "-c:a eac3", "", 0, 192, 448, 768, true, kDolbyRates},
        {"mp2"_codec, "-c:a mp2", "", 2, 224, 224, 384, true, kMpegRates},
        {"opus"_codec, "-c:a libopus", "", 2, 128, 128, 256, false, {48000}},
        {"vorbis"_codec, "-c:a libvorbis", "", 2, 160, 160, 320, false, kAnyRates},
        {"flac"_codec, "-c:a flac", "", 0, 0, 0, 0, false, kAnyRates},
        {"pcm_s16le"_codec, "-c:a pcm_s16le", "", 2, 0, 0, 0, true, kAnyRates},
        {"pcm_s16be"_codec, "-c:a pcm_s16be", "", 2, 0, 0, 0, true, kAnyRates},
        {"pcm_dvd"_codec, "-c:a pcm_dvd", "", 2, 0, 0, 0, true, {48000}},
        {"pcm_s24le"_codec, "-c:a pcm_s24le", "", 2, 0, 0, 0, true, kAnyRates},
        {"alac"_codec, "-c:a alac", "", 2, 0, 0, 0, false, kAnyRates},
        {"wmav2"_codec, "-c:a wmav2", "", 2, 128, 128, 256, false, {44100, 48000, 32000, 22050}},
        {"wavpack"_codec, "-c:a wavpack", "", 2, 0, 0, 0, false, kAnyRates},
        {"dts"_codec, "-c:a dca -strict -2", "dts", 0, 768, 768, 1509, true, kDolbyRates},
        {"truehd"_codec, "-c:a truehd -strict -2", "", 0, 0, 0, 0, false, {48000, 44100, 96000}},
    };
    return s_Encoders;
}

int targetChannels(const SoundEncoder &encoder, Range channels)
{
    constexpr int kMost = 6;
    const int wanted = encoder.channels == 0 ? kMost : encoder.channels;
    const int most = mostOf(channels, wanted);
    return std::max(most, channels.least);
}

/// In kbit/s; 0: none is taken.
int targetBitrate(const SoundEncoder &encoder, Range bitrate, int channels)
{
    constexpr int s_Steps[] = {32,  40,  48,  56,  64,  80,  96,  112, 128,
                               160, 192, 224, 256, 320, 384, 448, 640, 768};
    // a codec that is not exact overshoots
    const int taken = mostOf(bitrate, kGreatestBitrate) / 1000;
    const int most = std::min(encoder.most, encoder.isExact ? taken : taken / 20 * 17);
    const int wanted = channels > 2 ? encoder.more : encoder.stereo;
    int found = 0; // the greatest up to what is wanted, or else the least beyond
    for (const int step : s_Steps)
        if (step * 1000 >= bitrate.least && step <= most && (step <= wanted || found == 0))
            found = step;
    return found;
}

/// What a lossless codec comes to, at most.
int losslessBitrate(int codec, int channels, int rate)
{
    const int bits = codecText(codec).find("24") == std::string::npos ? 16 : 24;
    return channels * rate * bits;
}

std::string pictureOption(const PictureEncoder &encoder, const Limits &limits)
{
    const char *profile = findProfileOption(encoder, limits);
    const std::optional<std::string> level = levelOption(limits);
    const Size size = targetSize(limits);
    const std::optional<Rates> rates = targetRates(limits, size);
    if (!profile || !level || !rates) return {};
    return fmt::format("{}{}{} -b:v {} -maxrate {} -bufsize {}{}", encoder.option, profile, *level,
                       bitrateText(rates->usual), bitrateText(rates->most),
                       bitrateText(rates->most), filters(limits, size));
}

std::string soundOption(const SoundEncoder &encoder, const Limits &limits)
{
    if (limits.profiles != 0 && (limits.profiles & profilesNamed(encoder.profile)) == 0) return {};
    const int channels = targetChannels(encoder, limits.channels);
    const auto rate = std::ranges::find_if(
        encoder.rates, [&](int each) { return contains(limits.sampleRate, each); });
    if (rate == encoder.rates.end() || !contains(limits.channels, channels)) return {};
    std::string option = encoder.option;
    if (encoder.stereo > 0) {
        const int bitrate = targetBitrate(encoder, limits.bitrate, channels);
        if (bitrate == 0) return {};
        option += fmt::format(" -b:a {}k", bitrate);
    } else if (!contains(limits.bitrate, losslessBitrate(limits.codec, channels, *rate))) {
        return {};
    }
    const bool keepsChannels = encoder.channels == 0 && channels >= 6 && limits.channels.least < 2;
    if (!keepsChannels) option += fmt::format(" -ac {}", channels);
    return option + fmt::format(" -ar {}", *rate);
}

} // namespace

std::string targetOption(const Limits &limits)
{
    for (const PictureEncoder &encoder : s_PictureEncoders)
        if (limits.codec == encoder.codec) return pictureOption(encoder, limits);
    for (const SoundEncoder &encoder : soundEncoders())
        if (limits.codec == encoder.codec) return soundOption(encoder, limits);
    return {};
}

std::vector<int> makeableCodecs(bool ofPictures)
{
    std::vector<int> codecs;
    const auto addCodec = [&](const auto &encoder) { codecs.push_back(encoder.codec); };
    if (ofPictures)
        std::ranges::for_each(s_PictureEncoders, addCodec);
    else
        std::ranges::for_each(soundEncoders(), addCodec);
    return codecs;
}

bool isLimitedBelow(const Limits &limits)
{
    constexpr int kSmallest = 16; // that there is
    return limits.width.least > kSmallest || limits.height.least > kSmallest;
}

int targetArea(const Limits &limits)
{
    const Size size = targetSize(limits);
    return size.width * size.height;
}

Limits withWholeSize(const Limits &limits)
{
    Limits whole = limits;
    const bool isHalf = (limits.width.most == 0) != (limits.height.most == 0);
    if (!isHalf) return whole;
    const Size size = targetSize(limits);
    whole.width.most = limits.width.most == 0 ? size.width : limits.width.most;
    whole.height.most = limits.height.most == 0 ? size.height : limits.height.most;
    return whole;
}

} // namespace vornak::tool
