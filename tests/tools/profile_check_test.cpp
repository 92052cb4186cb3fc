// vornak profile check: what it finds in profiles, and what it does not.
#include "tools/check/checks.h"

#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <set>

namespace vornak::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using Ids = std::vector<std::string>;

ProcessResult check(const std::string &path, std::vector<std::string> more = {})
{
    std::vector<std::string> words = {VORNAK_CLI, "profile", "check", path};
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
}

struct Found {
    Ids ids;          // "line:id", in the order of the report
    std::string text; // for people
};

Found checkText(const std::string &xml)
{
    const TempDir dir;
    Found found{{}, xml};
    for (const tool::Finding &finding : tool::checkProfile(dir.write("profile.xml", xml))) {
        const std::string id = tool::kindOf(finding.fault).id;
        found.ids.push_back(std::to_string(finding.line) + ":" + id);
        found.text += "\n" + found.ids.back() + " " + finding.problem + "; " + finding.advice;
    }
    return found;
}

/// What the tables of this file have met, to see that they leave no kind out.
std::set<std::string> &metIds()
{
    static std::set<std::string> ids;
    return ids;
}

void expectFindings(const std::string &xml, const Ids &expected)
{
    const Found found = checkText(xml);
    EXPECT_EQ(found.ids, expected) << found.text;
    for (const std::string &id : found.ids) metIds().insert(id.substr(id.find(':') + 1));
}

/// `ids` at one line.
Ids at(int line, const Ids &ids)
{
    Ids all;
    for (const std::string &id : ids) all.push_back(std::to_string(line) + ":" + id);
    return all;
}

const std::string kMp3Rule =
    R"(<ACODEC NAME="mp3" OPTION="-c:a libmp3lame"><FORMAT NAME="mp3" MIME="m" PN="p" OPTION="-f mp3"/></ACODEC>)";
const std::string kAacRule =
    R"(<ACODEC NAME="aac" OPTION="-c:a aac"><FORMAT NAME="mp4" MIME="m" PN="p" OPTION="-f mp4"/></ACODEC>)";
const std::string kMpeg4Rule =
    R"(<VCODEC NAME="mpeg4" OPTION="-c:v mpeg4">)" + kAacRule + "</VCODEC>";

std::string device(const std::string &content)
{
    return R"(<DEVICE NAME="T">)" + content + "</DEVICE>";
}

std::string music(const std::string &rules)
{
    return device("<MUSIC>" + rules + "</MUSIC>");
}

std::string video(const std::string &rules)
{
    return device("<VIDEO>" + rules + "</VIDEO>");
}

struct AttributeCase {
    const char *attributes;
    Ids ids;
};

