// Whole texts for sources made up here, against a profile that reaches every kind of decision.
#include "include/vornak_host.h"
#include "tests/support/temp_dir.h"
#include "tools/decide/decision_json.h"
#include "tools/decide/decision_text.h"
#include "tools/decide/surroundings.h"
#include "tools/profile/profile_session.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace vornak::test {
namespace {

using namespace tool;

constexpr const char *kProfile = R"(<DEVICE NAME="Test player">
  <MUSIC>
    <ACODEC NAME="mp3" MAXCHANNELS="2">
      <FORMAT NAME="mp3" MIME="audio/mpeg" PN="MP3"/>
    </ACODEC>
    <ACODEC NAME="aac" PROFILE="lc" MAXCHANNELS="2" MAXFREQUENCY="48K">
      <FORMAT NAME="mp4" MIME="audio/mp4"/>
    </ACODEC>
    <ACODEC NAME="aac" MAXCHANNELS="6" MAXBITRATE="256K" MAXFREQUENCY="44100">
      <FORMAT NAME="adts"/>
    </ACODEC>
    <ACODEC NAME="flac">
      <FORMAT NAME="flac" NOTRANSCODE="1"/>
    </ACODEC>
  </MUSIC>
  <VIDEO>
    <VCODEC NAME="h264" PROFILE="main | high" LEVEL="40" MAXWIDTH="1920" MAXHEIGHT="1080"
            PLAY_EXCEPTION="interlaced | 10bit">
      <ACODEC NAME="aac" MAXCHANNELS="2">
        <FORMAT NAME="mpegts" MIME="video/mpeg" PN="AVC_TS"/>
        <FORMAT NAME="mp4" MIME="video/mp4"/>
      </ACODEC>
      <ACODEC NAME="ac3">
        <FORMAT NAME="matroska" MIME="video/x-matroska"/>
        <FORMAT NAME="any"/>
      </ACODEC>
      <ACODEC NAME="mp2"><FORMAT NAME="mp4" NONSEEKABLE="1" NOTRANSCODE="1"/></ACODEC></VCODEC>
    <VCODEC NAME="h264" PROFILE="high" LEVEL="51" MAXWIDTH="720" MAXHEIGHT="576" TOLERANCE="16">
      <ACODEC NAME="any">
        <FORMAT NAME="avi"/>
      </ACODEC>
    </VCODEC>
    <VCODEC NAME="mpeg2video" NOTRANSCODE="1">
      <ACODEC NAME="mp2">
        <FORMAT NAME="mpegps" MIME="video/mpeg"/>
      </ACODEC>
    </VCODEC>
    <VCODEC NAME="mpeg4">
      <ACODEC NAME="aac">
        <FORMAT NAME="mp4" NONSEEKABLE="1"/>
        <FORMAT NAME="matroska" NONSEEKABLE="1"/>
      </ACODEC>
      <ACODEC NAME="mp3">
        <FORMAT NAME="avi" NOTRANSCODE="1"/>
      </ACODEC>
    </VCODEC>
  </VIDEO>
</DEVICE>
)";

int codecId(const char *name)
{
    int id = kUnknownId;
    CodecNameToID(name, &id);
    return id;
}

int profileBit(const char *name)
{
    int bit = 0;
    ProfileNameToID(name, &bit);
    return bit;
}

/// A file in the making.
struct File : MediaInfo {
    explicit File(const char *container, const char *subtype = nullptr)
    {
        containerName = container;
        if (subtype) containerName += std::string("/") + subtype;
        ContainerFormatNameToID(container, subtype, &formatId);
    }
    File &withVideo(const char *codec, const char *profile, int level, int width, int height)
    {
        video = VideoStream{.codecId = codecId(codec),
                            .profile = profileBit(profile),
                            .level = level,
                            .width = width,
                            .height = height,
                            .bitrate = 1000000,
                            .bitrateEstimated = true,
                            .codecName = codec,
                            .profileName = profile,
                            .playExceptionNames = {}};
        return *this;
    }
    File &withExceptions(std::initializer_list<const char *> names)
    {
        for (const char *name : names) {
            int bit = 0;
            PlayExceptionNameToID(name, &bit);
            video->playExceptions |= bit;
        }
        return *this;
    }
    File &withAudio(const char *codec, const char *profile, int channels, int sampleRate)
    {
        audio.push_back({.number = static_cast<int>(audio.size()) + 1,
                         .codecId = codecId(codec),
                         .profile = profileBit(profile),
                         .channels = channels,
                         .bitrate = 320000,
                         .sampleRate = sampleRate,
                         .codecName = codec,
                         .profileName = profile,
                         .language = {}});
        return *this;
    }
};

