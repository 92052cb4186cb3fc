// Folders that can't be read to their end, and what the tool makes of them.
#include "tests/support/leak_check.h"
#include "tests/support/readdir_fault.h"
#include "tests/support/temp_dir.h"
#include "tools/appliance/disc_title.h"
#include "tools/appliance/subtitle_files.h"
#include "tools/files/media_list.h"

#include <cerrno>
#include <cstring>
#include <sstream>

namespace vornak::test {
namespace {

class ReadingFaults : public LeakCheck {};

std::string faultsOfDisc(const std::string &folder)
{
    const tool::DiscResult result = tool::readDisc(folder);
    const auto *error = std::get_if<tool::DiscError>(&result);
    return error ? error->message : "";
}

std::string faultsOfSubtitles(const std::string &folder)
{
    return tool::searchSubtitles(folder + "film.mkv").error;
}

std::string faultsOfList(const std::string &folder)
{
    std::istringstream nothing;
    tool::MediaList list({{folder}, {}}, nothing);
    std::string errors;
    while (const auto item = list.next()) errors += item->error;
    return errors;
}

TEST_F(ReadingFaults, AreSaid)
{
    const struct {
        std::vector<const char *> files;
        std::string (*work)(const std::string &folder);
    } cases[] = {
        {{"VIDEO_TS/VIDEO_TS.IFO", "VIDEO_TS/VTS_01_1.VOB"}, faultsOfDisc},
        {{"BDMV/index.bdmv", "BDMV/STREAM/1.m2ts"}, faultsOfDisc},
        {{"film.mkv", "film.de.srt"}, faultsOfSubtitles},
        {{"film.mkv", "more/film.mkv"}, faultsOfList},
    };
    for (const auto &c : cases) {
        int calls = 0;
        for (int failing = 0; failing <= calls; ++failing) { // first without
            const TempDir temp;
            for (const char *file : c.files) temp.write(file, "content");
            readdirFault() = {0, failing, EIO};
            const std::string said = c.work(temp / "");
            if (failing == 0) calls = readdirFault().calls;
            readdirFault() = {};
            EXPECT_EQ(said.find(std::strerror(EIO)) != std::string::npos, failing > 0)
                << c.files[0] << failing << said;
        }
        EXPECT_GT(calls, 3);
    }
}

} // namespace
} // namespace vornak::test
