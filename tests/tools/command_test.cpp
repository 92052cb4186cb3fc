// vornak command over real clips, its shell lines through a real shell.
#include "tests/support/doc_examples.h"
#include "tests/support/process.h"
#include "tests/support/temp_dir.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace vornak::test {
namespace {

using Json = nlohmann::json;
using Words = std::vector<std::string>;

constexpr const char *kProfile = R"(<DEVICE NAME="Player">
  <MUSIC>
    <ACODEC NAME="pcm_s16le" OPTION="-c:a pcm_s16le -ar 44100 -ac 2">
      <FORMAT NAME="wav" MIME="audio/wav" PN="LPCM" OPTION="-f wav"/>
    </ACODEC>
  </MUSIC>
  <VIDEO>
    <VCODEC NAME="h264" PROFILE="main | high" MAXWIDTH="160" MAXHEIGHT="120" FRAME="7" VATRANSCODE="1"
            OPTION="-c:v libx264 -vprofile main -pix_fmt yuv420p">
      <ACODEC NAME="mp3" MAXCHANNELS="1" OPTION="-c:a libmp3lame">
        <FORMAT NAME="mp4" SUBTYPE="isom" MIME="video/mp4" PN="AVC_MP4"/>
      </ACODEC>
    </VCODEC>
    <VCODEC NAME="mpeg4">
      <ACODEC NAME="any"><FORMAT NAME="any"/></ACODEC>
    </VCODEC>
  </VIDEO>
</DEVICE>
)";

class Command : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_Dir = new TempDir;
        s_Dir->write("p.xml", kProfile);
        s_Dir->write("text.mp4", "no media\n");
        make("-map 0 -map 1 -c:v mpeg4 -c:a libmp3lame", "kept.avi");
        make("-map 0 -map 1 -c:v mpeg2video -c:a mp2 -ac 2", "it's a\n\"film\" $HOME.mpg");
        make("-map 1 -c:a flac", "song.flac");
    }
    static void TearDownTestSuite()
    {
        delete s_Dir;
        s_Dir = nullptr;
    }

    static void make(const std::string &options, const std::string &name)
    {
        const auto made =
            run({"sh", "-c",
                 "cd \"$1\" && exec ffmpeg -v error -f lavfi -i testsrc=s=320x240:r=25:d=1 "
                 "-f lavfi -i sine=d=2:r=48000 " +
                     options + " file:\"$2\"",
                 "sh", s_Dir->path(), name});
        ASSERT_EQ(made.status, 0) << made.err;
    }

    static ProcessResult command(const Words &words)
    {
        Words all = {"env", "-C", s_Dir->path(), VORNAK_CLI, "command"};
        if (std::find(words.begin(), words.end(), "-p") == words.end())
            all.insert(all.end(), {"-p", "p.xml"});
        all.insert(all.end(), words.begin(), words.end());
        return run(all);
    }

    static TempDir *s_Dir;
};

TempDir *Command::s_Dir = nullptr;
constexpr const char *kFilm = "it's a\n\"film\" $HOME.mpg";

TEST_F(Command, PrintsAllThatTheLibrarySays)
{
    const auto result = command({kFilm, "song.flac", "kept.avi", "text.mp4"});
    EXPECT_EQ(result.status, 1); // for text.mp4
    EXPECT_EQ(result.out,
              R"(it's a\x0a"film" $HOME.mpg:
  options:  -c:v libx264 -vprofile main -pix_fmt yuv420p -c:a libmp3lame
  limits exceeded, dialect 1: -vf scale=160:120 -ac 1
  target format tag: h264_main_mp3_@.mp4.ISOM
  output: MIME type video/mp4, DLNA profile AVC_MP4
  video rule: frame value 7, hardware transcoder allowed
  ffmpeg: ffmpeg -nostdin -i 'file:it'\''s a
"film" $HOME.mpg' -map 0:V:0 -map 0:a:0 -vf scale=160:120 -ac 1 -f mp4 -c:v libx264 -profile:v main -pix_fmt yuv420p -c:a libmp3lame 'file:it'\''s a
"film" $HOME.mpg.transcoded.mp4'

song.flac:
  options: -f wav -num_frames 88200 -c:a pcm_s16le -ar 44100 -ac 2
  limits exceeded, dialect 1: none
  target format tag: pcm_s16le_@.wav
  output: MIME type audio/wav, DLNA profile LPCM
  size: 352844 bytes for 2 s, 44 of them the header; 88200 frames
  ffmpeg: ffmpeg -nostdin -i file:song.flac -map 0:a:0 -f wav -c:a pcm_s16le -ar 44100 -ac 2 file:song.flac.transcoded.wav

kept.avi: needs no transcoding, it is sent as it is

4 files: 1 kept, 0 remuxed, 1 audio, 1 video, 0 refused, 1 unreadable
)");
    EXPECT_THAT(result.err, testing::MatchesRegex("vornak: text.mp4: [^\n]*\n"));
    EXPECT_THAT(command({"--dialect", "2", kFilm}).out,
                testing::HasSubstr("limits exceeded, dialect 2: -s 120p -ac 1\n"));
}

