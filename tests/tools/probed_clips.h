// Clips that ffmpeg makes anew for each run, and what the probe says of them.
#pragma once

#include "tools/probe/media_probe.h"

#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace vornak::test {

inline std::vector<std::string> words(const std::string &text)
{
    static const std::map<std::string, std::string> abbreviations = {
        {"X264", "-c:v libx264 -preset ultrafast -pix_fmt yuv420p"},
        {"FAST", "X264 -g 25"},
        {"FILM", "-map 0 -map 1 FAST -c:a aac -b:a 128k"}};
    std::istringstream in(text);
    std::vector<std::string> all;
    for (std::string word; in >> word;) {
        const auto found = abbreviations.find(word);
        const auto parts = found == abbreviations.end() ? std::vector{word} : words(found->second);
        all.insert(all.end(), parts.begin(), parts.end());
    }
    return all;
}

inline void runFfmpeg(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), {"ffmpeg", "-v", "error", "-nostdin", "-y"});
    const ProcessResult result = run(arguments);
    ASSERT_EQ(result.status, 0) << result.err;
}

inline std::string readFile(const std::string &path)
{
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

inline std::string replaced(std::string content, std::string_view what, std::string_view with)
{
    for (std::size_t at = 0; (at = content.find(what, at)) != std::string::npos; at += with.size())
        content.replace(at, what.size(), with);
    return content;
}

/// A folder for clips; skipped where there is no ffmpeg to make them with.
class ProbedClips : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        if (run({"ffmpeg", "-version"}).status != 0) return;
        folder_.emplace();
        runFfmpeg({"-f", "lavfi", "-i", "color=red:s=64x64", "-frames:v", "1", clip("cover.png")});
    }
    static void TearDownTestSuite() { folder_.reset(); }
    void SetUp() override
    {
        if (!folder_) GTEST_SKIP() << "there is no ffmpeg to make clips with";
    }

    static std::string clip(std::string_view name) { return *folder_ / name; }

    static tool::MediaInfo probe(std::string_view name)
    {
        const tool::ProbeResult result = tool::probeMedia(clip(name));
        EXPECT_TRUE(result.media.has_value()) << name << ' ' << result.error;
        return result.media.value_or(tool::MediaInfo{});
    }

    inline static std::optional<TempDir> folder_;
};

} // namespace vornak::test
