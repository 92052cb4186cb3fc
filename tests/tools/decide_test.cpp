// The built tool over real clips.
#include "tests/support/doc_examples.h"
#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

namespace vornak::test {
namespace {

using Json = nlohmann::json;
using Arguments = std::vector<std::string>;

constexpr const char *kProfile = R"(<DEVICE NAME="Player">
  <MUSIC>
    <ACODEC NAME="mp3" MAXCHANNELS="2">
      <FORMAT NAME="mp3" MIME="audio/mpeg" PN="MP3"/>
    </ACODEC>
    <ACODEC NAME="pcm_s16le" MAXFREQUENCY="48K">
      <FORMAT NAME="wav" MIME="audio/wav"/>
    </ACODEC>
  </MUSIC>
  <VIDEO>
    <VCODEC NAME="h264" PROFILE="main | nosuch" LEVEL="40" MAXWIDTH="1280" MAXHEIGHT="720" VATRANSCODE="1">
      <ACODEC NAME="ac3" MAXCHANNELS="2">
        <FORMAT NAME="mpegts" MIME="video/mpeg" PN="AVC_TS"/>
        <FORMAT NAME="mp4" MIME="video/mp4" PN="AVC_MP4"/>
      </ACODEC>
    </VCODEC>
  </VIDEO>
</DEVICE>
)";

class Decide : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_Dir = new TempDir;
        s_Dir->write("p.xml", kProfile);
        const std::string h264 = "-c:v libx264 -preset ultrafast -x264-params cabac=1 "
                                 "-profile:v main -level 30 -pix_fmt yuv420p";
        make("kept.mp4", h264 + " -c:a ac3 -b:a 192k -ac 2");
        make("six.mkv", h264 + " -c:a ac3 -b:a 384k -ac 6");
        make("film.flv", h264 + " -c:a aac -b:a 96k");
        make("old.avi", "-c:v mpeg4 -c:a mp2 -b:a 128k");
        make("song.wav", "-map 1:a -c:a pcm_s16le -ar 48000");
        make("high.wav", "-map 1:a -c:a pcm_s16le -ar 96000");
        make("picture.png", "-map 0:v -frames:v 1");
        for (const char *subtitles : {"kept.vtt", "kept.en.srt", "Kept.srt"})
            s_Dir->write(subtitles, "");
        s_Dir->write("text.mp4", "no media at all\n");
    }
    static void TearDownTestSuite()
    {
        delete s_Dir;
        s_Dir = nullptr;
    }

    static ProcessResult shell(const std::string &script, const std::string &input = {})
    {
        return run({"sh", "-c",
                    "cd \"$1\" && tool=$2 && vornak() { \"$tool\" \"$@\"; } && " + script, "sh",
                    s_Dir->path(), VORNAK_CLI},
                   input);
    }

    static void make(const std::string &name, const std::string &options)
    {
        const ProcessResult made = shell(
            "ffmpeg -v error -f lavfi -i testsrc=s=320x240:r=25:d=1 -f lavfi -i sine=d=1:r=48000 " +
            options + " " + name);
        ASSERT_EQ(made.status, 0) << made.err;
    }

    /// Runs `vornak decide -p p.xml` with these arguments, in the directory of the clips.
    static ProcessResult decide(const Arguments &arguments, const std::string &input = {})
    {
        Arguments all = {"env", "-C", s_Dir->path(), VORNAK_CLI, "decide", "-p", "p.xml"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return run(all, input);
    }

    static TempDir *s_Dir;
};

TempDir *Decide::s_Dir = nullptr;

constexpr const char *kWarning =
    "vornak: p.xml: warning: skip unknow video profile name: nosuch ! (vornak profile check says "
    "where)\n";

/// The text with those bit rates masked that are the encoder's choice.
std::string masked(const std::string &text)
{
    const std::regex chosen("(, [0-9]+x[0-9]+), [0-9]+ bit/s|( Hz), [0-9]+ bit/s( \\(estimated)");
    return std::regex_replace(text, chosen, "$1$2, N bit/s$3");
}

