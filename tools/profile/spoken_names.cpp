#include "tools/profile/spoken_names.h"

#include "base/media_ids.h"
#include "tools/profile/id_names.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace vornak::tool {
namespace {

constexpr RegistryName s_Codecs[] = {
    {"H.264", "h264"_codec},
    {"HEVC (H.265)", "hevc"_codec},
    {"VVC (H.266)", "vvc"_codec},
    {"H.263", "h263"_codec},
    {"AV1", "av1"_codec},
    {"VP8", "vp8"_codec},
    {"VP9", "vp9"_codec},
    {"MPEG-1", "mpeg1video"_codec},
    {"MPEG-2", "mpeg2video"_codec},
    {"MPEG-4 (DivX, Xvid)", "mpeg4"_codec},
    {"DivX 3", "msmpeg4v3"_codec},
    {"Windows Media Video 7", "wmv1"_codec},
    {"Windows Media Video 8", "wmv2"_codec},
    {"Windows Media Video 9", "wmv3"_codec},
    {"VC-1", "vc1"_codec},
    {"Motion JPEG", "mjpeg"_codec},
    {"Theora", "theora"_codec},
    {"Flash Video", "flv1"_codec},
    {"DV", "dvvideo"_codec},
    {"ProRes", "prores"_codec},
    {"MP3", "mp3"_codec},
    {"MP2", "mp2"_codec},
    {"MP1", "mp1"_codec},
    {"AAC", "aac"_codec},
    {"AAC in LATM", "aac_latm"_codec},
    {"AC-3 (Dolby Digital)", "ac3"_codec},
    {"E-AC-3 (Dolby Digital Plus)", "eac3"_codec},
    {"AC-4", "ac4"_codec},
    {"Dolby TrueHD", "truehd"_codec},
    {"DTS", "dts"_codec},
    {"DTS-HD", "dtshd"_codec},
    {"FLAC", "flac"_codec},
    {"ALAC", "alac"_codec},
    {"Opus", "opus"_codec},
    {"Vorbis", "vorbis"_codec},
    {"Monkey's Audio", "ape"_codec},
    {"WavPack", "wavpack"_codec},
    {"TTA", "tta"_codec},
    {"Windows Media Audio 1", "wmav1"_codec},
    {"Windows Media Audio 2", "wmav2"_codec},
    {"Windows Media Audio Professional", "wmapro"_codec},
    {"Windows Media Audio Lossless", "wmalossless"_codec},
    {"PCM of 16 bits", "pcm_s16le"_codec},
    {"PCM of 16 bits (big-endian)", "pcm_s16be"_codec},
    {"PCM of 24 bits", "pcm_s24le"_codec},
    {"PCM of 24 bits (big-endian)", "pcm_s24be"_codec},
    {"PCM of 32 bits", "pcm_s32le"_codec},
    {"PCM of DVDs", "pcm_dvd"_codec},
    {"PCM of Blu-rays", "pcm_bluray"_codec},
};

constexpr RegistryName s_Containers[] = {
    {"any other container", 0},
    {"MP3", "mp3"_container},
    {"WAV", "wav"_container},
    {"FLAC", "flac"_container},
    {"APE", "ape"_container},
    {"Ogg", "ogg"_container},
    {"AC-3 files", "ac3"_container},
    {"E-AC-3 files", "eac3"_container},
    {"DTS files", "dts"_container},
    {"TrueHD files", "truehd"_container},
    {"WMV or WMA (ASF)", "asf"_container},
    {"MP4", "mp4"_container},
    {"MP4", "mp4/isom"_container},
    {"MP4", "mp4/mp41"_container},
    {"MP4", "mp4/mp42"_container},
    {"M4A", "mp4/m4a"_container},
    {"M4V", "mp4/m4v"_container},
    {"QuickTime (MOV)", "mp4/qt"_container},
    {"QuickTime (MOV)", "mp4/mov"_container},
    {"3GP", "mp4/3gp"_container},
    {"3G2", "mp4/3g2"_container},
    {"MP4 of the PSP", "mp4/msnv"_container},
    {"AVI", "avi"_container},
    {"MPEG (program stream)", "mpegps"_container},
    {"VOB", "mpegps_dvd"_container},
    {"MPEG-1 (system stream)", "mpegps_mpeg1"_container},
    {"MPEG-TS", "mpegts"_container},
    {"M2TS", "mpegts_m2ts"_container},
    {"Matroska (MKV)", "matroska"_container},
    {"WebM", "matroska/webm"_container},
    {"Flash Video (FLV)", "flv"_container},
    {"AIFF", "aiff"_container},
    {"AAC files (ADTS)", "adts"_container},
    {"RealMedia", "rm"_container},
};

constexpr struct {
    std::string_view name;
    const char *spoken;
} s_Exceptions[] = {
    {"10bit", "of 10 bits"},
    {"12bit", "of 12 bits"},
    {"chroma422", "4:2:2"},
    {"chroma444", "4:4:4"},
    {"too_many_refs", "with too many reference frames"},
    {"packed_bitstream", "of a packed bitstream"},
    {"vfr", "of variable frame rate"},
    {"hdr", "HDR"},
    {"dolby_vision", "Dolby Vision"},
    {"gmc", "with global motion"},
    {"qpel", "with quarter-pixel motion"},
};

const RegistryName *rowOf(const auto &rows, int id)
{
    const auto *const row = std::ranges::find(rows, id, &RegistryName::id);
    return row == std::end(rows) ? nullptr : row;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// A word with a capital, an abbreviation in capitals.
std::string capitalised(std::string word)
{
    const bool isVersion = word.size() == 2 && word[0] == 'v' && isDigit(word[1]);
    const std::size_t capitals = isVersion ? 0 : word.size() <= 3 ? word.size() : 1;
    for (std::size_t i = 0; i < capitals; ++i)
        word[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(word[i])));
    return word;
}

} // namespace

std::string spokenCodec(int id)
{
    const RegistryName *row = rowOf(s_Codecs, id);
    return row ? row->name : codecText(id);
}

std::string spokenContainer(int id)
{
    const RegistryName *row = rowOf(s_Containers, id);
    return row ? row->name : containerText(id);
}

std::string spokenProfile(const std::string &name)
{
    std::string spoken, word;
    const auto finish = [&] {
        if (word == "422" || word == "444") word = {word[0], ':', word[1], ':', word[2]};
        if (!word.empty()) spoken += (spoken.empty() ? "" : " ") + capitalised(word);
        word.clear();
    };
    for (const char c : name) {
        const bool isNumber = isDigit(c) && word.size() > 1 && !isDigit(word.back());
        if (c == '_' || isNumber) finish();
        if (c != '_') word += c;
    }
    finish();
    return spoken;
}

std::string spokenException(const std::string &name)
{
    for (const auto &row : s_Exceptions)
        if (row.name == name) return row.spoken;
    return name;
}

} // namespace vornak::tool
