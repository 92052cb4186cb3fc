// What `vornak transcode` calls done, and what it leaves behind when it isn't.
#include "tests/support/private_mounts_test.h"
#include "tests/tools/transcode_clips.h"

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <gmock/gmock.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <pty.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

namespace vornak::test {
namespace {

using testing::HasSubstr;

class SafeOutput : public TranscodeClips {
protected:
    static void SetUpTestSuite()
    {
        TranscodeClips::SetUpTestSuite();
        const auto shown = shell(R"sh(
set -e
ffmpeg -v error -i film.mkv -c:v copy -c:a ac3 -movflags +faststart film.mp4
for film in film.mkv film.mp4; do head -c $(($(stat -c %s $film) / 2)) $film >cut-$film; done
printf '1\n00:00:59,000 --> 00:01:00,000\nlate\n' >late.srt
ffmpeg -v error -i film.mkv -i late.srt -c copy -c:s srt subtitled.mkv
ffmpeg -v error -i film.mkv -c:v copy -c:a ac3 -f avi - | cat >piped.avi
cp film.mkv flipped.mkv
for i in 100 150 200 250 300; do
    printf '\377\000\377' | dd of=flipped.mkv bs=1 seek=${i}000 conv=notrunc status=none
done
sed 's/OPTION="-c:v/OPTION="-t 0.5 -c:v/' limits.xml >short.xml
)sh");
        ASSERT_EQ(shown.status, 0) << shown.err;
        program("nothing", "exit 0");
        program("killed", "kill -KILL $$");
        program("cuts-output", "ffmpeg \"$@\"; for out; do :; done; out=${out#file:}\n"
                               "truncate -s $(($(stat -Lc %s $out) / 2)) $out");
        program("cuts-source", "exec ffmpeg -t 0.7 \"$@\"");
        program("cant-read", "ffmpeg \"$@\"; echo file:film.mkv: Input/output error >&2");
        program("cant-write", "ffmpeg \"$@\"; echo 'av_interleaved_write_frame(): x' >&2");
        program("quiet", "exec ffmpeg -v quiet \"$@\"");
        program("interrupts", "kill -$S $PPID; exec ffmpeg -re \"$@\"");
        std::filesystem::create_directory(*s_Dir / "copying");
        program("copying/cp", "kill -TERM $PPID; exec sleep 60");
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

constexpr const char *kTranscode = "t() { vornak transcode -p limits.xml -o out \"$@\"; }; "
                                   "s() { vornak transcode -p limits.xml -o - \"$@\"; }; ";

TEST_F(SafeOutput, IsWholeOrIsNotMade)
{
    constexpr bool kMade = true, kNone = false;
    const struct {
        const char *command;
        int status;
        bool made;
        const char *error;
    } cases[] = {
        // a source that is cut, and what only looks so
        {"t cut-film.mkv --verify", 1, kNone,
         " of 2.0 s could be read, so nothing is made of it (--accept-damaged takes what there is)\n"},
        {"t cut-film.mp4", 1, kNone, "cut-film.mp4: its film ends early, "},
        {"t cut-film.mkv --accept-damaged --verify", 0, kMade, " of 2.0 s could be read\n"},
        {"t film.mkv --ffmpeg ./cuts-source", 1, kNone, "its picture ends early, 0.7 of 2.0 s"},
        {"t film.mkv --ffmpeg ./cant-read", 1, kNone, "its film ends early, "},
        {"t subtitled.mkv --verify", 0, kMade, ""},
        {"t piped.avi --verify", 0, kMade, ""},
        {"vornak transcode -p short.xml film.mkv -o out", 0, kMade, ""},
        // damage
        {"t flipped.mkv --verify", 0, kMade, "damaged places\n"},
        {"t flipped.mkv --ffmpeg ./quiet", 0, kMade, "damaged places\n"},
        // an output that is not whole
        {"t film.mkv --ffmpeg ./cuts-output --accept-damaged", 1, kNone,
         "out: its last packets are missing, "},
        {"t film.mkv --ffmpeg ./cant-write --accept-damaged", 1, kNone,
         "vornak: ./cant-write: av_interleaved_write_frame(): x\n"
         "vornak: out: could not be written whole, so it is not made\n"},
        {"t film.mkv --ffmpeg ./nothing", 1, kNone,
         "vornak: out: was not written by ./nothing, so it is not made\n"},
        {"t film.mkv --ffmpeg ./killed", 1, kNone, "film.mkv: ./killed was ended by SIGKILL\n"},
        {"t song.mp3", 3, kNone, "song.mp3: needs no transcoding"},
        // interrupted
        {"S=INT t film.mkv --ffmpeg ./interrupts", 130, kNone,
         "film.mkv: interrupted, no output is left\n"},
        {"S=XCPU t film.mkv --ffmpeg ./interrupts", 128 + SIGXCPU, kNone,
         "film.mkv: interrupted, "},
        {"PATH=$PWD/copying:$PATH; t song.mp3 --copy", 143, kNone,
         "song.mp3: interrupted, no output is left\n"},
        // standard output
        {"s film.mkv | cat >made && ffprobe -v error made; rm made", 0, kNone,
         "vornak: standard output: made from film.mkv (video)\n"},
        {"s song.mp3 --copy | cmp - song.mp3", 0, kNone, "standard output: copied"},
        {"s film.mkv >/dev/full", 1, kNone, "No space left on device"},
        {"s film.mkv | true", 0, kNone, "Broken pipe"},
        {"s film.mkv --verify", 2, kNone, "standard output can't be verified"},
        {"s film.mkv --force", 2, kNone, "standard output can't be verified or replaced"},
        {"t film.mkv >/dev/full", 1, kMade, "standard output: No space left on device"},
        {"vornak length -p pcm.xml --verify song.flac >/dev/full", 1, kNone, "No space left"},
        {"vornak length -p pcm.xml --verify song.flac | true", 0, kNone, ""},
        {"{ t film.mkv --verify 2>&1 >/dev/null; echo $? >&3; } 3>&1 | true", 0, kMade, ""},
    };
    for (const auto &c : cases) {
        const auto result = shell(std::string("export TMPDIR=.; ") + kTranscode + c.command);
        EXPECT_EQ(result.status, c.status) << c.command << '\n' << result.err;
        EXPECT_THAT(result.err, HasSubstr(c.error)) << c.command;
        EXPECT_EQ(result.err.empty(), !*c.error) << c.command << '\n' << result.err;
        expectLeft(c.made);
    }
}

TEST_F(SafeOutput, RemovesWhatAKilledRunHasLeft)
{
    const auto killed = shell(std::string(kTranscode) + R"sh(
vornak transcode -p limits.xml film.mkv -o out --ffmpeg ./slow & until [ -e .vornak-*/output ]; do sleep 0.05; done
kill -KILL $!; wait $!; sleep 0.1; ! kill -0 $(cat pid); rm pid)sh");
    EXPECT_EQ(killed.status, 0) << killed.err; // ffmpeg died with it
    std::filesystem::create_directories(*s_Dir / ".vornak-folder");
    s_Dir->write(".vornak-folder/film", "mine"); // nothing that a run leaves
    s_Dir->write(".vornak-locked/output", "");
    ASSERT_EQ(names().size(), before_.size() + 3);
    const auto next = shell(std::string("chmod 700 .vornak-*; exec 3<.vornak-locked; flock 3; ") +
                            kTranscode + "t film.mkv");
    EXPECT_EQ(next.status, 0) << next.err;
    EXPECT_EQ(contentOf(".vornak-folder/film"), "mine");
    EXPECT_TRUE(names().contains(".vornak-locked"));
    for (const char *left : {".vornak-folder", ".vornak-locked"})
        std::filesystem::remove_all(*s_Dir / left);
    expectLeft(true);
}

/// Runs the tool where some calls of the system fail; returns its exit status.
int runFailing(const std::string &folder, std::vector<std::pair<unsigned, unsigned>> calls,
               bool force)
{
    std::vector<sock_filter> filter = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const auto &[call, error] : calls) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
    const pid_t child = fork();
    if (child == 0) {
        if (chdir(folder.c_str()) != 0 || prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
            prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
            _exit(99);
        execl(VORNAK_CLI, "vornak", "transcode", "-p", "limits.xml", "song.flac", "-o", "out",
              force ? "--force" : nullptr, nullptr);
        _exit(98);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WEXITSTATUS(status);
}

TEST_F(SafeOutput, IsMovedIntoPlaceOrNotAtAll)
{
    const std::pair<unsigned, unsigned> noExclusiveRename = {SYS_renameat2, EINVAL},
                                        noLinks = {SYS_linkat, EPERM}, noSync = {SYS_fsync, EIO};
    const struct {
        std::vector<std::pair<unsigned, unsigned>> failing;
        bool force;
        int status;
        bool made;
    } cases[] = {
        {{noExclusiveRename}, false, 0, true},           // by a second link
        {{noExclusiveRename, noLinks}, false, 1, false}, // never by one that replaces
        {{noExclusiveRename, noLinks}, true, 0, true},
        {{noSync}, false, 1, false},
    };
    for (const auto &c : cases) {
        const int status = runFailing(s_Dir->path(), c.failing, c.force);
        if (status == 99) GTEST_SKIP() << "no filter for calls of the system";
        EXPECT_EQ(status, c.status);
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

TEST_F(SafeOutput, ProgressStaysWhileTheOutputGoesToAFile)
{
    const auto shown = run({"script", "-qefc",
                            "cd " + s_Dir->path().string() +
                                "; (for i in 1 2 3 4 5; do echo film.mkv; sleep 0.2; done) | " +
                                VORNAK_CLI + " decide -p limits.xml - >out",
                            "/dev/null"});
    EXPECT_THAT(shown.out, testing::MatchesRegex("(\r[2-5] files\033\\[K)+\r\033\\[K"));
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
        {"stranger mkdir tmp; TMPDIR=tmp vornak length -p pcm.xml --verify song.flac >/dev/null; s=$?; rmdir tmp; exit $s",
         0, false, ""},
        // PATH of a stranger
        {"mkdir bin; ln -s ../killed bin/ffmpeg; chmod 777 bin; (PATH=.:$PWD/bin:$PATH t song.flac); s=$?; rm -r bin; exit $s",
         0, true, ""},
        {"(export FFREPORT=file=victim; t song.flac)", 0, true, ""},
    };
    for (const auto &c : cases) {
        const auto result = shell(std::string(kStranger) + kTranscode + c.command);
        EXPECT_EQ(result.status, c.status) << c.command << '\n' << result.err;
        EXPECT_THAT(result.err, HasSubstr(c.error)) << c.command;
        EXPECT_EQ(contentOf("victim"), "root's") << c.command;
        expectLeft(c.made);
    }
}

} // namespace
} // namespace vornak::test
