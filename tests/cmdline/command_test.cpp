#include "include/vornak.h"
#include "tests/cmdline/constraint_bytes.h"

#include "tests/support/capture.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>

namespace {
bool s_OutOfMemory = false;
}

// The C library's, made to fail on demand: the program's own comes first.
extern "C" __attribute__((visibility("default"))) char *strndup(const char *text, std::size_t size)
{
    const std::size_t length = strnlen(text, size);
    char *copy = s_OutOfMemory ? nullptr : static_cast<char *>(std::malloc(length + 1));
    if (copy) std::memcpy(copy, text, length);
    if (copy) copy[length] = '\0';
    return copy;
}

namespace vornak::test {
namespace {

using Values = std::vector<std::pair<int, std::string>>;

struct Rendered {
    int result;
    std::string text;
};

std::unique_ptr<TRANSCODE_CONSTRAINT_ST> makeSet(int mode, std::uint64_t mask, const Values &values)
{
    auto set = std::make_unique<TRANSCODE_CONSTRAINT_ST>();
    set->mode = mode;
    set->mask = mask;
    for (const auto &[slot, text] : values) setTranscodeConstraint(set.get(), slot, text.c_str());
    return set;
}

Rendered render(const TRANSCODE_CONSTRAINT_ST &set)
{
    TRANSCODE_CMD_ST record;
    std::memset(&record, 0x5A, sizeof record);
    const int result = getTranscodeCmdByCondition(&set, &record);
    for (const char c : record.host) EXPECT_EQ(c, 0x5A);
    const std::string text(record.cmd, strnlen(record.cmd, sizeof record.cmd));
    for (std::size_t i = text.size(); i < sizeof record.cmd; ++i) EXPECT_EQ(record.cmd[i], '\0');
    return {result, text};
}

TEST(Command, RendersTheMarkedSlotsInOrder)
{
    const std::string long1000(1000, '7'), filling(1023 - std::strlen(" -ac "), '8');
    const Values each = {{0, "a"},   {1, "b"},   {2, "3x4"}, {3, "5x6"}, {4, "7"},
                         {5, "8"},   {6, "c"},   {7, "d"},   {8, "9"},   {9, "10"},
                         {10, "11"}, {11, "12"}, {12, "13"}, {13, "14"}};
    const Values sizes = {{2, "1280x720"}, {4, "2000000"}, {12, "44100"}};
    const struct {
        int mode;
        int result;
        std::uint64_t mask;
        Values values;
        std::string text;
    } cases[] = {
        {0, 0, 0x1500, {{8, "2"}, {10, "192000"}, {12, "48000"}}, " -ac 2 -b:a 192000 -ar 48000"},
        {1, 0, 0x1014, sizes, " -s 720p -vb 2000000 -ar 44100"},
        {0, 0, 0x3FFF, each,
         " -vprofile a -level b -vf scale=3:4 -vf scale=5:6 -b:v 7 -b:v 8 -aprofile c -level d"
         " -ac 9 -ac 10 -b:a 11 -b:a 12 -ar 13 -ar 14"},
        {1, 0, 0x3FFF, each,
         " -vp a -vlevel b -s 4p -s 6p -vb 7 -vb 8 -ac 9 -ac 10 -ab 11 -ab 12 -ar 13 -ar 14"},
        {2, 0, 0x1014, sizes, " -vf scale=1280:720 -b:v 2000000 -ar 44100"},
        {0, 0, 0, {{8, "2"}}, ""},
        {1, 0, 0x50, {{4, "1"}, {6, "main"}}, " -vb 1"},
        {1, 1, 0xD0, {{4, "1"}, {6, "main"}}, " -vb 1"}, // slot 7 is empty
        {0, 1, 0x105, {{0, "high"}, {2, "1280"}, {8, "2"}}, " -vprofile high"},
        {0, 0, 0x4, {{2, "1280x720x1"}}, " -vf scale=1280:720x1"},
        {1, 0, 0x4, {{2, "x"}}, " -s p"},
        {0, 0, 0xFFFFFFFFFFFFC000, {}, ""}, // marks that no option exists for
        {0, 0, 0x100, {{8, filling}}, " -ac " + filling},
        {0, 0, 0x100, {{8, filling + "cut"}}, " -ac " + filling},
        {0,
         0,
         0x500,
         {{8, long1000}, {10, "123456789012"}},
         " -ac " + long1000 + " -b:a 123456789012"}, // 1023 characters
        {0, 2, 0x500, {{8, long1000}, {10, "1234567890123"}}, " -ac " + long1000},
        {0, 2, 0x1500, {{8, long1000}, {10, "1234567890123"}, {12, "1"}}, " -ac " + long1000},
    };
    for (const auto &c : cases) {
        const Rendered got = render(*makeSet(c.mode, c.mask, c.values));
        EXPECT_EQ(got.result, c.result) << c.text;
        EXPECT_EQ(got.text, c.text);
    }
}

TEST(Command, RefusesNullAndNoMemory)
{
    const auto set = makeSet(0, 0x105, {{0, "high"}, {2, "1280x720"}, {8, "2"}});
    TRANSCODE_CMD_ST record{};
    EXPECT_EQ(getTranscodeCmdByCondition(nullptr, nullptr), 2);
    EXPECT_EQ(getTranscodeCmdByCondition(set.get(), nullptr), 2);
    EXPECT_EQ(getTranscodeCmdByCondition(nullptr, &record), 1);

    s_OutOfMemory = true;
    const Rendered got = render(*set);
    s_OutOfMemory = false;
    EXPECT_EQ(got.result, 3);
    EXPECT_EQ(got.text, " -vprofile high");
}

TEST(Command, ReadsAnUnterminatedSlotToItsEndOnly)
{
    const auto set = makeSet(0, 0x4, {});
    std::memset(set->value[2], '1', sizeof set->value[2]);
    set->value[3][0] = 'x';
    EXPECT_EQ(render(*set).result, 1); // the "x" is the next slot's
}

TEST(Command, StoresAValueInItsSlotAlone)
{
    const std::string tooLong(2000, 'v');
    for (const int slot : {-1, 0, 63, 64, 1 << 20}) {
        const auto set = makeSet(7, 0xABC, {}), before = makeSet(7, 0xABC, {});
        std::memset(set->value, 'z', sizeof set->value);
        std::memcpy(before.get(), set.get(), sizeof *set);
        setTranscodeConstraint(set.get(), slot, tooLong.c_str());
        setTranscodeConstraint(set.get(), slot, "short");
        setTranscodeConstraint(set.get(), slot, nullptr);
        if (slot == 0 || slot == 63) {
            std::memset(before->value[slot], 0, sizeof before->value[slot]);
            std::memcpy(before->value[slot], "short", 5);
        }
        EXPECT_TRUE(bytesOf(*set) == bytesOf(*before)) << slot;
    }
    const auto set = makeSet(0, 0, {{5, tooLong}});
    EXPECT_EQ(std::string(set->value[5]), tooLong.substr(0, 1023));
    setTranscodeConstraint(nullptr, 0, "x");
}

TEST(Command, PrintsTheMessageOfAResult)
{
    const struct {
        int code;
        std::string text;
    } cases[] = {
        {-1, ""},
        {0, "ParseTranscodeParameter error causing by \"Processing success.\""},
        {1, "ParseTranscodeParameter error causing by \"The input is invalid.\""},
        {2, "ParseTranscodeParameter error causing by \"The output is invalid.\""},
        {3, "ParseTranscodeParameter error causing by \"Memory allocate failed.\""},
        {4, ""},
    };
    for (const auto &c : cases) {
        Capture out(1);
        const int printed = printError(c.code);
        EXPECT_EQ(out.take(), c.text);
        EXPECT_EQ(printed, static_cast<int>(c.text.size()));
    }
}

} // namespace
} // namespace vornak::test