File film(const char *container = "mp4", const char *subtype = "isom")
{
    return File(container, subtype).withVideo("h264", "high", 40, 1920, 1080);
}

/// The text of a file called "f".
std::string decided(const ProfileSession &session, const File &file, const DecisionRequest &request,
                    bool withVisits = false)
{
    const FileResult result = decide(session, request, file);
    if (const auto *undecided = std::get_if<Undecided>(&result))
        return fmt::format("{}: {}\n", undecided->code, undecided->message);
    const auto &decision = std::get<Decision>(result);
    const Explanation explanation = explain(decision, request);
    const std::string text = textOf("f", decision, explanation, session);
    const auto json = nlohmann::json::parse(jsonOf("f", decision, explanation, {}, session, false));
    if (!decision.isRefused()) {
        EXPECT_EQ(json["output"]["seekable"], text.find("into an output") == std::string::npos);
    }
    return text + (withVisits ? visitsText(decision, explanation, session) : "");
}

struct Case {
    File file;
    DecisionRequest request;
    const char *text; // without the first line, which shows the source
};

void expectTexts(const ProfileSession &session, const std::vector<Case> &cases)
{
    for (const Case &c : cases) {
        const std::string text = decided(session, c.file, c.request);
        EXPECT_EQ(text.substr(text.starts_with("f:") ? text.find('\n') + 1 : 0), c.text);
    }
}

class DecisionText : public testing::Test {
protected:
    TempDir dir_;
    ProfileSession session_{dir_.write("p.xml", kProfile)};
};

TEST_F(DecisionText, NamesTheRuleAndBothValues)
{
    expectTexts(
        session_,
        {
            {film().withAudio("aac", "lc", 2, 48000),
             {},
             R"(  video: keep: rule 0 (h264, line 17) takes it
  audio: keep: rule 0 (aac, line 19) takes it
  container: keep: entry 1 (mp4, line 21) of audio rule 0 (aac, line 19) takes it
  result: keep
  output: container mp4, MIME type video/mp4, DLNA profile none
)"},
            {film().withAudio("aac", "lc", 6, 48000),
             {},
             R"(  video: keep: rule 0 (h264, line 17) takes it
  audio: transcode: 6 channels, rule 0 (aac, line 19) allows 2; output as in rule 0 (aac, line 19)
  container: transcode: entry 0 (mpegts, line 20) is the first of audio rule 0 (aac, line 19), and a stream is transcoded
  result: transcode audio
  output: container mpegts, MIME type video/mpeg, DLNA profile AVC_TS
)"},
            {film("mpegts", nullptr).withAudio("opus", "", 2, 48000),
             {},
             R"(  video: keep: rule 0 (h264, line 17) takes it
  audio: transcode: no rule for opus in video rule 0 (h264, line 17); output as in rule 0 (aac, line 19)
  container: keep: entry 0 (mpegts, line 20) is the first of audio rule 0 (aac, line 19), and a stream is transcoded
  result: transcode audio
  output: container mpegts, MIME type video/mpeg, DLNA profile AVC_TS
)"},
            {film("flv", nullptr).withAudio("aac", "lc", 2, 48000),
             {},
             R"(  video: keep: rule 0 (h264, line 17) takes it
  audio: keep: rule 0 (aac, line 19) takes it
  container: transcode: flv, audio rule 0 (aac, line 19) does not list it; output as in entry 0 (mpegts, line 20)
  result: remux
  output: container mpegts, MIME type video/mpeg, DLNA profile AVC_TS
)"},
            {film("flv", nullptr).withAudio("ac3", "", 6, 48000),
             {},
             R"(  video: keep: rule 0 (h264, line 17) takes it
  audio: keep: rule 1 (ac3, line 23) takes it
  container: keep: entry 1 (any, line 25) of audio rule 1 (ac3, line 23) takes any container
  result: keep
  output: container flv, MIME type none, DLNA profile none
)"},
            {File("avi").withVideo("h264", "main", 52, 3840, 2160).withAudio("mp3", "", 2, 48000),
             {},
             R"(  video: transcode: level 52, rule 0 (h264, line 17) allows 40; 3840x2160 pixels, it allows 1920x1080; output as in rule 0 (h264, line 17)
  audio: transcode: no rule for mp3 in video rule 0 (h264, line 17); output as in rule 0 (aac, line 19)
  container: transcode: entry 0 (mpegts, line 20) is the first of audio rule 0 (aac, line 19), and a stream is transcoded
  result: transcode video and audio
  output: container mpegts, MIME type video/mpeg, DLNA profile AVC_TS
)"},
            {File("mp4").withVideo("vc1", "", 3, 640, 360).withAudio("mp2", "", 2, 48000),
             {},
             R"(  video: transcode: no rule for vc1; output as in rule 0 (h264, line 17)
  audio: transcode: rule 2 (mp2, line 27) takes it, but its first container, which the output needs, must not be made (NOTRANSCODE); output as in rule 0 (aac, line 19)
  container: transcode: entry 0 (mpegts, line 20) is the first of audio rule 0 (aac, line 19), and a stream is transcoded
  result: transcode video and audio
  output: container mpegts, MIME type video/mpeg, DLNA profile AVC_TS
)"},
        });
}

