// Whatever ends the tool, and when, it leaves nothing behind.
#include "tests/support/disc_images.h"
#include "tests/support/leak_check.h"
#include "tests/support/private_tmp.h"
#include "tests/support/process_tree.h"

#include <chrono>
#include <fcntl.h>
#include <random>
#include <sys/prctl.h>
#include <thread>

namespace vornak::test {
namespace {

namespace fs = std::filesystem;
using Seconds = std::chrono::duration<double>;
using Clock = std::chrono::steady_clock;

constexpr int s_Ends[] = {SIGHUP,    SIGINT,  SIGQUIT, SIGUSR1,   SIGUSR2, SIGPIPE,
                          SIGALRM,   SIGTERM, SIGXCPU, SIGSTKFLT, SIGXFSZ, SIGPROF,
                          SIGVTALRM, SIGPOLL, SIGPWR,  SIGKILL};

/// Starts a command, sends all its processes the signal at that moment, and waits for the last of
/// them, which may outlive the first.
void interrupt(const std::vector<std::string> &command, int signal, Seconds moment)
{
    std::vector<char *> argv;
    for (const std::string &word : command) argv.push_back(const_cast<char *>(word.c_str()));
    argv.push_back(nullptr);
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    const pid_t tool = fork();
    if (tool == 0) {
        for (const int out : {STDOUT_FILENO, STDERR_FILENO})
            dup2(open("/tmp/printed", O_WRONLY | O_CREAT | O_CLOEXEC, 0600), out);
        execv(argv[0], argv.data());
        _exit(127);
    }
    std::this_thread::sleep_for(moment);
    if (signal != 0) sendToAll(tool, signal);
    while (wait(nullptr) > 0) {}
}

/// All that there is where something could be left. A loop device goes a moment after its mount.
std::string traces()
{
    constexpr char kList[] = "for i in $(seq 40); do losetup -j /tmp/dvd.iso | grep . || break; "
                             "sleep 0.05; done; find /tmp /dev/shm; "
                             "cut -d' ' -f5 /proc/self/mountinfo";
    return run({"sh", "-c", kList}).out;
}

class SignalMoments : public LeakCheck {};

TEST_F(SignalMoments, LeaveNothing)
{
    const std::string profile = VORNAK_SOURCE_DIR "/examples/profiles/living-room-tv.xml";
    const PrivateTmp tmp(fs::path(VORNAK_CLI).parent_path());
    if (!tmp.whyNot().empty()) GTEST_SKIP() << tmp.whyNot();
    fs::copy(profile, "/tmp/tv.xml");
    const std::string whyNot = makeDiscImages("/tmp/");
    if (!whyNot.empty()) GTEST_SKIP() << whyNot;
    run({"sh", "-c",
         "mkdir media; ffmpeg -v error -f lavfi -i testsrc=d=1 media/1.mkv; "
         "for i in 2 3 4 5 6 7 8 9; do cp media/1.mkv media/$i.mkv; done"});

    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 engine(seed);
    const std::vector<std::string> commands[] = {
        {VORNAK_CLI, "disc", "/tmp/dvd.iso"},
        {VORNAK_CLI, "decide", "--profile", "/tmp/tv.xml", "--json", "/tmp/media"},
    };
    for (const auto &command : commands) {
        const auto start = Clock::now();
        interrupt(command, 0, {}); // nothing does
        std::uniform_real_distribution<double> moment(0, Seconds(Clock::now() - start).count());
        const std::string before = traces();
        const auto expectNothing = [&](int signal) {
            const Seconds at(moment(engine));
            interrupt(command, signal, at);
            if (signal == SIGKILL) run({VORNAK_CLI, "disc", "unmount-all"});
            EXPECT_EQ(traces(), before)
                << command[1] << ", signal " << signal << " after " << at.count() << " s";
        };
        for (const int signal : s_Ends)
            for (int i = 0; i < 3; ++i) expectNothing(signal);
        for (int signal = SIGRTMIN; signal <= SIGRTMAX; ++signal) expectNothing(signal);
    }
}

} // namespace
} // namespace vornak::test
