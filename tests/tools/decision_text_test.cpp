// decisions.md: whole texts for sources that are made up there, against profiles that reach every
// kind of decision.
#include "include/vornak_host.h"
#include "tests/support/doc_examples.h"
#include "tests/support/temp_dir.h"
#include "tools/decide/decision_json.h"
#include "tools/decide/decision_text.h"
#include "tools/decide/surroundings.h"
#include "tools/profile/profile_session.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <utility>

namespace vornak::test {
namespace {

using namespace tool;

int idOf(int (*lookUp)(const char *, int *), const std::string &name, int unknown = 0)
{
    int id = unknown;
    lookUp(name.c_str(), &id);
    return id;
}

int containerId(const std::string &name)
{
    const std::size_t slash = std::min(name.find('/'), name.size());
    int id = kUnknownId;
    ContainerFormatNameToID(name.substr(0, slash).c_str(),
                            slash < name.size() ? name.c_str() + slash + 1 : nullptr, &id);
    return id;
}

/// What is asked: a file, and what the command line would add.
struct Question {
    MediaInfo file;
    DecisionRequest request;
    bool explain = false; ///< show what was visited, too
    bool count = false;   ///< show nothing, but count its reason

    void add(const std::string &part);
};

/// Adds a stream or an option: "h264 high 40 1920x1080 interlaced|hdr", "aac lc 2 48000 ger",
/// "still", "--force".
void Question::add(const std::string &part)
{
    std::istringstream words(part);
    std::string name, profile, size, more;
    int number = 0;
    words >> name;
    if (name == "still") file.stillImage = true;
    if (name == "--force") request.force = true;
    if (name == "--no-match-video") request.matchVideo = false;
    if (name == "--explain") explain = true;
    if (name == "--count") count = true;
    if (name == "--audio-track") words >> request.audioTrack;
    if (name == "--prefer" && words >> profile) request.preferFormatId = containerId(profile);
    if (name == "--play-exception" && words >> profile)
        request.extraPlayExceptions = idOf(PlayExceptionNameToID, profile);
    if (name == "still" || name.starts_with("--")) return;

    words >> profile >> number >> size >> more;
    if (profile == "-") profile.clear();
    const int codec = idOf(CodecNameToID, name, kUnknownId);
    const int bit = idOf(ProfileNameToID, profile);
    const std::size_t x = size.find('x');
    if (x == std::string::npos) {
        file.audio.push_back({.number = static_cast<int>(file.audio.size()) + 1,
                              .codecId = codec,
                              .profile = bit,
                              .channels = number,
                              .bitrate = 320000,
                              .sampleRate = std::stoi(size),
                              .codecName = name,
                              .profileName = profile,
                              .language = more.ends_with("\\n") ? "d\n" : more});
        return;
    }
    file.video = VideoStream{.codecId = codec,
                             .profile = bit,
                             .level = number,
                             .width = std::stoi(size),
                             .height = std::stoi(size.substr(x + 1)),
                             .bitrate = 1000000,
                             .bitrateEstimated = true,
                             .codecName = name,
                             .profileName = profile,
                             .playExceptionNames = {}};
    std::istringstream names(more);
    for (std::string exception; std::getline(names, exception, '|');)
        file.video->playExceptions |= idOf(PlayExceptionNameToID, exception);
}

Question questionOf(const std::string &text)
{
    Question question;
    std::istringstream parts(text);
    std::getline(parts, question.file.containerName, ';');
    question.file.formatId = containerId(question.file.containerName);
    for (std::string part; std::getline(parts, part, ';');) question.add(part);
    return question;
}

class DecisionText : public testing::Test {
protected:
    /// The text of a file called "f".
    std::string answer(const Question &question)
    {
        const FileResult result = decide(*session_, question.request, question.file);
        ++totals_.files;
        if (const auto *undecided = std::get_if<Undecided>(&result)) {
            totals_.reasons.add(mainReason(*undecided));
            return fmt::format("{}: {}\n", undecided->code, undecided->message);
        }
        const auto &decision = std::get<Decision>(result);
        const Explanation explanation = explain(decision, question.request);
        totals_.reasons.add(mainReason(decision, explanation, *session_));
        if (question.count) return {};
        const std::string text = textOf("f", decision, explanation, *session_);
        const auto json =
            nlohmann::json::parse(jsonOf("f", decision, explanation, {}, *session_, false));
        if (!decision.isRefused()) {
            EXPECT_EQ(json["output"]["seekable"], text.find("into an output") == std::string::npos);
        }
        return text + (question.explain ? visitsText(decision, explanation, *session_) : "");
    }

    std::optional<ProfileSession> session_;
    Totals totals_;
};

TEST_F(DecisionText, IsWhatThePageShows)
{
    const TempDir dir;
    for (const DocExample &example :
         readDocExamples(VORNAK_SOURCE_DIR "/tests/tools/decisions.md")) {
        if (example.command == "profile")
            session_.emplace(dir.write("p.xml", example.output));
        else if (example.command == "reasons")
            EXPECT_EQ(countedReasons(std::exchange(totals_, {})), example.output);
        else
            EXPECT_EQ(answer(questionOf(example.command)), example.output) << example.command;
    }
}

} // namespace
} // namespace vornak::test
