#include "include/vornak_host.h"

#include "tests/support/process.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <numeric>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

/// What getrandom() gives: true chance, the same each time, or nothing, as on an old kernel.
enum class KeySource { Kernel, Known, None } keySource = KeySource::Kernel;

} // namespace

__attribute__((visibility("default"))) ssize_t getrandom(void *to, std::size_t size, unsigned flags)
{
    if (keySource == KeySource::Kernel) return syscall(SYS_getrandom, to, size, flags);
    std::memset(to, 'k', size);
    return keySource == KeySource::Known ? static_cast<ssize_t>(size) : -1;
}

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
    std::vector<std::string> names = {"LABEL=x/film.iso", "/tmp/Trans_mount_17/"};
    for (const char *name :
         {"",       "-rf",   "--",   "./LABEL=x", "~",        "~root/x",
          "a b",    "'",     "''",   "it's",      "\\",       "\\'",
          "a\\",    "$HOME", "`id`", "$(id)",     "a;b|c&d",  "*",
          "[a-z]?", "{a,b}", "a=b",  "#x",        "!!",       "\n",
          "a\nb\n", "\\\n",  " ",    "\t",        "\xff\xfe", "gr\xc3\xbc\xc3\x9f.iso",
          "\xe9'"})
        names.emplace_back(name);
    for (int byte = 1; byte < 256; ++byte) {
        names.emplace_back(1, static_cast<char>(byte));
        names.push_back("a" + names.back() + "b");
    }
    std::string script = "printf '%s\\0'";
    std::string expected;
    for (const std::string &name : names) {
        const bool isOption = name.starts_with('-') || name.find('=') < name.find('/');
        const std::string read = (isOption ? "./" : "") + name; // the same file
        const Converted converted = convert(name);
        EXPECT_EQ(converted.result, 0) << name;
        script += " " + converted.text;
        expected += read + '\0';
        // two names may stand side by side in one word
        script += " " + convert("it's/").text + converted.text + convert("it's").text;
        expected += "it's/" + read + "it's" + '\0';
    }
    EXPECT_EQ(run({"sh", "-c", script}).out, expected);
}

TEST(ShellName, LeavesTheBufferAloneWhenTheResultWouldNotFit)
{
    const struct {
        std::string name;
        bool fits;
    } cases[] = {
        {std::string(1023, 'a'), true},       // plain names grow by nothing
        {"-" + std::string(1020, 'a'), true}, // "./" and 1021 characters
        {"-" + std::string(1021, 'a'), false}, {std::string(1020, 'a') + " ", true},
        {std::string(1021, 'a') + " ", false}, {std::string(255, '\''), true}, // 2 + 4 * 255 = 1022
        {std::string(256, '\''), false},       {std::string(1023, '\n'), false},
    };
    for (const auto &c : cases) {
        const Converted converted = convert(c.name);
        EXPECT_EQ(converted.result == 0, c.fits) << c.name;
        EXPECT_EQ(converted.text == c.name, !c.fits || c.name.front() + c.name.back() == 2 * 'a')
            << c.name;
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

/// Gives this process a /tmp of its own, and has nobody do something there.
bool asNobodyInTmp(const std::function<bool()> &work)
{
    return unshare(CLONE_NEWNS) == 0 &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", "/tmp", "tmpfs", 0, "mode=0777") == 0 && seteuid(65534) == 0 && work() &&
           seteuid(0) == 0;
}

/// The numbers that a child process of its own draws after `prepare`; none when that fails.
std::vector<int> drawInChild(int count, KeySource source, const std::function<bool()> &prepare = {})
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {};
    const pid_t child = fork();
    if (child == 0) {
        keySource = source;
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

bool areDistinct(std::vector<int> numbers)
{
    std::sort(numbers.begin(), numbers.end());
    return numbers.front() >= 0 &&
           std::adjacent_find(numbers.begin(), numbers.end()) == numbers.end();
}

TEST(UniqueNumber, ComesOnceInAProcessWithAnyNumberOfThreads)
{
    std::vector<int> numbers(200'000); // if they were drawn at random, 9 would be there twice
    std::vector<std::thread> threads;
    for (auto part = numbers.begin(); part != numbers.end(); part += 50'000)
        threads.emplace_back([part] { std::generate_n(part, 50'000, Telmo_getUniqueNumer); });
    for (std::thread &thread : threads) thread.join();
    EXPECT_TRUE(areDistinct(numbers));
}

TEST(UniqueNumber, ComesByAnotherKeyInEachProcess)
{
    for (const KeySource source : {KeySource::Kernel, KeySource::None}) {
        std::vector<int> all;
        for (int i = 0; i < 3; ++i) {
            const std::vector<int> drawn = drawInChild(100, source);
            all.insert(all.end(), drawn.begin(), drawn.end());
        }
        std::generate_n(std::back_inserter(all), 100, Telmo_getUniqueNumer);
        EXPECT_EQ(all.size(), 400U);
        EXPECT_TRUE(areDistinct(all));
        std::vector<int> steps(all.size());
        std::adjacent_difference(all.begin(), all.end(), steps.begin());
        std::sort(steps.begin(), steps.end());
        EXPECT_EQ(std::adjacent_find(steps.begin(), steps.end()), steps.end()); // no count is seen
    }
}

TEST(UniqueNumber, PassesOverWhatAStrangerHasMade)
{
    const auto makeAll = [](const std::vector<int> &numbers) {
        const auto at = [&](int i) { return VORNAK_MOUNT_PREFIX + std::to_string(numbers[i]); };
        return mkdir(at(0).c_str(), 0) == 0 && symlink("/", at(1).c_str()) == 0 &&
               symlink("nowhere", at(2).c_str()) == 0 && mkfifo(at(3).c_str(), 0) == 0 &&
               mknod(at(4).c_str(), S_IFREG, 0) == 0;
    };
    const std::vector<int> next = drawInChild(7, KeySource::Known);
    ASSERT_EQ(next.size(), 7U);
    const std::vector<int> free = drawInChild(
        2, KeySource::Known, [&] { return asNobodyInTmp([&] { return makeAll(next); }); });
    if (free.empty()) GTEST_SKIP() << "needs root, for a /tmp of its own and to change users";
    EXPECT_EQ(free, std::vector<int>(next.begin() + 5, next.end()));
}

TEST(UniqueNumber, IsNoStrangersToChoose)
{
    const std::int64_t named = 1'999'999'999; // in a file that was trusted once
    const std::vector<int> drawn = drawInChild(10, KeySource::Kernel, [&] {
        return asNobodyInTmp([&] {
            std::ofstream file("/tmp/.vornak-unique-number", std::ios::binary);
            return !!file.write(reinterpret_cast<const char *>(&named), sizeof named);
        });
    });
    if (drawn.empty()) GTEST_SKIP() << "needs root, for a /tmp of its own and to change users";
    EXPECT_TRUE(std::none_of(drawn.begin(), drawn.end(), [&](int number) {
        return number >= named && number < named + 3000; // where links would be waiting
    }));
}

} // namespace
} // namespace vornak::test