std::string contentOf(const char *path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(Decide, SaysWhatTheProfileTakesOfEachClip)
{
    const ProcessResult result = decide({"kept.mp4", "six.mkv", "film.flv", "old.avi", "song.wav",
                                         "high.wav", "picture.png", "text.mp4", "gone.mp4"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(
        masked(result.out),
        R"(kept.mp4: mp4/isom; h264 main level 30, 320x240, N bit/s; ac3, 2 channels, 48000 Hz, 192000 bit/s
  video: keep: rule 0 (h264, line 11) takes it
  audio: keep: rule 0 (ac3, line 12) takes it
  container: keep: entry 1 (mp4, line 14) of audio rule 0 (ac3, line 12) takes it
  result: keep
  output: container mp4, MIME type video/mp4, DLNA profile AVC_MP4
  subtitles: kept.en.srt (srt, en), kept.vtt (vtt)

six.mkv: matroska; h264 main level 30, 320x240, N bit/s (estimated); ac3, 6 channels, 48000 Hz, 384000 bit/s
  video: keep: rule 0 (h264, line 11) takes it
  audio: transcode: 6 channels, rule 0 (ac3, line 12) allows 2; output as in rule 0 (ac3, line 12)
  container: transcode: entry 0 (mpegts, line 13) is the first of audio rule 0 (ac3, line 12), and a stream is transcoded
  result: transcode audio
  output: container mpegts, MIME type video/mpeg, DLNA profile AVC_TS
  subtitles: none

film.flv: flv; h264 main level 30, 320x240, N bit/s (estimated); aac lc, 1 channel, 48000 Hz, N bit/s (estimated)
  video: keep: rule 0 (h264, line 11) takes it
  audio: transcode: no rule for aac in video rule 0 (h264, line 11); output as in rule 0 (ac3, line 12)
  container: transcode: entry 0 (mpegts, line 13) is the first of audio rule 0 (ac3, line 12), and a stream is transcoded
  result: transcode audio
  output: container mpegts, MIME type video/mpeg, DLNA profile AVC_TS
  subtitles: none

old.avi: avi; mpeg4 simple level 1, 320x240, N bit/s; mp2, 1 channel, 48000 Hz, 128000 bit/s
  video: transcode: no rule for mpeg4; output as in rule 0 (h264, line 11)
  audio: transcode: no rule for mp2 in video rule 0 (h264, line 11); output as in rule 0 (ac3, line 12)
  container: transcode: entry 0 (mpegts, line 13) is the first of audio rule 0 (ac3, line 12), and a stream is transcoded
  result: transcode video and audio
  output: container mpegts, MIME type video/mpeg, DLNA profile AVC_TS
  subtitles: none

song.wav: wav; pcm_s16le, 1 channel, 48000 Hz, 768000 bit/s
  audio: keep: rule 1 (pcm_s16le, line 6) takes it
  container: keep: entry 0 (wav, line 7) of audio rule 1 (pcm_s16le, line 6) takes it
  result: keep
  output: container wav, MIME type audio/wav, DLNA profile none

high.wav: wav; pcm_s16le, 1 channel, 96000 Hz, 1536000 bit/s
  audio: transcode: 96000 Hz, rule 1 (pcm_s16le, line 6) allows 48000; output as in rule 0 (mp3, line 3)
  container: transcode: entry 0 (mp3, line 4) is the first of audio rule 0 (mp3, line 3), and a stream is transcoded
  result: transcode audio
  output: container mp3, MIME type audio/mpeg, DLNA profile MP3

9 files: 2 kept, 0 remuxed, 3 audio, 1 video, 1 refused, 2 unreadable
  1 file: audio: channels, rule 0 (ac3, line 12) allows 2
  1 file: audio: no rule for aac in video rule 0 (h264, line 11)
  1 file: audio: sample rate, rule 1 (pcm_s16le, line 6) allows 48000
  1 file: refused: a still image
  1 file: unreadable: empty, damaged or no media
  1 file: unreadable: missing, not permitted, neither file nor folder
  1 file: video: no rule for mpeg4
)");
    EXPECT_EQ(result.err,
              std::string(kWarning) +
                  "vornak: picture.png: refused: a still image, neither video nor music\n"
                  "vornak: text.mp4: is no media file, or a damaged one (moov atom not "
                  "found)\n"
                  "vornak: gone.mp4: No such file or directory\n");
}

TEST_F(Decide, ShowsALineEachOrSomeOutcomesAlone)
{
    constexpr const char *kFlv =
        "film.flv: audio: no rule for aac in video rule 0 (h264, line 11)\n";
    constexpr const char *kSix = "six.mkv: audio: 6 channels, rule 0 (ac3, line 12) allows 2\n";
    constexpr const char *kOld = "old.avi: video: no rule for mpeg4\n";
    constexpr const char *kKept = "kept.mp4: kept: rule 0 (h264, line 11) takes it\n";
    constexpr const char *kSums = R"(
6 files: 1 kept, 0 remuxed, 3 audio, 1 video, 0 refused, 1 unreadable
  2 files: audio: channels, rule 0 (ac3, line 12) allows 2
  1 file: audio: no rule for aac in video rule 0 (h264, line 11)
  1 file: unreadable: empty, damaged or no media
  1 file: video: no rule for mpeg4
)";
    const Arguments media = {"film.flv", "six.mkv", "old.avi", "text.mp4", "kept.mp4", "six.mkv"};
    const struct {
        Arguments arguments;
        std::string out;
    } cases[] = {
        {{"--brief"}, std::string(kFlv) + kSix + kOld + kKept + kSix + kSums},
        {{"--brief", "--only", "video,kept"}, std::string(kOld) + kKept + kSums},
        {{"--brief", "--only", "video", "--only=kept"}, std::string(kOld) + kKept + kSums},
        {{"--only", "refused"}, std::string(kSums).substr(1)},
    };
    for (const auto &c : cases) {
        Arguments all = c.arguments;
        all.insert(all.end(), media.begin(), media.end());
        EXPECT_EQ(decide(all).out, c.out);
    }
    Arguments all = {"--json", "--only", "unreadable"};
    all.insert(all.end(), media.begin(), media.end());
    const Json document = Json::parse(decide(all).out);
    EXPECT_EQ(document["files"].size(), 1U);
    EXPECT_EQ(document["files"][0]["path"], "text.mp4");
    EXPECT_EQ(document["summary"]["reasons"].size(), 4U);
}

TEST_F(Decide, TakesNamesOfEveryKind)
{
    const TempDir names;
    const std::string song = *s_Dir / "song.wav";
    for (const char *name : {"f/b.wav", "f/a/\xff\n\"\\.wav", "f/-z.wav", "f/skip.txt"}) {
        names.write(name, "");
        std::filesystem::copy(song, names / name,
                              std::filesystem::copy_options::overwrite_existing);
    }
    const ProcessResult result = run({"env", "-C", names / "f", VORNAK_CLI, "decide", "-p",
                                      *s_Dir / "p.xml", "--json", ".", "-", "--", "-z.wav"},
                                     "b.wav\n-z.wav\n");
    EXPECT_EQ(result.status, 0) << result.err;
    const Json document = Json::parse(result.out);
    std::string paths;
    for (const Json &file : document["files"])
        paths += file["path"].get<std::string>() + ' ' + file["pathHex"].get<std::string>() + '\n';
    EXPECT_EQ(paths, R"(./-z.wav 2e2f2d7a2e776176
./a/\xff\x0a"\\.wav 2e2f612fff0a225c2e776176
./b.wav 2e2f622e776176
b.wav 622e776176
-z.wav 2d7a2e776176
-z.wav 2d7a2e776176
)");
    EXPECT_EQ(document["summary"]["skipped"], 1);
}

/// The text between a line and the next "```".
std::string blockAfter(const std::string &page, const std::string &line, std::size_t &from)
{
    const std::size_t begin = page.find(line + "\n", from) + line.size() + 1;
    from = page.find("```\n", begin);
    return page.substr(begin, from - begin);
}

TEST_F(Decide, PrintsTheDocumentThatIsDocumented)
{
    const std::string page = contentOf(VORNAK_SOURCE_DIR "/docs/json.md");
    std::size_t at = 0;
    const TempDir dir;
    dir.write("player.xml", blockAfter(page, "```xml", at));
    const std::string makeFilm = blockAfter(page, "```sh", at);
    const std::string decideFilm = blockAfter(page, "```sh", at);
    dir.write("make", "vornak() { \"$TOOL\" \"$@\"; }\n" + makeFilm + decideFilm);
    const ProcessResult result = run({"env", "-C", dir.path(), "TOOL=" VORNAK_CLI, "sh", "./make"});
    ASSERT_EQ(result.status, 0) << result.err;

    const auto maskedJson = [](Json document) {
        Json &source = document["files"][0]["source"];
        for (Json *stream : {&source["video"], &source["audioTracks"][0]})
            (*stream)["bitrate"] = (*stream)["bitrate"].get<int>() > 0;
        source["duration"] = source["duration"].get<double>() > 1;
        return document;
    };
    EXPECT_EQ(maskedJson(Json::parse(result.out)),
              maskedJson(Json::parse(blockAfter(page, "```json", at))));

    // the same in words
    const ProcessResult words =
        run({"env", "-C", dir.path(), VORNAK_CLI, "decide", "-p", "player.xml", "film.mkv"});
    const std::string indented =
        std::regex_replace(words.out, std::regex("(^|\n)(?=[^\n])"), "$1    ");
    EXPECT_NE(masked(contentOf(VORNAK_SOURCE_DIR "/docs/decide.md")).find(masked(indented)),
              std::string::npos)
        << indented;
    for (const DocExample &example : readDocExamples(VORNAK_SOURCE_DIR "/docs/decide.md")) {
        const ProcessResult shown = run(
            {"env", "-C", dir.path(), "sh", "-c",
             "ln -sf player.xml tv.xml; vornak() { " VORNAK_CLI " \"$@\"; }; " + example.command});
        EXPECT_EQ(shown.out + shown.err, example.output) << example.command;
    }
}

TEST_F(Decide, MakesEntriesOfErrorsAndReachesEveryArgument)
{
    const ProcessResult result =
        decide({"--json", "--explain", "--prefer", "mp4/isom", "--audio-track", "2",
                "--play-exception", "interlaced", "--play-exception", "10bit", "--no-match-video",
                "--force", "kept.mp4", "gone.mp4"});
    EXPECT_EQ(result.status, 1);
    const Json document = Json::parse(result.out);
    EXPECT_EQ(document["options"], Json::parse(R"({"prefer": "mp4/isom", "force": true,
        "audioTrack": 2, "matchVideo": false, "playExceptions": ["interlaced", "10bit"]})"));
    EXPECT_EQ(document["profile"]["warnings"].size(), 1U);
    EXPECT_EQ(document["files"], Json::parse(R"([
        {"path": "kept.mp4", "pathHex": "6b6570742e6d7034", "outcome": "unreadable",
         "error": {"code": "no-such-track",
                   "message": "there is no audio track 2, the file has 1"}},
        {"path": "gone.mp4", "pathHex": "676f6e652e6d7034", "outcome": "unreadable",
         "error": {"code": "cannot-open", "message": "No such file or directory"}}])"));

    const std::string words = decide({"--explain", "kept.mp4"}).out;
    EXPECT_NE(words.find(R"(
  subtitles: kept.en.srt (srt, en), kept.vtt (vtt)
  hardware: rule 0 (h264, line 11) allows the hardware transcoder, but none is installed
  elements: demuxer qtdemux, video decoder ffdec_h264, audio decoder ffdec_ac3, muxer mp4mux faststart=true
  video rules visited:
)"),
              std::string::npos)
        << words;
    const Json visited =
        Json::parse(decide({"--json", "--explain", "six.mkv"}).out)["files"][0]["visited"];
    EXPECT_EQ(visited["audio"], Json::parse(R"([
        {"position": 0, "name": "ac3", "line": 12, "verdict": "refuses", "nearestMiss": true,
         "refusals": [{"code": "max-channels", "fields": ["maxChannels"], "bound": "at-most",
                       "limit": 2, "actual": 6}]}])"));
}

TEST_F(Decide, RefusesBadUsageInOneLine)
{
    s_Dir->write("empty.xml", "");
    s_Dir->write("broken.xml", "<DEVICE NAME='x'>\n<VIDEO>\n</DEVICE>\n");
    const struct {
        Arguments arguments;
        const char *error;
    } cases[] = {
        {{"--prefer", "mkv/isoom", "kept.mp4"},
         "vornak: --prefer mkv/isoom: the container has no subtype isoom; known are webm\n"},
        {{"--prefer", "avi/isom", "kept.mp4"},
         "vornak: --prefer avi/isom: the container has no subtype isom; there are none\n"},
        {{"--prefer", "matroshka", "kept.mp4"},
         "vornak: --prefer matroshka: there is no container matroshka; did you mean matroska?\n"},
        {{"--prefer", "any", "kept.mp4"}, "vornak: --prefer any: name one container\n"},
        {{"--play-exception", "interlacing", "kept.mp4"},
         "vornak: --play-exception interlacing: there is no play exception interlacing; did you "
         "mean interlaced?\n"},
        {{"--audio-track", "0", "kept.mp4"},
         "vornak: --audio-track: Value 0 not in range 1 to 2147483647 (try: vornak decide "
         "--help)\n"},
        {{"--only", "kept,vidoe", "kept.mp4"},
         "vornak: --only vidoe: there is no outcome of that name; did you mean video?\n"},
        {{"--json", "--brief", "kept.mp4"},
         "vornak: --json excludes --brief (try: vornak decide --help)\n"},
        {{}, "vornak: MEDIA is required (try: vornak decide --help)\n"},
        {{"-p", "empty.xml", "kept.mp4"},
         "vornak: empty.xml: it holds no XML element; a profile is a DEVICE element\n"},
        {{"-p", "broken.xml", "kept.mp4"},
         "vornak: broken.xml:3: not well-formed XML: Start-end tags mismatch\n"},
    };
    for (const auto &c : cases) {
        Arguments all = {"env", "-C", s_Dir->path(), VORNAK_CLI, "decide"};
        if (c.arguments.empty() || c.arguments[0] != "-p") all.insert(all.end(), {"-p", "p.xml"});
        all.insert(all.end(), c.arguments.begin(), c.arguments.end());
        const ProcessResult result = run(all);
        EXPECT_EQ(result.status, 2) << c.error;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, c.error);
    }
}

TEST_F(Decide, ComplainsBetweenTheLinesOfTheJson)
{
    const std::string out = shell("vornak decide --json -p p.xml song.wav nosuch 2>&1").out;
    EXPECT_NE(out.find("},\nvornak: nosuch: "), std::string::npos) << out;
}

TEST_F(Decide, ColoursATerminalAlone)
{
    const auto onTerminal = [](const std::string &environment) {
        return shell("env " + environment +
                     " script -qec \"'$2' decide -p p.xml song.wav\" /dev/null")
            .out;
    };
    const std::string coloured = onTerminal("-u NO_COLOR TERM=xterm");
    EXPECT_NE(coloured.find("\033[1msong.wav\033[0m"), std::string::npos);
    EXPECT_NE(coloured.find("result: \033[32mkeep\033[0m"), std::string::npos);
    EXPECT_EQ(onTerminal("NO_COLOR=1 TERM=xterm").find("\033["), std::string::npos);
    EXPECT_NE(onTerminal("NO_COLOR= TERM=xterm").find("\033["), std::string::npos);
}

} // namespace
} // namespace vornak::test
