// vornak profile new and import: what becomes of what is said, and of files that are no profiles.
#include "tools/check/checks.h"
#include "tools/import/foreign_profile.h"
#include "tools/import/profile_text.h"

#include "tests/support/doc_examples.h"
#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <filesystem>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sstream>

namespace vornak::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

const std::string kFolder = VORNAK_SOURCE_DIR "/tests/tools/import/";

std::string contentOf(const std::string &path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A profile in one line for each rule, without what all have: "h264 LEVEL=41; aac".
struct Made {
    std::string video, music, remarks;
};

std::string attributesOf(pugi::xml_node rule)
{
    std::string text = rule.attribute("NAME").value();
    for (const pugi::xml_attribute attribute : rule.attributes())
        if (std::string_view(attribute.name()) != "NAME" &&
            std::string_view(attribute.name()) != "OPTION")
            text += fmt::format(" {}={}", attribute.name(), attribute.value());
    return text;
}

std::string rulesOf(pugi::xml_node section, const char *name)
{
    std::string text;
    for (const pugi::xml_node rule : section.children(name))
        text += (text.empty() ? "" : "; ") + attributesOf(rule);
    return text;
}

Made make(const tool::ImportOptions &options)
{
    tool::Player player = tool::readForeignProfile(options);
    const tool::DeviceRules rules = tool::makeRules(player);
    pugi::xml_document document;
    EXPECT_TRUE(document.load_string(tool::profileText(player, rules, "Made.").c_str()));
    const pugi::xml_node device = document.child("DEVICE");
    Made made{rulesOf(device.child("VIDEO"), "VCODEC"), rulesOf(device.child("MUSIC"), "ACODEC"),
              ""};
    for (const tool::Remark &remark : player.remarks) made.remarks += remarkText(remark) + "\n";
    return made;
}

Made makeOf(const std::string &json)
{
    const TempDir folder;
    return make({folder.write("foreign.json", json), {}, {}, {}, false});
}

TEST(ProfileImport, ConditionsOnPictures)
{
    constexpr const char *kFree = "baseline | constrained_baseline | main | extended | high | "
                                  "multiview_high | stereo_high";
    const std::string eightBit =
        fmt::format("h264 PROFILE={} PLAY_EXCEPTION=10bit | 12bit; h264 PROFILE=high10 |", kFree);
    const struct {
        const char *test, *property, *value;
        std::string rules; // how they begin
        const char *remark;
    } cases[] = {
        {"LessThanEqual", "Width", "1280",
         "h264 MAXWIDTH=1280 MAXHEIGHT=1080; h264 MAXWIDTH=1280 "
         "MAXHEIGHT=65535",
         ""},
        {"GreaterThanEqual", "Height", "480", "h264 MINWIDTH=1 MINHEIGHT=480", ""},
        {"Equals", "Width", "720", "h264 MAXWIDTH=720 MAXHEIGHT=1080 MINWIDTH=720", ""},
        {"NotEquals", "Height", "1088", "h264 MAXWIDTH=1920 MAXHEIGHT=1087; h264", ""},
        {"LessThanEqual", "VideoBitrate", "8000000", "h264 MAXBITRATE=8M", ""},
        {"LessThanEqual", "VideoBitrate", "3000000000", "h264", ""},
        {"LessThanEqual", "VideoLevel", "41", "h264 LEVEL=41", ""},
        {"LessThanEqual", "VideoLevel", "45", "h264 LEVEL=42", ""},
        {"LessThanEqual", "VideoLevel", "62", "h264", ""},
        {"EqualsAny", "VideoLevel", "9|10|11|41", "h264 LEVEL=11", "limits levels upwards alone"},
        {"EqualsAny", "VideoProfile", "High|Constrained Baseline",
         "h264 PROFILE=constrained_baseline | high", ""},
        {"EqualsAny", "VideoProfile", "main|turbo", "h264 PROFILE=main", "by the name \"turbo\""},
        {"NotEquals", "VideoProfile", "high 10",
         "h264 PROFILE=baseline | constrained_baseline | main | extended | high | high422 |", ""},
        {"LessThanEqual", "VideoBitDepth", "8", eightBit, "with 10bit, 12bit a rule has"},
        {"LessThanEqual", "VideoBitDepth", "12", "h264", ""},
        {"NotEquals", "IsInterlaced", "true", "h264 PLAY_EXCEPTION=interlaced | 10bit |",
         "alone, too"},
        {"EqualsAny", "VideoRangeType", "SDR",
         fmt::format("h264 PROFILE={} PLAY_EXCEPTION=hdr | dolby_vision;", kFree),
         "counts as these"},
        {"EqualsAny", "VideoRangeType", "SDR|HDR10", "h264 PROFILE=", "HDR10 and HLG are one"},
        {"LessThanEqual", "VideoFramerate", "30", "h264", "doesn't limit the frame rate"},
        {"NotEquals", "IsAnamorphic", "true", "h264", "doesn't limit the shape of pixels"},
        {"LessThanEqual", "AudioChannels", "2", "h264", "no property of a picture"},
        {"LessThanEqual", "Brightness", "2", "h264", "no property is known by the name"},
    };
    for (const auto &c : cases) {
        const Made made = makeOf(fmt::format(R"({{"DirectPlayProfiles": [
            {{"Type": "Video", "Container": "mkv", "VideoCodec": "h264", "AudioCodec": "aac"}}],
            "CodecProfiles": [{{"Type": "Video", "Codec": "h264", "Conditions": [
            {{"Condition": "{}", "Property": "{}", "Value": "{}", "IsRequired": false}}]}}]}})",
                                             c.test, c.property, c.value));
        EXPECT_THAT(made.video + ";", testing::StartsWith(c.rules)) << c.property << " " << c.value;
        EXPECT_THAT(made.remarks, HasSubstr(c.remark)) << c.property << " " << c.value;
        EXPECT_EQ(made.remarks.empty(), *c.remark == '\0') << made.remarks;
    }
}

