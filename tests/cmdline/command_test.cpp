#include "include/vornak.h"
#include "tests/cmdline/constraint_bytes.h"

#include "tests/support/capture.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>

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

// What the slots give, said once more and plainly.
Rendered expectedCommand(const TRANSCODE_CONSTRAINT_ST &set)
{
    const char *const first[] = {
        " -vprofile %s", " -level %s",    " -vf scale=%s:%s", " -vf scale=%s:%s", " -b:v %s",
        " -b:v %s",      " -aprofile %s", " -level %s",       " -ac %s",          " -ac %s",
        " -b:a %s",      " -b:a %s",      " -ar %s",          " -ar %s"};
    const char *const second[] = {
        " -vp %s", " -vlevel %s", " -s %2$sp", " -s %2$sp", " -vb %s", " -vb %s", "",
        "",        " -ac %s",     " -ac %s",   " -ab %s",   " -ab %s", " -ar %s", " -ar %s"};
    Rendered out{0, ""};
    for (int slot = 0; slot < 14; ++slot) {
        if ((set.mask >> slot & 1) == 0) continue;
        std::string value = set.value[slot], after;
        if (value.empty()) return {1, out.text};
        if (slot == 2 || slot == 3) {
            const std::size_t x = value.find('x');
            if (x == std::string::npos) return {1, out.text};
            after = value.substr(x + 1);
            value.resize(x);
        }
        std::string format = (set.mode == 1 ? second : first)[slot];
        for (const auto &[mark, text] :
             {std::pair("%2$s", after), std::pair("%s", value), std::pair("%s", after)})
            if (const std::size_t at = format.find(mark); at != std::string::npos)
                format.replace(at, std::strlen(mark), text);
        const std::string fragment = format.substr(0, 1023);
        if (out.text.size() + fragment.size() > 1023) return {2, out.text};
        out.text += fragment;
    }
    return out;
}

TEST(Command, RendersTheMarkedSlotsInOrder)
{
    const std::string long1000(1000, '7'), filling(1023 - std::strlen(" -ac "), '8');
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

TEST(Command, AgreesWithAPlainStatementOfItsRules)
{
    std::mt19937 random(20240517);
    const auto pick = [&](int from, int to) {
        return std::uniform_int_distribution<int>(from, to)(random);
    };
    for (int round = 0; round < 20000; ++round) {
        const auto set = makeSet(pick(-1, 2), 0, {});
        for (int slot = 0; slot < 14; ++slot) {
            if (pick(0, 2) == 0) set->mask |= std::uint64_t{1} << slot;
            const int kind = pick(0, 40);
            const std::string digits(static_cast<std::size_t>(kind == 1  ? pick(1000, 1023)
                                                              : kind < 9 ? pick(100, 400)
                                                                         : pick(1, 7)),
                                     static_cast<char>('0' + pick(0, 9)));
            const std::string width = pick(0, 9) == 0 ? "" : std::to_string(pick(1, 4000)) + "x";
            const std::string value = kind == 0                ? ""
                                      : slot == 2 || slot == 3 ? width + digits
                                                               : digits;
            setTranscodeConstraint(set.get(), slot, value.c_str());
        }
        const Rendered expected = expectedCommand(*set), got = render(*set);
        ASSERT_EQ(got.result, expected.result) << "round " << round;
        ASSERT_EQ(got.text, expected.text) << "round " << round;
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
