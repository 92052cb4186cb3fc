#include "base/fixed_text.h"
#include "include/vornak.h"
#include "tests/support/capture.h"
#include "tests/support/leak_check.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <vector>

namespace vornak::test {
namespace {

namespace fs = std::filesystem;

/// A list with a record behind it, in memory that tells which bytes were written.
struct List {
    static constexpr unsigned char kFill = 0xA5;
    std::array<VIDEO_SUBTITLE_ST, VORNAK_SUBTITLE_LIST_SIZE + 1> records;

    List() { std::memset(records.data(), kFill, sizeof records); }

    /// Whether no byte was written from `from` on.
    bool untouchedFrom(const void *from) const
    {
        const auto *byte = static_cast<const unsigned char *>(from);
        const auto *end = reinterpret_cast<const unsigned char *>(&records + 1);
        while (byte != end && *byte == kFill) ++byte;
        return byte == end;
    }
    bool untouched() const { return untouchedFrom(&records); }

    std::size_t size() const
    {
        std::size_t count = 0;
        while (count < VORNAK_SUBTITLE_LIST_SIZE && records[count].type != VORNAK_SUBTITLE_END)
            ++count;
        return count;
    }
};

class FindVideoSubtitles : public LeakCheck {};

/// The names in a folder that begin with `start`, in the order of the directory.
std::vector<std::string> namesIn(const std::string &folder, const std::string &start)
{
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(opendir(folder.c_str()), closedir);
    while (const dirent *entry = readdir(directory.get()))
        if (std::string(entry->d_name).starts_with(start)) names.emplace_back(entry->d_name);
    return names;
}

TEST_F(FindVideoSubtitles, tellsKindAndLanguageByName)
{
    constexpr int kNone = -1, kSrt = VORNAK_SUBTITLE_SRT, kVtt = VORNAK_SUBTITLE_VTT;
    const struct {
        const char *video, *file;
        int type;
        const char *language;
    } cases[] = {
        {"Movie.mkv", "Movie.srt", kSrt, "unkown"},
        {"Movie.mkv", "Movie.SRT", kSrt, "unkown"},
        {"Movie.mkv", "Movie.vTT", kVtt, "unkown"},
        {"Movie.mkv", "movie.srt", kNone, ""},
        {"Movie.mkv", "Movi.srt", kNone, ""},
        {"Movie.mkv", "Movie.en.srt", kSrt, "en"},
        {"Movie.mkv", "Movie_pt-BR.VTT", kVtt, "pt-BR"},
        {"Movie.mkv", "Movie.en.forced.srt", kSrt, "en.forced"},
        {"Movie.mkv", "Movie.en.forced2.srt", kSrt, "en.forced"},
        {"Movie.mkv", "MovieX.srt", kSrt, ""},
        {"Movie.mkv", "MovieXY.srt", kSrt, "Y"},
        {"Movie.mkv", "Movie..srt", kSrt, ""},
        {"Movie.mkv", "Movie.srtx", kSrt, ""},
        {"Movie.mkv", "Movie.de.vtt~", kVtt, "de"},
        {"Movie.mkv", "Movie.sr", kNone, ""},
        {"Movie.mkv", "Movie.en", kNone, ""},
        {"Movie.mkv", "Movie", kNone, ""},
        {"Movie.mkv", "Movie.en.srt.bak", kNone, ""},
        {"a.b.mkv", "a.b.srt", kSrt, "unkown"},
        {"a.b.mkv", "a.b.fr.vtt", kVtt, "fr"},
        {"a.srt2.mkv", "a.srt2", kSrt, ""}, // its last point lies inside the stem
        {"clip", "clip.srt", kSrt, "unkown"},
        {"clip.", "clip.srt", kSrt, "unkown"},
        {".mkv", ".srt", kSrt, "unkown"},
        {"", "xen.srt", kSrt, "en"},
        {"-M ov$(e)'\n.mkv", "-M ov$(e)'\n.en.srt", kSrt, "en"},
    };
    for (const auto &c : cases) {
        const TempDir temp;
        const std::string file = temp.write(c.file, "");
        List list;
        Capture out(STDOUT_FILENO);
        const int result = findVideoSubtitles((temp / "").c_str(), c.video, list.records.data(), 7);
        out.take();
        SCOPED_TRACE(std::string(c.video) + " with " + c.file);
        EXPECT_EQ(result, 0);
        ASSERT_EQ(list.size(), c.type == kNone ? 0U : 1U);
        if (c.type == kNone) continue;
        const VIDEO_SUBTITLE_ST &found = list.records[0];
        EXPECT_EQ(found.type, c.type);
        EXPECT_STREQ(found.fileName, c.file);
        EXPECT_STREQ(found.lang, c.language);
        EXPECT_STREQ(found.ext, c.type == kSrt ? ".srt" : ".vtt");
        EXPECT_STREQ(found.fullPath, file.c_str());
    }
}

TEST_F(FindVideoSubtitles, writesNothingButTextsAndTheEnd)
{
    const TempDir temp;
    const std::string file = temp.write("Movie.en.srt", "");
    List list, expected;
    expected.records[0].type = VORNAK_SUBTITLE_SRT;
    copyCut(expected.records[0].fileName, sizeof expected.records[0].fileName, "Movie.en.srt");
    copyCut(expected.records[0].lang, sizeof expected.records[0].lang, "en");
    copyCut(expected.records[0].ext, sizeof expected.records[0].ext, ".srt");
    copyCut(expected.records[0].fullPath, sizeof expected.records[0].fullPath, file.c_str());
    expected.records[1].type = VORNAK_SUBTITLE_END;
    expected.records[1].fullPath[0] = '\0';
    const Capture out(STDOUT_FILENO);
    ASSERT_EQ(findVideoSubtitles((temp / "").c_str(), "Movie.mp4", list.records.data(), 0), 0);
    EXPECT_EQ(std::memcmp(&list.records, &expected.records, sizeof list.records), 0);
}

TEST_F(FindVideoSubtitles, takesTheFirstNineOfTheDirectory)
{
    const TempDir temp;
    for (const int count : {9, 12}) {
        for (int i = 0; i < count; ++i)
            temp.write("M." + std::to_string(i) + (i % 2 ? ".srt" : ".vtt"), "");
        const std::vector<std::string> names = namesIn(temp / "", "M");
        List list;
        Capture out(STDOUT_FILENO);
        ASSERT_EQ(findVideoSubtitles((temp / "").c_str(), "M.mkv", list.records.data(), 0), 0);
        std::string lines;
        ASSERT_EQ(list.size(), 9U);
        for (std::size_t i = 0; i < 9; ++i) {
            EXPECT_EQ(list.records[i].fileName, names[i]);
            lines += "-> " + names[i] + "\n";
        }
        EXPECT_EQ(out.take(), lines); // the folder is not read on
        EXPECT_TRUE(list.untouchedFrom(&list.records[VORNAK_SUBTITLE_LIST_SIZE]));
    }
}

TEST_F(FindVideoSubtitles, namesEachEntryThatBeginsWithTheStem)
{
    const TempDir temp;
    for (const char *name : {"M.mkv", "M.jpg", "Mad.nfo", "N.srt", "m.srt"}) temp.write(name, "");
    fs::create_directory(temp / "M.srt");
    std::string lines;
    for (const std::string &name : namesIn(temp / "", "M")) lines += "-> " + name + "\n";
    List list;
    Capture out(STDOUT_FILENO);
    ASSERT_EQ(findVideoSubtitles((temp / "").c_str(), "M.mkv", list.records.data(), 0), 0);
    EXPECT_EQ(out.take(), lines);
    EXPECT_EQ(list.size(), 1U); // the directory: only its name counts
}

TEST_F(FindVideoSubtitles, walksTheTableOfKinds)
{
    const TempDir temp;
    for (const char *name : {"M.srt", "M.en.ssa", "M+.ssa"}) temp.write(name, "");
    VIDEO_SUBTITLE_ST saved[3];
    std::memcpy(saved, g_support_subtitles, sizeof saved);
    List list, none;
    Capture out(STDOUT_FILENO);
    // Two kinds with one extension: a file that is of both is listed twice.
    g_support_subtitles[0].type = 5;
    copyCut(g_support_subtitles[0].ext, sizeof g_support_subtitles[0].ext, ".ssa");
    copyCut(g_support_subtitles[0].fullPath, sizeof g_support_subtitles[0].fullPath, "+.ssa");
    copyCut(g_support_subtitles[1].ext, sizeof g_support_subtitles[1].ext, ".ssa");
    const int result = findVideoSubtitles((temp / "").c_str(), "M", list.records.data(), 0);
    g_support_subtitles[0].type = VORNAK_SUBTITLE_END;
    const int withoutKinds = findVideoSubtitles((temp / "").c_str(), "M", none.records.data(), 0);
    std::memcpy(g_support_subtitles, saved, sizeof saved);
    const std::string lines = out.take();

    EXPECT_EQ(result, 0);
    ASSERT_EQ(list.size(), 4U);
    std::vector<std::string> found;
    for (std::size_t i = 0; i < 4; ++i)
        found.push_back(list.records[i].fileName + std::string(" ") + list.records[i].lang + " " +
                        std::to_string(list.records[i].type));
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, (std::vector<std::string>{"M+.ssa  1", "M+.ssa unkown 5", "M.en.ssa en 1",
                                               "M.en.ssa en 5"}));
    EXPECT_EQ(withoutKinds, 0);
    EXPECT_EQ(none.size(), 0U);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 6);
}

