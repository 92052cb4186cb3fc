// Real images on real loop devices, in mounts and a /tmp that are this process's own.
#include "include/vornak.h"
#include "tests/disc/host_functions.h"
#include "tests/support/disc_images.h"
#include "tests/support/leak_check.h"
#include "tests/support/private_tmp.h"
#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <csignal>
#include <sys/statvfs.h>
#include <sys/time.h>
#include <thread>
#include <vector>

namespace vornak::test {
namespace {

namespace fs = std::filesystem;

class MountIso : public LeakCheck {
protected:
    static void SetUpTestSuite()
    {
        s_tmp.emplace();
        s_whyNot = s_tmp->whyNot().empty() ? makeDiscImages("/tmp/") : s_tmp->whyNot();
        LeakCheck::SetUpTestSuite();
    }
    static void TearDownTestSuite()
    {
        LeakCheck::TearDownTestSuite();
        s_tmp.reset();
    }
    void SetUp() override
    {
        if (!s_whyNot.empty()) GTEST_SKIP() << s_whyNot;
        hostFunctions() = {};
        fs::current_path("/tmp");
    }
    void TearDown() override
    {
        hostFunctions() = {};
        if (!s_whyNot.empty()) return;
        EXPECT_EQ(mountPoints(), std::vector<std::string>{});
    }

    static std::vector<std::string> mountPoints()
    {
        std::vector<std::string> found;
        for (const auto &entry : fs::directory_iterator("/tmp"))
            if (entry.path().filename().string().starts_with("Trans_mount_"))
                found.push_back(entry.path());
        return found;
    }