TEST(ProfileCheck, AttributesOfAnAudioRule)
{
    const AttributeCase cases[] = {
        {R"(MAXCHANNELS="2" MINCHANNELS="2" MAXBITRATE="320K" MINBITRATE="320k")", {}},
        {R"(MAXCHANNELS=" +6")", {}},
        {R"(MAXCHANNELS="2K")", {"suffix-on-decimal"}},
        {R"(MAXCHANNELS="two")", {"number-stops"}},
        {R"(MINCHANNELS="3" MAXCHANNELS="2")", {"min-above-max"}},
        {R"(MAXCHANNELS="")", {"empty-value"}},
        {R"(MAXCHANNELS="-1")", {"negative-limit"}},
        {R"(MAXCHANNELS="4294967298")", {"number-overflow"}},
        {R"(MAXBITRATE="1.5M")", {"number-stops"}},
        {R"(MAXBITRATE=" 320K")", {"leading-blank"}},
        {R"(MAXBITRATE="320K ")", {"number-stops"}},
        {R"(MAXBITRATE="1M5")", {"suffix-inside"}},
        {R"(MAXBITRATE="2147483647")", {}},
        {R"(MAXBITRATE="2147483648")", {"number-overflow"}},
        {R"(MAXBITRATE="3G")", {"number-stops"}},
        {R"(MINBITRATE="321K" MAXBITRATE="320K")", {"min-above-max"}},
        {R"(MAXFREQUENCY="44100" MINFREQUENCY="8K")", {}},
        {R"(MAXFREQUENCY="44.1K")", {"number-stops", "frequency-snapped"}},
        {R"(MAXFREQUENCY="44000")", {"frequency-snapped"}},
        {R"(MAXFREQUENCY="0")", {"frequency-snapped"}},
        {R"(MINFREQUENCY="96K" MAXFREQUENCY="48K")", {"min-above-max"}},
        {R"(PROFILE="lc | HE-AAC || ")", {}},
        {R"(PROFILE="lc|lcc")", {"unknown-profile"}},
        {R"(PROFILE="high")", {"foreign-profile"}},
        {R"(OPTION="-c:a libfdk_aac -b:a 192k")", {}},
        {R"(OPTION="-b:a 192k -c:a libmp3lame")", {"option-codec"}},
        {R"(OPTION="-c:a copy")", {"option-codec"}},
        {R"(OPTION="-c:a an_encoder_of_tomorrow")", {}},
        {R"(OPTION="-ac 6" MAXCHANNELS="2")", {}}, // not what is transcoded to
        {R"(NOTRANSCODE="1")", {"no-effect"}},
        {R"(NOTRANSCODE="2")", {"flag-value", "no-effect"}},
        {R"(MAXCHANELS="2")", {"unknown-attribute"}},
        {R"(MAXWIDTH="1920")", {"unknown-attribute"}},
        {R"(name="mp3")", {"unknown-attribute"}},
        {R"(MAXCHANNELS="2" MAXCHANNELS="6")", {"duplicate-attribute"}},
    };
    for (const auto &[attributes, ids] : cases)
        expectFindings(
            music(kMp3Rule + "\n<ACODEC NAME=\"aac\"\n" + attributes +
                  "><FORMAT NAME=\"mp4\" MIME=\"m\" PN=\"p\" OPTION=\"-f mp4\"/></ACODEC>"),
            at(3, ids));
}

TEST(ProfileCheck, AttributesOfAVideoRule)
{
    const AttributeCase cases[] = {
        {R"(LEVEL="41" PROFILE="main|high" MAXWIDTH="1920" MAXHEIGHT="1080" FRAME="-1")", {}},
        {R"(LEVEL="4.1")", {"number-stops", "level-scale"}},
        {R"(LEVEL="4")", {"level-scale"}},
        {R"(LEVEL="120")", {"level-scale"}},
        {R"(MAXWIDTH="1920")", {"half-size-pair"}},
        {R"(MAXWIDTH="1920" MAXHEIGHT="0")", {"half-size-pair"}},
        {R"(MINHEIGHT="576")", {"half-size-pair"}},
        {R"(TOLERANCE="8")", {"tolerance-without-sizes"}},
        {R"(TOLERANCE="8" MINWIDTH="720" MINHEIGHT="576")", {}},
        {R"(MAXWIDTH="640" MAXHEIGHT="480" MINWIDTH="640" MINHEIGHT="480")", {}},
        {R"(MAXWIDTH="640" MAXHEIGHT="480" MINWIDTH="720" MINHEIGHT="480")", {"min-above-max"}},
        {R"(TOLERANCE="8" MAXWIDTH="720" MAXHEIGHT="576" MINWIDTH="704" MINHEIGHT="576")", {}},
        {R"(TOLERANCE="7" MAXWIDTH="720" MAXHEIGHT="576" MINWIDTH="704" MINHEIGHT="576")",
         {"min-above-max"}},
        {R"(PLAY_EXCEPTION="interlaced|10bit")", {}},
        {R"(PLAY_EXCEPTION="interlaced|10bitt")", {"unknown-exception"}},
        {R"(OPTION="-c:v h264_vaapi -c:v libx264")", {}},
        {R"(OPTION="-c:v libx265")", {"option-codec"}},
        {R"(NOTRANSCODE="1")", {}},
        {R"(MAXCHANNELS="2")", {"unknown-attribute"}},
    };
    for (const auto &[attributes, ids] : cases)
        expectFindings(video(kMpeg4Rule + "\n<VCODEC NAME=\"h264\"\n" + attributes + ">" +
                             kAacRule + "</VCODEC>"),
                       at(3, ids));
}

