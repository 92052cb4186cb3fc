// Profiles of a size that nobody writes.
#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

namespace vornak::test {
namespace {

std::string repeat(int times, const std::string &text)
{
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

std::string device(const std::string &content)
{
    return R"(<DEVICE NAME="T">)" + content + "</DEVICE>";
}

std::string music(const std::string &rules)
{
    return device("<MUSIC>" + rules + "</MUSIC>");
}

// A sanitized tool takes ten times as long.
constexpr int kThousand = VORNAK_SANITIZED ? 50 : 1000;

TEST(ProfileSize, TimeGrowsWithTheFile)
{
    const std::string cases[] = {
        device(repeat(1000 * kThousand, "<a>") + repeat(1000 * kThousand, "</a>")),
        music(repeat(1000 * kThousand, "<ACODEC>") + repeat(1000 * kThousand, "</ACODEC>")),
        music(repeat(100 * kThousand,
                     R"(<ACODEC NAME="aac" MAXCHANNELS="2K"><FORMAT NAME="mp4"/></ACODEC>)")),
        music(repeat(100 * kThousand, R"(<ACODEC NAME="aax"/>)")),
        music(R"(<ACODEC NAME="aac" )" + repeat(100 * kThousand, R"(A="1" )") + "/>"),
        music(repeat(39 * kThousand / 100,
                     R"(<ACODEC NAME="aac">)" +
                         repeat(256, R"(<FORMAT NAME="mp4" SUBTYPE="isom"/>)") + "</ACODEC>")),
        device(repeat(50 * kThousand, "<FOO/><MUSIC/>")),
    };
    const TempDir dir;
    for (const std::string &xml : cases) {
        const std::string path = dir.write("p.xml", xml);
        for (const char *subcommand : {"check", "show"}) {
            // a step that looks through all siblings of each would take hours
            const ProcessResult result =
                run({"timeout", "120", VORNAK_CLI, "profile", subcommand, path});
            EXPECT_LE(result.status, 1) << subcommand << xml.substr(0, 60);
        }
    }
}

} // namespace
} // namespace vornak::test
