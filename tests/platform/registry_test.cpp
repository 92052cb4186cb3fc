#include "include/vornak.h"
#include "include/vornak_host.h"
#include "platform/registry_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vornak::test {
namespace {

constexpr int kUntouched = -77;

/// The id of a name, or kUntouched, which it must then have been left at.
int idOf(int (*lookUp)(const char *, int *), const char *name)
{
    int id = kUntouched;
    const bool found = lookUp(name, &id) == 0;
    EXPECT_EQ(found, id != kUntouched) << name;
    return id;
}

int codecId(const char *name)
{
    return idOf(CodecNameToID, name);
}

int profileBit(const char *name)
{
    return idOf(ProfileNameToID, name);
}

int exceptionBit(const char *name)
{
    return idOf(PlayExceptionNameToID, name);
}

int containerId(const char *name, const char *subtype)
{
    int id = kUntouched;
    const bool found = ContainerFormatNameToID(name, subtype, &id) == 0;
    EXPECT_EQ(found, id != kUntouched) << name;
    return id;
}

std::optional<std::string> codecName(int id)
{
    char name[VORNAK_NAME_SIZE] = {};
    if (CodecIDToName(name, id) != 0) return std::nullopt;
    return name;
}

std::optional<std::string> profileName(int bits, int codec)
{
    char name[VORNAK_NAME_SIZE] = {};
    if (ProfileIDToName(name, bits, codec) != 0) return std::nullopt;
    return name;
}

/// Both texts with a bar between them.
std::optional<std::string> containerName(int id)
{
    char name[VORNAK_NAME_SIZE] = {};
    char subtype[VORNAK_NAME_SIZE] = {};
    if (ContainerFormatIDToName(name, subtype, id) != 0) return std::nullopt;
    return std::string(name) + "|" + subtype;
}

/// Whether profile files can hold the name, and a tag can be read back.
bool isPlainName(std::string_view name)
{
    return !name.empty() && name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_") ==
                                std::string_view::npos;
}

const std::string kTooLong(5000, 'h');

// What no registry function may know.
const char *const s_NoNames[] = {"",      "-",       "_._",         " h264",         "h264 ",
                                 "h 264", "nonsuch", "h264|aac",    "high\n",        "mp3\t",
                                 "\xFF",  "**",      "any any any", kTooLong.c_str()};

TEST(Registry, KnowsNoStrangers)
{
    for (const char *name : s_NoNames) {
        EXPECT_EQ(codecId(name), kUntouched) << name;
        EXPECT_EQ(profileBit(name), kUntouched) << name;
        EXPECT_EQ(exceptionBit(name), kUntouched) << name;
        EXPECT_EQ(containerId(name, nullptr), kUntouched) << name;
        EXPECT_EQ(containerId("mp4", name), *name == '\0' ? 8 : kUntouched) << name;
    }
}

TEST(Codecs, AreKnownByTheFieldsNames)
{
    const struct {
        int id;
        std::vector<const char *> names; // the first is the one that the id is turned back into
    } cases[] = {
        {0, {"any", "*", "ANY"}},
        {1, {"mpeg1video", "mpeg1", "MPEG-1"}},
        {2, {"mpeg2video", "mpeg2", "MPEG-2", "H.262"}},
        {5, {"h263", "H.263"}},
        {8, {"mjpeg", "Motion-JPEG"}},
        {13, {"mpeg4", "MPEG-4", "mp4v", "xvid"}},
        {17, {"msmpeg4v3", "msmpeg4"}},
        {18, {"wmv1"}},
        {19, {"wmv2"}},
        {22, {"flv1", "flv"}},
        {28, {"h264", "H264", "H.264", "AVC", "avc1"}},
        {31, {"theora"}},
        {71, {"rv40"}},
        {72, {"vc1", "VC-1"}},
        {73, {"wmv3", "WMV9"}},
        {93, {"vp6"}},
        {142, {"vp8"}},
        {150, {"prores"}},
        {159, {"v410"}},
        {0x10000, {"pcm_s16le", "PCM", "lpcm", "PCM_S16LE"}},
        {0x10001, {"pcm_s16be", "L16"}},
        {0x10006, {"pcm_mulaw"}},
        {0x1000C, {"pcm_s24le"}},
        {0x1000D, {"pcm_s24be"}},
        {0x10015, {"pcm_f32le"}},
        {0x10018, {"pcm_bluray"}},
        {0x1001B, {"pcm_s8_planar"}},
        {0x11006, {"adpcm_ms"}},
        {0x1101C, {"adpcm_g722", "g722"}},
        {0x12001, {"amr_wb", "amrwb"}},
        {0x13000, {"ra_144"}},
        {0x14003, {"sol_dpcm"}},
        {0x15000, {"mp2"}},
        {0x15001, {"mp3", "MP3"}},
        {0x15002, {"aac", "mp4a"}},
        {0x15003, {"ac3", "AC-3", "a52"}},
        {0x15004, {"dts", "dca"}},
        {0x15005, {"vorbis"}},
        {0x15007, {"wmav1"}},
        {0x15008, {"wmav2", "wma2"}},
        {0x1500C, {"flac"}},
        {0x15010, {"alac"}},
        {0x15021, {"ape"}},
        {0x15026, {"wmapro"}},
        {0x15027, {"wmalossless"}},
        {0x15029, {"eac3", "E-AC-3", "ec-3"}},
        {0x1502B, {"mp1"}},
        {0x1502D, {"truehd"}},
        {0x15032, {"aac_latm"}},
        {0x15039, {"bmv_audio"}},
        {0x17003, {"xsub"}},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(codecName(c.id), std::string("CODEC_ID_") + c.names.front());
        for (const char *name : c.names) EXPECT_EQ(codecId(name), c.id) << name;
    }
}

TEST(Codecs, OfTodayHaveIdsOutsideTheClassicNumbering)
{
    // the classic ranges: video, then PCM, ADPCM, speech, DPCM, audio, each from its own start
    const auto isClassic = [](int id) {
        return id < 0x1000 || (id >= 0x10000 && id <= 0x1503A) || id >= 0x17000;
    };
    for (const char *name : {"hevc", "H.265", "vp9", "av1", "vvc", "webp", "opus", "DTS-HD", "tak",
                             "dsd_lsbf", "pcm_s24le_planar"}) {
        const int id = codecId(name);
        EXPECT_GT(id, 0) << name;
        EXPECT_FALSE(isClassic(id)) << name;
    }
    EXPECT_NE(codecId("dtshd"), codecId("dts"));
}

TEST(Codecs, WholeRangesHaveNames)
{
    const struct {
        int first, last;
    } ranges[] = {{0, 159},           {0x10000, 0x1001B}, {0x11000, 0x1101C}, {0x12000, 0x12001},
                  {0x13000, 0x13001}, {0x14000, 0x14003}, {0x15000, 0x15039}};
    for (const auto &range : ranges)
        for (int id = range.first; id <= range.last; ++id)
            EXPECT_TRUE(codecName(id).has_value()) << id;
    for (const int id : {-1, -2, 160, 0xFFFF, 0x1001C, 0x17002, 0x7FFFFFFF})
        EXPECT_EQ(codecName(id), std::nullopt) << id;
}

TEST(Codecs, WithADecoderInTheLibraryHaveNames)
{
    int decoders = 0;
    for (int id = 1; id < 0x18000; ++id) {
        if (!CodecId_To_GSTCodecStr(id, 0, 0, 0)) continue;
        ++decoders;
        EXPECT_TRUE(codecName(id).has_value()) << id;
    }
    EXPECT_EQ(decoders, 233);
}

TEST(Codecs, ComeBackFromTheirNames)
{
    for (const RegistryName &row : s_CodecNames) {
        EXPECT_TRUE(isPlainName(row.name)) << row.name;
        EXPECT_EQ(codecName(row.id), std::string("CODEC_ID_") + row.name);
        EXPECT_EQ(codecId(row.name), row.id) << row.name;
    }
}

TEST(Profiles, HaveOneBitThatFitsASignedSet)
{
    for (const ProfileName &row : profileNames()) {
        EXPECT_TRUE(isPlainName(row.name)) << row.name;
        const int bit = profileBit(row.name);
        EXPECT_EQ(bit, row.bit) << row.name;
        EXPECT_GT(bit, 0) << row.name;
        EXPECT_EQ(bit & (bit - 1), 0) << row.name;
        EXPECT_EQ(profileName(bit, row.codecId), row.name); // no other one of the codec has it
        EXPECT_TRUE(codecHasProfile(row.codecId, row.name)) << row.name;
    }
}

TEST(Profiles, OfEachCodec)
{
    const struct {
        const char *codec;
        std::vector<const char *> has;
        std::vector<const char *> lacks;
    } cases[] = {
        {"h264",
         {"baseline", "constrained_baseline", "Constrained-Baseline", "main", "extended", "high",
          "High10", "high422", "high444", "high10_intra"},
         {"simple", "main10", "lc", "advanced", "profile0"}},
        {"mpeg2video", {"simple", "main", "high", "422"}, {"baseline", "advanced_simple"}},
        {"mpeg4", {"simple", "advanced_simple", "ASP", "main"}, {"baseline", "high", "advanced"}},
        {"vc1", {"simple", "main", "complex", "advanced"}, {"high", "spatially_scalable"}},
        {"wmv3", {"simple", "main", "complex"}, {"high"}},
        {"hevc", {"main", "main10", "Main-10", "main_still_picture", "rext"}, {"high", "high10"}},
        {"vp9", {"profile0", "profile2"}, {"main"}},
        {"av1", {"main", "high", "professional"}, {"main10", "proxy"}},
        {"aac",
         {"lc", "AAC-LC", "main", "he", "HE-AAC", "he_v2", "HE-AACv2", "ld", "eld", "ltp"},
         {"high", "baseline", "rext"}},
        {"aac_latm", {"lc", "he"}, {"high"}},
        {"dts", {"dts", "dts_es", "dts_96_24"}, {"dts_hd_ma", "hq"}},
        {"dts-hd", {"dts_hd_ma", "dts_hd_hra", "dts_express"}, {"dts_es"}},
        {"mp3", {}, {"main", "lc"}},
        {"any", {}, {"main"}},
    };
    for (const auto &c : cases) {
        int every = 0;
        for (const char *name : c.has) {
            EXPECT_TRUE(codecHasProfile(codecId(c.codec), name)) << c.codec << ' ' << name;
            every |= profileBit(name);
        }
        EXPECT_GE(every, 0) << c.codec;
        for (const char *name : c.lacks) {
            EXPECT_GT(profileBit(name), 0) << name;
            EXPECT_FALSE(codecHasProfile(codecId(c.codec), name)) << c.codec << ' ' << name;
        }
    }
}

TEST(Profiles, OfASetTheLowestOfTheCodecIsNamed)
{
    const struct {
        const char *codec;
        int bits;
        const char *name; // null: none
    } cases[] = {
        {"h264", profileBit("high") | profileBit("main"), "main"},
        {"h264", profileBit("high") | profileBit("constrained_baseline"), "constrained_baseline"},
        {"mpeg2video", profileBit("baseline") | profileBit("high"), "high"}, // no baseline there
        {"aac", profileBit("he") | profileBit("lc") | profileBit("baseline"), "lc"},
        {"h264", 0, nullptr},
        {"mpeg2video", profileBit("baseline"), nullptr},
        {"mp3", 0x7FFFFFFF, nullptr},
        {"any", 0x7FFFFFFF, nullptr},
    };
    for (const auto &c : cases) {
        const auto expected = c.name ? std::optional<std::string>(c.name) : std::nullopt;
        EXPECT_EQ(profileName(c.bits, codecId(c.codec)), expected) << c.codec << ' ' << c.bits;
    }
    EXPECT_EQ(profileName(1, -1), std::nullopt);
}

TEST(PlayExceptions, HaveBitsOfTheirOwn)
{
    int seen = 0;
    for (const RegistryName &row : playExceptionNames()) {
        EXPECT_TRUE(isPlainName(row.name)) << row.name;
        EXPECT_EQ(exceptionBit(row.name), row.id);
        EXPECT_GT(row.id, 0);
        EXPECT_EQ(row.id & (row.id - 1), 0);
        EXPECT_EQ(seen & row.id, 0) << row.name;
        seen |= row.id;
    }
    const struct {
        const char *name, *alias;
    } cases[] = {{"interlaced", "INTERLACED"},   {"10bit", "10-bit"},
                 {"chroma422", "4:2:2"},         {"chroma444", "444"},
                 {"too_many_refs", "refs"},      {"packed_bitstream", "packed-bitstream"},
                 {"vfr", "variable_frame_rate"}, {"hdr", "HDR10"}};
    for (const auto &c : cases) {
        EXPECT_GT(exceptionBit(c.name), 0) << c.name;
        EXPECT_EQ(exceptionBit(c.alias), exceptionBit(c.name)) << c.alias;
    }
}

TEST(Containers, AreKnownByTheFieldsNames)
{
    const struct {
        int id;
        const char *texts; // null: the id has no name
        std::vector<std::pair<const char *, const char *>> names;
    } cases[] = {
        {0, "FORMAT_any|", {{"any", nullptr}, {"*", ""}}},
        {1, "FORMAT_mp3|", {{"mp3", nullptr}, {"MP3", ""}}},
        {2, "FORMAT_wav|", {{"wav", nullptr}, {"wave", nullptr}}},
        {3, "FORMAT_flac|", {{"flac", nullptr}}},
        {4, "FORMAT_ape|", {{"ape", nullptr}}},
        {5, "FORMAT_ogg|", {{"ogg", nullptr}, {"OGA", nullptr}}},
        {6, "FORMAT_ac3|", {{"ac3", nullptr}, {"AC-3", nullptr}}},
        {7, "FORMAT_asf|", {{"asf", nullptr}, {"wmv", nullptr}, {"wma", nullptr}}},
        {8, "FORMAT_mp4|", {{"mp4", nullptr}, {"mp4", ""}}},
        {9, "FORMAT_avi|", {{"avi", nullptr}}},
        {10, "FORMAT_mpegps|", {{"mpegps", nullptr}, {"MPEG-PS", nullptr}, {"vob", nullptr}}},
        {11, "FORMAT_mpegts|", {{"mpegts", nullptr}, {"ts", nullptr}, {"m2ts", nullptr}}},
        {12, "FORMAT_matroska|", {{"matroska", nullptr}, {"mkv", ""}}},
        {13, "FORMAT_flv|", {{"flv", nullptr}}},
        {14, "FORMAT_aiff|", {{"aiff", nullptr}, {"aif", nullptr}}},
        {15, "FORMAT_au|", {{"au", nullptr}}},
        {16, "FORMAT_adts|", {{"adts", nullptr}, {"aac", nullptr}}},
        {21, "FORMAT_rm|", {{"rm", nullptr}}},
        {1 << 16 | 8, "FORMAT_mp4|BRAND_m4a", {{"mp4", "m4a"}, {"mp4", "M4A"}, {"m4a", nullptr}}},
        {2 << 16 | 8, "FORMAT_mp4|BRAND_m4v", {{"mp4", "m4v"}}},
        {3 << 16 | 8, "FORMAT_mp4|BRAND_mp41", {{"mp4", "mp41"}, {"mp4", "MP4"}}},
        {4 << 16 | 8, "FORMAT_mp4|BRAND_mov", {{"mp4", "mov"}, {"mov", "mov"}}},
        {5 << 16 | 8, "FORMAT_mp4|BRAND_msnv", {{"mp4", "MSNV"}}},
        {6 << 16 | 8, "FORMAT_mp4|BRAND_isom", {{"mp4", "isom"}}},
        {7 << 16 | 8, "FORMAT_mp4|BRAND_mjp2", {{"mp4", "mjp2"}}},
        {8 << 16 | 8, "FORMAT_mp4|BRAND_3g2", {{"mp4", "3g2"}, {"3g2", nullptr}}},
        {9 << 16 | 8, "FORMAT_mp4|BRAND_3gp", {{"mp4", "3gp"}, {"3GP", nullptr}}},
        {10 << 16 | 8, "FORMAT_mp4|BRAND_mp42", {{"mp4", "mp42"}}},
        {11 << 16 | 8, "FORMAT_mp4|BRAND_qt", {{"mp4", "qt"}, {"mov", nullptr}, {"mov", "qt"}}},
        {12 << 16 | 12, "FORMAT_matroska|BRAND_webm", {{"mkv", "webm"}, {"webm", nullptr}}},
        {12 << 16 | 8, nullptr, {}},
        {1 << 16, nullptr, {}},
        {1 << 16 | 9, nullptr, {}},
        {22, nullptr, {}},
        {-1, nullptr, {}},
        {kUntouched, nullptr, {{"mp4", "webm"}, {"mp4", "nonsuch"}, {"avi", "m4a"}, {"*", "m4a"}}},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(containerName(c.id), c.texts ? std::optional<std::string>(c.texts) : std::nullopt)
            << c.id;
        for (const auto &[name, subtype] : c.names)
            EXPECT_EQ(containerId(name, subtype), c.id) << name << ' ' << (subtype ? subtype : "");
    }
}

TEST(Containers, ComeBackFromTheirNames)
{
    for (int id = 0; id <= 21; ++id) EXPECT_TRUE(containerName(id).has_value()) << id;
    for (const RegistryName &row : s_ContainerNames) {
        EXPECT_TRUE(isPlainName(row.name)) << row.name;
        EXPECT_EQ(containerName(row.id), std::string("FORMAT_") + row.name + "|");
        EXPECT_EQ(containerId(row.name, nullptr), row.id) << row.name;
    }
    for (const SubtypeName &row : s_SubtypeNames) {
        const int id = row.number << 16 | row.containerId;
        EXPECT_THAT(containerName(id).value(),
                    testing::EndsWith(std::string("|BRAND_") + row.name));
        const std::string container = containerName(row.containerId).value();
        EXPECT_EQ(containerId(container.substr(7, container.size() - 8).c_str(), row.name), id);
    }
}

TEST(Registry, RefusesNullPointers)
{
    char text[VORNAK_NAME_SIZE] = {};
    int id = kUntouched;
    EXPECT_NE(CodecNameToID(nullptr, &id), 0);
    EXPECT_NE(CodecNameToID("h264", nullptr), 0);
    EXPECT_NE(ContainerFormatNameToID(nullptr, nullptr, &id), 0);
    EXPECT_NE(CodecIDToName(nullptr, 28), 0);
    EXPECT_NE(ProfileIDToName(nullptr, 1, 28), 0);
    EXPECT_NE(ContainerFormatIDToName(text, nullptr, 8), 0);
}

} // namespace
} // namespace vornak::test