TEST(ProfileCheck, AttributesOfAContainer)
{
    const AttributeCase cases[] = {
        {R"(NAME="mp4" MIME="m" PN="p" NONSEEKABLE="1")", {}},
        {R"(NAME="mkv" MIME="m")", {}},
        {R"(NAME="mp5" MIME="m")", {"unknown-container"}},
        {R"(NAME="mp4" SUBTYPE="isom" MIME="m" PN="p" OPTION="-f mp4")", {}},
        {R"(NAME="mp4" SUBTYPE="isim" MIME="m" PN="p")", {"unknown-subtype"}},
        {R"(NAME="wav" SUBTYPE="isom" MIME="m")", {"unknown-subtype"}},
        {R"(NAME="mp4" SUBTYPE="" MIME="m" PN="p")", {"empty-value"}},
        {R"(NAME="" MIME="m")", {"missing-name"}},
        {R"(NAME="mp4" PN="p")", {"mime-missing"}},
        {R"(NAME="mp4" MIME="m")", {"pn-missing"}},
        {R"(NAME="mp4" MIME="m" PN="p" OPTION="-f mpegts")", {"option-container"}},
        {R"(NAME="mp4" SUBTYPE="qt" MIME="m" PN="p" OPTION="-f mp4")", {"option-container"}},
        {R"(NAME="mp4" SUBTYPE="msnv" MIME="m" PN="p" OPTION="-f mp4 -brand MSNV")", {}},
        {R"(NAME="webm" MIME="m" OPTION="-f webm")", {}},
        {R"(NAME="webm" MIME="m" OPTION="-f matroska")", {"option-container"}},
        {R"(NAME="any")", {}},
        {R"(NAME="any" OPTION="-f mp4")", {"no-effect"}},
        {R"(NAME="avi" MIME="m" NOTRANSCODE="1")", {"no-effect"}},
        {R"(NAME="avi" MIME="m" NONSEEKABLE="yes")", {"number-stops"}},
        {R"(NAME="avi" MIME="m" NONSEEKABLE="2")", {"flag-value"}},
    };
    for (const auto &[attributes, ids] : cases)
        expectFindings(
            music(
                R"(<ACODEC NAME="aac" OPTION="-c:a aac"><FORMAT NAME="adts" MIME="m" PN="p" OPTION="-f adts"/>)"
                "\n<FORMAT\n" +
                std::string(attributes) + "/></ACODEC>"),
            // an element as a whole is found at its own line
            at(!ids.empty() && ids.front().ends_with("-missing") ? 2 : 3, ids));
}