TEST_F(Command, GivesLinesThatAShellRuns)
{
    std::filesystem::copy_file(*s_Dir / "song.flac", *s_Dir / "song.oga");
    const auto lines = command({"--shell", "kept.avi", kFilm, "song.flac", "song.oga"});
    EXPECT_EQ(lines.status, 0) << lines.err;
    EXPECT_THAT(lines.out,
                testing::StartsWith("# kept.avi: needs no transcoding, it is sent as it is\n"));
    const auto ran = run({"sh", "-c", "cd \"$1\" && exec sh -e", "sh", s_Dir->path()}, lines.out);
    EXPECT_EQ(ran.status, 0) << ran.err;
    const Words outputs = {"it's a\n\"film\" $HOME.mpg.transcoded.mp4", "song.flac.transcoded.wav",
                           "song.oga.transcoded.wav"};
    EXPECT_EQ(
        command(outputs).out,
        "it's a\\x0a\"film\" $HOME.mpg.transcoded.mp4: needs no transcoding, it is sent as it is\n\n"
        "song.flac.transcoded.wav: needs no transcoding, it is sent as it is\n\n"
        "song.oga.transcoded.wav: needs no transcoding, it is sent as it is\n\n"
        "3 files: 3 kept, 0 remuxed, 0 audio, 0 video, 0 refused, 0 unreadable\n");
    for (const std::string &output : outputs) std::filesystem::remove(*s_Dir / output);
}

TEST_F(Command, TellsProgramsTheSame)
{
    const auto result = command({"--json", kFilm, "song.flac", "kept.avi", "text.mp4"});
    EXPECT_EQ(result.status, 1);
    const Json json = Json::parse(result.out);
    EXPECT_EQ(json["document"], "vornak-command");
    EXPECT_EQ(json["version"], 1);
    const Json &film = json["files"][0]["command"], &song = json["files"][1]["command"];
    EXPECT_EQ(film["options"], " -c:v libx264 -vprofile main -pix_fmt yuv420p -c:a libmp3lame");
    EXPECT_EQ(film["limits"], Json({{"dialect", 1}, {"text", " -vf scale=160:120 -ac 1"}}));
    EXPECT_EQ(film["tag"], "h264_main_mp3_@.mp4.ISOM");
    EXPECT_EQ(film["frame"], 7);
    EXPECT_EQ(film["hardwareAllowed"], true);
    EXPECT_EQ(film["pcm"], nullptr);
    EXPECT_THAT(film["ffmpeg"].get<std::string>(), testing::HasSubstr("a\n\"film\""));
    EXPECT_EQ(film["arguments"][0], "ffmpeg");
    EXPECT_EQ(film["arguments"].back(), "file:it's a\\x0a\"film\" $HOME.mpg.transcoded.mp4");
    EXPECT_EQ(film["argumentsHex"].back(),
              tool::hexBytes("file:" + std::string(kFilm) + ".transcoded.mp4"));
    EXPECT_EQ(song["frame"], nullptr);
    EXPECT_EQ(song["hardwareAllowed"], nullptr);
    EXPECT_EQ(song["mime"], "audio/wav");
    EXPECT_EQ(song["dlnaProfile"], "LPCM");
    EXPECT_EQ(song["pcm"],
              Json({{"seconds", 2}, {"bytes", 352844}, {"headerBytes", 44}, {"frames", 88200}}));
    EXPECT_EQ(json["files"][2]["command"], nullptr);
    EXPECT_EQ(json["files"][2]["error"], nullptr);
    EXPECT_EQ(json["files"][3]["outcome"], "unreadable");
    EXPECT_EQ(json["summary"]["files"], 4);
}

TEST_F(Command, IsTheSameForManyFiles)
{
    const Words media = {"song.flac", kFilm, "kept.avi"};
    const std::string once = command({"--shell", media[0], media[1], media[2]}).out;
    std::string expected;
    Words words = {"--shell"};
    for (int i = 0; i < 20; ++i) {
        words.insert(words.end(), media.begin(), media.end());
        expected += once;
    }
    const auto result = command(words);
    EXPECT_EQ(result.out, expected);
    EXPECT_EQ(result.err, ""); // the library's own lines stay out
}

TEST_F(Command, SaysWhenThereIsNoContainerOption)
{
    s_Dir->write("any.xml", R"(<DEVICE NAME="Any"><MUSIC>
      <ACODEC NAME="any"><FORMAT NAME="any"/></ACODEC>
    </MUSIC></DEVICE>)");
    make("-map 1 -f caf -c:a pcm_s16be", "song.caf");
    const std::string why =
        "the profile names no container for the output, and there is no option for caf";
    const auto result = command({"-p", "any.xml", "--force", "song.caf"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, testing::StartsWith("song.caf: " + why + "\n"));
    const Json json = Json::parse(command({"-p", "any.xml", "--force", "--json", "song.caf"}).out);
    EXPECT_EQ(json["files"][0]["error"], Json({{"code", "no-container-option"}, {"message", why}}));
    EXPECT_EQ(json["files"][0]["command"], nullptr);
}

TEST(TranscodingPage, ShowsWhatItsCommandsPrint)
{
    const std::string page = VORNAK_SOURCE_DIR "/docs/transcoding.md";
    const TempDir dir;
    std::ifstream file(page);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    const std::size_t profile = text.find("<DEVICE"), end = text.find("```", profile);
    dir.write("tv.xml", text.substr(profile, end - profile));

    const std::vector<DocExample> examples = readDocExamples(page);
    ASSERT_EQ(examples.size(), 6U);
    const std::string tool = std::filesystem::path(VORNAK_CLI).parent_path();
    for (const DocExample &example : examples) {
        const auto result =
            run({"sh", "-c", "cd \"$1\"; PATH=$2:$PATH; exec 2>&1; " + example.command, "sh",
                 dir.path(), tool});
        EXPECT_EQ(result.out, example.output) << example.command;
    }
}

TEST_F(Command, RefusesBadUsage)
{
    for (const Words &words :
         {Words{"--dialect", "3", "song.flac"}, Words{"--json", "--shell", "song.flac"},
          Words{"--dialect", "x", "song.flac"}, Words{}})
        EXPECT_EQ(command(words).status, 2);
}

} // namespace
} // namespace vornak::test