TEST_F(DecisionText, ShowsTheNearestMissOfMusic)
{
    expectTexts(
        session_,
        {
            {File("mp3").withAudio("mp3", "", 2, 44100),
             {},
             R"(  audio: keep: rule 0 (mp3, line 3) takes it
  container: keep: entry 0 (mp3, line 4) of audio rule 0 (mp3, line 3) takes it
  result: keep
  output: container mp3, MIME type audio/mpeg, DLNA profile MP3
)"},
            // one refusal by rule 1, two by rule 2
            {File("mp4", "m4a").withAudio("aac", "lc", 6, 48000),
             {},
             R"(  audio: transcode: 6 channels, rule 1 (aac, line 6) allows 2; output as in rule 0 (mp3, line 3)
  container: transcode: entry 0 (mp3, line 4) is the first of audio rule 0 (mp3, line 3), and a stream is transcoded
  result: transcode audio
  output: container mp3, MIME type audio/mpeg, DLNA profile MP3
)"},
            // three by rule 1, two by rule 2
            {File("mp4", "m4a").withAudio("aac", "he", 6, 96000),
             {},
             R"(  audio: transcode: 320000 bit/s, rule 2 (aac, line 9) allows 256000; 96000 Hz, it allows 44100; output as in rule 0 (mp3, line 3)
  container: transcode: entry 0 (mp3, line 4) is the first of audio rule 0 (mp3, line 3), and a stream is transcoded
  result: transcode audio
  output: container mp3, MIME type audio/mpeg, DLNA profile MP3
)"},
            {File("ogg").withAudio("flac", "", 2, 44100),
             {},
             R"(  audio: transcode: rule 3 (flac, line 12) takes it, but not in this container, and its first one must not be made (NOTRANSCODE); output as in rule 0 (mp3, line 3)
  container: transcode: entry 0 (mp3, line 4) is the first of audio rule 0 (mp3, line 3), and a stream is transcoded
  result: transcode audio
  output: container mp3, MIME type audio/mpeg, DLNA profile MP3
)"},
        });
}