TEST(ProfileCheck, TheFirstRuleOfAList)
{
    const struct {
        const char *attributes, *format;
        Ids ids;
    } cases[] = {
        {R"(NAME="aac" OPTION="-c:a aac -b:a 192k -ac 2 -ar 48000" MAXCHANNELS="2" MAXFREQUENCY="48K" MAXBITRATE="192K")",
         R"(NAME="mp4" OPTION="-f mp4")",
         {}},
        {R"(NAME="aac")", R"(NAME="mp4" OPTION="-f mp4")", {"target-without-option"}},
        {R"(NAME="aac" OPTION="-b:a 192k")",
         R"(NAME="mp4" OPTION="-f mp4")",
         {"target-without-option"}},
        {R"(NAME="any")", R"(NAME="mp4" OPTION="-f mp4")", {"target-wildcard"}},
        {R"(NAME="any" OPTION="-c:a aac")",
         R"(NAME="mp4" OPTION="-f mp4")",
         {"target-wildcard", "no-effect"}},
        {R"(NAME="aac" OPTION="-c:a aac")", R"(NAME="any")", {"target-wildcard"}},
        {R"(NAME="aac" OPTION="-c:a aac")", R"(NAME="mp4")", {"container-without-option"}},
        {R"(NAME="aac" OPTION="-c:a aac")",
         R"(NAME="mp4" OPTION="-movflags +faststart")",
         {"container-without-option"}},
        {R"(NAME="aac" OPTION="-c:a aac")", R"(NAME="mp4" NOTRANSCODE="1")", {"target-forbidden"}},
        {R"(NAME="aac" OPTION="-c:a aac -ac 6" MAXCHANNELS="2")",
         R"(NAME="mp4" OPTION="-f mp4")",
         {"option-limit"}},
        {R"(NAME="aac" OPTION="-c:a aac -ar 32000" MINFREQUENCY="44100")",
         R"(NAME="mp4" OPTION="-f mp4")",
         {"option-limit"}},
        {R"(NAME="aac" OPTION="-c:a aac -b:a 0.2M" MAXBITRATE="192K")",
         R"(NAME="mp4" OPTION="-f mp4")",
         {"option-limit"}},
    };
    for (const auto &[attributes, format, ids] : cases)
        expectFindings(music("\n<ACODEC " + std::string(attributes) +
                             R"(><FORMAT MIME="m" PN="p" )" + format + "/></ACODEC>"),
                       at(2, ids));
}

TEST(ProfileCheck, TheFirstVideoRule)
{
    const AttributeCase cases[] = {
        {R"(NAME="h264" OPTION="-c:v libx264 -profile:v high -level 4.1 -b:v 8M" PROFILE="high" LEVEL="41" MAXBITRATE="8M")",
         {}},
        {R"(NAME="h264" OPTION="-c:v libx264 -level 4.2" LEVEL="41")", {"option-limit"}},
        {R"(NAME="hevc" OPTION="-c:v libx265 -level 4.1" LEVEL="123")", {}},
        {R"(NAME="h264" OPTION="-c:v libx264 -profile:v high" PROFILE="main")", {"option-limit"}},
        {R"(NAME="h264" OPTION="-c:v libx264 -b:v 9M" MAXBITRATE="8M")", {"option-limit"}},
        {R"(NAME="h264" OPTION="-c:v libx264" NOTRANSCODE="1")", {"target-forbidden"}},
        {R"(NAME="mpeg2video" OPTION="-c:v mpeg2video" LEVEL="8")", {"levels-run-backwards"}},
        {R"(NAME="any")", {"target-wildcard"}},
        {R"(NAME="aac" OPTION="-c:v aac")", {"codec-kind"}},
    };
    for (const auto &[attributes, ids] : cases)
        expectFindings(video("\n<VCODEC " + std::string(attributes) + ">" + kAacRule + "</VCODEC>"),
                       at(2, ids));
}

TEST(ProfileCheck, WhatAnEarlierRuleLeaves)
{
    const struct {
        const char *earlier, *later;
        bool reachable;
    } cases[] = {
        {R"(MAXCHANNELS="2")", R"(MAXCHANNELS="6")", true},
        {R"(MAXCHANNELS="6")", R"(MAXCHANNELS="2")", false},
        {R"(MAXCHANNELS="6")", R"(MAXCHANNELS="6")", false},
        {"", R"(MAXCHANNELS="6" PROFILE="lc")", false},
        {R"(MINBITRATE="64K")", R"(MAXBITRATE="320K")", true},
        {R"(MINBITRATE="64K")", R"(MINBITRATE="64K" MAXBITRATE="320K")", false},
        {R"(PROFILE="lc")", "", true},
        {R"(PROFILE="lc|he")", R"(PROFILE="lc")", false},
        {R"(PROFILE="lc")", R"(PROFILE="lc|he")", true},
        {R"(MAXFREQUENCY="48K" MAXCHANNELS="2")", R"(MAXFREQUENCY="44100" MAXCHANNELS="6")", true},
    };
    for (const auto &[earlier, later, reachable] : cases) {
        std::string rules = kMp3Rule;
        for (const std::string attributes : {earlier, later})
            rules += "\n<ACODEC NAME=\"aac\" " + attributes +
                     R"(><FORMAT NAME="mp4" MIME="m" PN="p" OPTION="-f mp4"/></ACODEC>)";
        expectFindings(music(rules), reachable ? Ids{} : Ids{"3:unreachable-rule"});
    }
}

