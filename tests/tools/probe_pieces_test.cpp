#include "tools/probe/bit_rates.h"
#include "tools/probe/container_mapping.h"
#include "tools/probe/frame_rate.h"
#include "tools/probe/mpeg4_headers.h"
#include "tools/probe/parameter_sets.h"

#include <bit>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace vornak::test {
namespace {

using namespace tool;

using Bytes = std::vector<std::uint8_t>;

class BitWriter {
public:
    void put(std::uint32_t value, int count)
    {
        for (int i = count - 1; i >= 0; --i) {
            if (used_ % 8 == 0) bytes_.push_back(0);
            bytes_.back() |= static_cast<std::uint8_t>((value >> i & 1) << (7 - used_ % 8));
            ++used_;
        }
    }
    void putUnsigned(std::uint32_t value)
    {
        const auto length = static_cast<int>(std::bit_width(value + 1));
        put(0, length - 1);
        put(value + 1, length);
    }
    const Bytes &bytes() const { return bytes_; }

private:
    Bytes bytes_;
    int used_ = 0;
};

struct Sequence {
    std::uint32_t profile, constraints, level;
    std::uint32_t width, height; // macroblocks of a frame
    bool framesOnly;
    std::uint32_t references;
};

/// The payload of a sequence parameter set.
Bytes parameterSet(const Sequence &sequence)
{
    BitWriter bits;
    bits.put(sequence.profile, 8);
    bits.put(sequence.constraints, 8);
    bits.put(sequence.level, 8);
    bits.putUnsigned(0); // number
    if (sequence.profile >= 100) {
        bits.putUnsigned(1); // 4:2:0
        bits.putUnsigned(0); // 8 bits, twice
        bits.putUnsigned(0);
        bits.put(0, 1);
        bits.put(1, 1); // scaling lists: the first there and flat at once, the others not
        bits.put(1, 1);
        bits.putUnsigned(16); // -8: next scale 0
        bits.put(0, 7);
    }
    bits.putUnsigned(0);
    bits.putUnsigned(1); // order of pictures by cycle, with two entries
    bits.put(0, 1);
    bits.putUnsigned(3);
    bits.putUnsigned(0);
    bits.putUnsigned(2);
    bits.putUnsigned(7);
    bits.putUnsigned(8);
    bits.putUnsigned(sequence.references);
    bits.put(0, 1);
    bits.putUnsigned(sequence.width - 1);
    bits.putUnsigned(sequence.height / (sequence.framesOnly ? 1 : 2) - 1);
    bits.put(sequence.framesOnly, 1);
    bits.put(0xFF, 8);
    return bits.bytes();
}

Bytes escaped(const Bytes &unit)
{
    Bytes out;
    int zeros = 0;
    for (const std::uint8_t byte : unit) {
        if (zeros >= 2 && byte <= 3) {
            out.push_back(3);
            zeros = 0;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        out.push_back(byte);
    }
    return out;
}

Bytes withStartCode(const Bytes &unit)
{
    Bytes bytes{0, 0, 0, 1, 0x09, 0x10, 0, 0, 1, 0x67}; // a delimiter comes first
    bytes.insert(bytes.end(), unit.begin(), unit.end());
    return bytes;
}

Bytes inBox(const Bytes &unit)
{
    const auto size = static_cast<std::uint8_t>(unit.size() + 1);
    Bytes bytes{1, unit[0], unit[1], unit[2], 0xFF, 0xE1, 0, size, 0x67};
    bytes.insert(bytes.end(), unit.begin(), unit.end());
    return bytes;
}

TEST(H264References, AreCountedAgainstTheBufferOfTheLevel)
{
    const struct {
        Sequence sequence;
        bool tooMany;
    } cases[] = {
        {{100, 0, 31, 80, 45, true, 5}, false}, // 18000 / (80 * 45) = 5
        {{100, 0, 31, 80, 45, true, 6}, true},
        {{100, 0, 41, 120, 68, true, 4}, false}, // 32768 / (120 * 68) = 4.02
        {{100, 0, 41, 120, 68, true, 5}, true},
        {{77, 0, 30, 45, 36, false, 5}, false}, // 8100 / (45 * 36) = 5, in fields
        {{77, 0, 30, 45, 36, false, 6}, true},
        {{66, 0, 11, 11, 9, true, 9}, false}, // 900 / 99 = 9.09
        {{66, 0, 11, 11, 9, true, 10}, true},
        {{66, 0x10, 11, 11, 9, true, 4}, false}, // the same number means 1b here: 396 / 99 = 4
        {{66, 0x10, 11, 11, 9, true, 5}, true},
        {{100, 0x10, 11, 11, 9, true, 5}, false}, // but not in the high profiles
        {{100, 0, 51, 20, 15, true, 16}, false},  // never more than 16
        {{100, 0, 51, 20, 15, true, 17}, true},
        {{100, 0, 10, 120, 68, true, 1}, false}, // too large for its level
        {{100, 0, 10, 120, 68, true, 2}, true},
        {{100, 0, 61, 480, 270, true, 5}, false}, // 696320 / (480 * 270) = 5.4
        {{100, 0, 61, 480, 270, true, 6}, true},
        {{100, 0, 77, 80, 45, true, 16}, false}, // no such level
    };
    for (const auto &c : cases) {
        const Bytes unit = escaped(parameterSet(c.sequence));
        for (const Bytes &extradata : {withStartCode(unit), inBox(unit)})
            EXPECT_EQ(hasTooManyReferences(extradata), c.tooMany)
                << c.sequence.level << ' ' << c.sequence.references;
    }
}

TEST(H264References, OfHalfAParameterSetAreUnknown)
{
    const Bytes unit = parameterSet({100, 0, 10, 120, 68, true, 16});
    const std::size_t upToFrameFlag = unit.size() - 1;
    for (std::size_t size = 0; size < upToFrameFlag; ++size) {
        const Bytes part(unit.begin(), unit.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(hasTooManyReferences(withStartCode(part))) << size;
        if (size < 3) continue;
        EXPECT_FALSE(hasTooManyReferences(inBox(part))) << size;
    }
    EXPECT_FALSE(hasTooManyReferences(Bytes(40, 0xFF)));
    EXPECT_FALSE(hasTooManyReferences(withStartCode(Bytes(40, 0x00))));
    EXPECT_TRUE(hasTooManyReferences(withStartCode(unit)));
}

TEST(HevcSource, IsReadFromTheBoxOrTheParameterSet)
{
    const Bytes delimiter{0, 0, 0, 1, 0x46, 0x01, 0x50, 0, 0, 1, 0x42, 0x01};
    const struct {
        std::uint8_t source; // progressive, interlaced, and others
        bool fields;
    } cases[] = {{0x90, false}, {0x50, true}, {0xD0, false}, {0x10, false}};
    for (const auto &c : cases) {
        const Bytes profile{1, 0x01, 0x60, 0, 0, 0, c.source, 0, 0, 0, 0, 0, 93};
        Bytes unit = delimiter;
        const Bytes set = escaped(profile);
        unit.insert(unit.end(), set.begin(), set.end());
        EXPECT_EQ(isHevcFromFields(profile), c.fields) << int{c.source};
        EXPECT_EQ(isHevcFromFields(unit), c.fields) << int{c.source};
        unit.resize(delimiter.size() + 6); // ends before it says so
        EXPECT_FALSE(isHevcFromFields(unit));
    }
    EXPECT_FALSE(isHevcFromFields({}));
    EXPECT_FALSE(isHevcFromFields(Bytes(40, 0x00)));
}

TEST(Mpeg4Headers, AreReadFromTheVideoObjectLayer)
{
    enum Options { kPlain, kInterlaced, kMotion, kQuarter, kMatrices };
    const auto layer = [](Options options, std::uint32_t version) {
        BitWriter bits;
        bits.put(0x00000120, 32);
        bits.put(17, 9);
        bits.put(version > 1, 1);
        if (version > 1) bits.put(version << 3 | 1, 7);
        bits.put(15, 4); // aspect of its own
        bits.put(0x0B0B, 16);
        bits.put(1, 1); // control with buffer
        bits.put(0b0101, 4);
        for (int i = 0; i < 79; ++i) bits.put(1, 1);
        bits.put(0b001, 3); // rectangle
        bits.put(25, 16);
        bits.put(0b11, 2); // fixed rate
        bits.put(1, 5);    // below 25 fits in 5 bits
        bits.put(1, 1);
        bits.put(320, 13);
        bits.put(1, 1);
        bits.put(240, 13);
        bits.put(1, 1);
        bits.put(options == kInterlaced, 1);
        bits.put(1, 1);
        bits.put(options == kMotion ? 2 : 0, version > 1 ? 2 : 1);
        if (options == kMotion) bits.put(0, 9);
        bits.put(0, 1);
        bits.put(options == kMatrices, 1);
        if (options == kMatrices) {
            bits.put(0x108, 9); // one there, of one value
            bits.put(0, 8);
            bits.put(0, 1);
        }
        bits.put(options == kQuarter || options == kMatrices, 1);
        bits.put(0xFF, 8);
        return bits.bytes();
    };
    const struct {
        Options options;
        std::uint32_t version;
        bool interlaced, motion, quarter;
    } cases[] = {
        {kPlain, 1, false, false, false},
        {kInterlaced, 1, true, false, false},
        {kPlain, 2, false, false, false},
        {kInterlaced, 2, true, false, false},
        {kMotion, 2, false, true, false},
        {kQuarter, 2, false, false, true},
        {kMatrices, 2, false, false, true},
        {kQuarter, 1, false, false, false}, // the first version had none
    };
    for (const auto &c : cases) {
        const Mpeg4Features features = readMpeg4Features(layer(c.options, c.version));
        EXPECT_EQ(features.interlaced, c.interlaced) << c.options << ' ' << c.version;
        EXPECT_EQ(features.globalMotion, c.motion) << c.options << ' ' << c.version;
        EXPECT_EQ(features.quarterPixel, c.quarter) << c.options << ' ' << c.version;
        EXPECT_FALSE(features.packedBitstream);
    }
}

TEST(Mpeg4Headers, SayByTheEncodersNameWhetherPicturesArePacked)
{
    using namespace std::string_literals;
    const struct {
        std::string text; // user data, and what may follow
        bool packed;
    } cases[] = {
        {"DivX503b1393p"s, true},
        {"DivX503b1393p\0\0\1\xB6"s, true},
        {"DivX503b1393"s, false},
        {"DivX503b1393\0\0\1\xB2 p"s, false},
        {"Lavc59.37.100p"s, false},
        {"XviD0064\0\0\1\xB2"s + "DivX503b1393p", true}, // behind another text
        {""s, false},
    };
    for (const auto &c : cases) {
        Bytes bytes{0, 0, 1, 0xB0, 0xF5, 0, 0, 1, 0xB2};
        bytes.insert(bytes.end(), c.text.begin(), c.text.end());
        EXPECT_EQ(readMpeg4Features(bytes).packedBitstream, c.packed) << c.text;
    }
}

TEST(EbmlDocType, IsFoundInTheHeader)
{
    using namespace std::string_literals;
    const std::string id = "\x1A\x45\xDF\xA3"s;
    const std::string version = "\x42\x86\x81\x01"s;
    const struct {
        std::string start, type;
    } cases[] = {
        {id + "\x8B" + version + "\x42\x82\x84webm", "webm"},
        {id + "\x10\x00\x00\x0B"s + version + "\x42\x82\x84webm", "webm"}, // a size of four bytes
        {id + "\x01\x00\x00\x00\x00\x00\x00\x0F"s + version + "\x42\x82\x88matroska", "matroska"},
        {id + "\x8D" + version + "\x42\x82\x86webm\0\0"s, "webm"}, // filled up
        {id + "\x84" + version + "\x42\x82\x84webm", ""},          // behind the header
        {id + "\x8B" + version + "\x42\x82\x84we", "we"},          // the file ends
        {id + "\x8B" + version + "\x42", ""},
        {id, ""},
        {"\x1A\x45\xDF\xA4\x87\x42\x82\x84webm", ""},
        {std::string(20, '\0'), ""},
        {"", ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(ebmlDocType(Bytes(c.start.begin(), c.start.end())), c.type);
}

TEST(FrameRate, VariesWhenSeveralGapsDo)
{
    using Gaps = std::vector<std::pair<int, std::vector<std::int64_t>>>; // how often, which
    const struct {
        std::vector<Gaps> runs;
        bool varies;
    } cases[] = {
        {{{{50, {40}}}}, false},
        {{{{25, {40}}, {10, {80}}}}, true},
        {{{{49, {40}}, {1, {80}}}}, false},  // one picture lost
        {{{{90, {40}}, {2, {80}}}}, true},   // 2 in 92 are more than one in 50
        {{{{98, {40}}, {2, {80}}}}, false},  // 2 in 100 are not
        {{{{20, {33, 34, 33}}}}, false},     // rounded to milliseconds
        {{{{20, {33}}, {20, {36}}}}, false}, // within a tenth
        {{{{20, {40}}, {10, {36}}}}, false},
        {{{{20, {40}}, {10, {35}}}}, true},
        {{{{30, {3, 3, 4}}}}, false},                // 300 a second in milliseconds
        {{{{30, {2, 1, 2, 2}}}}, false},             // 571 a second
        {{{{20, {1}}, {10, {2}}}}, true},            // the unit is the picture
        {{{{30, {1}}, {1, {2}}, {30, {1}}}}, false}, // and one is lost
        {{{{12, {40, 0, 40}}}}, false},              // a hidden picture at the time of another,
        {{{{12, {40, 1, 39}}}}, false},              // or a unit later
        {{{{6, {16, 17, 17, 1, 15}}}}, false},
        {{{{12, {40, 10, 30}}}}, true},       // but not a quarter
        {{{{20, {40}}}, {{20, {33}}}}, true}, // steady at two places, not by the same pace
        {{{{20, {40}}}, {{20, {40}}}, {}}, false},
        {{{{3, {40}}, {3, {80}}}}, false}, // too few to tell
        {{}, false},
    };
    for (const auto &c : cases) {
        std::vector<PictureTimes> runs;
        for (const Gaps &run : c.runs) {
            PictureTimes times;
            if (!run.empty()) times.push_back(7);
            for (const auto &[count, gaps] : run)
                for (int i = 0; i < count; ++i)
                    for (const std::int64_t gap : gaps) times.push_back(times.back() + gap);
            runs.push_back(times);
        }
        EXPECT_EQ(isVariableFrameRate(runs), c.varies) << &c - cases;
    }
}

TEST(BitRates, AreStatedOrWhatTheOthersLeave)
{
    constexpr bool kVideo = true, kAudio = false;
    using Rates = std::vector<StreamRate>;
    const auto in = [](std::int64_t named, std::int64_t header, std::int64_t sampled,
                       bool isVideo) {
        return StreamRate{named, header, sampled, isVideo, 0, false};
    };
    const struct {
        Rates in;
        std::int64_t whole;
        std::vector<int> out; // negative: estimated
    } cases[] = {
        {{in(0, 800, 0, kVideo), in(0, 100, 0, kAudio)}, 5000, {800, 100}},
        {{in(0, 0, 0, kVideo), in(100, 170, 90, kAudio)}, 1000, {-900, 100}}, // frames know best
        {{in(0, 0, 0, kAudio)}, 1000, {-1000}},
        {{in(0, 0, 700, kAudio)}, 1000, {-1000}}, // alone it gets all
        {{in(0, 0, 700, kVideo), in(0, 0, 60, kAudio)}, 1000, {-940, -60}},
        {{in(0, 0, 60, kAudio), in(0, 0, 700, kVideo)}, 1000, {-60, -940}},
        {{in(0, 0, 60, kAudio), in(0, 0, 70, kAudio)}, 1000, {-60, -70}},
        {{in(0, 0, 0, kAudio), in(0, 0, 70, kAudio)}, 1000, {-930, -70}},     // never seen
        {{in(0, 0, 700, kVideo), in(0, 0, 60, kAudio)}, 0, {-700, -60}},      // length unknown
        {{in(0, 0, 700, kVideo), in(600, 0, 0, kAudio)}, 610, {-700, 600}},   // cut short
        {{in(0, 0, 700, kVideo), in(600, 0, 0, kAudio)}, 2100, {-700, 600}},  // much is no film
        {{in(0, 0, 700, kVideo), in(600, 0, 0, kAudio)}, 1900, {-1300, 600}}, // a quiet sample
        {{in(0, 0, 0, kVideo), in(600, 0, 0, kAudio)}, 500, {-1, 600}},       // never 0
        {{in(0, 9'000'000'000, 0, kVideo)}, 0, {2147483647}},
    };
    for (const auto &c : cases) {
        Rates rates = c.in;
        settleBitRates(rates, {c.whole, 0.5, 2});
        for (std::size_t i = 0; i < rates.size(); ++i)
            EXPECT_EQ(rates[i].estimated ? -rates[i].bitrate : rates[i].bitrate, c.out[i])
                << &c - cases << ' ' << i;
    }
    const Rates stated = {in(0, 800, 0, kVideo), in(200, 0, 0, kAudio)}; // 125 bytes a second
    for (const auto &[bytes, seconds, fit] : {std::tuple{1250, 10.0, true},
                                              {1380, 10.0, true},
                                              {1215, 10.0, true},
                                              {1400, 10.0, false},
                                              {1210, 10.0, false},
                                              {1250, 0.0, false}})
        EXPECT_EQ(fitFile(stated, bytes, seconds), fit) << bytes;
    EXPECT_FALSE(fitFile(Rates{in(0, 1000, 0, kVideo), in(0, 0, 0, kAudio)}, 1250, 10));
}

} // namespace
} // namespace vornak::test
