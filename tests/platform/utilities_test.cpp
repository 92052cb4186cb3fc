#include "include/vornak_host.h"

#include "tests/support/process.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace vornak::test {
namespace {

struct Converted {
    int result;
    std::string text;
};

Converted convert(const std::string &name)
{
    char buffer[VORNAK_SHELL_NAME_SIZE] = {};
    std::copy(name.begin(), name.end(), buffer);
    const int result = Telmo_stringConvert2SystemCmdFilename(buffer);
    return {result, buffer};
}

TEST(ShellName, ReadsBackAsItWas)
{
    std::vector<std::string> names = {
        "",
        "-rf",
        "--",
        "~",
        "~root/x",
        "a b",
        "/tmp/Trans_mount_17/",
        "'",
        "''",
        "it's",
        "\\",
        "\\'",
        "a\\",
        "$HOME",
        "`id`",
        "$(id)",
        "a;b|c&d",
        "*",
        "[a-z]?",
        "{a,b}",
        "a=b",
        "#x",
        "!!",
        "\n",
        "a\nb\n",
        "\\\n",
        " ",
        "\t",
        "\xff\xfe",
        "gr\xc3\xbc\xc3\x9f.iso",
        "\xe9'",
    };
    for (int byte = 1; byte < 256; ++byte) {
        names.emplace_back(1, static_cast<char>(byte));
        names.push_back("a" + names.back() + "b");
    }
    std::string script = "printf '%s\\0'";
    std::string expected;
    for (const std::string &name : names) {
        const Converted converted = convert(name);
        EXPECT_EQ(converted.result, 0) << name;
        script += " " + converted.text;
        expected += name + '\0';
        // two names may stand side by side in one word
        script += " " + converted.text + convert("it's").text;
        expected += name + "it's" + '\0';
    }
    EXPECT_EQ(run({"sh", "-c", script}).out, expected);
}

TEST(ShellName, LeavesTheBufferAloneWhenTheResultWouldNotFit)
{
    const struct {
        std::string name;
        bool fits;
    } cases[] = {
        {std::string(1023, 'a'), true}, // plain names grow by nothing
        {std::string(1020, 'a') + " ", true}, {std::string(1021, 'a') + " ", false},
        {std::string(255, '\''), true}, // 2 + 4 * 255 = 1022
        {std::string(256, '\''), false},      {std::string(1023, '\n'), false},
    };
    for (const auto &c : cases) {
        const Converted converted = convert(c.name);
        EXPECT_EQ(converted.result == 0, c.fits) << c.name;
        EXPECT_EQ(converted.text == c.name, !c.fits || c.name.back() == 'a') << c.name;
    }
}

TEST(BeginsWith, ComparesTheWholeWord)
{
    const struct {
        const char *text, *word;
        bool begins;
    } cases[] = {
        {"-f wav", "-f ", true},  {"-f", "-f ", false}, {"x-f ", "-f ", false},
        {"-F wav", "-f ", false}, {"abc", "", true},    {"", "a", false},
        {"", "", true},
    };
    for (const auto &c : cases) {
        int result = -1;
        mystrcmp2(c.text, c.word, &result);
        EXPECT_EQ(result != 0, c.begins) << c.text << " with " << c.word;
    }
}

/// The numbers that a child process of its own draws after `prepare`; none when that fails.
std::vector<int> drawInChild(int count, const std::function<bool()> &prepare = {})
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {};
    const pid_t child = fork();
    if (child == 0) {
        for (int i = 0; (i > 0 || !prepare || prepare()) && i < count; ++i) {
            const int number = Telmo_getUniqueNumer();
            if (write(ends[1], &number, sizeof number) != sizeof number) break;
        }
        _exit(0);
    }
    close(ends[1]);
    std::vector<int> numbers;
    for (int number; read(ends[0], &number, sizeof number) == sizeof number;)
        numbers.push_back(number);
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return numbers;
}

TEST(UniqueNumber, DiffersBetweenThreadsAndProcesses)
{
    constexpr int kCount = 2000;
    std::vector<std::vector<int>> drawn(6);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < drawn.size(); ++i) {
        threads.emplace_back([&numbers = drawn[i], inChild = i % 2 == 0] {
            if (inChild)
                numbers = drawInChild(kCount);
            else
                std::generate_n(std::back_inserter(numbers), kCount, Telmo_getUniqueNumer);
        });
    }
    for (std::thread &thread : threads) thread.join();
    drawn.push_back(drawInChild(kCount)); // after all others have ended

    std::vector<int> all;
    for (const auto &numbers : drawn) all.insert(all.end(), numbers.begin(), numbers.end());
    EXPECT_EQ(all.size(), drawn.size() * kCount);
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
    EXPECT_GE(all.front(), 0);
}

/// Gives this process a /tmp of its own.
bool replaceTmp(unsigned long flags)
{
    return unshare(CLONE_NEWNS) == 0 &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", "/tmp", "tmpfs", flags, "mode=1777") == 0;
}

TEST(UniqueNumber, IsCountedByUsersTogether)
{
    if (geteuid() != 0 || drawInChild(1, [] { return replaceTmp(0); }).empty())
        GTEST_SKIP() << "needs root, for a /tmp of its own and to change users";
    std::vector<int> nobodys;
    const std::vector<int> roots = drawInChild(1, [&] {
        if (!replaceTmp(0)) return false;
        umask(077);
        nobodys = drawInChild(1);
        const auto more = drawInChild(1, [] { return setgid(65534) == 0 && setuid(65534) == 0; });
        const int first = nobodys.empty() || more.empty() ? -1 : more[0] - nobodys[0];
        return first >= 1 && first < 100; // the next number, or the time if that is later
    });
    EXPECT_EQ(roots.size(), 1u);
}

TEST(UniqueNumber, NeedsNoWritableFile)
{
    const std::vector<int> numbers = drawInChild(100, [] { return replaceTmp(MS_RDONLY); });
    if (numbers.empty()) GTEST_SKIP() << "needs root, for a /tmp of its own";
    std::vector<int> sorted = numbers;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(sorted.size(), 100u);
    EXPECT_EQ(std::adjacent_find(sorted.begin(), sorted.end()), sorted.end());
    EXPECT_GE(sorted.front(), 0);
}

} // namespace
} // namespace vornak::test