TEST_F(DecisionText, TakesContainersOfTheFirstFittingRuleForASilentVideo)
{
    expectTexts(session_, {
                              {film("matroska", nullptr),
                               {},
                               R"(  video: keep: rule 0 (h264, line 17) takes it
  audio: none: the file has no audio
  container: keep: entry 0 (matroska, line 24) of audio rule 1 (ac3, line 23) takes it
  result: keep
  output: container matroska, MIME type video/x-matroska, DLNA profile none
)"},
                              {File("avi").withVideo("mpeg4", "simple", 1, 640, 360),
                               {}, // rule 1's, which may not make it
                               R"(  video: keep: rule 3 (mpeg4, line 38) takes it
  audio: none: the file has no audio
  container: keep: entry 0 (avi, line 44) of audio rule 1 (mp3, line 43) takes it
  result: keep
  output: container avi, MIME type none, DLNA profile none
)"},
                              {File("flv").withVideo("mpeg4", "simple", 1, 640, 360),
                               {},
                               R"(  video: keep: rule 3 (mpeg4, line 38) takes it
  audio: none: the file has no audio
  container: transcode: flv, audio rule 0 (aac, line 39) does not list it; output as in entry 0 (mp4, line 40)
  result: remux, into an output that can't be sought in
  output: container mp4, MIME type none, DLNA profile none
)"},
                              // elementary and raw forms of MPEG streams count as the usual ones
                              {File("mpegps_dvd").withVideo("mpeg2video", "main", 8, 720, 576),
                               {},
                               R"(  video: keep: rule 2 (mpeg2video, line 33) takes it
  audio: none: the file has no audio
  container: keep: entry 0 (mpegps, line 35) of audio rule 0 (mp2, line 34) takes it
  result: keep
  output: container mpegps, MIME type video/mpeg, DLNA profile none
)"},
                          });
}

TEST_F(DecisionText, SaysWhatIsForbiddenOrCannotBeSoughtIn)
{
    expectTexts(
        session_,
        {
            {File("mpegts")
                 .withVideo("mpeg2video", "main", 8, 720, 576)
                 .withAudio("ac3", "", 6, 48000),
             {},
             R"(  video: keep: rule 2 (mpeg2video, line 33) takes it
  audio: transcode: no rule for ac3 in video rule 2 (mpeg2video, line 33)
  container: transcode: entry 0 (mpegps, line 35) is the first of audio rule 0 (mp2, line 34), and a stream is transcoded
  result: refused: NOTRANSCODE of video rule 2 (mpeg2video, line 33) forbids to transcode
)"},
            {File("avi").withVideo("mpeg4", "simple", 1, 640, 360).withAudio("ac3", "", 6, 48000),
             {},
             R"(  video: keep: rule 3 (mpeg4, line 38) takes it
  audio: transcode: no rule for ac3 in video rule 3 (mpeg4, line 38); output as in rule 0 (aac, line 39)
  container: transcode: entry 0 (mp4, line 40) of audio rule 0 (aac, line 39) can't be sought in (NONSEEKABLE)
  result: transcode audio, into an output that can't be sought in
  output: container mp4, MIME type none, DLNA profile none
)"},
            {File("mp4").withVideo("mpeg4", "simple", 1, 640, 360).withAudio("aac", "lc", 2, 48000),
             {},
             R"(  video: keep: rule 3 (mpeg4, line 38) takes it
  audio: keep: rule 0 (aac, line 39) takes it
  container: keep: entry 0 (mp4, line 40) of audio rule 0 (aac, line 39) takes it
  result: keep
  output: container mp4, MIME type none, DLNA profile none
)"},
            {File("mp4", "isom")
                 .withVideo("mpeg4", "simple", 1, 640, 360)
                 .withAudio("mp3", "", 2, 48000),
             {},
             R"(  video: keep: rule 3 (mpeg4, line 38) takes it
  audio: transcode: rule 1 (mp3, line 43) takes it, but not in this container, and its first one must not be made (NOTRANSCODE); output as in rule 0 (aac, line 39)
  container: transcode: entry 0 (mp4, line 40) of audio rule 0 (aac, line 39) can't be sought in (NONSEEKABLE)
  result: transcode audio, into an output that can't be sought in
  output: container mp4, MIME type none, DLNA profile none
)"},
        });
}

