#include "tools/check/option_words.h"

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
    const char *codec;
} s_Encoders[] = {
    {"libx264", "h264"},
    {"libx264rgb", "h264"},
    {"libopenh264", "h264"},
    {"libx265", "hevc"},
    {"libkvazaar", "hevc"},
    {"libxvid", "mpeg4"},
    {"libvpx", "vp8"},
    {"libvpx-vp9", "vp9"},
    {"libaom-av1", "av1"},
    {"librav1e", "av1"},
    {"libsvtav1", "av1"},
    {"libtheora", "theora"},
    {"msmpeg4", "msmpeg4v3"},
    {"libmp3lame", "mp3"},
    {"libshine", "mp3"},
    {"libtwolame", "mp2"},
    {"libfdk_aac", "aac"},
    {"libfaac", "aac"},
    {"libvo_aacenc", "aac"},
    {"libvorbis", "vorbis"},
    {"libopus", "opus"},
    {"libspeex", "speex"},
    {"libwavpack", "wavpack"},
    {"dca", "dts"},
    {"libopencore_amrnb", "amr_nb"},
    {"libvo_amrwbenc", "amr_wb"},
    {"libgsm", "gsm"},
};

constexpr MuxerRow s_Muxers[] = {
    // muxer, container, subtypes
    {"3g2", "mp4", "3g2"},
    {"3gp", "mp4", "3gp"},
    {"ac3", "ac3", ""},
    {"adts", "adts", ""},
    {"aiff", "aiff", ""},
    {"amr", "amr", ""},
    {"asf", "asf", ""},
    {"asf_stream", "asf", ""},
    {"au", "au", ""},
    {"avi", "avi", ""},
    {"caf", "caf", ""},
    {"dts", "dts", ""},
    {"dv", "dv", ""},
    {"dvd", "mpegps", ""},
    {"eac3", "eac3", ""},
    {"flac", "flac", ""},
    {"flv", "flv", ""},
    {"h264", "h264", ""},
    {"hevc", "hevc", ""},
    {"ipod", "mp4", "m4a|m4v"},
    {"ivf", "ivf", ""},
    {"latm", "latm", ""},
    {"m4v", "mpeg4video", ""},
    {"matroska", "matroska", ""},
    {"mkvtimestamp_v2", "matroska", ""}, // the appliance's name for Matroska
    {"mov", "mp4", "qt"},
    {"mp2", "mp3", ""},
    {"mp3", "mp3", ""},
    {"mp4", "mp4", "isom"},
    {"mpeg", "mpegps", ""},
    {"mpeg1video", "mpegvideo", ""},
    {"mpeg2video", "mpegvideo", ""},
    {"mpegts", "mpegts", ""},
    {"mxf", "mxf", ""},
    {"oga", "ogg", ""},
    {"ogg", "ogg", ""},
    {"ogv", "ogg", ""},
    {"opus", "ogg", ""},
    {"psp", "mp4", "msnv"},
    {"rm", "rm", ""},
    {"spx", "ogg", ""},
    {"svcd", "mpegps", ""},
    {"truehd", "truehd", ""},
    {"tta", "tta", ""},
    {"vc1", "vc1", ""},
    {"vcd", "mpegps", ""},
    {"vob", "mpegps", ""},
    {"w64", "w64", ""},
    {"wav", "wav", ""},
    {"webm", "matroska", "webm"},
    {"wv", "wavpack", ""},
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
        if (row.encoder == encoder) return codecNamed(row.codec);
    if (const std::optional<int> id = codecNamed(std::string(encoder))) return id;
    return codecNamed(std::string(encoder.substr(0, encoder.find('_'))));
}

const MuxerRow *findMuxer(std::string_view muxer)
{
    const auto *const row = std::ranges::find(s_Muxers, muxer, &MuxerRow::muxer);
    return row == std::end(s_Muxers) ? nullptr : row;
}

} // namespace vornak::tool
