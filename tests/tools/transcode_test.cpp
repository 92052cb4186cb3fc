// vornak transcode and vornak length, with real clips, a real ffmpeg and some that fail.
#include "tests/tools/transcode_clips.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace vornak::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;

// A player that gets what it doesn't take, and one that must get nothing else.
constexpr const char *kWrong = R"(<DEVICE NAME="Wrong">
  <MUSIC>
    <ACODEC NAME="mp3" MAXCHANNELS="1" OPTION="-c:a libmp3lame -ac 2">
      <FORMAT NAME="mp3" OPTION="-f mp3"/>
    </ACODEC>
  </MUSIC>
  <VIDEO>
    <VCODEC NAME="h264" OPTION="-c:v nosuch">
      <ACODEC NAME="mp3" OPTION="-c:a libmp3lame"><FORMAT NAME="avi" OPTION="-f avi"/></ACODEC>
    </VCODEC>
  </VIDEO>
</DEVICE>
)";
constexpr const char *kForbids = R"(<DEVICE NAME="Forbids">
  <MUSIC>
    <ACODEC NAME="mp3"><FORMAT NAME="mp3" NONSEEKABLE="1" NOTRANSCODE="1"/></ACODEC>
  </MUSIC>
</DEVICE>
)";
class Transcode : public TranscodeClips {
protected:
    static void SetUpTestSuite()
    {
        TranscodeClips::SetUpTestSuite();
        s_Dir->write("wrong.xml", kWrong);
        s_Dir->write("forbids.xml", kForbids);
        const auto pcm = [](const char *name, const char *codec, const char *container) {
            s_Dir->write(name, fmt::format(R"(<DEVICE NAME="Pcm"><MUSIC>
<ACODEC NAME="pcm_s16le" OPTION="-c:a {} -ar 44100 -ac 2"><FORMAT NAME="wav" OPTION="{}"/></ACODEC>
</MUSIC></DEVICE>)",
                                           codec, container));
        };
        pcm("pcm-plain.xml", "pcm_s16le", "-f wav");
        pcm("pcm-bext.xml", "pcm_s16le", "-f wav -write_bext 1");
        pcm("pcm-raw.xml", "pcm_s16le", "-f s16le");
        pcm("pcm-aiff.xml", "pcm_s16be", "-f aiff");
        pcm("pcm-aifc.xml", "pcm_s16le", "-f aiff");
        make("tracks.mkv", "testsrc2=s=160x120:r=25", "c=stereo:s=44100",
             "-map 0:v -map 1:a -map 1:a -c:v mpeg4 -c:a flac -ac:a:1 1 -t 1");
        make("other-rate.flac", "", "c=mono:s=48000", "-t 3");
        make("fraction.flac", "", "c=stereo:s=44100", "-t 2.6");
    }
};

TEST_F(Transcode, KeepsTheLimitsThatItsRulesGive)
{
    const struct {
        const char *dialect, *media, *streams;
    } cases[] = {
        {"1", "film.mkv", "h264,160,120\nac3,44100,2\n"},
        {"2", "film.mkv", "h264,160,120\nac3,44100,2\n"},
        {"1", "song.flac", "mp3,32000,1\n"},
        {"2", "song.flac", "mp3,32000,1\n"},
    };
    for (const auto &c : cases) {
        const auto made = vornak({"transcode", "-p", "limits.xml", "--dialect", c.dialect, c.media,
                                  "-o", "limited", "--force", "--verify"});
        EXPECT_EQ(made.status, 0) << made.err;
        EXPECT_EQ(made.err, "");
        EXPECT_THAT(made.out, AllOf(HasSubstr("limited: made from "),
                                    EndsWith("limited: verified, it is sent as it is\n")));
        EXPECT_EQ(probed("limited", "stream=codec_name,width,height,sample_rate,channels"),
                  c.streams);
    }
}

TEST_F(Transcode, NamesWhyItsOutputIsNotTaken)
{
    s_Dir->write("wrong.mp3", "old");
    const auto before = names();
    const auto made = vornak(
        {"transcode", "-p", "wrong.xml", "song.flac", "-o", "wrong.mp3", "--force", "--verify"});
    EXPECT_EQ(made.status, 1);
    EXPECT_EQ(made.out, "");
    EXPECT_EQ(made.err, "vornak: wrong.mp3: not verified, it would not be sent as it is: "
                        "audio: 2 channels, rule 0 (mp3, line 3) allows 1\n");
    EXPECT_EQ(contentOf("wrong.mp3"), "old"); // what isn't verified replaces nothing
    EXPECT_EQ(names(), before);
}

TEST_F(Transcode, TakesTheTrackThatIsAssigned)
{
    for (const auto &[track, channels] : {std::pair("1", "2\n"), std::pair("2", "1\n")}) {
        const auto made = vornak({"transcode", "-p", "limits.xml", "--audio-track", track,
                                  "tracks.mkv", "-o", "track", "--force", "--verify"});
        EXPECT_EQ(made.status, 0) << made.err;
        EXPECT_THAT(probed("track", "stream=channels"), EndsWith(channels));
    }
}

