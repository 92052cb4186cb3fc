// The subcommands about discs and subtitles, on real images in mounts of this process's own.
#include "tests/support/disc_images.h"
#include "tests/support/doc_examples.h"
#include "tests/support/leak_check.h"
#include "tests/support/private_tmp.h"
#include "tests/support/process.h"
#include "tests/support/process_tree.h"
#include "tests/support/temp_dir.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/sysmacros.h>
#include <thread>

namespace vornak::test {
namespace {

namespace fs = std::filesystem;

class DiscCommand : public LeakCheck {
protected:
    static void SetUpTestSuite()
    {
        // which the new /tmp might hide
        s_examples = readDocExamples(VORNAK_SOURCE_DIR "/docs/discs-and-subtitles.md");
        const std::string bin = fs::path(VORNAK_CLI).parent_path();
        s_tmp.emplace(bin);
        s_whyNot = s_tmp->whyNot().empty() ? makeDiscImages("/tmp/") : s_tmp->whyNot();
        s_path = std::getenv("PATH");
        setenv("PATH", (bin + ":" + s_path).c_str(), 1);
        LeakCheck::SetUpTestSuite();
    }
    static void TearDownTestSuite()
    {
        LeakCheck::TearDownTestSuite();
        setenv("PATH", s_path.c_str(), 1);
        s_tmp.reset();
    }
    void SetUp() override
    {
        if (!s_whyNot.empty()) GTEST_SKIP() << s_whyNot;
    }
    void TearDown() override
    {
        if (!s_whyNot.empty()) return;
        EXPECT_EQ(run({"sh", "-c", "ls -d /tmp/Trans_mount_*"}).out, "");
        EXPECT_EQ(run({"losetup", "-j", "/tmp/dvd.iso"}).out, "");
    }

    static ProcessResult disc(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {VORNAK_CLI, "disc"});
        return run(arguments);
    }

    static std::string titleOf(const std::string &image)
    {
        return image + ": DVD\n  index: VIDEO_TS/VIDEO_TS.IFO\n"
                       "  main title: title set 2, 1 part, 4 bytes\n"
                       "    VIDEO_TS/VTS_02_1.VOB: 4 bytes\n";
    }

    static void mountLeftover(const std::string &mountPoint)
    {
        fs::create_directory(mountPoint);
        ASSERT_EQ(run({"mount", "-o", "loop,ro", "/tmp/dvd.iso", mountPoint}).err, "");
    }

    static inline std::vector<DocExample> s_examples;

private:
    static inline std::string s_whyNot, s_path;
    static inline std::optional<PrivateTmp> s_tmp;
};

TEST_F(DiscCommand, PrintsWhatThePageShows)
{
    const TempDir temp;
    fs::current_path(temp.path());
    EXPECT_GE(s_examples.size(), 12U);
    for (const DocExample &example : s_examples)
        EXPECT_EQ(run({"sh", "-c", "exec 2>&1; " + example.command}).out, example.output)
            << example.command;
    fs::current_path("/tmp");
}

TEST_F(DiscCommand, ReadsAnImageOfAnyName)
{
    const struct {
        std::string name, shown;
    } cases[] = {
        {"-it's a \"film\" (1).iso", "-it's a \"film\" (1).iso"},
        {"$(touch run):`touch run`;touch run.iso", "$(touch run):`touch run`;touch run.iso"},
        {"line\nfeed \\ \x1b[31m\xff.iso", "line\\x0afeed \\\\ \\x1b[31m\\xff.iso"},
    };
    const TempDir temp;
    fs::current_path(temp.path());
    for (const auto &c : cases) {
        fs::copy("/tmp/dvd.iso", c.name);
        const ProcessResult result = disc({"--", c.name});
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.out, titleOf(c.shown));
        EXPECT_EQ(result.status, 0);
    }
    EXPECT_FALSE(fs::exists("run"));
    fs::current_path("/tmp");
}

