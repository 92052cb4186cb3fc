// vornak lock, as a program, on a lock that nobody else sees.
#include "include/vornak.h"

#include "tests/support/doc_examples.h"
#include "tests/support/private_mounts_test.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <pty.h>
#include <thread>

namespace vornak::test {
namespace {

constexpr const char *kTool = VORNAK_CLI;

/// The tool at work, with its standard output to read from.
class Running {
public:
    explicit Running(std::vector<std::string> arguments)
    {
        int ends[2];
        if (pipe(ends) != 0) throw std::runtime_error("pipe failed");
        child_ = fork();
        if (child_ < 0) throw std::runtime_error("fork failed"); // kill(-1) would reach everybody
        if (child_ == 0) {
            dup2(ends[1], STDOUT_FILENO);
            close(ends[0]);
            close(ends[1]);
            execute(arguments);
        }
        close(ends[1]);
        out_ = ends[0];
    }
    ~Running() { close(out_); }
    Running(const Running &) = delete;
    Running &operator=(const Running &) = delete;

    static void execute(std::vector<std::string> &arguments)
    {
        std::vector<char *> argv;
        argv.reserve(arguments.size() + 1);
        for (std::string &argument : arguments) argv.push_back(argument.data());
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        _exit(99);
    }

    std::string readLine() const
    {
        std::string line;
        for (char c = 0; read(out_, &c, 1) == 1 && c != '\n';) line += c;
        return line;
    }

    void send(int signal) const { kill(child_, signal); }

    /// Waits until the tool has nothing to do.
    void awaitSleep() const
    {
        const std::string file = "/proc/" + std::to_string(child_) + "/stat";
        for (int i = 0; i < 500; ++i) {
            std::string state;
            std::ifstream(file) >> state >> state >> state;
            if (state == "S") break;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50)); // in the wait, not before it
    }

    int wait() const
    {
        int status = 0;
        waitpid(child_, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
    }

private:
    pid_t child_ = -1;
    int out_ = -1;
};

class LockCommandTest : public PrivateMountsTest {
protected:
    void SetUp() override
    {
        PrivateMountsTest::SetUp();
        if (IsSkipped()) return;
        shm_ = std::make_unique<ScopedMount>("none", "/dev/shm", "tmpfs");
        ASSERT_TRUE(*shm_) << std::strerror(errno);
    }

    /// Creates the lock with that count.
    static void setCount(int count)
    {
        ASSERT_EQ(Vornak_Mutex_Init(1), 0);
        while (currentCount() > count) ASSERT_EQ(Vornak_Mutex_Lock(), 0);
        while (currentCount() < count) ASSERT_EQ(Vornak_Mutex_Unlock(), 0);
        Vornak_Mutex_Close();
    }
    static int currentCount()
    {
        int count = -1;
        sem_getvalue(vornak_db_mutex, &count);
        return count;
    }
    static int count()
    {
        EXPECT_EQ(Vornak_Mutex_Init(1), 0);
        const int count = currentCount();
        Vornak_Mutex_Close();
        return count;
    }

    static std::vector<std::string> underLock(const std::string &script)
    {
        return {kTool, "lock", "run", "--", "/bin/sh", "-c", script};
    }