TEST_F(FindVideoSubtitles, cutsThePathOfARecord)
{
    const TempDir temp;
    temp.write("M.srt", "");
    for (const std::size_t length : {1018, 1019, 1200}) {
        std::string folder = temp / "";
        folder.insert(0, length - folder.size(), '/');
        List list;
        const Capture out(STDOUT_FILENO);
        ASSERT_EQ(findVideoSubtitles(folder.c_str(), "M.mkv", list.records.data(), 0), 0);
        ASSERT_EQ(list.size(), 1U);
        EXPECT_EQ(list.records[0].fullPath, (folder + "M.srt").substr(0, 1023)) << length;
    }
}

TEST_F(FindVideoSubtitles, refusesWhatIsNoFolder)
{
    const TempDir temp;
    const std::string folder = temp / "", missing = temp / "missing/",
                      file = temp.write("M.srt", "");
    List list;
    EXPECT_EQ(findVideoSubtitles(nullptr, "M.mkv", list.records.data(), 0), 1);
    EXPECT_EQ(findVideoSubtitles(folder.c_str(), nullptr, list.records.data(), 0), 1);
    EXPECT_EQ(findVideoSubtitles(folder.c_str(), "M.mkv", nullptr, 0), 1);
    EXPECT_EQ(findVideoSubtitles(missing.c_str(), "M.mkv", list.records.data(), 0), 1);
    EXPECT_EQ(findVideoSubtitles(file.c_str(), "M.mkv", list.records.data(), 0), 1);
    EXPECT_EQ(findVideoSubtitlesByFullPath(nullptr, list.records.data(), 0), 1);
    EXPECT_EQ(findVideoSubtitlesByFullPath((missing + "M.mkv").c_str(), list.records.data(), 0), 1);
    EXPECT_EQ(findVideoSubtitlesByFullPath("M.mkv", list.records.data(), 0), 1);
    EXPECT_EQ(findVideoSubtitlesByFullPath((folder + "M.mkv").c_str(), nullptr, 0), 1);
    EXPECT_TRUE(list.untouched());
}