TEST_F(DiscCommand, MountsWhereItIsTold)
{
    const ProcessResult there = disc({"--mount-point", "/tmp/a $(place)", "/tmp/dvd.iso"});
    EXPECT_EQ(there.out + there.err, titleOf("/tmp/dvd.iso"));
    EXPECT_FALSE(fs::exists("/tmp/a $(place)"));

    const OtherRoot root;
    if (!root.whyNot().empty()) GTEST_SKIP() << root.whyNot();
    for (const std::vector<std::string> &where :
         {std::vector<std::string>{}, {"--mount-point", "/images/place"}}) {
        std::vector<std::string> arguments{"--root", "root", "/images/a 'film'.iso"};
        arguments.insert(arguments.end(), where.begin(), where.end());
        const ProcessResult inside = disc(arguments);
        EXPECT_EQ(inside.out + inside.err, titleOf("/images/a 'film'.iso"));
    }
    EXPECT_EQ(run({"ls", "/tmp/root/tmp", "/tmp/root/images"}).out,
              "/tmp/root/images:\na 'film'.iso\n\n/tmp/root/tmp:\n");
}

TEST_F(DiscCommand, SaysWhatIsWrong)
{
    const TempDir temp;
    temp.write("empty/VIDEO_TS/VIDEO_TS.IFO", "");
    temp.write("empty/VIDEO_TS/VTS_01_1.VOB", "");
    temp.write("blank/BDMV/index.bdmv", "");
    temp.write("no.iso", "no image");
    fs::create_directory(temp / "root");
    fs::current_path(temp.path());
    const struct {
        std::vector<std::string> arguments;
        int status;
        const char *complaint;
    } cases[] = {
        {{}, 2, "PATH is required (try: vornak disc --help)"},
        {{"unmout-all"}, 1, "unmout-all: No such file or directory; did you mean unmount-all?"},
        {{"/dev/null"}, 1, "/dev/null: neither a folder nor an image"},
        {{"root"},
         1,
         "root: not a disc: it holds neither VIDEO_TS/VIDEO_TS.IFO nor BDMV/index.bdmv"},
        {{"empty"}, 1, "empty: a DVD without a title: no VTS_nn_n.VOB holds anything"},
        {{"blank"},
         1,
         "blank: a Blu-ray without a title: no .m2ts file in BDMV/STREAM holds anything"},
        {{"no.iso"},
         1,
         "no.iso: can't be mounted: no image of a file system that the kernel knows, or no loop "
         "device is free"},
        {{"--mount-point", "root", "no.iso"},
         1,
         "no.iso: root: the mount point is made, so it must not exist yet"},
        {{"--mount-point", "none/x", "no.iso"},
         1,
         "no.iso: can't be mounted: ./none/x/ can't be made: No such file or directory"},
        {{"--mount-point", "x", "root"},
         1,
         "root: a folder is read as it is, without --root and --mount-point"},
        {{"--root", "root", "no.iso"},
         1,
         "no.iso: with --root, paths begin with / and are inside it"},
        {{"--root", "none", "/no.iso"}, 1, "/no.iso: none: No such file or directory"},
        {{"--root", ".", "--mount-point", "/x", "/no.iso"},
         1,
         "/no.iso: can't be mounted: no image of a file system that the kernel knows, or no loop "
         "device is free"},
    };
    for (const auto &c : cases) {
        const ProcessResult result = disc(c.arguments);
        EXPECT_EQ(result.status, c.status) << c.complaint;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, std::string("vornak: ") + c.complaint + "\n");
    }
    const std::string deep(1010, '/');
    for (const auto &[path, code] : {std::pair{deep.c_str(), "path-too-long"},
                                     {"/no.iso", "not-found"},
                                     {"/dev/null", "not-a-disc"}})
        EXPECT_NE(disc({"--json", path}).out.find("\"code\": \"" + std::string(code) + '"'),
                  std::string::npos)
            << code;
    fs::current_path("/tmp");
}