TEST(ProfileCheck, WhatAnEarlierVideoRuleLeaves)
{
    const struct {
        const char *earlier, *later;
        bool reachable;
    } cases[] = {
        {R"(MAXWIDTH="1920" MAXHEIGHT="1080")", R"(MAXWIDTH="1920" MAXHEIGHT="1088")", true},
        {R"(MAXWIDTH="1920" MAXHEIGHT="1080")", R"(MAXWIDTH="1280" MAXHEIGHT="720")", false},
        // sizes to be met leave the others
        {R"(MAXWIDTH="720" MAXHEIGHT="576" TOLERANCE="8")", R"(MAXWIDTH="640" MAXHEIGHT="480")",
         true},
        {R"(MAXWIDTH="720" MAXHEIGHT="576" TOLERANCE="8")",
         R"(MAXWIDTH="724" MAXHEIGHT="576" TOLERANCE="4")", false},
        {R"(MAXWIDTH="720" MAXHEIGHT="576" TOLERANCE="8")",
         R"(MAXWIDTH="724" MAXHEIGHT="576" TOLERANCE="5")", true},
        {R"(MAXWIDTH="728" MAXHEIGHT="584")", R"(MAXWIDTH="720" MAXHEIGHT="576" TOLERANCE="8")",
         false},
        // what the earlier one excepts is left to the later one
        {R"(PLAY_EXCEPTION="interlaced")", "", true},
        {R"(PLAY_EXCEPTION="interlaced")", R"(PLAY_EXCEPTION="interlaced|10bit")", false},
        {R"(PLAY_EXCEPTION="interlaced|10bit")", R"(PLAY_EXCEPTION="interlaced")", true},
    };
    for (const auto &[earlier, later, reachable] : cases) {
        std::string rules = kMpeg4Rule;
        for (const std::string attributes : {earlier, later})
            rules += "\n<VCODEC NAME=\"h264\" " + attributes + ">" + kAacRule + "</VCODEC>";
        expectFindings(video(rules), reachable ? Ids{} : Ids{"3:unreachable-rule"});
    }
}

TEST(ProfileCheck, WhatAnEarlierContainerLeaves)
{
    const struct {
        const char *earlier, *later;
        bool reachable;
    } cases[] = {
        {R"(NAME="mp4" SUBTYPE="isom")", R"(NAME="mp4" SUBTYPE="mp42")", true},
        {R"(NAME="mp4" SUBTYPE="isom")", R"(NAME="mp4")", true},
        {R"(NAME="mp4")", R"(NAME="mp4" SUBTYPE="isom")", false},
        {R"(NAME="mp4")", R"(NAME="mp4")", false},
        {R"(NAME="any")", R"(NAME="mp4")", false},
        {R"(NAME="matroska")", R"(NAME="webm")", false},
    };
    for (const auto &[earlier, later, reachable] : cases) {
        std::string rule =
            R"(<ACODEC NAME="aac" OPTION="-c:a aac"><FORMAT NAME="adts" MIME="m" PN="p" OPTION="-f adts"/>)";
        for (const std::string attributes : {earlier, later})
            rule += "\n<FORMAT " + attributes + R"( MIME="m" PN="p"/>)";
        expectFindings(music(rule + "</ACODEC>"), reachable ? Ids{} : Ids{"3:unreachable-rule"});
    }
}

