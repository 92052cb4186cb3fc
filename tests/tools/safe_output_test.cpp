// What `vornak transcode` calls done, and what it leaves behind when it isn't.
#include "tests/support/private_mounts_test.h"
#include "tests/tools/transcode_clips.h"

#include <csignal>
#include <gmock/gmock.h>
#include <pty.h>

namespace vornak::test {
namespace {

using testing::HasSubstr;

class SafeOutput : public TranscodeClips {
protected:
    static void SetUpTestSuite()
    {
        TranscodeClips::SetUpTestSuite();
        program("slow", "echo $$ >pid; exec ffmpeg -re \"$@\"");
    }

    void SetUp() override { before_ = names(); }

    /// Takes the output away; expects that there was one, or not, and nothing else.
    void expectLeft(bool made)
    {
        EXPECT_EQ(std::filesystem::remove(*s_Dir / "out"), made);
        EXPECT_EQ(names(), before_);
    }

    std::set<std::string> before_;
};

constexpr const char *kTranscode = "t() { vornak transcode -p limits.xml -o out \"$@\"; }; ";

/// Before a command of the shell: some of its calls of the system fail. (Nobody looks for leaks in
/// what is traced.)
constexpr const char *kStrace = "strace -E ASAN_OPTIONS=detect_leaks=0 -qq -o /dev/null "
                                "-e trace=fsync,renameat2,linkat ";

TEST_F(SafeOutput, IsMovedIntoPlaceOrNotAtAll)
{
    const std::string noExclusiveRename = "-e inject=renameat2:error=EINVAL",
                      noLinks = " -e inject=linkat:error=EPERM";
    const struct {
        std::string calls;
        const char *force;
        int status;
        bool made;
    } cases[] = {
        {noExclusiveRename, "", 0, true},            // by a second link
        {noExclusiveRename + noLinks, "", 1, false}, // never by one that replaces
        {noExclusiveRename + noLinks, "--force", 0, true},
        {"-e inject=fsync:error=EIO:when=1", "", 1, false},       // its content
        {"-e inject=fsync:error=EIO:when=2", "", 1, false},       // its name
        {"-e inject=fsync:error=EIO:when=2", "--force", 1, true}, // in the place of another
    };
    if (shell(std::string(kStrace) + "true").status != 0)
        GTEST_SKIP() << "strace is not there, or isn't allowed to trace";
    for (const auto &c : cases) {
        const auto result = shell(kStrace + c.calls +
                                  " vornak transcode -p limits.xml song.flac -o out " + c.force);
        EXPECT_EQ(result.status, c.status) << c.calls << c.force << result.err;
        expectLeft(c.made);
    }
}

/// Runs a command on a terminal that goes away once `sign` is on it. Returns its exit status.
int runOnLostTerminal(const std::string &folder, const std::string &command,
                      const std::string &sign)
{
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        if (chdir(folder.c_str()) != 0) _exit(99);
        execl("/bin/sh", "sh", "-c", command.c_str(), VORNAK_CLI, nullptr);
        _exit(98);
    }
    std::string shown;
    for (char c = 0; shown.find(sign) == std::string::npos && read(terminal, &c, 1) == 1;)
        shown += c;
    close(terminal);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

TEST_F(SafeOutput, OutlivesItsTerminal)
{
    const std::string transcode =
        "exec \"$0\" transcode -p limits.xml film.mkv -o out --ffmpeg ./slow";
    EXPECT_EQ(runOnLostTerminal(s_Dir->path(), transcode, " left"), 128 + SIGHUP);
    std::filesystem::remove(*s_Dir / "pid");
    expectLeft(false);
    EXPECT_EQ(runOnLostTerminal(s_Dir->path(), "trap '' HUP; " + transcode, " left"), 0);
    std::filesystem::remove(*s_Dir / "pid");
    expectLeft(true);
    // so slowly that there is a progress to draw
    const std::string decide =
        "trap '' HUP; mkfifo names; (sleep 0.3; for i in 1 2 3; do echo film.mkv; sleep 0.3; done) >names & "
        "\"$0\" decide -p limits.xml --json - <names >out; status=$?; rm names; exit $status";
    EXPECT_EQ(runOnLostTerminal(s_Dir->path(), decide, "1 files"), 0);
    EXPECT_THAT(contentOf("out"), testing::EndsWith("}\n"));
    expectLeft(true);
}

/// What a terminal shows of a command in the clips' folder.
std::string shownOnTerminal(const std::string &folder, const std::string &command)
{
    return run({"script", "-qefc", "stty cols 70; cd " + folder + "; " + command, "/dev/null"}).out;
}

TEST_F(SafeOutput, ShowsItsProgress)
{
    const std::string tool = VORNAK_CLI, folder = s_Dir->path();
    const std::string shown = shownOnTerminal(
        folder, tool + " transcode -p limits.xml film.mkv -o out --ffmpeg ./slow; rm pid");
    EXPECT_THAT(shown, testing::ContainsRegex(
                           "\r\\[#+ *\\] +[0-9]+%  [01]\\.[0-9]x  0:0[0-9] left\033\\[K"));
    EXPECT_THAT(shown, HasSubstr("\r\033[Kout: made from film.mkv (video)"));
    expectLeft(true);
    // It stays while the output goes to a file.
    EXPECT_THAT(
        shownOnTerminal(folder, "(for i in 1 2 3 4 5; do echo film.mkv; sleep 0.2; done) | " +
                                    tool + " decide -p limits.xml - >out"),
        testing::MatchesRegex("(\r[1-5] files\033\\[K)+\r\033\\[K"));
    expectLeft(true);
}

/// Mounts of this process's own, in which strangers may write into the clips' folder.
class SafeFromStrangers : public SafeOutput {
protected:
    void SetUp() override
    {
        if (geteuid() != 0) GTEST_SKIP() << "strangers are other users, which root alone can be";
        static const std::string s_WhyNot = enterPrivateMounts();
        if (!s_WhyNot.empty()) GTEST_SKIP() << s_WhyNot;
        std::filesystem::permissions(s_Dir->path(), std::filesystem::perms::all);
        s_Dir->write("victim", "root's");
        SafeOutput::SetUp();
    }