    static inline std::string s_whyNot;

private:
    static inline std::optional<PrivateTmp> s_tmp;
};

bool isMounted(const std::string &path)
{
    struct statvfs info;
    return statvfs(path.c_str(), &info) == 0 && (info.f_flag & ST_RDONLY) != 0;
}

TEST_F(MountIso, mountsImagesOfAnyNameAndLeavesNothing)
{
    for (const std::string name : {"plain.iso", "it's a \"film\" (1).iso", "$(touch run).iso",
                                   "`touch run`", "two\nlines;touch run;.iso", "-o remount,-x.iso",
                                   "*?[a]{b,c}~!#\\.iso", "film\xff\xfe.iso"}) {
        const TempDir images;
        const std::string folder = images / "a $HOME 'folder'/", image = folder + name;
        fs::create_directory(folder);
        fs::copy(name == "plain.iso" ? "/tmp/bluray.iso" : "/tmp/dvd.iso", image);
        char mountPoint[VORNAK_MOUNT_POINT_SIZE];
        SCOPED_TRACE(name);
        ASSERT_EQ(mountIso(folder.c_str(), name.c_str(), mountPoint, sizeof mountPoint), 0);
        EXPECT_TRUE(isMounted(mountPoint));
        char dir[1024], file[1024];
        EXPECT_EQ(parseMountedFolder_v2(mountPoint, dir, sizeof dir, file, sizeof file),
                  name == "plain.iso" ? VORNAK_DISC_BD : VORNAK_DISC_DVD);
        EXPECT_EQ(umountIso(mountPoint), 0);
        EXPECT_FALSE(fs::exists(mountPoint));
        EXPECT_EQ(run({"losetup", "-j", image}).out, "");
    }
    EXPECT_FALSE(fs::exists("run"));
}

TEST_F(MountIso, mountsOnAPlaceOfTheCallersChoice)
{
    const TempDir places;
    for (const std::string name : {"plain", "a b", "$(touch run)", "x;touch run", "it's\n-x*"}) {
        const std::string place = places / name;
        EXPECT_EQ(mountIsoByPath("/tmp/", "dvd.iso", place.c_str()), 0) << name;
        EXPECT_TRUE(isMounted(place)) << name;
        EXPECT_EQ(umountIso(place.c_str()), 0) << name;
        EXPECT_FALSE(fs::exists(place)) << name;
    }
    EXPECT_FALSE(fs::exists("run"));
}

TEST_F(MountIso, findsTheTitleInsideAnImage)
{
    char mountPoint[VORNAK_MOUNT_POINT_SIZE];
    ASSERT_EQ(mountIso("/tmp/", "dvd.iso", mountPoint, sizeof mountPoint), 0);
    DVD_FORMAT_ST dvd;
    EXPECT_EQ(parseDVDFormat((mountPoint + std::string("VIDEO_TS/")).c_str(), "VIDEO_TS.IFO", &dvd),
              0);
    EXPECT_EQ(dvd.titleNo, 2);
    EXPECT_EQ(dvd.totalSize, 4);
    EXPECT_EQ(umountIso(mountPoint), 0);
    ASSERT_EQ(mountIso("/tmp/", "bluray.iso", mountPoint, sizeof mountPoint), 0);
    BD_FORMAT_ST disc;
    EXPECT_EQ(parseBDFormat((mountPoint + std::string("BDMV/")).c_str(), "index.bdmv", &disc), 0);
    EXPECT_STREQ(disc.fileName, "00001.m2ts");
    EXPECT_EQ(umountIso(mountPoint), 0);
}

TEST_F(MountIso, failsOnWhatIsNoImage)
{
    std::ofstream("/tmp/no.iso") << std::string(100000, 'x');
    char mountPoint[VORNAK_MOUNT_POINT_SIZE];
    for (const char *name : {"no.iso", "missing.iso", ""}) {
        EXPECT_EQ(mountIso("/tmp/", name, mountPoint, sizeof mountPoint), 1) << name;
        EXPECT_EQ(umountIso(mountPoint), 1); // not mounted: the directory stays
        EXPECT_TRUE(fs::remove(mountPoint));
    }
    EXPECT_EQ(umountIso("/tmp/missing"), 1);
}

TEST_F(MountIso, sweepsUpWhatIsMounted)
{
    EXPECT_EQ(umountAllIso(), 1); // nothing there
    char one[VORNAK_MOUNT_POINT_SIZE], two[VORNAK_MOUNT_POINT_SIZE];
    ASSERT_EQ(mountIso("/tmp/", "dvd.iso", one, sizeof one), 0);
    ASSERT_EQ(mountIso("/tmp/", "bluray.iso", two, sizeof two), 0);
    EXPECT_EQ(umountAllIso(), 0);
    EXPECT_EQ(mountPoints().size(), 0U);

    // A directory that isn't mounted fails the sweep before anything is removed.
    ASSERT_EQ(mountIso("/tmp/", "dvd.iso", one, sizeof one), 0);
    fs::create_directory("/tmp/Trans_mount_x");
    EXPECT_EQ(umountAllIso(), 1);
    EXPECT_EQ(mountPoints().size(), 2U);
    EXPECT_FALSE(isMounted(one));
    for (const std::string &left : mountPoints()) fs::remove(left);
}

TEST_F(MountIso, givesEachOfManyThreadsItsOwn)
{
    std::vector<int> failures(3);
    std::vector<std::thread> threads;
    threads.reserve(failures.size());
    for (int &failed : failures)
        threads.emplace_back([&failed] {
            for (int i = 0; i < 4; ++i) {
                char mountPoint[VORNAK_MOUNT_POINT_SIZE];
                failed += mountIso("/tmp/", "dvd.iso", mountPoint, sizeof mountPoint);
                failed += !isMounted(mountPoint);
                failed += umountIso(mountPoint);
            }
        });
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(failures, std::vector<int>(3));
}

class MountIsoInRoot : public MountIso {
protected:
    static void SetUpTestSuite()
    {
        MountIso::SetUpTestSuite();
        if (!s_whyNot.empty()) return;
        s_root.emplace();
        s_whyNot = s_root->whyNot();
    }
    static void TearDownTestSuite()
    {
        s_root.reset();
        MountIso::TearDownTestSuite();
    }
    void SetUp() override
    {
        MountIso::SetUp();
        if (!IsSkipped()) fs::current_path("/tmp/root/images"); // or the shell complains
    }

