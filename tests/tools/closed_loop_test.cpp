// Decide, transcode, decide again: what a profile has made of a clip, it takes as it is.
#include "tools/decide/decide_files.h"

#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <span>
#include <sstream>

namespace vornak::test {
namespace {

using Words = std::vector<std::string>;

struct Clip {
    std::string file, picture, sound, encoders, options;
};

/// The lines of closed_loop_clips.txt.
const std::vector<Clip> &clips()
{
    static const std::vector<Clip> all = [] {
        std::vector<Clip> read;
        std::ifstream file(VORNAK_SOURCE_DIR "/tests/tools/closed_loop_clips.txt");
        for (std::string line; std::getline(file, line);) {
            if (line.empty() || line.starts_with('#')) continue;
            Clip &clip = read.emplace_back();
            for (std::string *column :
                 {&clip.file, &clip.picture, &clip.sound, &clip.encoders, &clip.options}) {
                const std::size_t bar = std::min(line.find(" | "), line.size());
                *column = line.substr(0, bar);
                line.erase(0, std::min(bar + 3, line.size()));
            }
        }
        return read;
    }();
    return all;
}

constexpr const char *s_Profiles[] = {"desktop-player", "hifi-streamer", "living-room-tv",
                                      "older-tv", "phone"};

Words split(const std::string &text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// Names of the encoders that ffmpeg has.
const std::set<std::string> &encoders()
{
    static const std::set<std::string> names = [] {
        const Words words = split(run({"ffmpeg", "-hide_banner", "-encoders"}).out);
        return std::set<std::string>(words.begin(), words.end());
    }();
    return names;
}

/// All profiles; for the sanitized tool, which takes long, one in turn for every other clip.
std::span<const char *const> profilesFor(const Clip &clip)
{
    constexpr bool kIsFast = !VORNAK_SANITIZED;
    if (kIsFast) return s_Profiles;
    const auto position = static_cast<std::size_t>(
        std::ranges::find(clips(), clip.file, &Clip::file) - clips().begin());
    return std::span(s_Profiles).subspan(position / 2 % std::size(s_Profiles), 1 - position % 2);
}

std::string profilePath(const std::string &name)
{
    return VORNAK_SOURCE_DIR "/examples/profiles/" + name + ".xml";
}

/// What becomes of a file.
tool::FileResult decide(const std::string &profile, const std::string &file)
{
    return tool::decideFile(tool::ProfileSession(profilePath(profile)), {}, tool::probeMedia(file));
}

class ClosedLoop : public testing::TestWithParam<Clip> {
protected:
    void makeClip()
    {
        Words words = {"ffmpeg", "-v", "error"};
        const auto addInput = [&](const std::string &source) {
            words.insert(words.end(), {"-f", "lavfi", "-i", source + ":d=1"});
        };
        const Clip &clip = GetParam();
        if (clip.picture != "-") addInput("testsrc2=" + clip.picture);
        if (clip.sound != "-") addInput("aevalsrc=0.3*sin(2000*t):" + clip.sound);
        for (const std::string &word : split(clip.options)) words.push_back(word);
        words.push_back(media_);
        const auto made = run(words);
        ASSERT_EQ(made.status, 0) << made.err;
    }

    TempDir dir_;
    std::string media_ = dir_ / GetParam().file;
};

TEST_P(ClosedLoop, EveryProfileTakesWhatItHasMade)
{
    for (const std::string &encoder : split(GetParam().encoders))
        if (!encoders().contains(encoder)) GTEST_SKIP() << "this ffmpeg has no " << encoder;
    if (profilesFor(GetParam()).empty()) GTEST_SKIP() << "every other clip is enough here";
    makeClip();
    if (HasFatalFailure()) return;

    for (const std::string profile : profilesFor(GetParam())) {
        SCOPED_TRACE(profile);
        const auto before = decide(profile, media_);
        if (const auto *undecided = std::get_if<tool::Undecided>(&before)) {
            EXPECT_EQ(undecided->code, "no-section"); // it plays music alone
            EXPECT_TRUE(GetParam().picture != "-" && profile == "hifi-streamer");
            continue;
        }
        const auto outcome = std::get<tool::Decision>(before).outcome;
        EXPECT_NE(outcome, tool::Outcome::Refused);
        const std::string output = dir_ / (profile + ".out");
        const auto made = run({VORNAK_CLI, "transcode", "-p", profilePath(profile), media_, "-o",
                               output, "--verify"});
        EXPECT_EQ(made.status, outcome == tool::Outcome::Kept ? 3 : 0) << made.err;
        ASSERT_EQ(std::filesystem::exists(output), outcome != tool::Outcome::Kept);
        if (outcome == tool::Outcome::Kept) continue;
        const auto after = decide(profile, output);
        ASSERT_TRUE(std::holds_alternative<tool::Decision>(after));
        EXPECT_EQ(std::get<tool::Decision>(after).outcome, tool::Outcome::Kept);
    }
}

INSTANTIATE_TEST_SUITE_P(Clips, ClosedLoop, testing::ValuesIn(clips()), [](const auto &clip) {
    std::string name = clip.param.file;
    for (char &c : name)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return name;
});

} // namespace
} // namespace vornak::test
