// That the tool's memory does not depend on the number of files.
#include "tests/support/small_wav.h"
#include "tests/support/temp_dir.h"
#include "tests/support/usage.h"

namespace vornak::test {
namespace {

TEST(DecideMemory, DoesNotGrowWithTheFiles)
{
    const TempDir dir;
    std::string profile = "<DEVICE NAME='many rules'><MUSIC>";
    for (int i = 0; i < 50; ++i)
        profile += "<ACODEC NAME='mp3'><FORMAT NAME='mp3'/></ACODEC>"; // 5 KB in each entry
    const std::string path = dir.write("p.xml", profile + "</MUSIC></DEVICE>");
    const std::string first = dir.write("few/0.wav", smallWav());
    for (int i = 1; i < 100; ++i)
        std::filesystem::create_hard_link(first, dir / ("few/" + std::to_string(i) + ".wav"));
    std::filesystem::create_directory(dir / "many");
    for (int i = 0; i < 4000; ++i)
        std::filesystem::create_hard_link(first, dir / ("many/" + std::to_string(i) + ".wav"));

    const auto memory = [&](const char *folder) { // with the document as long as it gets
        return usageOf({VORNAK_CLI, "decide", "-p", path, "--json", "--explain", dir / folder})
            .memory;
    };
    EXPECT_LT(memory("many"), memory("few") + 5000) << "20 MB of entries held in memory would show";
}

} // namespace
} // namespace vornak::test
