// The add-on registry through a stand-in query tool at its real place, which answers with the
// file named after the key and notes its arguments.
#include "include/vornak.h"

#include "tests/support/alarms.h"
#include "tests/support/leftovers.h"
#include "tests/support/private_mounts_test.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <sys/resource.h>

namespace {
bool failsSilently = false;
} // namespace

/// Where it fails, it leaves errno as it was.
extern "C" __attribute__((visibility("default"))) int getc(std::FILE *stream)
{
    if (!failsSilently) return std::fgetc(stream);
    stream->_flags |= _IO_ERR_SEEN;
    return EOF;
}

namespace vornak::test {
namespace {

constexpr std::string_view kQueryTool = R"(#!/bin/sh
echo "$@" >>/sbin/calls
[ "$#" = 4 ] && cat "/sbin/$4"
)";

class AddonTest : public PrivateMountsTest {
protected:
    void SetUp() override
    {
        PrivateMountsTest::SetUp();
        if (IsSkipped()) return;
        sbin_ = std::make_unique<ScopedMount>(tool_.path().c_str(), "/sbin", nullptr, MS_BIND);
        ASSERT_TRUE(*sbin_) << std::strerror(errno);
        installTool(kQueryTool);
        before_ = countLeftovers();
    }
    void TearDown() override
    {
        if (!sbin_) return;
        EXPECT_EQ(countLeftovers(), before_);
    }

    void installTool(std::string_view script)
    {
        std::filesystem::permissions(tool_.write("tolvex", script),
                                     std::filesystem::perms::owner_all);
    }
    void answer(std::string_view key, std::string_view text) { tool_.write(key, text); }

    /// The calls of the tool since the last time, a line each.
    std::string takeCalls()
    {
        std::ifstream file(tool_ / "calls");
        std::string calls(std::istreambuf_iterator<char>(file), {});
        std::filesystem::remove(tool_ / "calls");
        return calls;
    }