TEST_F(DecisionText, FollowsTheRequest)
{
    const File usual = film().withAudio("aac", "lc", 2, 48000).withAudio("ac3", "", 6, 48000);
    int mpegts = 0, avi = 0, interlaced = 0;
    ContainerFormatNameToID("mpegts", nullptr, &mpegts);
    ContainerFormatNameToID("avi", nullptr, &avi);
    PlayExceptionNameToID("interlaced", &interlaced);
    expectTexts(
        session_,
        {
            {usual,
             {.preferFormatId = mpegts},
             R"(  video: keep: rule 0 (h264, line 17) takes it
  audio: keep: rule 0 (aac, line 19) takes it
  container: transcode: entry 0 (mpegts, line 20) of audio rule 0 (aac, line 19) is preferred by --prefer
  result: remux
  output: container mpegts, MIME type video/mpeg, DLNA profile AVC_TS
)"},
            {usual,
             {.preferFormatId = avi},
             R"(  video: keep: rule 0 (h264, line 17) takes it
  audio: keep: rule 0 (aac, line 19) takes it
  container: keep: entry 1 (mp4, line 21) of audio rule 0 (aac, line 19) takes it; audio rule 0 (aac, line 19) does not list what --prefer names
  result: keep
  output: container mp4, MIME type video/mp4, DLNA profile none
)"},
            {film().withExceptions({"interlaced", "hdr"}).withAudio("aac", "lc", 2, 48000),
             {.force = true},
             R"(  video: transcode: forced by --force; PLAY_EXCEPTION of rule 0 (h264, line 17) covers interlaced of interlaced|hdr only, so it does not count; output as in rule 0 (h264, line 17)
  audio: transcode: forced by --force; output as in rule 0 (aac, line 19)
  container: transcode: forced by --force; output as in entry 0 (mpegts, line 20)
  result: transcode video and audio
  output: container mpegts, MIME type video/mpeg, DLNA profile AVC_TS
)"},
            {usual,
             {.audioTrack = 2},
             R"(  video: transcode: --audio-track assigns a track, and then a video is transcoded; output as in rule 0 (h264, line 17)
  audio: keep: rule 1 (ac3, line 23) takes it
  container: transcode: entry 0 (matroska, line 24) is the first of audio rule 1 (ac3, line 23), and a stream is transcoded
  result: transcode video
  output: container matroska, MIME type video/x-matroska, DLNA profile none
)"},
            {usual,
             {.audioTrack = 3},
             "no-such-track: there is no audio track 3, the file has 2\n"},
            {File("mp4", "isom").withVideo("vc1", "", 3, 640, 360).withAudio("aac", "lc", 2, 48000),
             {.matchVideo = false},
             R"(  video: keep: rule 0 (h264, line 17), not matched because of --no-match-video
  audio: keep: rule 0 (aac, line 19) takes it
  container: keep: entry 1 (mp4, line 21) of audio rule 0 (aac, line 19) takes it
  result: keep
  output: container mp4, MIME type video/mp4, DLNA profile none
)"},
            {usual,
             {.extraPlayExceptions = interlaced},
             R"(  video: transcode: play exceptions interlaced, rule 0 (h264, line 17) excludes interlaced|10bit; output as in rule 0 (h264, line 17)
  audio: keep: rule 0 (aac, line 19) takes it
  container: transcode: entry 0 (mpegts, line 20) is the first of audio rule 0 (aac, line 19), and a stream is transcoded
  result: transcode video
  output: container mpegts, MIME type video/mpeg, DLNA profile AVC_TS
)"},
        });
}

