#include "include/vornak.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::test {
namespace {

constexpr int kPastCodecs = 0x20000; // codec ids end well before it

const char *software(int codecId)
{
    return CodecId_To_GSTCodecStr(codecId, 0, 0, 0);
}

/// FNV-1a, 64 bits, carried on over several texts.
std::uint64_t hashed(std::string_view text, std::uint64_t hash)
{
    for (const char c : text) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 0x100000001B3U;
    }
    return hash;
}

TEST(CodecElementTest, SoftwareTableIsTheDocumentedOne)
{
    int rows = 0;
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (int id = 1; id < kPastCodecs; ++id) {
        const char *const element = software(id);
        if (!element) continue;
        ++rows;
        hash = hashed(std::to_string(id) + " " + element + "\n", hash);
    }
    EXPECT_EQ(rows, 233);
    EXPECT_EQ(hash, 0xE1D4BD17C25EA3DFU);
}

TEST(CodecElementTest, TellingRows)
{
    const struct {
        int codecId;
        const char *element;
    } cases[] = {
        {1, "mpeg2dec"},
        {2, "mpeg2dec"},
        {3, nullptr},
        {14, nullptr},
        {28, "ffdec_h264"},
        {159, "ffdec_v410"},
        {160, nullptr},
        {0xFFFF, nullptr},
        {0x10000, "audio/x-raw-int"},
        {0x15005, nullptr},
        {0x1502C, "ffdec_twinvq\t"},
        {0x17000, nullptr},
        {0x17003, "ffdec_xsub"},
        {0x17004, nullptr},
        {0, nullptr},
        {-1, nullptr},
        {-28, nullptr},
        {INT_MAX, nullptr},
        {INT_MIN, nullptr},
        {0x2001C, nullptr}, // 28 behind other high bits
        {static_cast<int>(0x8000001C), nullptr},
    };
    for (const auto &c : cases) {
        EXPECT_STREQ(software(c.codecId), c.element) << c.codecId;
        if (!c.element) {
            EXPECT_EQ(CodecId_To_GSTCodecStr(c.codecId, 0, 1, 1), nullptr);
        }
    }
}

TEST(CodecElementTest, HardwareTakesOverFiveCodecs)
{
    std::set<int> changed;
    for (int id = 1; id < kPastCodecs; ++id) {
        const char *const hardware = CodecId_To_GSTCodecStr(id, 0, 1, 1);
        if (hardware == software(id)) continue; // the very same text
        changed.insert(id);
        EXPECT_STREQ(hardware, "vaapidecode");
    }
    EXPECT_THAT(changed, testing::ElementsAre(5, 13, 28, 72, 73));
}

TEST(CodecElementTest, MachineAndSourceDecide)
{
    const std::set<int> classes{1, 2, 3, 7, 8, 9, 10};
    for (const int edge : {INT_MIN, -1, 0, INT_MAX, 0x101, static_cast<int>(0x80000001)})
        EXPECT_EQ(CodecId_To_GSTCodecStr(28, 0, edge, 1), nullptr) << edge;
    for (int platformClass = -20; platformClass <= 20; ++platformClass)
        for (int sourceKind = -20; sourceKind <= 20; ++sourceKind)
            for (const int hwDecode : {0, 1, -1, 2, INT_MIN}) {
                const bool transport = sourceKind == 10 || sourceKind == 11;
                const char *expected = "ffdec_h264";
                if (hwDecode != 0)
                    expected = !classes.contains(platformClass) ? nullptr
                               : transport                      ? "ffdec_h264"
                                                                : "vaapidecode";
                EXPECT_STREQ(CodecId_To_GSTCodecStr(28, sourceKind, platformClass, hwDecode),
                             expected)
                    << sourceKind << " on " << platformClass << ", hardware " << hwDecode;
            }
    EXPECT_STREQ(CodecId_To_GSTCodecStr(0x15004, 10, 4, 0), "dtsdec");
    EXPECT_EQ(CodecId_To_GSTCodecStr(0x15004, 10, 4, 1), nullptr);
}

TEST(ContainerElementTest, DocumentedRowsAlone)
{
    const struct {
        int container, flag;
        const char *demuxer, *muxer;
    } rows[] = {
        {13, 0, "flvdemux", "flvmux"},
        {12, 0, "matroskademux", "matroskamux"},
        {4, -7, "ffdemux_ape", nullptr},
        {14, -7, "ffdemux_aiff", nullptr},
        {11, 0, "mpegtsdemux", "mpegtsmux"},
        {10, 0, "mpegpsdemux", "mpegpsmux"},
        {8, 1, "qtdemux", "mp4mux faststart=true"},
        {9, 0, "avidemux", "avimux"},
        {7, 0, "asfdemux", "asfmux"},
        {5, 0, "oggdemux", "oggmux"},
        {2, -7, "wavparse", nullptr},
        {21, -7, "rmdemux", nullptr},
    };
    std::set<int> known;
    for (const auto &row : rows) {
        known.insert(row.container);
        for (const int subtype : {0, 1, 0x7FFF}) {
            const int id = subtype << 16 | row.container;
            int flag = -7;
            EXPECT_STREQ(FormatId_To_GSTMuxDecStr(id), row.demuxer) << id;
            EXPECT_STREQ(FormatId_To_GSTMuxEncStr(id, &flag), row.muxer) << id;
            EXPECT_STREQ(FormatId_To_GSTMuxEncStr(id, nullptr), row.muxer) << id;
            EXPECT_EQ(flag, row.flag) << id;
        }
        for (const int negative : {-row.container, INT_MIN | row.container}) {
            EXPECT_EQ(FormatId_To_GSTMuxDecStr(negative), nullptr) << negative;
            EXPECT_EQ(FormatId_To_GSTMuxEncStr(negative, nullptr), nullptr) << negative;
        }
    }
    for (int id = 0; id <= 0x10000; ++id) {
        if (known.contains(id)) continue;
        int flag = -7;
        EXPECT_EQ(FormatId_To_GSTMuxDecStr(id), nullptr) << id;
        EXPECT_EQ(FormatId_To_GSTMuxEncStr(id, &flag), nullptr) << id;
        EXPECT_EQ(flag, -7);
    }
}

} // namespace
} // namespace vornak::test
