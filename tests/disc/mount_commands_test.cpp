// The commands that mounting runs, seen by stand-ins of mount, umount and rmdir in PATH.
#include "include/vornak.h"
#include "tests/disc/host_functions.h"
#include "tests/support/alarms.h"
#include "tests/support/capture.h"
#include "tests/support/leak_check.h"
#include "tests/support/temp_dir.h"

#include <climits>
#include <csignal>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace vornak::test {
namespace {

namespace fs = std::filesystem;

/// Writes down its arguments, says something and ends with the status that is asked of it.
constexpr char kStandIn[] = R"(#!/bin/sh
name=${0##*/}
printf '[%s]' "$name" "$@" >>"$COMMAND_LOG"
echo said; echo complained >&2
[ "$name" != "$FAILING_COMMAND" ] || exit 32
)";

class MountCommands : public LeakCheck {
protected:
    void SetUp() override
    {
        for (const char *name : {"mount", "umount", "rmdir"}) {
            const std::string path = temp_.write(std::string("bin/") + name, kStandIn);
            fs::permissions(path, fs::perms::owner_all);
        }
        setenv("PATH", (temp_ / "bin:" + path_).c_str(), 1);
        setenv("COMMAND_LOG", (temp_ / "log").c_str(), 1);
        hostFunctions() = {};
    }
    void TearDown() override
    {
        hostFunctions() = {};
        setenv("PATH", path_.c_str(), 1);
        unsetenv("FAILING_COMMAND");
    }

    /// A command as the stand-ins write it down.
    static std::string command(const std::vector<std::string> &words)
    {
        std::string text;
        for (const std::string &word : words) text.append("[").append(word).append("]");
        return text;
    }

    static std::string mountCommand(const std::string &image, const std::string &mountPoint)
    {
        return command({"mount", "-o", "loop,ro", image, mountPoint});
    }

    /// The commands run since the last call, each argument in brackets.
    std::string commands() const
    {
        std::ifstream file(temp_ / "log");
        std::string text{std::istreambuf_iterator<char>(file), {}};
        fs::remove(temp_ / "log");
        return text;
    }

