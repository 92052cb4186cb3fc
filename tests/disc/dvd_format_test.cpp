#include "tests/disc/disc_folder.h"

#include <sys/stat.h>

namespace vornak::test {
namespace {

namespace fs = std::filesystem;

class DvdFormat : public LeakCheck {};

DVD_FORMAT_ST expectedRecord(const std::string &folder, int title, std::int64_t size, int parts)
{
    DVD_FORMAT_ST record;
    std::memset(&record, 0, sizeof record);
    folder.copy(record.folder, 1023);
    std::snprintf(record.fileName, sizeof record.fileName, "VTS_%02d_1.VOB", title);
    record.titleNo = title;
    record.totalSize = size;
    record.partCount = parts;
    return record;
}

void expectTitle(const std::string &folder, int title, std::int64_t size, int parts)
{
    DVD_FORMAT_ST info;
    fill(info);
    EXPECT_EQ(parseDVDFormat(folder.c_str(), "VIDEO_TS.IFO", &info), 0);
    EXPECT_TRUE(sameBytes(info, expectedRecord(folder, title, size, parts)))
        << folder << " gives title " << info.titleNo << ", " << info.partCount << " parts, "
        << info.totalSize << " bytes, " << info.fileName;
}

TEST_F(DvdFormat, takesTheTitleWhosePartsAreLargestTogether)
{
    const struct {
        int title, parts;
        std::int64_t size;
        std::vector<DiscFile> files;
    } cases[] = {
        {0, 0, 0, {}},
        {1, 2, 4 * kGiga, {{"VTS_01_1.VOB", kGiga}, {"VTS_01_2.VOB", 3 * kGiga}}},
        {1, 1, kGiga, {{"VTS_01_0.VOB", kGiga}, {"VTS_01_1.VOB", kGiga}, {"VTS_02_1.VOB", 5}}},
        {4, 2, 9, {{"VTS_07_1.VOB", 9}, {"VTS_04_1.VOB", 4}, {"VTS_04_2.VOB", 5}}},
        {7, 1, 10, {{"VTS_07_1.VOB", 10}, {"VTS_04_1.VOB", 4}, {"VTS_04_2.VOB", 5}}},
        {99, 2, 10 * kGiga, {{"VTS_99_1.VOB", 5 * kGiga}, {"VTS_99_9.VOB", 5 * kGiga}}},
        {3, 1, 1, {{"vts_03_1.vob", 1}}},
        {3, 1, 1, {{"VTS_03_3.VOB", 1}}}, // parts 1 and 2 are missing
        {0, 1, 1, {{"VTS_00_1.VOB", 1}}},
        {3, 3, 3, {{"VTS_03x1.VOB", 1}, {"VTS_03_1 (copy).VOB", 1}, {"VTS_03_12.VOB", 1}}},
        {0, 2, 0, {{"VTS_00_1.VOB", 0}, {"VTS_00_2.VOB", 0}, {"VTS_05_1.VOB", 0}}},
        {0, 0, 0, {{"VTS_05_1.VOB", 0}}},
    };
    for (const auto &c : cases) {
        const TempDir temp;
        temp.write("VIDEO_TS.IFO", "");
        for (const DiscFile &file : c.files) writeSparse(temp, file.name, file.size);
        expectTitle(temp / "", c.title, c.size, c.parts);
    }
    for (const char *noPart : {"VTS_01_0.VOB", "VTS_1_1.VOB", "VTS_1a_1.VOB", "VTS_a1_1.VOB",
                               "VTS_01_a.VOB", "VTS_011.VOB", "VTS_.VOB", "VTS_01_1.VOB~",
                               "VTS_01_1.BUP", "VTS_01_1VOB", "VTS-01_1.VOB", "AVTS_01_1.VOB"}) {
        const TempDir temp;
        temp.write("VIDEO_TS.IFO", "");
        writeSparse(temp, noPart, 1);
        expectTitle(temp / "", 0, 0, 0);
    }
}

TEST_F(DvdFormat, countsWhatHasAPartsName)
{
    const TempDir temp;
    temp.write("VIDEO_TS.IFO", "");
    fs::create_directory(temp / "VTS_01_1.VOB");
    mkfifo((temp / "VTS_01_2.VOB").c_str(), 0600);
    fs::create_symlink("nowhere", temp / "VTS_01_3.VOB"); // stat finds nothing there
    writeSparse(temp, "film", 6 * kGiga);
    fs::create_symlink("film", temp / "VTS_01_4.VOB");
    struct stat directory;
    ASSERT_EQ(stat((temp / "VTS_01_1.VOB").c_str(), &directory), 0);
    expectTitle(temp / "", 1, 6 * kGiga + directory.st_size, 3);
}

TEST_F(DvdFormat, leavesOutPartsWhosePathDoesNotFit)
{
    const TempDir temp;
    temp.write("VIDEO_TS.IFO", "");
    writeSparse(temp, "VTS_01_1.VOB", 10);
    writeSparse(temp, "VTS_01_1x.VOB", 100);
    expectTitle(longFolder(temp, 1010), 1, 110, 2);
    expectTitle(longFolder(temp, 1011), 1, 10, 1);
    DVD_FORMAT_ST info;
    EXPECT_EQ(parseDVDFormat(longFolder(temp, 1012).c_str(), "VIDEO_TS.IFO", &info), 1);
}

TEST_F(DvdFormat, takesTheIndexInAnyLetterCaseIfItExists)
{
    const TempDir temp;
    temp.write("Video_ts.IFO", "");
    const std::string folder = temp / "";
    const struct {
        const char *name;
        int result;
    } cases[] = {{"Video_ts.IFO", 0},
                 {"VIDEO_TS.IFO", 1},
                 {"video_ts.ifo", 1},
                 {"VIDEO_TS.IF", 1},
                 {"Video_ts.IFO ", 1},
                 {"/Video_ts.IFO", 1},
                 {"", 1}};
    for (const auto &c : cases) {
        DVD_FORMAT_ST info, cleared;
        fill(info);
        std::memset(&cleared, 0, sizeof cleared);
        EXPECT_EQ(parseDVDFormat(folder.c_str(), c.name, &info), c.result) << c.name;
        EXPECT_EQ(sameBytes(info, cleared), c.result == 1) << c.name;
    }
}

TEST_F(DvdFormat, refusesWhatIsNoFolder)
{
    const TempDir temp;
    temp.write("VIDEO_TS.IFO", "");
    temp.write("fileVIDEO_TS.IFO", "");
    const std::string folder = temp / "", file = temp.write("file", "");
    DVD_FORMAT_ST info, asItWas, cleared;
    fill(info);
    fill(asItWas);
    EXPECT_EQ(parseDVDFormat(nullptr, "VIDEO_TS.IFO", &info), 1);
    EXPECT_EQ(parseDVDFormat(folder.c_str(), nullptr, &info), 1);
    EXPECT_TRUE(sameBytes(info, asItWas));
    EXPECT_EQ(parseDVDFormat(folder.c_str(), "VIDEO_TS.IFO", nullptr), 1);

    std::memset(&cleared, 0, sizeof cleared);
    const fs::path before = fs::current_path();
    fs::current_path(temp.path());
    EXPECT_EQ(parseDVDFormat("", "VIDEO_TS.IFO", &info), 1);
    fs::current_path(before);
    EXPECT_TRUE(sameBytes(info, cleared));

    fill(info); // the index exists, but nothing can be read at what should be its folder
    file.copy(cleared.folder, 1023);
    EXPECT_EQ(parseDVDFormat(file.c_str(), "VIDEO_TS.IFO", &info), 1);
    EXPECT_TRUE(sameBytes(info, cleared));
}

} // namespace
} // namespace vornak::test