    static constexpr const char *kStranger =
        "stranger() { setpriv --reuid=65534 --regid=65534 --clear-groups \"$@\"; }; ";
};

TEST_F(SafeFromStrangers, NothingOfTheUsersIsReplaced)
{
    program(
        "swaps",
        "set -- \"$@\"; stranger() { setpriv --reuid=65534 --regid=65534 --clear-groups \"$@\"; }\n"
        "work=$(echo .vornak-*); stranger mv $work taken; stranger mkdir -m 777 $work\n"
        "stranger ln -s $PWD/victim $work/output; ffmpeg \"$@\"; status=$?\n"
        "rm -r $work; mv taken $work; exit $status");
    before_ = names();
    const struct {
        const char *command;
        int status;
        bool made;
        const char *error;
    } cases[] = {
        // the folder is another's while ffmpeg writes
        {"t song.flac --ffmpeg ./swaps", 0, true, ""},
        {"stranger ln -s victim out; t song.flac --force", 2, true,
         "out: leads through a link that another user has made"},
        {"ln -s between out; stranger ln -s victim between; t song.flac --force; s=$?; rm between; exit $s",
         2, true, "out: leads through a link that another user has made"},
        // that link gives way to the user's own once it is read
        {"echo >other; ln -s other own; stranger ln -s victim out; (sleep 0.5; stranger mv -T own out) & strace -E ASAN_OPTIONS=detect_leaks=0 -qq -o /dev/null -e trace=readlinkat -e inject=readlinkat:delay_exit=1500000 vornak transcode -p limits.xml song.flac -o out --force; wait; rm -f own other",
         0, true, ""},
        {"stranger mkdir tmp; TMPDIR=tmp vornak length -p pcm.xml --verify song.flac >/dev/null; s=$?; rmdir tmp; exit $s",
         0, false, ""},
        // PATH of a stranger
        {"mkdir bin; ln -s /bin/false bin/ffmpeg; chmod 777 bin; (PATH=.:$PWD/bin:$PATH t song.flac); s=$?; rm -r bin; exit $s",
         0, true, ""},
        {"(export FFREPORT=file=victim; t song.flac)", 0, true, ""},
    };
    for (const auto &c : cases) {
        const auto result = shell(std::string(kStranger) + kTranscode + c.command);
        EXPECT_EQ(result.status, c.status) << c.command << '\n' << result.err;
        EXPECT_THAT(result.err, HasSubstr(c.error)) << c.command;
        EXPECT_TRUE(contentOf("victim") == "root's") << c.command;
        expectLeft(c.made);
    }
}

} // namespace
} // namespace vornak::test
