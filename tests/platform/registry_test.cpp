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

/// FNV-1a, 64 bits.
std::uint64_t hashOf(std::string_view text)
{
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    return hash;
}

/// Whether an id lies in the numbering that every host has: video, then PCM, ADPCM, speech, DPCM
/// and other audio, each from a start of its own.
bool isClassic(int codec)
{
    return codec < 0x1000 || (codec >= 0x10000 && codec <= 0x1503A) || codec >= 0x17000;
}

TEST(Codecs, OfTheClassicNumberingNeverChange)
{
    std::string names;
    int count = 0;
    for (int id = -2; id <= 0x18000; ++id) {
        const auto name = isClassic(id) ? codecName(id) : std::nullopt;
        if (!name) continue;
        names += std::to_string(id) + " " + *name + "\n";
        ++count;
    }
    EXPECT_EQ(count, 284);
    EXPECT_EQ(hashOf(names), 5391139377618374492U);
    EXPECT_EQ(codecName(0x7FFFFFFF), std::nullopt);
    for (const char *today : {"hevc", "vp9", "av1", "vvc", "webp", "opus", "dtshd", "tak",
                              "dsd_lsbf", "pcm_s24le_planar"})
        EXPECT_FALSE(isClassic(codecId(today))) << today;
}

TEST(Codecs, HaveTheNamesOfTheField)
{
    for (const std::string pair : {"*=any",
                                   "ANY=any",
                                   "MPEG-1=mpeg1video",
                                   "mpeg2=mpeg2video",
                                   "H.262=mpeg2video",
                                   "Motion-JPEG=mjpeg",
                                   "MPEG-4=mpeg4",
                                   "mp4v=mpeg4",
                                   "xvid=mpeg4",
                                   "msmpeg4=msmpeg4v3",
                                   "flv=flv1",
                                   "H.264=h264",
                                   "AVC=h264",
                                   "avc1=h264",
                                   "H.265=hevc",
                                   "VC-1=vc1",
                                   "WMV9=wmv3",
                                   "PCM=pcm_s16le",
                                   "lpcm=pcm_s16le",
                                   "L16=pcm_s16be",
                                   "g722=adpcm_g722",
                                   "amrwb=amr_wb",
                                   "mp4a=aac",
                                   "AC-3=ac3",
                                   "a52=ac3",
                                   "E-AC-3=eac3",
                                   "ec-3=eac3",
                                   "dca=dts",
                                   "DTS-HD=dtshd",
                                   "wma2=wmav2"}) {
        const std::size_t mark = pair.find('=');
        const int id = codecId(pair.substr(mark + 1).c_str());
        EXPECT_GE(id, 0) << pair;
        EXPECT_EQ(codecId(pair.substr(0, mark).c_str()), id) << pair;
    }
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
    for (const auto &[alias, name] : {std::pair("INTERLACED", "interlaced"),
                                      {"10-bit", "10bit"},
                                      {"4:2:2", "chroma422"},
                                      {"444", "chroma444"},
                                      {"refs", "too_many_refs"},
                                      {"packed-bitstream", "packed_bitstream"},
                                      {"variable_frame_rate", "vfr"},
                                      {"HDR10", "hdr"}})
        EXPECT_EQ(exceptionBit(alias), exceptionBit(name)) << alias;
}

TEST(Containers, OfTheClassicNumberingNeverChange)
{
    std::string names, subtypes;
    for (int id = -1; id <= 22; ++id) names += containerName(id).value_or("-") + " ";
    EXPECT_EQ(names, "- FORMAT_any| FORMAT_mp3| FORMAT_wav| FORMAT_flac| FORMAT_ape| FORMAT_ogg| "
                     "FORMAT_ac3| FORMAT_asf| FORMAT_mp4| FORMAT_avi| FORMAT_mpegps| "
                     "FORMAT_mpegts| FORMAT_matroska| FORMAT_flv| FORMAT_aiff| FORMAT_au| "
                     "FORMAT_adts| FORMAT_mpegps_dvd| FORMAT_mpegts_m2ts| FORMAT_mpegps_mpeg1| "
                     "FORMAT_mpegts_204| FORMAT_rm| - ");
    for (const int container : {8, 9, 12})
        for (int number = 1; number <= 12; ++number)
            if (const auto name = containerName(number << 16 | container))
                subtypes += std::to_string(number) + name->substr(name->find('|')) + " ";
    EXPECT_EQ(subtypes, "1|BRAND_m4a 2|BRAND_m4v 3|BRAND_mp41 4|BRAND_mov 5|BRAND_msnv "
                        "6|BRAND_isom 7|BRAND_mjp2 8|BRAND_3g2 9|BRAND_3gp 10|BRAND_mp42 "
                        "11|BRAND_qt 12|BRAND_webm ");
    EXPECT_EQ(containerName(1 << 16), std::nullopt);
}

TEST(Containers, HaveTheNamesOfTheField)
{
    const struct {
        const char *name, *subtype;
        int container, number;
    } cases[] = {
        {"MP3", "", 1, 0},         {"wave", nullptr, 2, 0},  {"OGA", nullptr, 5, 0},
        {"AC-3", nullptr, 6, 0},   {"wmv", nullptr, 7, 0},   {"MPEG-PS", "", 10, 0},
        {"vob", nullptr, 10, 0},   {"m2ts", nullptr, 11, 0}, {"mkv", "", 12, 0},
        {"aif", nullptr, 14, 0},   {"aac", nullptr, 16, 0},  {"mp4", "M4A", 8, 1},
        {"m4a", nullptr, 8, 1},    {"mp4", "MP4", 8, 3},     {"mov", "mov", 8, 4},
        {"mp4", "MSNV", 8, 5},     {"3g2", nullptr, 8, 8},   {"3GP", nullptr, 8, 9},
        {"mov", nullptr, 8, 11},   {"mov", "qt", 8, 11},     {"mkv", "webm", 12, 12},
        {"webm", nullptr, 12, 12},
    };
    for (const auto &c : cases)
        EXPECT_EQ(containerId(c.name, c.subtype), c.container | c.number << 16) << c.name;
    EXPECT_EQ(containerId("*", ""), 0);
    EXPECT_EQ(containerId("mp4", "webm"), kUntouched);
    EXPECT_EQ(containerId("avi", "m4a"), kUntouched);
    EXPECT_EQ(containerId("*", "m4a"), kUntouched);
}

TEST(Containers, ComeBackFromTheirNames)
{
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