TEST(ProfileCheck, WholeDocuments)
{
    const std::string kWavFormat = "<FORMAT NAME=\"wav\" MIME=\"m\" OPTION=\"-f wav\"/></ACODEC>";
    const std::string longList = "lc" + std::string(1022, '|');
    const struct {
        std::string xml;
        Ids found;
    } cases[] = {
        {music(kMp3Rule + "\n<ACODEC NAME=\"any\" MAXCHANNELS=\"2\">"
                          R"(<FORMAT NAME="mp3" MIME="m" OPTION="-f mp3"/></ACODEC>)"),
         {"2:wildcard-limits"}},
        {music(kMp3Rule + "\n<ACODEC NAME=\"pcm_s16le\">" + kWavFormat + "\n<ACODEC NAME=\"dsd\">" +
               kWavFormat + "\n<ACODEC NAME=\"wma\">" + kWavFormat),
         {"3:narrow-name", "4:narrow-name"}},
        {music(kMp3Rule + "\n<ACODEC NAME=\"acc\" MAXCHANNELS=\"2K\"/>\n<ACODEC/>"),
         {"2:codec-without-containers", "2:unknown-codec", "2:suffix-on-decimal",
          "3:codec-without-containers", "3:missing-name"}},
        {music("\n<ACODEC NAME=\"aac\" OPTION=\"-c:a aac\">\n<FORMAT NAME=\"mp5\"/></ACODEC>"),
         {"2:codec-without-containers", "3:unknown-container"}},
        {video("\n<VCODEC NAME=\"h264\" MAXWIDTH=\"1\"/>"),
         {"1:section-without-rules", "2:video-without-audio", "2:half-size-pair"}},
        {video(kMpeg4Rule + "\n<VCODEC NAME=\"h264\">\n<ACODEC NAME=\"aac\"/></VCODEC>"),
         {"2:video-without-audio", "3:codec-without-containers"}},
        {device("<MUSIC>" + kMp3Rule + "</MUSIC>\n<MUSIC><FOO/></MUSIC>\n<VIDEO/>"),
         {"2:repeated-section", "3:section-without-rules"}},
        {device("<MUSIC>" + kMp3Rule + "\n<FORMAT/></MUSIC>\n<ACODEC/>\n<AKODEC><VIDEO/></AKODEC>"),
         {"2:misplaced-element", "3:misplaced-element", "4:unknown-element"}},
        {"<!-- c -->\n<FOO/>\n" + music(kMp3Rule) + "\n<DEVICE/>\n<VIDEO/>",
         {"2:unknown-element", "4:repeated-section", "5:misplaced-element"}},
        {"<DEVICE\nNAME=\"Tom & Co\"><MUSIC>" + kMp3Rule + "</MUSIC></DEVICE>",
         {"2:bare-ampersand"}},
        {"<DEVICE NAME='a&amp;b&#38;&#x26;c' VERSION=\"1&#;\"><MUSIC>" + kMp3Rule +
             "</MUSIC></DEVICE>",
         {"1:bare-ampersand", "1:unknown-attribute"}},
        {music(kMp3Rule +
               "\n<ACODEC\nNAME=\"aac\"\nOPTION=\"-c:a aac -metadata a=&nbsp;&amp;\">"
               "<FORMAT NAME=\"mp4\" MIME=\"m\" PN=\"p &amp; q\" OPTION=\"-f mp4\"/></ACODEC>"),
         {"4:bare-ampersand"}},
        {music("\n\n  channels: 2\n" + kMp3Rule), {"3:stray-text"}},
        {"before\n<DEVICE NAME=\"T\"/>\nbehind",
         {"1:stray-text", "2:device-without-sections", "3:stray-text"}},
        {music(kMp3Rule + "\n<ACODEC NAME=\"aac\" PROFILE=\"" + longList.substr(0, 1023) +
               "\"><FORMAT NAME=\"mp4\" MIME=\"m\" PN=\"p\" OPTION=\"-f mp4\"/></ACODEC>"),
         {}},
        {music(kMp3Rule + "\n<ACODEC NAME=\"aac\" PROFILE=\"" + longList +
               "\">"
               "<FORMAT NAME=\"mp4\" MIME=\"m\" PN=\"p\" OPTION=\"-f mp4\"/></ACODEC>"),
         {"2:name-list-too-long"}},
    };
    for (const auto &[xml, found] : cases) expectFindings(xml, found);
}

