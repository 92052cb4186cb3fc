// The ids of codecs and containers on which the library and its host agree, with their names.
// Elsewhere an id is written by its name, which the compiler looks up: "h264"_codec.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <string_view>

namespace vornak {

/// A name and the id or bit that it stands for.
struct RegistryName {
    const char *name;
    int id;
};

/// A subtype that a container has; `number` stands in the high 16 bits of the id.
struct SubtypeName {
    int containerId;
    int number;
    const char *name;
};

constexpr int containerPart(int formatId)
{
    return formatId & 0xFFFF;
}
constexpr int subtypePart(int formatId)
{
    return static_cast<int>(static_cast<unsigned>(formatId) >> 16);
}
constexpr int formatIdOf(int containerId, int subtype)
{
    return containerId | subtype << 16;
}

consteval bool areRising(const auto &names)
{
    return std::ranges::adjacent_find(names, std::ranges::greater_equal{}, &RegistryName::id) ==
           names.end();
}

consteval int idNamed(const auto &names, std::string_view name)
{
    for (const RegistryName &row : names)
        if (row.name == name) return row.id;
    throw "no id has this name";
}

inline constexpr auto s_ContainerNames = std::to_array<RegistryName>({
    {"any", 0},
    {"mp3", 1},
    {"wav", 2},
    {"flac", 3},
    {"ape", 4},
    {"ogg", 5},
    {"ac3", 6},
    {"asf", 7},
    {"mp4", 8},
    {"avi", 9},
    {"mpegps", 10},
    {"mpegts", 11},
    {"matroska", 12},
    {"flv", 13},
    {"aiff", 14},
    {"au", 15},
    {"adts", 16},
    // Forms of the two MPEG streams. A video's matching takes them for 10 and 11, so no name
    // that people would write for one of these streams leads here.
    {"mpegps_dvd", 17},   // with the navigation packs of DVD-Video
    {"mpegts_m2ts", 18},  // packets of 192 bytes, each with a time stamp
    {"mpegps_mpeg1", 19}, // MPEG-1 system stream
    {"mpegts_204", 20},   // packets of 204 bytes, each with error correction
    {"rm", 21},
    // not in the classic numbering
    {"dts", 64},
    {"eac3", 65},
    {"truehd", 66},
    {"wavpack", 67},
    {"dsf", 68},
    {"dff", 69},
    {"caf", 70},
    {"tta", 71},
    {"mpc", 72},
    {"amr", 73},
    {"w64", 74},
    {"latm", 75},
    {"mpegvideo", 80}, // elementary streams
    {"h264", 81},
    {"hevc", 82},
    {"mpeg4video", 83},
    {"vc1", 84},
    {"ivf", 85},
    {"dv", 86},
    {"mxf", 87},
});

constexpr int kMp4 = idNamed(s_ContainerNames, "mp4");
constexpr int kMatroska = idNamed(s_ContainerNames, "matroska");

// Those of one container together by rising number. The numbers of MP4 brands are those that tags
// spell out; other subtypes keep clear of them.
inline constexpr auto s_SubtypeNames = std::to_array<SubtypeName>({
    {kMp4, 1, "m4a"},
    {kMp4, 2, "m4v"},
    {kMp4, 3, "mp41"},
    {kMp4, 4, "mov"}, // no brand: QuickTime files have "qt", also those without any
    {kMp4, 5, "msnv"},
    {kMp4, 6, "isom"},
    {kMp4, 7, "mjp2"},
    {kMp4, 8, "3g2"},
    {kMp4, 9, "3gp"},
    {kMp4, 10, "mp42"},
    {kMp4, 11, "qt"},
    {kMatroska, 12, "webm"},
});

// Codecs have the numbers of libavcodec's classic numbering, and that library's names.
constexpr int kFirstAudioCodec = 0x10000;
constexpr int kFirstSubtitleCodec = 0x17000; // the sound ends before it

inline constexpr auto s_CodecNames = std::to_array<RegistryName>({
    {"any", 0},
    // video
    {"mpeg1video", 1},
    {"mpeg2video", 2},
    {"mpeg2video_xvmc", 3},
    {"h261", 4},
    {"h263", 5},
    {"rv10", 6},
    {"rv20", 7},
    {"mjpeg", 8},
    {"mjpegb", 9},
    {"ljpeg", 10},
    {"sp5x", 11},
    {"jpegls", 12},
    {"mpeg4", 13},
    {"rawvideo", 14},
    {"msmpeg4v1", 15},
    {"msmpeg4v2", 16},
    {"msmpeg4v3", 17},
    {"wmv1", 18},
    {"wmv2", 19},
    {"h263p", 20},
    {"h263i", 21},
    {"flv1", 22},
    {"svq1", 23},
    {"svq3", 24},
    {"dvvideo", 25},
    {"huffyuv", 26},
    {"cyuv", 27},
    {"h264", 28},
    {"indeo3", 29},
    {"vp3", 30},
    {"theora", 31},
    {"asv1", 32},
    {"asv2", 33},
    {"ffv1", 34},
    {"4xm", 35},
    {"vcr1", 36},
    {"cljr", 37},
    {"mdec", 38},
    {"roq", 39},
    {"interplayvideo", 40},
    {"xan_wc3", 41},
    {"xan_wc4", 42},
    {"rpza", 43},
    {"cinepak", 44},
    {"ws_vqa", 45},
    {"msrle", 46},
    {"msvideo1", 47},
    {"idcin", 48},
    {"8bps", 49},
    {"smc", 50},
    {"flic", 51},
    {"truemotion1", 52},
    {"vmdvideo", 53},
    {"mszh", 54},
    {"zlib", 55},
    {"qtrle", 56},
    {"snow", 57},
    {"tscc", 58},
    {"ulti", 59},
    {"qdraw", 60},
    {"vixl", 61},
    {"qpeg", 62},
    {"png", 63},
    {"ppm", 64},
    {"pbm", 65},
    {"pgm", 66},
    {"pgmyuv", 67},
    {"pam", 68},
    {"ffvhuff", 69},
    {"rv30", 70},
    {"rv40", 71},
    {"vc1", 72},
    {"wmv3", 73},
    {"loco", 74},
    {"wnv1", 75},
    {"aasc", 76},
    {"indeo2", 77},
    {"fraps", 78},
    {"truemotion2", 79},
    {"bmp", 80},
    {"cscd", 81},
    {"mmvideo", 82},
    {"zmbv", 83},
    {"avs", 84},
    {"smackvideo", 85},
    {"nuv", 86},
    {"kmvc", 87},
    {"flashsv", 88},
    {"cavs", 89},
    {"jpeg2000", 90},
    {"vmnc", 91},
    {"vp5", 92},
    {"vp6", 93},
    {"vp6f", 94},
    {"targa", 95},
    {"dsicinvideo", 96},
    {"tiertexseqvideo", 97},
    {"tiff", 98},
    {"gif", 99},
    {"dxa", 100},
    {"dnxhd", 101},
    {"thp", 102},
    {"sgi", 103},
    {"c93", 104},
    {"bethsoftvid", 105},
    {"ptx", 106},
    {"txd", 107},
    {"vp6a", 108},
    {"amv", 109},
    {"vb", 110},
    {"pcx", 111},
    {"sunrast", 112},
    {"indeo4", 113},
    {"indeo5", 114},
    {"mimic", 115},
    {"rl2", 116},
    {"escape124", 117},
    {"dirac", 118},
    {"bfi", 119},
    {"cmv", 120},
    {"motionpixels", 121},
    {"tgv", 122},
    {"tgq", 123},
    {"tqi", 124},
    {"aura", 125},
    {"aura2", 126},
    {"v210x", 127},
    {"tmv", 128},
    {"v210", 129},
    {"dpx", 130},
    {"mad", 131},
    {"frwu", 132},
    {"flashsv2", 133},
    {"cdgraphics", 134},
    {"r210", 135},
    {"anm", 136},
    {"binkvideo", 137},
    {"iff_ilbm", 138},
    {"iff_byterun1", 139},
    {"kgv1", 140},
    {"yop", 141},
    {"vp8", 142},
    {"pictor", 143},
    {"ansi", 144},
    {"a64_multi", 145},
    {"a64_multi5", 146},
    {"r10k", 147},
    {"mxpeg", 148},
    {"lagarith", 149},
    {"prores", 150},
    {"jv", 151},
    {"dfa", 152},
    {"wmv3image", 153},
    {"vc1image", 154},
    {"utvideo", 155},
    {"bmv_video", 156},
    {"vble", 157},
    {"dxtory", 158},
    {"v410", 159},
    // video that the classic numbering lacks, on a range of its own
    {"hevc", 0x8000},
    {"vp9", 0x8001},
    {"av1", 0x8002},
    {"vvc", 0x8003},
    {"vp7", 0x8004},
    {"vp4", 0x8005},
    {"webp", 0x8006},
    {"apng", 0x8007},
    {"jpegxl", 0x8008},
    {"cfhd", 0x8009},
    {"hap", 0x800A},
    {"magicyuv", 0x800B},
    {"avs2", 0x800C},
    {"avs3", 0x800D},
    {"mss1", 0x800E},
    {"mss2", 0x800F},
    // PCM
    {"pcm_s16le", 0x10000},
    {"pcm_s16be", 0x10001},
    {"pcm_u16le", 0x10002},
    {"pcm_u16be", 0x10003},
    {"pcm_s8", 0x10004},
    {"pcm_u8", 0x10005},
    {"pcm_mulaw", 0x10006},
    {"pcm_alaw", 0x10007},
    {"pcm_s32le", 0x10008},
    {"pcm_s32be", 0x10009},
    {"pcm_u32le", 0x1000A},
    {"pcm_u32be", 0x1000B},
    {"pcm_s24le", 0x1000C},
    {"pcm_s24be", 0x1000D},
    {"pcm_u24le", 0x1000E},
    {"pcm_u24be", 0x1000F},
    {"pcm_s24daud", 0x10010},
    {"pcm_zork", 0x10011},
    {"pcm_s16le_planar", 0x10012},
    {"pcm_dvd", 0x10013},
    {"pcm_f32be", 0x10014},
    {"pcm_f32le", 0x10015},
    {"pcm_f64be", 0x10016},
    {"pcm_f64le", 0x10017},
    {"pcm_bluray", 0x10018},
    {"pcm_lxf", 0x10019},
    {"s302m", 0x1001A},
    {"pcm_s8_planar", 0x1001B},
    // ADPCM
    {"adpcm_ima_qt", 0x11000},
    {"adpcm_ima_wav", 0x11001},
    {"adpcm_ima_dk3", 0x11002},
    {"adpcm_ima_dk4", 0x11003},
    {"adpcm_ima_ws", 0x11004},
    {"adpcm_ima_smjpeg", 0x11005},
    {"adpcm_ms", 0x11006},
    {"adpcm_4xm", 0x11007},
    {"adpcm_xa", 0x11008},
    {"adpcm_adx", 0x11009},
    {"adpcm_ea", 0x1100A},
    {"adpcm_g726", 0x1100B},
    {"adpcm_ct", 0x1100C},
    {"adpcm_swf", 0x1100D},
    {"adpcm_yamaha", 0x1100E},
    {"adpcm_sbpro_4", 0x1100F},
    {"adpcm_sbpro_3", 0x11010},
    {"adpcm_sbpro_2", 0x11011},
    {"adpcm_thp", 0x11012},
    {"adpcm_ima_amv", 0x11013},
    {"adpcm_ea_r1", 0x11014},
    {"adpcm_ea_r3", 0x11015},
    {"adpcm_ea_r2", 0x11016},
    {"adpcm_ima_ea_sead", 0x11017},
    {"adpcm_ima_ea_eacs", 0x11018},
    {"adpcm_ea_xas", 0x11019},
    {"adpcm_ea_maxis_xa", 0x1101A},
    {"adpcm_ima_iss", 0x1101B},
    {"adpcm_g722", 0x1101C},
    // speech
    {"amr_nb", 0x12000},
    {"amr_wb", 0x12001},
    // RealAudio
    {"ra_144", 0x13000},
    {"ra_288", 0x13001},
    // DPCM
    {"roq_dpcm", 0x14000},
    {"interplay_dpcm", 0x14001},
    {"xan_dpcm", 0x14002},
    {"sol_dpcm", 0x14003},
    // other audio
    {"mp2", 0x15000},
    {"mp3", 0x15001},
    {"aac", 0x15002},
    {"ac3", 0x15003},
    {"dts", 0x15004},
    {"vorbis", 0x15005},
    {"dvaudio", 0x15006},
    {"wmav1", 0x15007},
    {"wmav2", 0x15008},
    {"mace3", 0x15009},
    {"mace6", 0x1500A},
    {"vmdaudio", 0x1500B},
    {"flac", 0x1500C},
    {"mp3adu", 0x1500D},
    {"mp3on4", 0x1500E},
    {"shorten", 0x1500F},
    {"alac", 0x15010},
    {"westwood_snd1", 0x15011},
    {"gsm", 0x15012},
    {"qdm2", 0x15013},
    {"cook", 0x15014},
    {"truespeech", 0x15015},
    {"tta", 0x15016},
    {"smackaudio", 0x15017},
    {"qcelp", 0x15018},
    {"wavpack", 0x15019},
    {"dsicinaudio", 0x1501A},
    {"imc", 0x1501B},
    {"musepack7", 0x1501C},
    {"mlp", 0x1501D},
    {"gsm_ms", 0x1501E},
    {"atrac3", 0x1501F},
    {"voxware", 0x15020},
    {"ape", 0x15021},
    {"nellymoser", 0x15022},
    {"musepack8", 0x15023},
    {"speex", 0x15024},
    {"wmavoice", 0x15025},
    {"wmapro", 0x15026},
    {"wmalossless", 0x15027},
    {"atrac3p", 0x15028},
    {"eac3", 0x15029},
    {"sipr", 0x1502A},
    {"mp1", 0x1502B},
    {"twinvq", 0x1502C},
    {"truehd", 0x1502D},
    {"mp4als", 0x1502E},
    {"atrac1", 0x1502F},
    {"binkaudio_rdft", 0x15030},
    {"binkaudio_dct", 0x15031},
    {"aac_latm", 0x15032},
    {"qdmc", 0x15033},
    {"celt", 0x15034},
    {"g723_1", 0x15035},
    {"g729", 0x15036},
    {"8svx_exp", 0x15037},
    {"8svx_fib", 0x15038},
    {"bmv_audio", 0x15039},
    // audio that the classic numbering lacks, on a range of its own
    {"opus", 0x16000},
    {"dtshd", 0x16001},
    {"ac4", 0x16002},
    {"mpegh_3d_audio", 0x16003},
    {"tak", 0x16004},
    {"dsd_lsbf", 0x16005},
    {"dsd_msbf", 0x16006},
    {"dsd_lsbf_planar", 0x16007},
    {"dsd_msbf_planar", 0x16008},
    {"dst", 0x16009},
    {"atrac3al", 0x1600A},
    {"atrac3pal", 0x1600B},
    {"atrac9", 0x1600C},
    {"xma1", 0x1600D},
    {"xma2", 0x1600E},
    {"ilbc", 0x1600F},
    {"sbc", 0x16010},
    {"evrc", 0x16011},
    {"codec2", 0x16012},
    {"dolby_e", 0x16013},
    {"ralf", 0x16014},
    {"metasound", 0x16015},
    {"aptx", 0x16016},
    {"aptx_hd", 0x16017},
    {"adpcm_g726le", 0x16018},
    {"pcm_s16be_planar", 0x16019},
    {"pcm_s24le_planar", 0x1601A},
    {"pcm_s32le_planar", 0x1601B},
    {"pcm_s64le", 0x1601C},
    {"pcm_s64be", 0x1601D},
    {"pcm_f16le", 0x1601E},
    {"pcm_f24le", 0x1601F},
    // pictures as subtitles
    {"xsub", 0x17003},
});

static_assert(areRising(s_ContainerNames) && areRising(s_CodecNames));

consteval int operator""_codec(const char *name, std::size_t length)
{
    return idNamed(s_CodecNames, {name, length});
}

/// "mp4"_container, and with a subtype "mp4/m4a"_container.
consteval int operator""_container(const char *name, std::size_t length)
{
    const std::string_view text(name, length);
    const int id = idNamed(s_ContainerNames, text.substr(0, text.find('/')));
    if (text.find('/') == std::string_view::npos) return id;
    for (const SubtypeName &row : s_SubtypeNames)
        if (row.containerId == id && row.name == text.substr(text.find('/') + 1))
            return formatIdOf(id, row.number);
    throw "the container has no such subtype";
}

} // namespace vornak
