// vornak profile show: the loaded tables, for people and for programs.
#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace vornak::test {
namespace {

constexpr const char *kProfile = R"(<DEVICE NAME="Small player">
<MUSIC>
  <ACODEC NAME="foo"/>
  <ACODEC NAME="aac" PROFILE="he|lc" MAXCHANNELS="2" MINCHANNELS="1" MINFREQUENCY="44100" MAXBITRATE="320K"
          OPTION="-c:a aac">
    <FORMAT NAME="mp4" SUBTYPE="isom" MIME="audio/mp4" PN="AAC_ISO" OPTION="-f mp4"/>
    <FORMAT NAME="any" NONSEEKABLE="1" NOTRANSCODE="1"/>
  </ACODEC>
</MUSIC>
<VIDEO>
  <VCODEC NAME="h264" LEVEL="41" MAXWIDTH="720" MAXHEIGHT="576" TOLERANCE="8"
          MINWIDTH="320" PLAY_EXCEPTION="interlaced|vfr" VATRANSCODE="1" FRAME="25"
          NOTRANSCODE="1">
    <ACODEC NAME="*"><FORMAT NAME="nothing"/></ACODEC>
  </VCODEC>
</VIDEO>
</DEVICE>
)";

TEST(ProfileShow, PrintsATree)
{
    const TempDir dir;
    const ProcessResult result = run({VORNAK_CLI, "profile", "show", dir.write("p.xml", kProfile)});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, R"(Small player
MUSIC: 1, and 1 ACODEC left out
  0 aac (line 4)
    profile lc|he, at most 2 channels, at least 1 channel, at least 44100 Hz, at most 320000 bit/s
    OPTION: -c:a aac
    containers: 2
      0 mp4/isom (line 6)
        MIME: audio/mp4
        PN: AAC_ISO
        OPTION: -f mp4
      1 any (line 7)
        NONSEEKABLE: 1
        NOTRANSCODE: 1
VIDEO: 1
  0 h264 (line 11)
    level at most 41, within 8 pixels of 720x576, half a pair of sizes (320x0, no limit), but not interlaced|vfr
    VATRANSCODE: 1
    FRAME: 25
    NOTRANSCODE: 1
    audio: 1
      0 any (line 14)
        no limits
        containers: no valid FORMAT
)");
}

TEST(ProfileShow, PrintsAJsonDocument)
{
    const TempDir dir;
    const std::string path = dir.write("p.xml", kProfile);
    const ProcessResult result = run({VORNAK_CLI, "profile", "show", path, "--json"});
    EXPECT_EQ(result.status, 0);
    auto json = nlohmann::json::parse(result.out);
    EXPECT_EQ(json["path"], path);
    json.erase("path");
    json.erase("pathHex");
    EXPECT_EQ(json, nlohmann::json::parse(R"({
        "document": "vornak-profile", "version": 1, "device": "Small player", "warnings": [],
        "music": [{
            "position": 0, "line": 4, "codec": "aac", "codecId": 86018,
            "profiles": ["lc", "he"], "profileBits": 9437184, "level": 0,
            "maxChannels": 2, "minChannels": 1, "maxSampleRate": 0, "minSampleRate": 44100,
            "maxBitrate": 320000, "minBitrate": 0, "option": "-c:a aac", "noTranscode": 0,
            "containers": [
                {"position": 0, "line": 6, "container": "mp4/isom", "formatId": 393224,
                 "mime": "audio/mp4", "pn": "AAC_ISO", "option": "-f mp4",
                 "nonSeekable": 0, "noTranscode": 0},
                {"position": 1, "line": 7, "container": "any", "formatId": 0,
                 "mime": null, "pn": null, "option": null, "nonSeekable": 1, "noTranscode": 1}]}],
        "video": [{
            "position": 0, "line": 11, "codec": "h264", "codecId": 28,
            "profiles": [], "profileBits": 0, "level": 41,
            "maxWidth": 720, "maxHeight": 576, "minWidth": 320, "minHeight": 0, "tolerance": 8,
            "maxBitrate": 0, "minBitrate": 0,
            "playExceptions": ["interlaced", "vfr"], "playExceptionBits": 129,
            "option": null, "vaTranscode": 1, "frame": 25, "noTranscode": 1,
            "audio": [{
                "position": 0, "line": 14, "codec": "any", "codecId": 0,
                "profiles": [], "profileBits": 0, "level": 0, "maxChannels": 0, "minChannels": 0,
                "maxSampleRate": 0, "minSampleRate": 0, "maxBitrate": 0, "minBitrate": 0,
                "option": null, "noTranscode": 0, "containers": []}]}]})"))
        << result.out;
}

TEST(ProfileShow, WarnsAndGoesOn)
{
    const TempDir dir;
    const std::string path = dir.write(
        "p.xml", "<DEVICE NAME=\"T\"><MUSIC><ACODEC NAME=\"aac\" PROFILE=\"\033[31m\"><FORMAT/>"
                 "</ACODEC></MUSIC></DEVICE>");
    const ProcessResult result = run({VORNAK_CLI, "profile", "show", path});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err.find('\033'), std::string::npos);
    EXPECT_NE(result.err.find("skip unknow audio profile name: \\x1b[31m"), std::string::npos)
        << result.err;
    EXPECT_EQ(result.out, "T\nMUSIC: 1\n  0 aac (line 1)\n    no limits\n"
                          "    containers: no valid FORMAT\nVIDEO: none\n");
}

} // namespace
} // namespace vornak::test