TEST(ProfileImport, ConditionsOnSound)
{
    const struct {
        const char *codec, *test, *property, *value, *rules, *remark;
    } cases[] = {
        {"aac", "LessThanEqual", "AudioChannels", "2", "aac MAXCHANNELS=2", ""},
        {"aac", "Equals", "AudioChannels", "2", "aac MAXCHANNELS=2 MINCHANNELS=2", ""},
        {"aac", "EqualsAny", "AudioProfile", "LC|HE-AAC", "aac PROFILE=lc | he", ""},
        {"aac", "LessThanEqual", "AudioSampleRate", "48000", "aac MAXFREQUENCY=48000", ""},
        {"aac", "LessThanEqual", "AudioSampleRate", "64000", "aac MAXFREQUENCY=50400",
         "usual sample rates"},
        {"aac", "LessThanEqual", "AudioBitrate", "320000", "aac MAXBITRATE=320K", ""},
        {"flac", "LessThanEqual", "AudioBitDepth", "16", "flac", "the bits of a sample of flac"},
        {"mp3", "LessThanEqual", "AudioBitDepth", "16", "mp3", ""}, // has no such bits
        {"mp3", "Equals", "AudioProfile", "LC", "mp3", ""},
        {"pcm_s16le", "LessThanEqual", "AudioBitDepth", "16", "pcm_s16le", ""},
        {"mp3", "Equals", "IsSecondaryAudio", "false", "mp3", "which of several audio tracks"},
    };
    for (const auto &c : cases) {
        const Made made = makeOf(fmt::format(R"({{"DirectPlayProfiles": [
            {{"Type": "Audio", "Container": "mkv", "AudioCodec": "{0}"}}],
            "CodecProfiles": [{{"Type": "Audio", "Codec": "{0}", "Conditions": [
            {{"Condition": "{1}", "Property": "{2}", "Value": "{3}", "IsRequired": false}}]}}]}})",
                                             c.codec, c.test, c.property, c.value));
        EXPECT_EQ(made.music, c.rules) << c.property << " " << c.value;
        EXPECT_THAT(made.remarks, HasSubstr(c.remark));
        EXPECT_EQ(made.remarks.empty(), *c.remark == '\0') << made.remarks;
    }
}

TEST(ProfileImport, NamesWhatNoRuleSays)
{
    const Made made = makeOf(R"({"DirectPlayProfiles": [
        {"Type": "Video", "Container": "mkv", "VideoCodec": "h264", "AudioCodec": "aac"},
        {"Type": "Video", "Container": "mkv", "VideoCodec": "hevc", "AudioCodec": "cook"},
        {"Type": "Audio", "Container": "mp3", "AudioCodec": "mp3,any,lpcm"}]})");
    EXPECT_EQ(made.video, "h264");
    EXPECT_EQ(made.music, "mp3");
    for (const char *const remark :
         {"hevc: no sound that is played with it can be made, and every VCODEC needs one",
          "no audio codec is known by the name \"any\"", "by the name \"lpcm\""})
        EXPECT_THAT(made.remarks, HasSubstr(remark));
}