    static int mountInRoot(char (&mountPoint)[VORNAK_MOUNT_POINT_SIZE])
    {
        return chrootMountIso("/images/", "a 'film'.iso", mountPoint, sizeof mountPoint,
                              "/tmp/root");
    }
    static std::string inRoot(const char *path) { return std::string("/tmp/root") + path; }

private:
    static inline std::optional<OtherRoot> s_root;
};

TEST_F(MountIsoInRoot, mountsInsideAndStaysOutside)
{
    const fs::path before = fs::current_path();
    char mountPoint[VORNAK_MOUNT_POINT_SIZE];
    ASSERT_EQ(mountInRoot(mountPoint), 0);
    EXPECT_TRUE(fs::exists(inRoot(mountPoint) + "VIDEO_TS/VIDEO_TS.IFO"));
    EXPECT_FALSE(fs::exists(mountPoint));
    EXPECT_TRUE(fs::exists("/tmp/dvd.iso")); // this process's root is what it was
    EXPECT_EQ(fs::current_path(), before);
    EXPECT_EQ(chrootUmountIso(mountPoint, "/tmp/root"), 0);
    EXPECT_FALSE(fs::exists(inRoot(mountPoint)));

    EXPECT_EQ(chrootMountIsoByPath("/images/", "a 'film'.iso", "/images/$(id)", "/tmp/root"), 0);
    EXPECT_EQ(chrootUmountIso("/images/$(id)", "/tmp/root"), 0);
}

TEST_F(MountIsoInRoot, failsWithOneWhateverFails)
{
    char mountPoint[VORNAK_MOUNT_POINT_SIZE];
    EXPECT_EQ(chrootMountIsoByPath("/images/", "none.iso", "/tmp/x", "/tmp/root"), 1);
    EXPECT_EQ(chrootMountIsoByPath("/images/", "a 'film'.iso", "/tmp/x", "/tmp/missing"), 1);
    EXPECT_EQ(chrootMountIso("/images/", "none.iso", mountPoint, sizeof mountPoint, "/tmp/root"),
              1);
    EXPECT_TRUE(fs::exists(inRoot(mountPoint)));
    EXPECT_EQ(chrootUmountIso(mountPoint, "/tmp/root"), 1);
    EXPECT_TRUE(fs::exists(inRoot(mountPoint)));
    EXPECT_EQ(chrootMountIso("/images/", "a 'film'.iso", mountPoint, 5, "/tmp/root"), 1);
    EXPECT_STREQ(mountPoint, "");
    EXPECT_EQ(chrootMountIso("/images/", "x", mountPoint, sizeof mountPoint, nullptr), 1);
    EXPECT_STRNE(mountPoint, "");
}

TEST_F(MountIsoInRoot, takesAChildEndedByASignalForAFailure)
{
    hostFunctions().onConversion = [] { raise(SIGKILL); };
    EXPECT_EQ(chrootUmountIso("/images", "/tmp/root"), 1);
}

TEST_F(MountIsoInRoot, waitsOnWhenASignalInterrupts)
{
    static volatile std::sig_atomic_t s_alarms;
    s_alarms = 0;
    struct sigaction action {
    }, before{};
    action.sa_handler = [](int) { s_alarms = s_alarms + 1; }; // without SA_RESTART
    sigaction(SIGALRM, &action, &before);
    hostFunctions().onConversion = [] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    };
    char mountPoint[VORNAK_MOUNT_POINT_SIZE];
    const itimerval often{{0, 10000}, {0, 10000}}, never{};
    setitimer(ITIMER_REAL, &often, nullptr);
    const int mounted = mountInRoot(mountPoint),
              unmounted = chrootUmountIso(mountPoint, "/tmp/root");
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &before, nullptr);
    EXPECT_EQ(mounted, 0);
    EXPECT_EQ(unmounted, 0);
    EXPECT_GT(s_alarms, 2);
}

TEST_F(MountIsoInRoot, takesAFailedWaitForAFailure)
{
    std::signal(SIGCHLD, SIG_IGN); // ended children vanish, so the wait finds none
    hostFunctions().onConversion = [] { std::signal(SIGCHLD, SIG_DFL); };
    char mountPoint[VORNAK_MOUNT_POINT_SIZE];
    EXPECT_EQ(mountInRoot(mountPoint), 1);
    std::signal(SIGCHLD, SIG_DFL);
    EXPECT_TRUE(isMounted(inRoot(mountPoint))); // the child itself had done its work
    EXPECT_EQ(chrootUmountIso(mountPoint, "/tmp/root"), 0);
}

} // namespace
} // namespace vornak::test