    TempDir tool_;
    std::unique_ptr<ScopedMount> sbin_;
    Leftovers before_;
};

std::string letters(int count)
{
    return std::string(static_cast<std::size_t>(count), 'x');
}

TEST_F(AddonTest, ValueIsTheFirstLine)
{
    using namespace std::string_literals;
    const struct {
        std::string printed;
        int size;
        std::string value;
    } cases[] = {
        {"value\n", 2048, "value"},
        {"value", 2048, "value"},
        {"first\nsecond\n", 2048, "first"},
        {"\n", 2048, ""},
        {"\nsecond\n", 2048, ""},
        {" a b \r\n", 2048, " a b \r"},
        {"value\n", 6, "value"},
        {"value\n", 5, "valu"},
        {"value\n", 1, ""},
        {letters(1022) + "\n", 2048, letters(1022)},
        {letters(1023) + "\n", 2048, letters(1023)},
        {letters(1024) + "\n", 2048, letters(1023)},
        {letters(200'000), 2048, letters(1023)}, // more than a pipe holds
        {"head\0tail\n"s, 2048, "head"},
        {"\0\n"s, 2048, ""},
    };
    for (const auto &c : cases) {
        answer("Key", c.printed);
        std::string value(2048, '#');
        EXPECT_EQ(getPakrelInfo("Section", "Key", value.data(), c.size), 0) << c.printed;
        EXPECT_EQ(value.substr(0, c.value.size() + 1), c.value + '\0') << c.printed;
        EXPECT_EQ(value.find_first_not_of('#', c.value.size() + 1), std::string::npos);
        EXPECT_EQ(takeCalls(), "-f /etc/config/pakrel.conf Section Key\n");
    }
}

TEST_F(AddonTest, NothingPrintedIsAFailure)
{
    char value[] = "untouched";
    answer("Empty", "");
    EXPECT_EQ(getPakrelInfo("Section", "Empty", value, sizeof value), 1);
    EXPECT_EQ(getPakrelInfo("Section", "Missing", value, sizeof value), 1);
    std::filesystem::remove(tool_ / "tolvex");
    EXPECT_EQ(getPakrelInfo("Section", "Empty", value, sizeof value), 1);
    EXPECT_EQ(isVATranscodeExist(), 0);
    EXPECT_STREQ(value, "untouched");
}

TEST_F(AddonTest, RefusesWithoutAskingTheTool)
{
    char value[] = "untouched";
    const int size = sizeof value;
    answer("Key", "value\n");
    const char *const badNames[] = {nullptr, "",    "a b",  " ",    "a;b",  "$(id)", "`id`",
                                    "a/b",   "a'b", "a\"b", "a\nb", "a\tb", "a|b",   "a\\b",
                                    "*",     "a&",  "a=b",  "a:b",  "a@b",  "[a]",   "\xC3\xA4",
                                    "a\x80", "~",   "{",    "`",    "^"};
    for (const char *name : badNames) {
        EXPECT_EQ(getPakrelInfo(name, "Key", value, size), 1) << (name ? name : "null");
        EXPECT_EQ(getPakrelInfo("Section", name, value, size), 1) << (name ? name : "null");
    }
    EXPECT_EQ(getPakrelInfo("Section", "Key", nullptr, size), 1);
    for (const int badSize : {0, -1, INT_MIN})
        EXPECT_EQ(getPakrelInfo("Section", "Key", value, badSize), 1) << badSize;

    const int room =
        1023 - static_cast<int>(sizeof "/sbin/tolvex -f /etc/config/pakrel.conf  Key" - 1);
    EXPECT_EQ(getPakrelInfo(letters(room + 1).c_str(), "Key", value, size), 1);
    EXPECT_STREQ(value, "untouched");
    EXPECT_EQ(takeCalls(), "");

    EXPECT_EQ(getPakrelInfo(letters(room).c_str(), "Key", value, size), 0);
    answer("-z_Z.09", "value\n");
    EXPECT_EQ(getPakrelInfo("Az-0_9.", "-z_Z.09", value, size), 0);
}

TEST_F(AddonTest, SignalsDoNotCutTheValue)
{
    installTool("#!/bin/sh\nprintf 'va'; sleep 0.05; printf 'lue'; sleep 0.05; echo\n");
    char value[64] = "";
    {
        const Alarms alarms(2);
        EXPECT_EQ(getPakrelInfo("Section", "Key", value, sizeof value), 0);
    }
    EXPECT_STREQ(value, "value");
}

TEST_F(AddonTest, AnErrorOfBeforeIsNotTheReads)
{
    answer("Key", "value\n");
    char value[] = "untouched";
    failsSilently = true;
    errno = EINTR;
    EXPECT_EQ(getPakrelInfo("Section", "Key", value, sizeof value), 1);
    failsSilently = false;
    EXPECT_STREQ(value, "untouched");
}

TEST_F(AddonTest, NoPipeIsAFailure)
{
    answer("Key", "value\n");
    answer("ENABLE", "TRUE\n");
    answer("Install_Path", "/\n");
    rlimit saved{};
    getrlimit(RLIMIT_NOFILE, &saved);
    const rlimit none{0, saved.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    char value[] = "untouched";
    EXPECT_EQ(getPakrelInfo("Section", "Key", value, sizeof value), 1);
    EXPECT_EQ(isVATranscodeExist(), 0);
    setrlimit(RLIMIT_NOFILE, &saved);
    EXPECT_STREQ(value, "untouched");
}

TEST_F(AddonTest, AgentIsLookedForInTheInstallDirectory)
{
    const TempDir none, first, both;
    first.write("gst-transcode-agent", "");
    both.write("gst-transcode-agent", "");
    std::filesystem::create_directory(both / "gst-transcode-agent2");
    const TempDir second;
    std::filesystem::create_symlink("/bin/sh", second / "gst-transcode-agent2");
    std::filesystem::create_symlink("nowhere", none / "gst-transcode-agent2");
    const TempDir odd;
    odd.write("$(touch here); a 'b'/gst-transcode-agent", "");

    const auto at = [](const TempDir &dir, std::string_view rest = "\n") {
        return dir.path().string() + std::string(rest);
    };
    // followed by as many "/" as make it `length` characters long
    const auto padded = [](const TempDir &dir, std::size_t length) {
        std::string text = dir.path();
        return text.append(length - text.size(), '/') + "\n";
    };
    const struct {
        std::string enable, installPath;
        int expected, calls;
    } cases[] = {
        {"TRUE\n", at(both), 2, 2},
        {"TRUE", at(both), 2, 2},
        {"TRUE\nFALSE\n", at(both), 2, 2},
        {"TRUE\n", at(second), 2, 2},
        {"TRUE\n", at(first), 1, 2},
        {"TRUE\n", at(first, "/"), 1, 2},
        {"TRUE\n", at(none), 0, 2}, // the link dangles
        {"TRUE\n", at(both, " \n"), 0, 2},
        {"TRUE\n", at(odd, "/$(touch here); a 'b'\n"), 1, 2},
        {"TRUE\n", "\n", 0, 2}, // then the agents would be in "/"
        {"TRUE\n", "", 0, 2},
        {"TRUE\n", padded(both, 1002), 2, 2}, // 1002 + "/gst-transcode-agent2" = 1023
        {"TRUE\n", padded(both, 1003), 1, 2}, // only the shorter name still fits
        {"TRUE\n", padded(both, 1004), 0, 2},
        {"TRUE\n", padded(both, 1200), 0, 2},
        {"true\n", at(both), 0, 1},
        {"TRUE \n", at(both), 0, 1},
        {"TRUE\r\n", at(both), 0, 1},
        {" TRUE\n", at(both), 0, 1},
        {"TRUER\n", at(both), 0, 1},
        {"\n", at(both), 0, 1},
        {"", at(both), 0, 1},
    };
    for (const auto &c : cases) {
        answer("ENABLE", c.enable);
        answer("Install_Path", c.installPath);
        EXPECT_EQ(isVATranscodeExist(), c.expected) << c.enable << c.installPath;
        EXPECT_EQ(takeCalls(),
                  std::string("-f /etc/config/pakrel.conf Harvel ENABLE\n") +
                      (c.calls == 2 ? "-f /etc/config/pakrel.conf Harvel Install_Path\n" : ""));
    }
    EXPECT_FALSE(std::filesystem::exists("here"));
}

TEST_F(AddonTest, MarkerOfAnyKindCounts)
{
    const ScopedMount emptyTmp("none", "/tmp", "tmpfs");
    ASSERT_TRUE(emptyTmp) << std::strerror(errno);
    const std::filesystem::path marker = "/tmp/.Harvel.alive";
    EXPECT_EQ(isHWFfmpegExist(), 0);
    std::ofstream(marker).close();
    EXPECT_EQ(isHWFfmpegExist(), 1);
    std::filesystem::remove(marker);
    std::filesystem::create_directory(marker);
    EXPECT_EQ(isHWFfmpegExist(), 1);
    std::filesystem::remove(marker);
    std::filesystem::create_symlink("/tmp/nowhere", marker);
    EXPECT_EQ(isHWFfmpegExist(), 0);
    EXPECT_EQ(takeCalls(), "");
}

} // namespace
} // namespace vornak::test
