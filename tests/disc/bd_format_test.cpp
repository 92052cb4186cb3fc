#include "tests/disc/disc_folder.h"

#include <dirent.h>
#include <memory>
#include <sys/stat.h>

namespace vornak::test {
namespace {

namespace fs = std::filesystem;

class BdFormat : public LeakCheck {};

BD_FORMAT_ST expectedRecord(const std::string &folder, const std::string &name, std::int64_t size)
{
    BD_FORMAT_ST record;
    std::memset(&record, 0, sizeof record);
    folder.copy(record.folder, 1023);
    name.copy(record.fileName, 1023);
    record.fileSize = size;
    return record;
}

/// Expects a stream file, or with a size of 0 a failure that leaves the record cleared.
void expectStream(const std::string &bdmv, const std::string &folder, const std::string &name,
                  std::int64_t size)
{
    BD_FORMAT_ST info;
    fill(info);
    EXPECT_EQ(parseBDFormat(bdmv.c_str(), "index.bdmv", &info), size > 0 ? 0 : 1);
    EXPECT_TRUE(
        sameBytes(info, size > 0 ? expectedRecord(folder, name, size) : expectedRecord("", "", 0)))
        << bdmv << " gives " << info.folder << info.fileName << ", " << info.fileSize << " bytes";
}

/// Of two names, the one that a directory gives first.
std::string firstOf(const std::string &folder, const std::string &one, const std::string &other)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(opendir(folder.c_str()), closedir);
    while (const dirent *entry = readdir(directory.get()))
        if (entry->d_name == one || entry->d_name == other) return entry->d_name;
    return "";
}

TEST_F(BdFormat, takesTheLargestStream)
{
    const struct {
        std::int64_t size;
        const char *folder, *name;
        std::vector<DiscFile> files;
    } cases[] = {
        {5, "STREAM/", "2.m2ts", {{"STREAM/long name.m2ts", 4}, {"STREAM/2.m2ts", 5}}},
        {3, "STREAM/", "1.m2ts", {{"STREAM/1.m2ts", 3}, {"STREAM/2.m2ts", 2}}},
        {5 * kGiga, "STREAM/", "1.m2ts", {{"STREAM/1.m2ts", 5 * kGiga}, {"STREAM/2.m2ts", kGiga}}},
        {1, "stream/", "A.M2TS", {{"stream/A.M2TS", 1}}},
        {1, "StReAm/", "-'$(x)\n.m2Ts", {{"StReAm/-'$(x)\n.m2Ts", 1}}},
        {1, "STREAM/", ".m2ts", {{"STREAM/.m2ts", 1}}},
        {1, "STREAM/", "1.m2ts", {{"STREAM/1.m2ts", 1}, {"stream", 9}, {"Stream", 9}}},
        {0, "", "", {{"STREAM/m2ts", 9}, {"STREAM/1.m2ts.bak", 9}, {"STREAM/1m2ts", 9}}},
        {0, "", "", {{"STREAM/1.m2ts", 0}, {"STREAM/2.m2ts", 0}}},
        {0, "", "", {{"STREAM/SSIF/1.m2ts", 9}}},
        {0, "", "", {{"STREAM", 9}}},
        {0, "", "", {{"STREAMS/1.m2ts", 9}, {"1.m2ts", 9}}},
    };
    for (const auto &c : cases) {
        const TempDir temp;
        temp.write("index.bdmv", "");
        for (const DiscFile &file : c.files) writeSparse(temp, file.name, file.size);
        expectStream(temp / "", temp / c.folder, c.name, c.size);
    }
}

TEST_F(BdFormat, decidesTiesByTheOrderOfTheDirectory)
{
    const TempDir temp;
    temp.write("index.bdmv", "");
    writeSparse(temp, "STREAM/1.m2ts", 7);
    writeSparse(temp, "STREAM/2.m2ts", 7);
    const std::string first = firstOf(temp / "STREAM", "1.m2ts", "2.m2ts");
    expectStream(temp / "", temp / "STREAM/", first, 7);

    writeSparse(temp, "stream/3.m2ts", 1);
    const bool lowerIsLast = firstOf(temp / "", "STREAM", "stream") == "STREAM";
    expectStream(temp / "", temp / (lowerIsLast ? "stream/" : "STREAM/"),
                 lowerIsLast ? "3.m2ts" : first, lowerIsLast ? 1 : 7);
}

TEST_F(BdFormat, countsWhatHasAStreamsName)
{
    const TempDir temp;
    temp.write("index.bdmv", "");
    fs::create_directories(temp / "STREAM/1.m2ts/more");
    fs::create_symlink("nowhere", temp / "STREAM/2.m2ts");
    struct stat directory;
    ASSERT_EQ(stat((temp / "STREAM/1.m2ts").c_str(), &directory), 0);
    expectStream(temp / "", temp / "STREAM/", "1.m2ts", directory.st_size);
    writeSparse(temp, "film", 6 * kGiga);
    fs::create_symlink("../film", temp / "STREAM/3.m2ts");
    expectStream(temp / "", temp / "STREAM/", "3.m2ts", 6 * kGiga);
}

TEST_F(BdFormat, leavesOutWhatDoesNotFitItsPath)
{
    const TempDir temp;
    temp.write("index.bdmv", "");
    writeSparse(temp, "STREAM/1.m2ts", 1);
    writeSparse(temp, "STREAM/12.m2ts", 2);
    const std::size_t longest = 1023 - std::strlen("STREAM/1.m2ts");
    const struct {
        std::size_t length;
        const char *name;
        std::int64_t size;
    } cases[] = {{longest - 1, "12.m2ts", 2}, {longest, "1.m2ts", 1}, {longest + 1, "", 0}};
    for (const auto &c : cases) {
        const std::string folder = longFolder(temp, c.length);
        expectStream(folder, folder + "STREAM/", c.name, c.size);
    }
}

TEST_F(BdFormat, needsItsIndexInAnyLetterCase)
{
    const TempDir temp;
    temp.write("Index.BDMV", "");
    writeSparse(temp, "STREAM/1.m2ts", 1);
    const std::string folder = temp / "";
    const struct {
        const char *name;
        int result;
    } cases[] = {
        {"Index.BDMV", 0}, {"index.bdmv", 1}, {"Index.BDM", 1}, {"Index.BDMV~", 1}, {"", 1}};
    for (const auto &c : cases) {
        BD_FORMAT_ST info;
        fill(info);
        EXPECT_EQ(parseBDFormat(folder.c_str(), c.name, &info), c.result) << c.name;
        EXPECT_EQ(sameBytes(info, expectedRecord("", "", 0)), c.result == 1) << c.name;
    }
}

TEST_F(BdFormat, refusesWhatIsNoFolder)
{
    const TempDir temp;
    temp.write("index.bdmv", "");
    temp.write("fileindex.bdmv", "");
    const std::string folder = temp / "", file = temp.write("file", "");
    BD_FORMAT_ST info, asItWas;
    fill(info);
    fill(asItWas);
    EXPECT_EQ(parseBDFormat(nullptr, "index.bdmv", &info), 1);
    EXPECT_EQ(parseBDFormat(folder.c_str(), nullptr, &info), 1);
    EXPECT_TRUE(sameBytes(info, asItWas));
    EXPECT_EQ(parseBDFormat(folder.c_str(), "index.bdmv", nullptr), 1);
    expectStream(file, "", "", 0);
    expectStream(folder, "", "", 0);
}

} // namespace
} // namespace vornak::test