    std::unique_ptr<ScopedMount> shm_;
    TempDir dir_;
};

constexpr int kAbsent = -1;

TEST_F(LockCommandTest, StatusAndRepair)
{
    const struct {
        int count;
        const char *state, *json, *repaired;
    } cases[] = {
        {kAbsent, "absent, no process has opened it yet",
         R"("absent","count":null,"owner":null,"openToAll":null)", "was absent, is free"},
        {1, "free", R"("free","count":1,"owner":"root","openToAll":false)", "was free, is free"},
        {0, "held", R"("held","count":0,"owner":"root","openToAll":false)", "was held, is free"},
        {3, "free, but 3 processes may hold it at once: it was released too often",
         R"("free","count":3,"owner":"root","openToAll":false)",
         "was free, is free, but 3 processes may hold it at once: it was released too often"},
    };
    for (const auto &c : cases) {
        sem_unlink("VORNAK_DB_SEM");
        if (c.count != kAbsent) setCount(c.count);
        EXPECT_EQ(run({kTool, "lock", "status"}).out,
                  std::string("VORNAK_DB_SEM: ") + c.state + "\n");

        std::string json = run({kTool, "lock", "status", "--json"}).out;
        std::erase_if(json, [](char ch) { return ch == ' ' || ch == '\n'; });
        EXPECT_EQ(json,
                  std::string(
                      R"({"document":"vornak-lock","version":1,"lock":"VORNAK_DB_SEM","state":)") +
                      c.json + "}");
        EXPECT_EQ(access("/dev/shm/sem.VORNAK_DB_SEM", F_OK) == 0, c.count != kAbsent);

        const ProcessResult repaired = run({kTool, "lock", "repair"});
        EXPECT_EQ(repaired.out, std::string("VORNAK_DB_SEM: ") + c.repaired + "\n");
        EXPECT_EQ(repaired.status, 0);
        EXPECT_EQ(count(), std::max(c.count, 1));
    }
}

TEST_F(LockCommandTest, WhatIsNoLockIsNotUsed)
{
    using namespace std::string_literals;
    const std::string file = "/dev/shm/sem.VORNAK_DB_SEM", size = std::to_string(sizeof(sem_t));
    const std::string words = "printf '\\0\\0\\0\\0\\0\\0\\0\\0\\7\\0\\0\\0' >" + file;
    const std::string damaged = "is empty or damaged: remove it while no server runs";
    const std::string noFile = "is not a file: remove it while no server runs";
    const struct {
        std::string make, why;
    } cases[] = {
        {": >" + file, damaged},
        {"truncate -s $((" + size + " - 1)) " + file, damaged},
        {"truncate -s " + size + " " + file, damaged}, // as if of a single process
        {words + "; truncate -s " + size + " " + file, damaged},
        {"yes | head -c " + size + " | tr 'y\\n' '\\377\\377' >" + file, damaged},
        {"mkdir " + file, noFile},
        {"mkfifo " + file, noFile},
        {"ln -s /etc/passwd " + file, noFile},
    };
    for (const auto &c : cases) {
        run({"sh", "-c", c.make + "; chown -h 65534 " + file});
        for (const char *const action : {"status", "repair", "run -- echo ran"}) {
            const ProcessResult result =
                run({"sh", "-c", kTool + " lock "s + action + " 2>&1; echo $?"});
            EXPECT_EQ(result.out, "vornak: the lock " + file + ", of nobody, " + c.why + "\n2\n")
                << c.make;
        }
        run({"rm", "-r", file});
    }
}

TEST_F(LockCommandTest, SaysWhoseItIs)
{
    setCount(1);
    const char *const file = "/dev/shm/sem.VORNAK_DB_SEM";
    ASSERT_EQ(chown(file, 65534, 0) + chmod(file, 0666), 0);
    const ProcessResult result = run(
        {"sh", "-c",
         std::string("exec 2>&1; ") + kTool + " lock status; " + kTool + " lock run -- echo ran"});
    EXPECT_EQ(result.out, "VORNAK_DB_SEM: free; it belongs to nobody, and any user can take it\n"
                          "vornak: VORNAK_DB_SEM: it belongs to nobody, and any user can take it\n"
                          "ran\n");
}

TEST_F(LockCommandTest, CommandRunsWithTheLockHeld)
{
    const auto examples = readDocExamples(VORNAK_SOURCE_DIR "/tests/tools/transcripts/lock.md");
    EXPECT_EQ(examples.size(), 9U);
    const std::string tools = std::filesystem::path(kTool).parent_path();
    expectDocExamples(examples,
                      "cd " + dir_.path().string() + "; export PATH=" + tools + ":\"$PATH\"",
                      kShowStatus);
}

TEST_F(LockCommandTest, SignalsGoOnToTheCommand)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGUSR1, SIGALRM, SIGPIPE}) {
        const Running dying(underLock("echo ready; exec sleep 60"));
        EXPECT_EQ(dying.readLine(), "ready");
        dying.send(signal);
        EXPECT_EQ(dying.wait(), 128 + signal);
        EXPECT_EQ(count(), 1);
    }
    // A command that takes its time keeps the lock until it is done.
    const Running tidy(underLock("trap 'echo tidying; sleep 0.1; " + std::string(kTool) +
                                 " lock status; exit 9' TERM; echo ready; "
                                 "while :; do sleep 0.01; done"));
    EXPECT_EQ(tidy.readLine(), "ready");
    tidy.send(SIGTERM);
    EXPECT_EQ(tidy.readLine(), "tidying");
    EXPECT_EQ(tidy.readLine(), "VORNAK_DB_SEM: held");
    EXPECT_EQ(tidy.wait(), 9);
    EXPECT_EQ(count(), 1);
}

/// What the tool returns when Ctrl-C is typed after its command has said "ready".
int statusAfterCtrlC(std::vector<std::string> arguments)
{
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child < 0) return -1;
    if (child == 0) Running::execute(arguments);
    std::string shown;
    for (char c = 0; shown.find("ready") == std::string::npos && read(terminal, &c, 1) == 1;)
        shown += c;
    EXPECT_EQ(write(terminal, "\x03", 1), 1);
    int status = 0;
    waitpid(child, &status, 0);
    close(terminal);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(LockCommandTest, CtrlCComesFromTheTerminalAlone)
{
    const std::string script = "trap 'exit 11' INT; echo ready; "
                               "for i in 1 2 3 4 5 6 7 8 9 10; do sleep 0.05; done; exit 12";
    EXPECT_EQ(statusAfterCtrlC(underLock(script)), 11);
    EXPECT_EQ(count(), 1);
    // In a session of its own the command is out of the terminal's reach, and the tool, which is
    // not, must not send it what others would then get twice.
    EXPECT_EQ(statusAfterCtrlC({kTool, "lock", "run", "--", "setsid", "/bin/sh", "-c", script}),
              12);
    EXPECT_EQ(count(), 1);
}

TEST_F(LockCommandTest, SignalsEndTheWait)
{
    setCount(0);
    const Running patient(underLock("echo ran"));
    patient.awaitSleep();
    EXPECT_EQ(run({kTool, "lock", "repair"}).status, 0);
    EXPECT_EQ(patient.readLine(), "ran");
    EXPECT_EQ(patient.wait(), 0);
    EXPECT_EQ(count(), 1);

    setCount(0);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGALRM, SIGUSR1}) {
        const Running impatient(underLock("echo ran"));
        impatient.awaitSleep();
        impatient.send(signal);
        EXPECT_EQ(impatient.readLine(), "");
        EXPECT_EQ(impatient.wait(), 128 + signal);
        EXPECT_EQ(count(), 0); // still its holder's
    }
}

} // namespace
} // namespace vornak::test
