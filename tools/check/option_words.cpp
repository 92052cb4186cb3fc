#include "tools/check/option_words.h"

#include "base/media_ids.h"
#include "include/vornak_host.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string>

namespace vornak::tool {
namespace {

// Encoders whose names say neither the codec nor begin with it.
constexpr struct {
    std::string_view encoder;
    int codecId;
} s_Encoders[] = {
    {"libx264", "h264"_codec},
    {"libx264rgb", "h264"_codec},
    {"libopenh264", "h264"_codec},
    {"libx265", "hevc"_codec},
    {"libkvazaar", "hevc"_codec},
    {"libxvid", "mpeg4"_codec},
    {"libvpx", "vp8"_codec},
    {"libvpx-vp9", "vp9"_codec},
    {"libaom-av1", "av1"_codec},
    {"librav1e", "av1"_codec},
    {"libsvtav1", "av1"_codec},
    {"libtheora", "theora"_codec},
    {"msmpeg4", "msmpeg4v3"_codec},
    {"libmp3lame", "mp3"_codec},
    {"libshine", "mp3"_codec},
    {"libtwolame", "mp2"_codec},
    {"libfdk_aac", "aac"_codec},
    {"libfaac", "aac"_codec},
    {"libvo_aacenc", "aac"_codec},
    {"libvorbis", "vorbis"_codec},
    {"libopus", "opus"_codec},
    {"libspeex", "speex"_codec},
    {"libwavpack", "wavpack"_codec},
    {"dca", "dts"_codec},
    {"libopencore_amrnb", "amr_nb"_codec},
    {"libvo_amrwbenc", "amr_wb"_codec},
    {"libgsm", "gsm"_codec},
};

constexpr std::string_view kBlanks = " \t\r\n";

/// Takes the next word off `text`; empty at its end.
std::string_view takeWord(std::string_view &text)
{
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text.remove_prefix(word.size());
    return word;
}

std::optional<int> codecNamed(const std::string &name)
{
    int id = 0;
    if (CodecNameToID(name.c_str(), &id) != 0) return std::nullopt;
    return id;
}

} // namespace

std::optional<std::string_view> optionValue(std::string_view text,
                                            std::span<const std::string_view> names)
{
    std::optional<std::string_view> value;
    for (std::string_view word = takeWord(text); !word.empty(); word = takeWord(text))
        if (std::ranges::find(names, word) != names.end()) value = takeWord(text);
    return value;
}

std::optional<double> optionNumber(std::string_view word)
{
    double number = 0;
    const char *const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    if (error != std::errc()) return std::nullopt;
    const std::string_view suffix(stop, static_cast<std::size_t>(end - stop));
    if (suffix.empty()) return number;
    if (suffix == "k" || suffix == "K") return number * 1e3;
    if (suffix == "M") return number * 1e6;
    if (suffix == "G") return number * 1e9;
    return std::nullopt;
}

std::optional<int> encodedCodec(std::string_view encoder)
{
    for (const auto &row : s_Encoders)
        if (row.encoder == encoder) return row.codecId;
    if (const std::optional<int> id = codecNamed(std::string(encoder))) return id;
    return codecNamed(std::string(encoder.substr(0, encoder.find('_'))));
}

} // namespace vornak::tool
