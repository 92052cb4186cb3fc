// The lock between real processes, with a /dev/shm that nobody else sees.
#include "include/vornak.h"

#include "tests/support/alarms.h"
#include "tests/support/leftovers.h"
#include "tests/support/private_mounts_test.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <functional>
#include <memory>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vornak::test {
namespace {

class DatabaseLockTest : public PrivateMountsTest {
protected:
    void SetUp() override
    {
        PrivateMountsTest::SetUp();
        if (IsSkipped()) return;
        shm_ = std::make_unique<ScopedMount>("none", "/dev/shm", "tmpfs");
        ASSERT_TRUE(*shm_) << std::strerror(errno);
        vornak_db_mutex = nullptr;
        before_ = countLeftovers();
    }
    void TearDown() override
    {
        if (!shm_) return;
        if (vornak_db_mutex) sem_close(vornak_db_mutex);
        EXPECT_EQ(countLeftovers(), before_);
    }

    static int count()
    {
        int value = -1;
        sem_getvalue(vornak_db_mutex, &value);
        return value;
    }

    std::unique_ptr<ScopedMount> shm_;
    Leftovers before_;
};

pid_t startProcess(const std::function<void()> &work)
{
    const pid_t child = fork();
    if (child != 0) return child;
    work();
    _exit(0);
}

int endOf(pid_t process)
{
    int status = -1;
    waitpid(process, &status, 0);
    return status;
}

TEST_F(DatabaseLockTest, OtherModesDoNothing)
{
    sem_t own{};
    vornak_db_mutex = &own;
    for (const int mode : {2, -1, 256, INT_MAX, INT_MIN}) EXPECT_EQ(Vornak_Mutex_Init(mode), 1);
    EXPECT_EQ(vornak_db_mutex, &own);
    vornak_db_mutex = nullptr;
    EXPECT_NE(access("/dev/shm/sem.VORNAK_DB_SEM", F_OK), 0);
}

TEST_F(DatabaseLockTest, CreatedFreeWithTheHostsUmask)
{
    const struct {
        mode_t umask, permissions;
    } cases[] = {{0, 0777}, {022, 0755}, {077, 0700}};
    for (const auto &c : cases) {
        const mode_t saved = umask(c.umask);
        EXPECT_EQ(Vornak_Mutex_Init(1), 0);
        umask(saved);
        struct stat status {};
        ASSERT_EQ(stat("/dev/shm/sem.VORNAK_DB_SEM", &status), 0);
        EXPECT_EQ(status.st_mode & 07777U, c.permissions);
        EXPECT_EQ(count(), 1);
        EXPECT_EQ(Vornak_Mutex_Close(), 0);
        sem_unlink("VORNAK_DB_SEM");
    }
    vornak_db_mutex = nullptr;
}

TEST_F(DatabaseLockTest, InitKeepsOrRepairsTheCount)
{
    const struct {
        int locks, unlocks, mode, expected;
    } cases[] = {
        {0, 0, 0, 1}, {0, 0, 1, 1}, // free
        {1, 0, 0, 1}, {1, 0, 1, 0}, // held
        {0, 2, 0, 3}, {0, 2, 1, 3}, // unlocked too often: kept
    };
    for (const auto &c : cases) {
        ASSERT_EQ(Vornak_Mutex_Init(1), 0);
        for (int i = 0; i < c.locks; ++i) EXPECT_EQ(Vornak_Mutex_Lock(), 0);
        for (int i = 0; i < c.unlocks; ++i) EXPECT_EQ(Vornak_Mutex_Unlock(), 0);
        EXPECT_EQ(Vornak_Mutex_Close(), 0); // the count outlives the handle
        EXPECT_EQ(Vornak_Mutex_Init(c.mode), 0);
        EXPECT_EQ(count(), c.expected) << c.locks << c.unlocks << c.mode;
        EXPECT_EQ(Vornak_Mutex_Close(), 0);
        sem_unlink("VORNAK_DB_SEM");
    }
    vornak_db_mutex = nullptr;
}

TEST_F(DatabaseLockTest, FailedOpenLeavesNoHandle)
{
    ASSERT_EQ(mount("none", "/dev/shm", nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    sem_t own{};
    for (const int mode : {0, 1}) {
        vornak_db_mutex = &own;
        EXPECT_EQ(Vornak_Mutex_Init(mode), 1);
        EXPECT_EQ(vornak_db_mutex, nullptr);
    }
    for (int (*const call)() : {Vornak_Mutex_Lock, Vornak_Mutex_Unlock, Vornak_Mutex_Close}) {
        errno = 0;
        EXPECT_EQ(call(), -1);
        EXPECT_EQ(errno, EINVAL);
    }
}

TEST_F(DatabaseLockTest, ASignalEndsTheWait)
{
    ASSERT_EQ(Vornak_Mutex_Init(0), 0);
    ASSERT_EQ(Vornak_Mutex_Lock(), 0);
    const Alarms alarms(20);
    EXPECT_EQ(Vornak_Mutex_Lock(), -1);
    EXPECT_EQ(errno, EINTR);
    EXPECT_EQ(count(), 0);
}

TEST_F(DatabaseLockTest, ExcludesOtherProcesses)
{
    auto *const shared = static_cast<std::atomic<int> *>(mmap(nullptr, sizeof(std::atomic<int>),
                                                              PROT_READ | PROT_WRITE,
                                                              MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    std::atomic<int> &inside = *shared;
    pid_t processes[4];
    for (pid_t &process : processes)
        process = startProcess([&inside] {
            if (Vornak_Mutex_Init(1) != 0) _exit(1);
            for (int i = 0; i < 500; ++i) {
                if (Vornak_Mutex_Lock() != 0) _exit(2);
                if (++inside != 1) _exit(3);
                sched_yield();
                --inside;
                if (Vornak_Mutex_Unlock() != 0) _exit(4);
            }
            if (Vornak_Mutex_Close() != 0) _exit(5);
        });
    for (const pid_t process : processes) EXPECT_EQ(endOf(process), 0);
    munmap(shared, sizeof *shared);
    ASSERT_EQ(Vornak_Mutex_Init(1), 0);
    EXPECT_EQ(count(), 1);
}

TEST_F(DatabaseLockTest, LockOfAKilledProcessIsRepaired)
{
    const pid_t holder = startProcess([] {
        if (Vornak_Mutex_Init(1) != 0 || Vornak_Mutex_Lock() != 0) _exit(1);
        raise(SIGKILL);
    });
    const int status = endOf(holder);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_EQ(Vornak_Mutex_Init(1), 0);
    EXPECT_EQ(count(), 0);

    // Somebody waits for the dead holder's lock until it is repaired.
    const pid_t waiter = startProcess([] {
        if (Vornak_Mutex_Init(1) != 0 || Vornak_Mutex_Lock() != 0) _exit(1);
        if (Vornak_Mutex_Unlock() != 0) _exit(1);
    });
    EXPECT_EQ(Vornak_Mutex_Close(), 0);
    EXPECT_EQ(Vornak_Mutex_Init(0), 0);
    EXPECT_EQ(endOf(waiter), 0);
    EXPECT_EQ(count(), 1);
}

} // namespace
} // namespace vornak::test