TEST(ProfileImport, ReadsARequestsBodyOnStandardInput)
{
    const TempDir folder;
    const std::string body = folder.write("body.json", R"({"DeviceProfile": {"Name": "Set",
        "DirectPlayProfiles": [{"Type": "Video", "Container": "mkv", "VideoCodec": "mpeg4,h264",
        "AudioCodec": "aac"}], "CodecProfiles": [{"Type": "Video", "Codec": "h264", "Conditions": [
        {"Condition": "LessThanEqual", "Property": "VideoLevel", "Value": "4.1"}]}]}})");
    const ProcessResult result =
        run({"sh", "-c", "\"$0\" profile import - <\"$1\"", VORNAK_CLI, body});
    EXPECT_THAT(result.out, AllOf(HasSubstr("<DEVICE NAME=\"Set\">"), HasSubstr("\"mpeg4\""),
                                  testing::Not(HasSubstr("\"h264\""))));
    EXPECT_EQ(result.err, "vornak: standard input:4: stricter: DeviceProfile.CodecProfiles[0]."
                          "Conditions[0].VideoLevel LessThanEqual 4.1: no level as a stream has "
                          "it, so nothing keeps it; 4.1 is written 41\n");
}

TEST(ProfileImport, DolbyVisionIsRefusedWithoutTurningAwayTenBits)
{
    const Made made = makeOf(R"({"DirectPlayProfiles": [
        {"Type": "Video", "Container": "mkv", "VideoCodec": "hevc", "AudioCodec": "ac3"}],
        "CodecProfiles": [{"Type": "Video", "Codec": "hevc", "Conditions": [{"Condition":
        "NotEquals", "Property": "VideoRangeType", "Value": "DOVI", "IsRequired": false}]}]})");
    EXPECT_THAT(made.video, AllOf(HasSubstr("| qpel NOTRANSCODE=1; hevc PROFILE=main10 |"),
                                  EndsWith("hevc PROFILE=main10 | rext | scc")));
    EXPECT_THAT(made.remarks, HasSubstr("refused, and not transcoded either"));
}

/// Runs the tool on a file; no file may appear beside it.
ProcessResult import(const TempDir &folder, const std::string &name,
                     std::vector<std::string> more = {})
{
    std::vector<std::string> words = {VORNAK_CLI, "profile", "import", folder / name};
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
}