TEST(ProfileCheck, OnlySoManyRulesAreCounted)
{
    std::string rules = "<ACODEC NAME=\"aac\" OPTION=\"-c:a aac\">";
    const auto entry = [](int i) {
        return "\n<FORMAT NAME=\"mp4\" MIME=\"m\" PN=\"p\" OPTION=\"-f mp4\" " +
               std::string(i == 0 ? "" : "FOO=\"\"") + "/>";
    };
    for (int i = 0; i < 256; ++i) rules += entry(0);
    const auto countTooMany = [](const std::string &xml) {
        return std::ranges::count(checkText(xml).ids, "258:too-many-rules");
    };
    EXPECT_EQ(countTooMany(music(rules + "</ACODEC>")), 0);
    EXPECT_EQ(countTooMany(music(rules + entry(0) + "</ACODEC>")), 1);
    metIds().insert("too-many-rules");
}

TEST(ProfileCheck, EveryKindOfFindingWasMet)
{
    if (testing::GTEST_FLAG(filter) != "*") GTEST_SKIP() << "needs the other tests";
    for (const tool::FaultKind &kind : tool::s_FaultKinds)
        EXPECT_TRUE(metIds().contains(kind.id)) << kind.id;
}

TEST(ProfileCheck, SaysWhatToDo)
{
    const struct {
        const char *rule, *problem, *advice;
    } cases[] = {
        {R"(NAME="aacc")", "NAME=\"aacc\" is no codec known here", "did you mean aac?"},
        {R"(NAME="wmav3")", "NAME=\"wmav3\" is no codec known here", "did you mean wmav1?"},
        {R"(NAME="aac-lc")", "no codec known", R"(write NAME="aac" PROFILE="lc")"},
        {R"(NAME="HE-AAC")", "no codec known", R"(write NAME="AAC" PROFILE="HE")"},
        {R"(NAME="aac_he_v2")", "no codec known", R"(write NAME="aac" PROFILE="he_v2")"},
        {R"(NAME="he-aac-v2")", "no codec known", R"(write NAME="aac" PROFILE="he_v2")"},
        {R"(NAME="aac-high")", "no codec known", "see the list of codecs"},
        {R"(NAME="L-PCM")", "is read as pcm_s16le and", "other sample formats need rules"},
        {R"(NAME="aac" MAXFREQUENCY="44.1K")", "becomes 8000 Hz", "such as 44100"},
        {R"(NAME="aac" PROFILE="hi")", "no profile known", "did you mean he?"},
        {R"(NAME="aac" PROFILE="lc, he")", "\"lc,he\" is no profile", "write \"lc|he\""},
        {R"(NAME="aac" PROFILE="main | lc he")", "\"lche\" is no profile", "write \"lc|he\""},
        {R"(NAME="aac" PROFILE="lc, hee")", "\"lc,hee\" is no profile", "known are main, lc"},
        {R"(NAME="aac" MAXFREQUENCY="48kHz")", "ends at 'H' and gives 48000", "leave out \"Hz\""},
        {R"(NAME="aac" MAXBITRATE="320kbps")", "gives 320000", "leave out \"bps\""},
        {R"(NAME="aac" MAXBITRATE="320 kbps")", "gives 320;", "write a whole number"},
        {R"(NAME="aac" MAXBITRATE="320KB/s")", "gives 320000", "write a whole number"},
        {R"(NAME="aac" MAXBITRATE="320K ")", "gives 320000", "remove the blank after it"},
        {R"(NAME="aac" MAXCHANNELS="2 ch")", "gives 2;", "leave out \" ch\""},
        {R"(NAME="aac" MAXBITRATE="9999M")", "wraps around to 1409065408", "2147483647"},
        {R"(NAME="aac" maxchannels="2")", "unknown attribute maxchannels", "mean MAXCHANNELS?"},
        {R"(NAME="aac" MAXWIDTH="2")", "unknown attribute MAXWIDTH", "it belongs to VCODEC"},
    };
    for (const auto &[rule, problem, advice] : cases) {
        const std::string text =
            checkText(music("<ACODEC " + std::string(rule) + "><FORMAT/></ACODEC>")).text;
        EXPECT_THAT(text, HasSubstr(problem));
        EXPECT_THAT(text, HasSubstr(advice));
    }
}

