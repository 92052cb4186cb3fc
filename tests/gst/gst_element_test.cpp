#include "include/vornak.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

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

    constexpr int kHighBit = static_cast<int>(0x80000000);
    for (const int id : {0, -1, -28, INT_MAX, INT_MIN, kPastCodecs | 28, kHighBit | 28}) {
        EXPECT_EQ(software(id), nullptr) << id;
        EXPECT_EQ(CodecId_To_GSTCodecStr(id, 0, 1, 1), nullptr) << id;
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
    const std::set<int> classes{1, 2, 3, 7, 8, 9, 10}, transportStreams{10, 11};
    for (const int machine : {INT_MIN, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 0x101, INT_MAX})
        for (int source = -1; source <= 20; ++source)
            for (const int hardware : {0, 1, -1, 2, INT_MIN}) {
                const char *expected = "ffdec_h264";
                if (hardware != 0 && !transportStreams.contains(source)) expected = "vaapidecode";
                if (hardware != 0 && !classes.contains(machine)) expected = nullptr;
                EXPECT_STREQ(CodecId_To_GSTCodecStr(28, source, machine, hardware), expected)
                    << source << " on " << machine << ", hardware " << hardware;
            }
}

TEST(ContainerElementTest, DocumentedRowsAlone)
{
    std::string rows;
    for (int id = 0; id <= 0xFFFF; ++id) {
        const char *const demuxer = FormatId_To_GSTMuxDecStr(id);
        int flag = -7;
        const char *const muxer = FormatId_To_GSTMuxEncStr(id, &flag);
        for (const int subtype : {0x10000 | id, 0x7FFF0000 | id}) {
            EXPECT_STREQ(FormatId_To_GSTMuxDecStr(subtype), demuxer);
            EXPECT_STREQ(FormatId_To_GSTMuxEncStr(subtype, nullptr), muxer);
        }
        for (const int negative : {-id, INT_MIN | id}) {
            EXPECT_EQ(FormatId_To_GSTMuxDecStr(negative), nullptr) << negative;
            EXPECT_EQ(FormatId_To_GSTMuxEncStr(negative, nullptr), nullptr) << negative;
        }
        if (!demuxer) continue;
        rows += std::to_string(id) + " " + demuxer + (muxer ? std::string(" ") + muxer : "") +
                (flag == -7 ? "" : " " + std::to_string(flag)) + ", ";
    }
    EXPECT_EQ(rows, "2 wavparse, 4 ffdemux_ape, 5 oggdemux oggmux 0, 7 asfdemux asfmux 0, "
                    "8 qtdemux mp4mux faststart=true 1, 9 avidemux avimux 0, "
                    "10 mpegpsdemux mpegpsmux 0, 11 mpegtsdemux mpegtsmux 0, "
                    "12 matroskademux matroskamux 0, 13 flvdemux flvmux 0, 14 ffdemux_aiff, "
                    "21 rmdemux, ");
}

} // namespace
} // namespace vornak::test