std::string repeated(const std::string &text, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

TEST(ProfileImport, FilesThatAreNoProfiles)
{
    const std::string deepXml = "<dlna-profiles>" + repeated("<a>", 200'000);
    const std::string direct = R"({"Type": "Video"})";
    const struct {
        const char *name;
        std::string content;
        const char *complaint; // after the file's name
    } cases[] = {
        {"cut.json", "{\"Name\": 1,\n\"DirectPlayProfiles\": [{",
         ":2: not well-formed JSON: syntax"},
        {"number.json", "{\n\"DirectPlayProfiles\": 5\n}", ":2: DirectPlayProfiles is no list"},
        {"numbers.json", "{\"DirectPlayProfiles\":\n[1]}", ":2: DirectPlayProfiles is no list"},
        {"other.json", "{\"a\": 1}", ":1: it is no device profile of Jellyfin"},
        {"nothing.json", "{\"DirectPlayProfiles\": []}", "nothing that is played"},
        {"deep.json", "{\"a\":\n" + repeated("[", 1'000'000), ":2: lists and objects lie deeper"},
        {"values.json", "{\"a\": [" + repeated("1,", 300'000) + "1]}", ":1: it holds more values"},
        {"long.json", "{\"DirectPlayProfiles\": [" + repeated(direct + ",", 1000) + direct + "]}",
         ":1: DirectPlayProfiles is longer"},
        {"any.json",
         "{\"CodecProfiles\": [{\"Conditions\": [{\"Condition\": \"EqualsAny\", \"Property\": "
         "\"Width\",\n\"Value\": \"" +
             repeated("1|", 1001) + "\"}]}]}",
         ":1: CodecProfiles[0].Conditions[0].Value lists more"},
        {"nul.json", std::string("{\"a\0\": 1}", 9), ":1: not well-formed JSON"},
        {"large.json", "{\"a\": \"" + repeated("0123456789", 400'001) + "\"}", ": it is larger"},
        {"text.txt", "DirectPlayProfiles", ": it is neither a JSON object"},
        {"empty", "", ": it is neither a JSON object"},
        {"cut.xml", "<dlna-profiles>\n<dlna-profile name=\"A", ":2: not well-formed XML"},
        {"deep.xml", deepXml, ":1: not well-formed XML"},
        {"other.xml", "\n<DEVICE/>", ": it is a Device profile already"},
        {"element.xml", "<profiles/>", ":1: the outermost element is profiles; it is dlna-"},
        {"names.xml", "<dlna-profiles/>", ": none of the names stands for a DLNA profile"},
        {"circle.xml", "<dlna-profiles>\n<include ref=\"./circle.xml\"/></dlna-profiles>",
         ":2: include of ./circle.xml: files include each other in a circle"},
        {"up.xml", "<dlna-profiles><include ref=\"../up.xml\"/></dlna-profiles>",
         ":1: include of ../up.xml: it lies outside the folder"},
        {"root.xml", "<dlna-profiles><include ref=\"/etc/passwd\"/></dlna-profiles>",
         ":1: include of /etc/passwd: it lies outside the folder"},
        {"link.xml", "<dlna-profiles><include ref=\"link\"/></dlna-profiles>",
         ":1: include of link: it lies outside the folder"},
        {"none.xml", "<dlna-profiles><include ref=\"none\"/></dlna-profiles>",
         ":1: include of none: there is no such file"},
    };
    const TempDir folder;
    std::filesystem::create_symlink("/etc/passwd", folder / "link");
    const std::string kept = folder.write("kept", "kept");
    for (const auto &c : cases) {
        folder.write(c.name, c.content);
        std::vector<std::string> more = {"-o", kept, "--force"};
        if (std::string_view(c.name).ends_with("xml")) more.insert(more.end(), {"--names", "A"});
        const ProcessResult result = import(folder, c.name, more);
        EXPECT_EQ(result.status, 2) << c.name;
        EXPECT_EQ(result.out, "") << c.name;
        EXPECT_THAT(result.err, HasSubstr(c.complaint)) << c.name;
        EXPECT_EQ(std::ranges::count(result.err, '\n'), 1) << result.err;
        std::filesystem::remove(folder / c.name);
    }
    EXPECT_EQ(contentOf(kept), "kept");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
}

TEST(ProfileImport, HostileNamesStayInTheirPlaces)
{
    const TempDir folder;
    folder.write("foreign.json", R"({"Name": "a\u001b[31m\n\"<&>--", "x\u001b\n-->": 1,
        "DirectPlayProfiles": [{"Type": "Video", "Container": "mp4,-->\n<VIDEO>",
        "VideoCodec": "h264", "AudioCodec": "aac"}]})");
    const ProcessResult result = import(folder, "foreign.json", {"-o", folder / "made.xml"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.err, AllOf(HasSubstr(R"(foreign.json:1: left out: x\x1b\x0a-->)"),
                                  Not(HasSubstr("\x1b"))));
    pugi::xml_document document;
    ASSERT_TRUE(document.load_file((folder / "made.xml").c_str(), pugi::parse_full));
    EXPECT_EQ(document.child("DEVICE").attribute("NAME").value(),
              std::string(R"(a\x1b[31m\x0a"<&>--)"));
    EXPECT_THAT(result.err, HasSubstr("-->\\x0a<VIDEO>"));
    EXPECT_EQ(import(folder, "foreign.json", {"-o", folder / "made.xml"}).status, 2);
}

TEST(ProfileImport, IsTheSameOnEveryRunAndNamesItsOrigins)
{
    const std::string file = kFolder + "browser.json";
    const ProcessResult once = run({VORNAK_CLI, "profile", "import", file});
    EXPECT_EQ(once.out, run({VORNAK_CLI, "profile", "import", file}).out);
    EXPECT_THAT(once.out,
                HasSubstr("From DirectPlayProfiles[1] (line 7), CodecProfiles[1] (line 28)"));
    // each remark stands in the file, too
    std::istringstream lines(once.err);
    for (std::string line; std::getline(lines, line);)
        EXPECT_THAT(once.out, HasSubstr(line.substr(8, 50))) << line;
}

TEST(ProfileImport, ThePageShowsWhatHappens)
{
    const std::string path = VORNAK_SOURCE_DIR "/docs/profile-import.md";
    const std::string page = contentOf(path), start = "```json\n";
    const std::size_t from = page.find(start) + start.size();
    const TempDir folder;
    folder.write("kitchen.json", page.substr(from, page.find("```", from) - from));
    expectDocExamples(readDocExamples(path),
                      "cd " + folder.path().string() + "; vornak() { " VORNAK_CLI " \"$@\"; }");
}

TEST(ProfileImport, DlnaProfilesByNameAndBySink)
{
    const auto importNamed = [](std::vector<std::string> names, const std::string &sink,
                                bool relaxed) {
        return make({kFolder + "dlna", {}, std::move(names), sink, relaxed});
    };
    const Made film = importNamed({"FILM_TS"}, {}, false);
    EXPECT_EQ(film.video, "h264 PROFILE=constrained_baseline | main | high LEVEL=40 MAXWIDTH=1920 "
                          "MAXHEIGHT=1080 MAXBITRATE=20M");
    EXPECT_THAT(film.remarks, AllOf(HasSubstr("common.xml:20: left out: video framerate"),
                                    HasSubstr("common.xml:10: looser: container packetsize")));
    EXPECT_THAT(importNamed({"FILM_TS"}, {}, true).video, Not(HasSubstr("MAXBITRATE")));
    EXPECT_THAT(importNamed({"SMALL_ISO"}, {}, true).video,
                EndsWith("h264 PROFILE="
                         "constrained_baseline | main | high LEVEL=40"));
    EXPECT_THAT(importNamed({"SONG", "LEVELS"}, {}, false).remarks,
                AllOf(HasSubstr(":59: stricter: video level 9.9: none is a level of h264"),
                      HasSubstr(":63: stricter: video level 4, 4.1: a rule limits")));
    const Made both = importNamed({"SONG", "SOUND", "SONGS", "PICTURE"}, {}, false);
    EXPECT_THAT(both.music, testing::StartsWith("mp3 MAXCHANNELS=2 MINFREQUENCY=16000; ac3"));
    EXPECT_THAT(both.remarks,
                AllOf(HasSubstr("SONGS: there is no such DLNA profile; did you mean SONG?"),
                      HasSubstr("no rules for streams of the type image")));
    const Made sink = importNamed({},
                                  "http-get:*:audio/mp4:DLNA.ORG_PN=SONG_ISO;DLNA.ORG_OP=01,"
                                  "http-get:*:audio/x\\,y:*,rtsp-rtp-udp:*:a:DLNA.ORG_PN=SONG,\\",
                                  false);
    EXPECT_THAT(sink.music, testing::StartsWith("aac PROFILE=lc MAXCHANNELS=2"));
    EXPECT_THAT(sink.remarks,
                AllOf(HasSubstr("audio/x,y:*: it names no"), HasSubstr("rtsp-rtp-udp"),
                      HasSubstr("left out: " + std::string(2, '\\') + ":")));
}

TEST(ProfileImport, TooManyParentsEndTheInheritance)
{
    std::string restrictions;
    for (int i = 0; i < 100; ++i)
        restrictions += fmt::format(R"(<restriction id="r{}" type="audio">{}</restriction>)", i,
                                    repeated(fmt::format(R"(<parent name="r{}"/>)", i + 1), 9));
    const TempDir folder;
    folder.write("a.xml", "<dlna-profiles><restrictions>" + restrictions +
                              R"(</restrictions><dlna-profile name="A" mime="a"><restriction
                              type="audio"><parent name="r0"/></restriction></dlna-profile>
                              </dlna-profiles>)");
    EXPECT_THAT(import(folder, "a.xml", {"--names", "A"}).err,
                HasSubstr("one of too many parents"));
}

TEST(ProfileNew, WritesWhatCheckPasses)
{
    const std::vector<std::vector<std::string>> cases = {
        {"--like", "tv"},
        {"--like", "older-tv"},
        {"--like", "phone"},
        {"--like", "desktop"},
        {"--like", "hifi"},
        {"--video", "h264:high:4.1,1920x1080", "--audio", "aac,ac3", "--container", "mp4,mpegts"},
        {"--video", "hevc:main10:5.1,3840x2160,80M", "--video", "vp9", "--audio", "opus:2,eac3:6",
         "--container", "matroska", "--name", "<&\">"},
        {"--like", "phone", "--video", "h264:baseline:3.0", "--music", "aac:he:2,pcm_s24le"},
        {"--audio", "mp3,flac,aac:5.1"},
    };
    const TempDir folder;
    for (const std::vector<std::string> &options : cases) {
        std::vector<std::string> words = {VORNAK_CLI, "profile",        "new",
                                          "-o",       folder / "a.xml", "--force"};
        words.insert(words.end(), options.begin(), options.end());
        const ProcessResult result = run(words);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(contentOf(folder / "a.xml"), HasSubstr("<!-- Transcoded to. From "));
        for (const tool::Finding &finding : tool::checkProfile(folder / "a.xml"))
            EXPECT_EQ(tool::kindOf(finding.fault).severity, tool::Severity::Note)
                << options[1] << ": " << finding.problem;
    }
}

TEST(ProfileImport, IsNotDoubtedForWhatThePlayerStates)
{
    const TempDir folder;
    const std::string foreign = folder.write(
        "player.xml",
        "<dlna-profiles><dlna-profile name=\"MINE\" mime=\"audio/flac\">"
        "<restriction type=\"container\"><field name=\"name\">"
        "<value>video/quicktime</value></field></restriction><restriction type=\"audio\">"
        "<field name=\"name\"><value>audio/mpeg</value></field><field name=\"mpegversion\">"
        "<value>4</value></field></restriction></dlna-profile></dlna-profiles>");
    const ProcessResult result =
        run({VORNAK_CLI, "profile", "import", foreign, "--names", "MINE", "-o", folder / "a.xml"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(contentOf(folder / "a.xml"), HasSubstr("ignore foreign-mime"));
    for (const tool::Finding &finding : tool::checkProfile(folder / "a.xml"))
        EXPECT_EQ(tool::kindOf(finding.fault).severity, tool::Severity::Note) << finding.problem;
}

TEST(ProfileNew, NamesWhatIsInNoVideo)
{
    const ProcessResult result = run({VORNAK_CLI, "profile", "new", "--video", "h264", "--audio",
                                      "aac:5.1,flac", "--container", "mpegts,webm", "-o", "-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("NAME=\"aac\" MAXCHANNELS=\"6\""));
    EXPECT_EQ(result.err,
              "vornak: left out: --audio flac: no --container with a --video is known to "
              "come with it\nvornak: left out: --container webm: no --video with an "
              "--audio is known to come with it\n");
}

TEST(ProfileNew, RefusesWhatItDoesNotKnow)
{
    const struct {
        std::vector<std::string> options;
        const char *complaint;
    } cases[] = {
        {{}, "say what the player takes"},
        {{"--video", "h264"}, "--video needs the sound"},
        {{"--like", "tvv"}, "there is no such player; did you mean tv?"},
        {{"--like", "tv", "--video", "h246"}, "there is no codec h246; did you mean h264?"},
        {{"--like", "tv", "--video", "aac"}, "aac is no video codec"},
        {{"--like", "tv", "--video", "h264:hihg"}, "h264 has no profile hihg; did you mean high?"},
        {{"--like", "tv", "--video", "h264:4.7"}, "h264 has no level 4.7"},
        {{"--like", "tv", "--video", "h264:41"}, "h264 has no level 41; write 4.1"},
        {{"--like", "tv", "--video", "h264,hevc"}, "give each codec a --video of its own"},
        {{"--music", "mp3:320K"}, "mp3 has no profile 320K"},
        {{"--like", "tv", "--video", "h264,1920"}, "1920 is neither a size"},
        {{"--like", "tv", "--video", "h264,1920x"}, "1920x is no size"},
        {{"--like", "tv", "--container", "mp5"}, "there is no container of that name"},
        {{"--like", "older-tv", "--video", "rv40"}, "no container of --container is known"},
        {{"--like", "tv", "--video", "rv40"}, "of these videos ffmpeg makes none"},
        {{"--music", "mp3", "-o", "/dev/null", "--force"}, "is no regular file"},
    };
    for (const auto &c : cases) {
        std::vector<std::string> words = {VORNAK_CLI, "profile", "new"};
        words.insert(words.end(), c.options.begin(), c.options.end());
        const ProcessResult result = run(words);
        EXPECT_EQ(result.status, 2) << c.complaint;
        EXPECT_THAT(result.err, HasSubstr(c.complaint));
        EXPECT_EQ(result.out, "");
    }
}

} // namespace
} // namespace vornak::test
