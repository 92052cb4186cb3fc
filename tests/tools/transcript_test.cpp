// The pages of transcripts/, each run in a folder of its own: what a user types, and what is shown,
// with the exit status in brackets where it isn't 0.
#include "tests/support/doc_examples.h"
#include "tests/support/temp_dir.h"

#include <algorithm>

namespace vornak::test {
namespace {

class Transcript : public testing::TestWithParam<const char *> {};

TEST_P(Transcript, IsWhatHappens)
{
    const TempDir dir;
    const auto examples = readDocExamples(VORNAK_SOURCE_DIR "/tests/tools/transcripts/" +
                                          std::string(GetParam()) + ".md");
    EXPECT_FALSE(examples.empty());
    const std::string tools = std::filesystem::path(VORNAK_CLI).parent_path();
    expectDocExamples(examples,
                      "cd " + dir.path().string() + "; export PATH=" + tools + ":\"$PATH\"",
                      kShowStatus);
}

INSTANTIATE_TEST_SUITE_P(Pages, Transcript,
                         testing::Values("collections", "command", "decide", "length", "profile",
                                         "profile-check", "profile-diff", "subtitles", "transcode",
                                         "whole-output"),
                         [](const auto &page) {
                             std::string name = page.param;
                             std::ranges::replace(name, '-', '_');
                             return name;
                         });

} // namespace
} // namespace vornak::test