TEST_F(DiscCommand, SaysThatMountingNeedsRoot)
{
    const std::vector<std::string> asNobody{"setpriv",        "--reuid=65534", "--regid=65534",
                                            "--clear-groups", VORNAK_CLI,      "disc"};
    auto with = [&](const char *argument) {
        std::vector<std::string> all = asNobody;
        all.emplace_back(argument);
        return run(all);
    };
    if (with("--help").status != 0) GTEST_SKIP() << "nobody else can run the tool where it is";
    ASSERT_EQ(mknod("/tmp/null", S_IFCHR | 0644, makedev(1, 3)), 0);
    const ScopedMount ofRootAlone("/tmp/null", "/dev/null", nullptr, MS_BIND);
    const ProcessResult image = with("/tmp/dvd.iso");
    EXPECT_EQ(image.status, 1);
    EXPECT_EQ(image.err, "vornak: /tmp/dvd.iso: can't be mounted: that needs root (or give the "
                         "folder of a disc)\n");
    mountLeftover("/tmp/Trans_mount_1");
    const ProcessResult sweep = with("unmount-all");
    EXPECT_EQ(sweep.status, 1);
    EXPECT_EQ(sweep.err, "vornak: /tmp/Trans_mount_1: left as it is: unmounting needs root\n");
    EXPECT_EQ(disc({"unmount-all"}).status, 0);
}