    const TempDir temp_;
    const std::string path_ = std::getenv("PATH");
};

TEST_F(MountCommands, mountTheImageWhateverItsName)
{
    const struct {
        std::string folder, file, image, mountPoint;
    } cases[] = {
        {"/discs/", "film.iso", "/discs/film.iso", temp_ / "Az09._-+,:@/"},
        {"/disc$(id)s/", "it's a \"film\"\n`id`;*\\.iso",
         "/disc$(id)s/it's a \"film\"\n`id`;*\\.iso", temp_ / "plain"},
        {"/d", "/&>x", "/d/&>x", temp_ / "$(echo x)"},
        {"", "film.iso", "film.iso", temp_ / "a b;id\n'\"*"},
        // nothing of it is an option, and it is the same file
        {"-oremount,rw/", "film.iso", "./-oremount,rw/film.iso", temp_ / "plain"},
        {"/d/", "-film $.iso", "/d/./-film $.iso", temp_ / "plain"},
        {"", "--bind", "./--bind", temp_ / "plain"},
        {"LABEL=x/", "film.iso", "./LABEL=x/film.iso", temp_ / "plain"},
    };
    for (const auto &c : cases) {
        Capture out(STDOUT_FILENO), err(STDERR_FILENO);
        EXPECT_EQ(mountIsoByPath(c.folder.c_str(), c.file.c_str(), c.mountPoint.c_str()), 0);
        EXPECT_EQ(err.take() + out.take(), "");
        EXPECT_EQ(commands(), mountCommand(c.image, c.mountPoint));
        EXPECT_TRUE(fs::is_directory(c.mountPoint));
    }
    EXPECT_EQ(hostFunctions().conversions, 8 * 2 + 2); // two mount points aren't plain
    EXPECT_EQ(umountIso("-a"), 0);
    EXPECT_EQ(commands(), command({"umount", "./-a"}) + command({"rmdir", "./-a"}));
}

TEST_F(MountCommands, makeTheMountPointForEverybody)
{
    const std::string mountPoint = temp_ / "new";
    const mode_t before = umask(0);
    mountIsoByPath("/", "x.iso", mountPoint.c_str());
    umask(before);
    EXPECT_EQ(fs::status(mountPoint).permissions(), fs::perms::all);
}

TEST_F(MountCommands, giveTheStatusAsItIs)
{
    setenv("FAILING_COMMAND", "mount", 1);
    EXPECT_EQ(mountIsoByPath("/", "x.iso", (temp_ / "mp").c_str()), 32 << 8);

    char mountPoint[VORNAK_MOUNT_POINT_SIZE];
    EXPECT_EQ(mountIso("/", "x.iso", mountPoint, sizeof mountPoint), 1);
    EXPECT_EQ(commands(),
              mountCommand("/x.iso", temp_ / "mp") + mountCommand("/x.iso", mountPoint));
    EXPECT_TRUE(fs::remove(mountPoint)); // a failed mount leaves the name and its directory
}

TEST_F(MountCommands, nameAMountPointThatFits)
{
    for (const int number : {0, 17, INT_MAX, INT_MIN}) {
        hostFunctions().number = number;
        const std::string name = "/tmp/Trans_mount_" + std::to_string(number) + "/";
        for (const std::size_t size : {std::size_t{0}, std::size_t{1}, name.size(), name.size() + 1,
                                       std::size_t{VORNAK_MOUNT_POINT_SIZE}}) {
            std::string buffer(64, '#'), expected = buffer;
            const bool fits = size > name.size();
            expected.replace(0, size, size, '\0');
            if (fits) expected.replace(0, name.size(), name);
            EXPECT_EQ(mountIso("/", "x.iso", buffer.data(), static_cast<unsigned>(size)),
                      fits ? 0 : 1);
            EXPECT_EQ(buffer, expected) << name << " in " << size;
            EXPECT_EQ(commands(), fits ? mountCommand("/x.iso", name) : "");
        }
        fs::remove(name);
    }
}

TEST_F(MountCommands, areNotRunWhenAPathDoesNotFit)
{
    const std::string mountPoint = temp_ / "mp";
    std::string longPoint = temp_ / "mp2";
    longPoint.insert(0, 1100 - longPoint.size(), '/');
    // what a command line has besides the paths, and the most that it may have
    const std::size_t fixed = std::string("mount -o loop,ro   >/dev/null 2>/dev/null").size();
    const std::size_t room = 2047 - fixed;
    const struct {
        std::size_t folder, file;
        std::string mountPoint;
        bool runs;
    } cases[] = {
        {1023, 1, mountPoint, true},
        {1024, 1, mountPoint, false},
        {1, 1023, mountPoint, true},
        {1, 1024, mountPoint, false},
        {1023, 1023, mountPoint, false},
        {1000, room - 1000 - mountPoint.size(), mountPoint, true},
        {1000, room - 1000 - mountPoint.size() + 1, mountPoint, false},
        {500, room - 500 - longPoint.size(), longPoint, true}, // plain, so it needs no buffer
        {500, room - 500 - longPoint.size() + 1, longPoint, false},
        {1, 1, longPoint + " ", false},
    };
    for (const auto &c : cases) {
        const std::string folder(c.folder, '/'), file(c.file, 'f');
        EXPECT_EQ(mountIsoByPath(folder.c_str(), file.c_str(), c.mountPoint.c_str()),
                  c.runs ? 0 : 1)
            << c.folder << "+" << c.file << "+" << c.mountPoint.size();
        EXPECT_EQ(commands(), c.runs ? mountCommand(folder + file, c.mountPoint) : "");
    }
    for (const std::size_t length : {1023, 1024}) {
        const std::string path(length, '/');
        const bool runs = length == 1023;
        EXPECT_EQ(umountIso(path.c_str()), runs ? 0 : 1);
        EXPECT_EQ(commands(), runs ? command({"umount", path}) + command({"rmdir", path}) : "");
    }
}

TEST_F(MountCommands, areNotRunWhenAConversionFails)
{
    const struct {
        const char *mountPoint;
        int failing, conversions;
    } cases[] = {{"mp", 1, 1}, {"mp", 2, 2}, {"m p", 3, 3}};
    for (const auto &c : cases) {
        hostFunctions() = {};
        hostFunctions().failing = c.failing;
        EXPECT_EQ(mountIsoByPath("/", "x.iso", (temp_ / c.mountPoint).c_str()), 1);
        EXPECT_EQ(hostFunctions().conversions, c.conversions);
    }
    hostFunctions().failing = hostFunctions().conversions + 1;
    EXPECT_EQ(umountIso((temp_ / "mp").c_str()), 1);
    EXPECT_EQ(commands(), "");
}

TEST_F(MountCommands, areNotRunWithoutAPlaceToMount)
{
    const std::string file = temp_.write("file", "");
    EXPECT_EQ(mountIsoByPath("/", "x.iso", file.c_str()), 1);
    EXPECT_EQ(mountIsoByPath("/", "x.iso", (temp_ / "no/where").c_str()), 1);
    EXPECT_EQ(mountIsoByPath("/", "x.iso", ""), 1);
    char out[VORNAK_MOUNT_POINT_SIZE] = "as it was";
    EXPECT_EQ(mountIsoByPath(nullptr, "x.iso", "/tmp"), 1);
    EXPECT_EQ(mountIsoByPath("/", nullptr, "/tmp"), 1);
    EXPECT_EQ(mountIsoByPath("/", "x.iso", nullptr), 1);
    EXPECT_EQ(chrootMountIsoByPath(nullptr, "x.iso", "/tmp", "/"), 1);
    EXPECT_EQ(chrootMountIsoByPath("/", nullptr, "/tmp", "/"), 1);
    EXPECT_EQ(chrootMountIsoByPath("/", "x.iso", nullptr, "/"), 1);
    EXPECT_EQ(chrootMountIsoByPath("/", "x.iso", "/tmp", nullptr), 1);
    EXPECT_EQ(mountIso(nullptr, "x.iso", out, sizeof out), 1);
    EXPECT_EQ(mountIso("/", nullptr, out, sizeof out), 1);
    EXPECT_EQ(mountIso("/", "x.iso", nullptr, sizeof out), 1);
    EXPECT_EQ(chrootMountIso(nullptr, "x.iso", out, sizeof out, "/"), 1);
    EXPECT_EQ(chrootMountIso("/", nullptr, out, sizeof out, "/"), 1);
    EXPECT_EQ(chrootMountIso("/", "x.iso", nullptr, sizeof out, "/"), 1);
    EXPECT_STREQ(out, "as it was");
    EXPECT_EQ(chrootMountIso("/", "x.iso", out, sizeof out, nullptr), 1);
    EXPECT_EQ(umountIso(nullptr), 1);
    EXPECT_EQ(chrootUmountIso(nullptr, "/"), 1);
    EXPECT_EQ(chrootUmountIso("/tmp", nullptr), 1);
    EXPECT_EQ(chrootUmountIso("/tmp", (temp_ / "missing").c_str()), 1);
    EXPECT_EQ(commands(), "");
}

TEST_F(MountCommands, removeADirectoryOnlyOnceItIsUnmounted)
{
    const std::string mountPoint = temp_ / "it's $(a) place\n";
    const std::string unmount = command({"umount", mountPoint});
    const std::string remove = command({"rmdir", mountPoint});
    const struct {
        const char *failing;
        int result;
        std::string commands;
    } cases[] = {{"", 0, unmount + remove}, {"umount", 1, unmount}, {"rmdir", 1, unmount + remove}};
    for (const auto &c : cases) {
        setenv("FAILING_COMMAND", c.failing, 1);
        Capture out(STDOUT_FILENO), err(STDERR_FILENO);
        EXPECT_EQ(umountIso(mountPoint.c_str()), c.result);
        EXPECT_EQ(err.take() + out.take(), "");
        EXPECT_EQ(commands(), c.commands);
    }
}

/// In a child whose root is the same, so that the stand-ins are found.
class CommandsInRoot : public MountCommands {
protected:
    void SetUp() override
    {
        MountCommands::SetUp();
        if (geteuid() != 0) GTEST_SKIP() << "chroot needs root";
    }