TEST(ProfileCheck, SaysWhatToDoOfVideo)
{
    const struct {
        const char *attributes, *problem, *advice;
    } cases[] = {
        {R"(PROFILE="main,high")", "\"main,high\" is no profile", "write \"main|high\""},
        {R"(PROFILE="main;high / high 10")", "no profile", "known are baseline"},
        {R"(PLAY_EXCEPTION="10bit vfr")", "\"10bitvfr\" is no play", "write \"10bit|vfr\""},
        {R"(OPTION="-c:v libx264")",
         "the first ACODEC of a VCODEC says what its sound is transcoded into, and this one has no "
         "OPTION",
         "add OPTION=\"-c:a ...\""},
        {"", "the first VCODEC says what the picture is transcoded into, and this one has no",
         "add OPTION=\"-c:v ...\""},
    };
    for (const auto &[attributes, problem, advice] : cases) {
        const std::string text =
            checkText(video("<VCODEC NAME=\"h264\" " + std::string(attributes) +
                            "><ACODEC NAME=\"aac\"><FORMAT NAME=\"mp4\"/>"
                            "</ACODEC></VCODEC>"))
                .text;
        EXPECT_THAT(text, HasSubstr(problem));
        EXPECT_THAT(text, HasSubstr(advice));
    }
}

TEST(ProfileCheck, ExamplesAreClean)
{
    int examples = 0;
    for (const auto &file :
         std::filesystem::directory_iterator(VORNAK_SOURCE_DIR "/examples/profiles")) {
        const ProcessResult result = check(file.path());
        EXPECT_EQ(result.status, 0) << result.out << result.err;
        EXPECT_EQ(result.out, file.path().string() + ": nothing found\n");
        ++examples;
    }
    EXPECT_GE(examples, 5);
}

std::string encoded(std::u32string_view text, std::size_t unit, bool bigEndian)
{
    std::string bytes;
    const auto put = [&](std::uint32_t value) {
        for (std::size_t i = 0; i < unit; ++i)
            bytes += static_cast<char>(value >> (8 * (bigEndian ? unit - 1 - i : i)));
    };
    for (const char32_t c : text) {
        if (unit == 2 && c > 0xFFFF) {
            put(0xD800 + ((c - 0x10000) >> 10));
            put(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            put(c);
        }
    }
    return bytes;
}

TEST(ProfileCheck, OtherEncodings)
{
    const std::u32string body =
        U"<DEVICE NAME=\"T\">\n<MUSIC>\n\n<ACODEC NAME=\"\U0001F600\u00e9\"/>"
        U"</MUSIC></DEVICE>";
    const std::string latin = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><DEVICE NAME=\"T\">\n"
                              "<MUSIC>\n\n<ACODEC NAME=\"\xe9\"/></MUSIC></DEVICE>";
    for (const std::string &file :
         {encoded(U"\uFEFF" + body, 2, false), encoded(U"\uFEFF" + body, 2, true),
          encoded(U"\uFEFF" + body, 4, false), encoded(U"\uFEFF" + body, 4, true), latin,
          encoded(U"\uFEFF" + body, 2, false) + "\xd8"}) { // half a character
        const Found found = checkText(file);
        EXPECT_EQ(found.ids, (Ids{"2:section-without-rules", "4:codec-without-containers",
                                  "4:unknown-codec"}));
        EXPECT_THAT(found.text, HasSubstr("\u00e9\" is no codec"));
    }
}

} // namespace
} // namespace vornak::test
