// Real images on real loop devices, in mounts and a /tmp that are this process's own.
#include "include/vornak.h"
#include "tests/support/disc_images.h"
#include "tests/support/leak_check.h"
#include "tests/support/private_tmp.h"
#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <sys/statvfs.h>
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
        fs::current_path("/tmp");
    }
    void TearDown() override
    {
        if (IsSkipped()) return;
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

TEST_F(MountIso, mountsImagesAndLeavesNothing)
{
    char mountPoint[VORNAK_MOUNT_POINT_SIZE];
    ASSERT_EQ(mountIso("/tmp/", "dvd.iso", mountPoint, sizeof mountPoint), 0);
    EXPECT_TRUE(isMounted(mountPoint));
    DVD_FORMAT_ST dvd;
    EXPECT_EQ(parseDVDFormat((mountPoint + std::string("VIDEO_TS/")).c_str(), "VIDEO_TS.IFO", &dvd),
              0);
    EXPECT_EQ(dvd.titleNo, 2);
    EXPECT_EQ(umountIso(mountPoint), 0);
    EXPECT_FALSE(fs::exists(mountPoint));

    const std::string place = "/tmp/it's a $(touch run)\n\xff";
    fs::copy("/tmp/bluray.iso", place + ".iso");
    EXPECT_EQ(mountIsoByPath("", (place + ".iso").c_str(), place.c_str()), 0);
    EXPECT_TRUE(isMounted(place) && fs::exists(place + "/BDMV/index.bdmv"));
    EXPECT_EQ(umountIso(place.c_str()), 0);
    EXPECT_EQ(run({"losetup", "-j", place + ".iso"}).out, "");
    EXPECT_FALSE(fs::exists(place) || fs::exists("run"));

    std::ofstream("/tmp/no.iso") << std::string(100000, 'x');
    EXPECT_EQ(mountIso("/tmp/", "no.iso", mountPoint, sizeof mountPoint), 1);
    EXPECT_EQ(umountIso(mountPoint), 1); // not mounted: the directory stays
    EXPECT_TRUE(fs::remove(mountPoint));
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

    static std::string inRoot(const char *path) { return std::string("/tmp/root") + path; }

private:
    static inline std::optional<OtherRoot> s_root;
};

TEST_F(MountIsoInRoot, mountsInsideAndStaysOutside)
{
    const fs::path before = fs::current_path();
    char mountPoint[VORNAK_MOUNT_POINT_SIZE];
    ASSERT_EQ(
        chrootMountIso("/images/", "a 'film'.iso", mountPoint, sizeof mountPoint, "/tmp/root"), 0);
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

} // namespace
} // namespace vornak::test