    int unmount() const { return chrootUmountIso(mountPoint_.c_str(), "/"); }

    const std::string mountPoint_ = temp_ / "mp";
    const std::string whole_ = command({"umount", mountPoint_}) + command({"rmdir", mountPoint_});
};

TEST_F(CommandsInRoot, failIfTheirChildDoes)
{
    EXPECT_EQ(unmount(), 0);
    EXPECT_EQ(commands(), whole_);
    hostFunctions().onConversion = [] { raise(SIGKILL); };
    EXPECT_EQ(unmount(), 1);
    EXPECT_EQ(commands(), "");

    // Without a child there is none to wait for: that one is the caller's.
    hostFunctions() = {};
    const pid_t callers = fork();
    if (callers == 0) _exit(0);
    hostFunctions().canFork = false;
    EXPECT_EQ(unmount(), 1);
    EXPECT_EQ(waitpid(callers, nullptr, 0), callers);
}

TEST_F(CommandsInRoot, areWaitedForWhenASignalInterrupts)
{
    hostFunctions().onConversion = [] { usleep(100'000); };
    const Alarms alarms(10);
    EXPECT_EQ(unmount(), 0);
    EXPECT_GT(alarms.count(), 2);
}

TEST_F(CommandsInRoot, failIfNothingTellsHowTheyEnded)
{
    std::signal(SIGCHLD, SIG_IGN); // ended children vanish, so the wait finds none
    hostFunctions().onConversion = [] { std::signal(SIGCHLD, SIG_DFL); };
    EXPECT_EQ(unmount(), 1);
    std::signal(SIGCHLD, SIG_DFL);
    EXPECT_EQ(commands(), whole_); // the child itself had done its work
}

} // namespace
} // namespace vornak::test