/// Runs the tool in a process group of its own, and once `file` is there sends the signal to that
/// group or to all that the tool has started. Returns the signal that ended the tool, or 0.
int endedBySignal(int signal, bool toAll, const std::string &file)
{
    const pid_t child = fork();
    if (child == 0) {
        setpgid(0, 0);
        dup2(open("/tmp/printed", O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600), STDOUT_FILENO);
        execl(VORNAK_CLI, "vornak", "disc", "/tmp/dvd.iso", nullptr);
        _exit(127);
    }
    int status = 0;
    while (!fs::exists(file) && waitpid(child, &status, WNOHANG) == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    if (toAll) sendToAll(child, signal);
    kill(-child, signal);
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {}
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

TEST_F(DiscCommand, UnmountsBeforeASignalEndsIt)
{
    const struct {
        const char *command;
        int signal;
        bool toAll;
    } cases[] = {{"mount", SIGINT, false},  {"mount", SIGTERM, false}, {"umount", SIGINT, false},
                 {"umount", SIGHUP, false}, {"umount", SIGTERM, true}, {"rmdir", SIGUSR1, true}};
    const char *const given = std::getenv("PATH");
    const std::string path = given ? given : "/usr/bin:/bin";
    for (const auto &c : cases) {
        const TempDir temp;
        const std::string slow =
            temp.write(c.command, "#!/bin/sh\ntouch \"$0.started\"; sleep 0.3\n"
                                  "PATH=${PATH#*:} exec \"${0##*/}\" \"$@\"\n");
        fs::permissions(slow, fs::perms::owner_all);
        setenv("PATH", ((temp / "") + ":" + path).c_str(), 1);
        EXPECT_EQ(endedBySignal(c.signal, c.toAll, slow + ".started"), c.signal) << c.command;
        setenv("PATH", path.c_str(), 1);
        EXPECT_EQ(fs::file_size("/tmp/printed"), 0U);
        EXPECT_EQ(run({"sh", "-c", "ls -d /tmp/Trans_mount_*"}).out, "") << c.command;
    }
}

TEST_F(DiscCommand, RunsNoCommandOfAStranger)
{
    const TempDir strangers;
    for (const char *command : {"mount", "umount", "rmdir"})
        fs::permissions(strangers.write(command, "#!/bin/sh\ntouch \"$0.ran\"\n"),
                        fs::perms::owner_all);
    ASSERT_EQ(chown(strangers.path().c_str(), 65534, 65534), 0);
    const ProcessResult result = run({"env", "PATH=" + strangers / "" + ":.:" + std::getenv("PATH"),
                                      VORNAK_CLI, "disc", "/tmp/dvd.iso"});
    EXPECT_EQ(result.out + result.err, titleOf("/tmp/dvd.iso"));
    EXPECT_EQ(run({"ls", strangers.path()}).out, "mount\nrmdir\numount\n");
}

TEST_F(DiscCommand, MountsOverNothingOfAStrangers)
{
    if (run({"strace", "-o", "/dev/null", "true"}).status != 0)
        GTEST_SKIP() << "strace is not there, or isn't allowed to trace";
    fs::create_directory("/tmp/victim");
    const ProcessResult result =
        run({"sh", "-c",
             "(sleep 0.5; setpriv --reuid=65534 --regid=65534 --clear-groups ln -s victim x) & "
             "strace -E ASAN_OPTIONS=detect_leaks=0 -f -qq -o /dev/null -e trace=mkdir "
             "-e inject=mkdir:delay_enter=1500000 \"$0\" disc --mount-point x dvd.iso",
             VORNAK_CLI});
    EXPECT_EQ(result.out + result.err,
              "vornak: dvd.iso: x: the mount point is made, so it must not exist yet\n");
    EXPECT_TRUE(fs::remove("/tmp/x"));
    EXPECT_TRUE(fs::remove("/tmp/victim"));
}

TEST_F(DiscCommand, SweepsUpWhatWasLeft)
{
    mountLeftover("/tmp/Trans_mount_1");
    fs::create_directory("/tmp/Trans_mount_2"); // of a mount that failed
    {
        const std::ifstream user("/tmp/Trans_mount_1/VIDEO_TS/VTS_02_1.VOB");
        ASSERT_TRUE(user);
        const ProcessResult used = disc({"unmount-all"});
        EXPECT_EQ(used.status, 1);
        EXPECT_EQ(used.out, "removed /tmp/Trans_mount_2\n");
        EXPECT_EQ(used.err, "vornak: /tmp/Trans_mount_1: still mounted: some program uses it (try: "
                            "fuser -vm /tmp/Trans_mount_1)\n");
    }
    ASSERT_EQ(run({"mount", "-o", "loop,ro", "/tmp/bluray.iso", "/tmp/Trans_mount_1"}).err, "");
    const ProcessResult all = disc({"unmount-all"}); // both, of which one hides the other
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.out + all.err, "unmounted /tmp/Trans_mount_1\n");
}

TEST_F(DiscCommand, SweepsPastWhatStrangersMake)
{
    mountLeftover("/tmp/victim");
    mountLeftover("/tmp/Trans_mount_1");
    fs::create_symlink("/tmp/victim", "/tmp/Trans_mount_link");
    std::ofstream("/tmp/Trans_mount_file").close();
    const ProcessResult all = disc({"unmount-all"});
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.out, "unmounted /tmp/Trans_mount_1\n");
    const std::string why =
        ": passed over: nothing is mounted on it, and it is no empty directory\n";
    EXPECT_EQ(all.err,
              "vornak: /tmp/Trans_mount_file" + why + "vornak: /tmp/Trans_mount_link" + why);
    fs::remove("/tmp/Trans_mount_link");
    fs::remove("/tmp/Trans_mount_file");

    // At any moment a directory may give way to a link.
    fs::permissions("/tmp", fs::perms::all);
    const pid_t stranger = fork();
    if (stranger == 0) {
        if (setegid(65534) != 0 || seteuid(65534) != 0) _exit(1);
        for (;;) {
            mkdir("/tmp/Trans_mount_1", 0777);
            if (symlink("/tmp/victim", "/tmp/link") != 0 && errno != EEXIST) _exit(1);
            renameat2(-1, "/tmp/Trans_mount_1", -1, "/tmp/link", RENAME_EXCHANGE);
        }
    }
    for (int i = 0; i < 20; ++i) disc({"unmount-all"});
    kill(stranger, SIGKILL);
    int status = 0;
    waitpid(stranger, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_TRUE(fs::exists("/tmp/victim/VIDEO_TS"));
    run({"sh", "-c", "umount /tmp/victim; rm -rf /tmp/victim /tmp/Trans_mount_1 /tmp/link"});
    fs::permissions("/tmp", fs::perms::all | fs::perms::sticky_bit);
}

} // namespace
} // namespace vornak::test