TEST_F(DecisionText, NamesOtherTracksThatWouldBeKept)
{
    File many = film().withAudio("aac", "lc", 6, 48000).withAudio("opus", "", 2, 48000);
    many.withAudio("ac3", "", 6, 48000).withAudio("aac", "lc", 2, 48000).audio[3].language = "d\n";
    const std::string line =
        "  other audio: track 3 (ac3, 6 channels), track 4 (aac, 2 channels, d\\x0a) "
        "would be taken as they are\n";
    const struct {
        File file;
        DecisionRequest request;
        std::string line;
    } cases[] = {
        {many, {}, line},
        {many, {.audioTrack = 1}, line}, // though the video is transcoded for it
        {many, {.audioTrack = 3}, ""},
        {many, {.force = true}, ""},
        {File("mp3").withAudio("mp3", "", 6, 44100).withAudio("mp3", "", 2, 44100),
         {},
         "  other audio: track 2 (mp3, 2 channels) would be taken as it is\n"},
        {File("mp3").withAudio("mp3", "", 6, 44100).withAudio("flac", "", 2, 44100), {}, ""},
    };
    for (const auto &c : cases) {
        const std::string text = decided(session_, c.file, c.request);
        const std::size_t at = text.find("  other audio"), end = text.find("  container");
        EXPECT_EQ(at == std::string::npos ? "" : text.substr(at, end - at), c.line);
    }
}

TEST_F(DecisionText, CountsReasonsWithoutTheFilesOwnValues)
{
    Totals totals;
    const auto count = [&](const File &file) {
        const FileResult result = decide(session_, {}, file);
        const auto &decision = std::get<Decision>(result);
        totals.reasons.add(mainReason(decision, explain(decision, {}), session_));
        ++totals.files;
    };
    for (const int width : {3000, 4000}) {
        File large = film().withAudio("aac", "lc", 2, 48000);
        large.video->width = width;
        count(large);
    }
    for (const char *profile : {"baseline", "main"})
        count(
            File("mp4").withVideo("h264", profile, 52, 640, 360).withAudio("aac", "lc", 2, 48000));
    count(film().withExceptions({"interlaced"}).withAudio("aac", "lc", 2, 48000));
    count(File("mp4").withAudio("aac", "he", 6, 96000));
    count(
        File("mpegts").withVideo("mpeg2video", "main", 8, 720, 576).withAudio("ac3", "", 6, 48000));
    count(film().withAudio("aac", "lc", 2, 48000)); // kept
    totals.reasons.add(mainReason(Undecided{"cannot-probe", "is empty"}));
    EXPECT_EQ(countedReasons(totals),
              R"(  2 files: video: picture size, rule 0 (h264, line 17) allows 1920x1080
  1 file: audio: bit rate, rule 2 (aac, line 9) allows 256000
  1 file: refused: no rule for ac3 in video rule 2 (mpeg2video, line 33)
  1 file: unreadable: empty, damaged or no media
  1 file: video: level, rule 0 (h264, line 17) allows 40
  1 file: video: play exceptions, rule 0 (h264, line 17) excludes interlaced|10bit
  1 file: video: profile, rule 0 (h264, line 17) allows main|high
)");
}

TEST_F(DecisionText, ListsWhatWasVisited)
{
    EXPECT_EQ(
        decided(session_,
                film().withExceptions({"interlaced", "hdr"}).withAudio("aac", "he", 2, 48000), {},
                true),
        R"(f: mp4/isom; h264 high level 40, 1920x1080, 1000000 bit/s (estimated), play exceptions interlaced|hdr; aac he, 2 channels, 48000 Hz, 320000 bit/s
  video: keep: rule 0 (h264, line 17) takes it; its PLAY_EXCEPTION covers interlaced of interlaced|hdr only, so it does not count
  audio: keep: rule 0 (aac, line 19) takes it
  container: keep: entry 1 (mp4, line 21) of audio rule 0 (aac, line 19) takes it
  result: keep
  output: container mp4, MIME type video/mp4, DLNA profile none
  video rules visited:
    rule 0 (h264, line 17): takes it; its PLAY_EXCEPTION covers interlaced of interlaced|hdr only, so it does not count
  audio rules visited in video rule 0 (h264, line 17):
    rule 0 (aac, line 19): takes it
  container entries visited in audio rule 0 (aac, line 19):
    entry 0 (mpegts, line 20): another container
    entry 1 (mp4, line 21): takes it
)");
    EXPECT_EQ(
        decided(session_,
                File("mpegts")
                    .withVideo("h264", "main", 51, 1280, 720)
                    .withAudio("aac", "lc", 6, 48000)
                    .withAudio("mp2", "", 1, 44100),
                {}, true),
        R"(f: mpegts; h264 main level 51, 1280x720, 1000000 bit/s (estimated); aac lc, 6 channels, 48000 Hz, 320000 bit/s, track 1 of 2
  video: transcode: level 51, rule 0 (h264, line 17) allows 40; output as in rule 0 (h264, line 17)
  audio: transcode: 6 channels, rule 0 (aac, line 19) allows 2; output as in rule 0 (aac, line 19)
  container: keep: entry 0 (mpegts, line 20) is the first of audio rule 0 (aac, line 19), and a stream is transcoded
  result: transcode video and audio
  output: container mpegts, MIME type video/mpeg, DLNA profile AVC_TS
  video rules visited:
    rule 0 (h264, line 17): refuses it: level 51, it allows 40 (the nearest miss)
    rule 1 (h264, line 28): refuses it: profile main, it allows high; also 1280x720 pixels, it needs 720x576, give or take 16
    rule 2 (mpeg2video, line 33): another codec
    rule 3 (mpeg4, line 38): another codec
  audio rules visited in video rule 0 (h264, line 17):
    rule 0 (aac, line 19): refuses it: 6 channels, it allows 2 (the nearest miss)
    rule 1 (ac3, line 23): another codec
    rule 2 (mp2, line 27): another codec
  container entries visited: none
)");
}

