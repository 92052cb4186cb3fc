#include "tools/terminal/nearest_name.h"

#include <gtest/gtest.h>

namespace vornak::test {
namespace {

TEST(NearestName, FindsTypingErrorsAndNothingElse)
{
    const std::vector<std::string> known = {"mp4", "mpegts", "matroska", "mp3", "interlaced"};
    const struct {
        const char *word, *nearest;
    } cases[] = {
        {"mp5", "mp4"},              // a tie goes to the earlier
        {"MPEGTS", "mpegts"},        // letter case alone
        {"mpegst", "mpegts"},        // two letters swapped
        {"matrosca", "matroska"},    // one replaced
        {"interlace", "interlaced"}, // one missing
        {"interlacced", "interlaced"},
        {"webm", nullptr},
        {"x", nullptr},
        {"", nullptr},
    };
    for (const auto &c : cases) {
        const auto nearest = tool::nearestName(c.word, known);
        EXPECT_EQ(nearest.value_or("none"), c.nearest ? c.nearest : "none") << c.word;
    }
    EXPECT_EQ(tool::didYouMean("mp5", known), "; did you mean mp4?");
    EXPECT_EQ(tool::didYouMean("webm", known), "");
}

} // namespace
} // namespace vornak::test