TEST_F(Transcode, LeavesAloneWhatNeedsNothing)
{
    auto result = vornak({"transcode", "-p", "limits.xml", "song.mp3", "-o", "copy.mp3"});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "vornak: song.mp3: needs no transcoding, it is sent as it is (--copy "
                          "copies it)\n");
    EXPECT_FALSE(names().contains("copy.mp3"));

    result = vornak({"transcode", "-p", "limits.xml", "song.mp3", "-o", "copy.mp3", "--copy"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "copy.mp3: copied, it is sent as it is\n");
    EXPECT_EQ(contentOf("copy.mp3"), contentOf("song.mp3"));

    result = vornak({"transcode", "-p", "limits.xml", "song.mp3", "-o", "always.mp3", "--always"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "always.mp3: made from song.mp3 (audio)\n");
}

TEST_F(Transcode, KeepsAnOutputThatExists)
{
    s_Dir->write("old", "old");
    std::filesystem::create_symlink("old", *s_Dir / "link");
    std::filesystem::create_symlink("gone", *s_Dir / "dangling");
    std::filesystem::create_directory(*s_Dir / "folder");
    const auto before = names();
    const struct {
        const char *output;
        bool force;
        const char *error;
    } cases[] = {
        {"old", false, "old: exists already and is kept; --force replaces it"},
        {"link", false, "link: exists already and is kept; --force replaces it"},
        {"dangling", false, "dangling: exists already and is kept; --force replaces it"},
        {"dangling", true, "dangling: No such file or directory"},
        {"folder", true, "folder: is no regular file, so it can't be replaced"},
        {"/dev/null", true, "/dev/null: is no regular file, so it can't be replaced"},
        {"nowhere/out", false, "can't write into nowhere: No such file or directory"},
        {"old/out", false, "can't write into old: Not a directory"},
        {"folder/", true, "folder/: Is a directory"},
        {"./song.flac", true, "./song.flac: is the file to transcode; name another output"},
    };
    for (const auto &c : cases) {
        Words words = {"transcode", "-p", "limits.xml", "song.flac", "-o", c.output};
        if (c.force) words.push_back("--force");
        const auto result = vornak(words);
        EXPECT_EQ(result.status, 2) << c.output;
        EXPECT_EQ(result.err, std::string("vornak: ") + c.error + "\n");
        EXPECT_EQ(contentOf("old"), "old");
        EXPECT_EQ(names(), before);
    }
    EXPECT_EQ(
        vornak({"transcode", "-p", "limits.xml", "song.flac", "-o", "link", "--force"}).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(*s_Dir / "link"));
    EXPECT_GT(contentOf("old").size(), 3U); // the file behind the link
}

TEST_F(Transcode, ShowsHowFfmpegFails)
{
    const auto before = names();
    auto result = vornak({"transcode", "-p", "wrong.xml", "film.mkv", "-o", "fails.avi"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err,
                MatchesRegex("(vornak: ffmpeg: [^\n]*\n)*vornak: ffmpeg: Unknown encoder 'nosuch'\n"
                             "(vornak: ffmpeg: [^\n]*\n)*"
                             "vornak: film.mkv: ffmpeg failed with exit status 1\n"));
    EXPECT_EQ(names(), before);

    const std::string failing =
        program("failing", "for i in 1 2 3 4 5 6 7 8 9 10 11 12; do "
                           "printf 'line %s \\033[31m\\n' $i >&2; done; exit 42");
    result =
        vornak({"transcode", "-p", "limits.xml", "film.mkv", "-o", "fails", "--ffmpeg", failing});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, testing::StartsWith("vornak: " + failing + ": line 3 \\x1b[31m\n"));
    EXPECT_THAT(result.err, EndsWith(": line 12 \\x1b[31m\nvornak: film.mkv: " + failing +
                                     " failed with exit status 42\n"));

    result =
        vornak({"transcode", "-p", "limits.xml", "film.mkv", "-o", "fails", "--ffmpeg", "/gone"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "vornak: can't run /gone: No such file or directory (--ffmpeg names "
                          "another program)\n");
    EXPECT_FALSE(names().contains("fails"));
}

TEST_F(Transcode, RefusesWhatTheProfileForbids)
{
    const auto result = vornak({"transcode", "-p", "forbids.xml", "song.flac", "-o", "forbidden"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err,
                testing::StartsWith("vornak: song.flac: refused, NOTRANSCODE forbids to "
                                    "transcode: audio: no rule for flac"));
    EXPECT_EQ(vornak({"transcode", "-p", "forbids.xml", "film.mkv", "-o", "forbidden"}).status, 1);
    EXPECT_EQ(vornak({"transcode", "-p", "forbids.xml", "gone", "-o", "forbidden"}).status, 1);
    EXPECT_FALSE(names().contains("forbidden"));
}

TEST_F(Transcode, WorksOnAnyName)
{
    for (const std::string name : {"-dash.flac", "two:points.flac", "it's \"a\" %d $(song)\n.flac",
                                   "http:song.flac", "\xFF\033[31m"}) {
        std::filesystem::copy_file(*s_Dir / "song.flac", *s_Dir / name);
        const auto result =
            vornak({"transcode", "-p", "limits.xml", "-o", name + ".mp3", "--", name});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.out.find('\033'), std::string::npos);
        EXPECT_TRUE(names().contains(name + ".mp3"));
    }
}

// ffmpeg works at the speed of playing here, so that there is something to draw.
TEST_F(Transcode, ShowsItsProgressOnATerminal)
{
    const std::string slow = program("slow", "exec ffmpeg -re \"$@\"");
    const auto result =
        run({"script", "-qefc",
             std::string("stty cols 70; cd ") + s_Dir->path().string() + "; " + VORNAK_CLI +
                 " transcode -p limits.xml film.mkv -o shown --force --ffmpeg " + slow,
             "/dev/null"});
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_THAT(result.out, testing::ContainsRegex(
                                "\r\\[#+ *\\] +[0-9]+%  [01]\\.[0-9]x  0:0[0-9] left\033\\[K"));
    EXPECT_THAT(result.out, HasSubstr("\r\033[Kshown: made from film.mkv (video)"));
    const auto silent =
        vornak({"transcode", "-p", "limits.xml", "film.mkv", "-o", "shown", "--force"});
    EXPECT_EQ(silent.err, ""); // nobody to show anything to
}

TEST_F(Transcode, LengthIsWhatComesOut)
{
    const struct {
        const char *profile, *media;
        int status;
        const char *out;
    } cases[] = {
        {"pcm.xml", "song.flac", 0,
         "song.flac: 529244 bytes for 3 s, 44 of them the header; 132300 frames\n"
         "produced: 529244 bytes, 44 of them the header: the sizes agree\n"},
        {"pcm.xml", "other-rate.flac", 0,
         "other-rate.flac: 529244 bytes for 3 s, 44 of them the header; 132300 frames\n"
         "produced: 529244 bytes, 44 of them the header: the sizes agree\n"},
        {"pcm-raw.xml", "song.flac", 0,
         "song.flac: 529200 bytes for 3 s, 0 of them the header; 132300 frames\n"
         "produced: 529200 bytes, 0 of them the header: the sizes agree\n"},
        {"pcm-aiff.xml", "song.flac", 0,
         "song.flac: 529254 bytes for 3 s, 54 of them the header; 132300 frames\n"
         "produced: 529254 bytes, 54 of them the header: the sizes agree\n"},
        {"pcm-plain.xml", "song.flac", 1,
         "song.flac: 529244 bytes for 3 s, 44 of them the header; 132300 frames\n"
         "produced: 529278 bytes, 78 of them the header: the sizes differ\n"
         "  header: +34 bytes\n"},
        {"pcm-bext.xml", "song.flac", 1,
         "song.flac: 529244 bytes for 3 s, 44 of them the header; 132300 frames\n"
         "produced: 529888 bytes, 688 of them the header: the sizes differ\n"
         "  header: +644 bytes\n"},
        {"pcm-aifc.xml", "song.flac", 1,
         "song.flac: 529254 bytes for 3 s, 54 of them the header; 132300 frames\n"
         "produced: 529272 bytes, 72 of them the header: the sizes differ\n"
         "  header: +18 bytes\n"},
        {"pcm.xml", "fraction.flac", 1,
         "fraction.flac: 529244 bytes for 3 s, 44 of them the header; 132300 frames\n"
         "produced: 458684 bytes, 44 of them the header: the sizes differ\n"
         "  samples: -70560 bytes\n"},
    };
    for (const auto &c : cases) {
        const auto result = vornak({"length", "-p", c.profile, "--verify", c.media});
        EXPECT_EQ(result.status, c.status) << c.profile << result.err;
        EXPECT_EQ(result.out, c.out) << c.profile;
    }
}

TEST_F(Transcode, LengthSaysWhyThereIsNone)
{
    const struct {
        const char *profile, *media, *error;
    } cases[] = {
        {"limits.xml", "film.mkv", "film.mkv: no estimate, it is a video"},
        {"limits.xml", "song.mp3",
         "song.mp3: no estimate, the sound is not transcoded (--force estimates it all the same)"},
        {"forbids.xml", "song.flac", "song.flac: no estimate, it is refused"},
        {"limits.xml", "song.flac", "song.flac: no estimate, the rule's OPTION names no PCM of "},
        {"limits.xml", "limits.xml", "limits.xml: "},
    };
    for (const auto &c : cases) {
        const auto result = vornak({"length", "-p", c.profile, c.media});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, testing::StartsWith(std::string("vornak: ") + c.error));
    }
}

} // namespace
} // namespace vornak::test