TEST_F(FindVideoSubtitles, splitsAFullPathAtItsLastSlash)
{
    const TempDir temp;
    const std::string inside = temp.write("a.b/M.srt", ""), beside = temp.write("a.srt", "");
    temp.write("x.srt", "");
    const struct {
        std::string video;
        std::size_t found;
    } cases[] = {
        {temp / "a.b/M.mkv", 1},
        {temp / "a.b/M", 1},
        {temp / "a.b//M.mkv", 1},
        {temp / "a.b/", 1}, // the empty stem: every subtitle file belongs
        {temp / "a.b", 1},
        {temp / "b.mkv", 0},
        // cut after 1023 characters, and the stem taken of what is left
        {temp / ("x." + std::string(1100, 'y') + ".mkv"), 1},
        {temp / (std::string(1100, 'x') + ".mkv"), 0},
    };
    for (const auto &c : cases) {
        List list;
        const Capture out(STDOUT_FILENO);
        EXPECT_EQ(findVideoSubtitlesByFullPath(c.video.c_str(), list.records.data(), 0), 0);
        EXPECT_EQ(list.size(), c.found) << c.video;
    }
}

TEST_F(FindVideoSubtitles, searchesNoOtherFolderThanTheOneGiven)
{
    // The first 1023 characters of the longer path are a folder, too, with subtitles of its own.
    const TempDir temp;
    std::string folder = temp / "";
    while (folder.size() < 900) folder += std::string(99, 'd') + "/";
    folder += std::string(1021 - folder.size(), 'e');
    fs::create_directories(folder + "/");
    fs::create_directories(folder + "f/");
    fs::create_directories(folder + "ff/");
    const struct {
        std::string folder;
        int result;
    } cases[] = {{folder + "/", 0}, {folder + "f/", 0}, {folder + "ff/", 1}};
    for (const auto &c : cases) {
        std::ofstream subtitles(c.folder + "M.srt");
        List list;
        const Capture out(STDOUT_FILENO);
        EXPECT_EQ(
            findVideoSubtitlesByFullPath((c.folder + "M.mkv").c_str(), list.records.data(), 0),
            c.result)
            << c.folder.size();
        EXPECT_EQ(list.untouched(), c.result == 1);
    }
}

} // namespace
} // namespace vornak::test