constexpr const char *kBrokenProfile = R"(<DEVICE NAME="Radio">
  <MUSIC>
    <ACODEC NAME="mp3">
      <FORMAT NAME="mp3" NOTRANSCODE="1"/>
    </ACODEC>
    <ACODEC NAME="flac" MINCHANNELS="2" MINFREQUENCY="44100">
      <FORMAT NAME="nosuch"/>
    </ACODEC>
  </MUSIC>
  <VIDEO>
    <VCODEC NAME="h264">
      <ACODEC NAME="nosuch"/>
    </VCODEC>
  </VIDEO>
</DEVICE>
)";

TEST(BrokenProfile, IsAnErrorOfTheFileThatNeedsWhatItLacks)
{
    const TempDir dir;
    const ProfileSession session(dir.write("p.xml", kBrokenProfile));
    File picture = File("mp4").withVideo("mjpeg", "", 0, 640, 480);
    picture.stillImage = true;
    expectTexts(
        session,
        {
            {File("flac").withAudio("flac", "", 1, 8000),
             {},
             R"(  audio: transcode: 1 channel, rule 1 (flac, line 6) needs 2; 8000 Hz, it needs 44100; output as in rule 0 (mp3, line 3)
  container: transcode: entry 0 (mp3, line 4) is the first of audio rule 0 (mp3, line 3), and a stream is transcoded
  result: transcode audio
  output: container mp3, MIME type none, DLNA profile none
)"},
            {File("ogg").withAudio("vorbis", "", 2, 44100),
             {.force = true},
             R"(  audio: transcode: forced by --force; no rule for vorbis
  container: transcode: forced by --force
  result: refused: NOTRANSCODE of container entry 0 (mp3, line 4) of audio rule 0 (mp3, line 3) forbids to transcode
)"},
            {File("flac").withAudio("flac", "", 2, 44100),
             {},
             "no-container: the audio rule in line 6 of the profile has no valid FORMAT\n"},
            {film(),
             {},
             "no-audio-rule: the video rule in line 11 of the profile has no valid ACODEC\n"},
            {picture, {}, "still-image: refused: a still image, neither video nor music\n"},
            {File("mp4"), {}, "no-streams: it holds neither video nor audio\n"},
        });
    const ProfileSession musicOnly(dir.write("m.xml", "<DEVICE NAME='m'><MUSIC/></DEVICE>"));
    expectTexts(
        musicOnly,
        {
            {film(),
             {},
             "no-section: the profile has no VIDEO section with a valid rule, so nothing is known about such files\n"},
            {File("mp3").withAudio("mp3", "", 2, 44100),
             {},
             "no-section: the profile has no MUSIC section with a valid rule, so nothing is known about such files\n"},
        });
}

} // namespace
} // namespace vornak::test
