// vornak profile check: what it finds in profiles, and what it does not.
#include "tools/check/checks.h"

#include "tests/support/doc_examples.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>

namespace vornak::test {
namespace {

using testing::HasSubstr;
using Ids = std::vector<std::string>;

struct Found {
    Ids ids;          // "line:id", in the order of the report
    std::string text; // for people
};

/// Most of the profiles here are for one kind of files, so nothing is said of that.
Found checkText(const std::string &xml)
{
    const TempDir dir;
    Found found;
    for (const tool::Finding &finding : tool::checkProfile(dir.write("profile.xml", xml))) {
        const std::string id = tool::kindOf(finding.fault).id;
        if (finding.fault == tool::Fault::KindUnserved) continue;
        found.ids.push_back(std::to_string(finding.line) + ":" + id);
        found.text += found.ids.back() + " " + finding.problem + "; " + finding.advice + "\n";
    }
    return found;
}

/// Replaces each `mark` in a text.
void fill(std::string &text, std::string_view mark, std::string_view value)
{
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += value.size())
        text.replace(at, mark.size(), value);
}

// Rules that nothing is found in, and the places that an element under test has beside them.
constexpr const char *kMp3 =
    R"(<ACODEC NAME="mp3" OPTION="-c:a libmp3lame"><FORMAT NAME="mp3" MIME="audio/mpeg" PN="MP3" OPTION="-f mp3"/></ACODEC>)";
constexpr const char *kMpeg4 = R"(<VCODEC NAME="mpeg4" OPTION="-c:v mpeg4">$AAC</VCODEC>)";
constexpr const char *kAac =
    R"(<ACODEC NAME="aac" OPTION="-c:a aac"><FORMAT NAME="matroska" MIME="video/x-matroska" OPTION="-f matroska"/></ACODEC>)";
constexpr const char *kMp4 =
    R"(<FORMAT NAME="mp4" MIME="audio/mp4" PN="AAC_ISO" OPTION="-f mp4"/>)";
constexpr const char *kAdts =
    R"(<ACODEC NAME="aac" OPTION="-c:a aac"><FORMAT NAME="adts" MIME="audio/vnd.dlna.adts" PN="AAC_ADTS" OPTION="-f adts"/>)";
constexpr struct {
    std::string_view name;
    const char *parent, *rules; // with $1 and $2 for the two parts of the question
} s_Places[] = {
    {"audio", "MUSIC", "$MP3\n<ACODEC NAME=\"aac\"\n$1>$MP4</ACODEC>"},
    {"video", "VIDEO", "$MPEG4\n<VCODEC NAME=\"h264\"\n$1>$AAC</VCODEC>"},
    {"container", "MUSIC", "$ADTS\n<FORMAT\n$1/></ACODEC>"},
    {"first-audio", "MUSIC",
     "\n<ACODEC $1><FORMAT MIME=\"application/octet-stream\" $2/></ACODEC>"},
    {"first-video", "VIDEO", "\n<VCODEC $1>$AAC</VCODEC>"},
    {"audio-after", "MUSIC",
     "$MP3\n<ACODEC NAME=\"aac\" $1>$MP4</ACODEC>\n<ACODEC NAME=\"aac\" $2>$MP4</ACODEC>"},
    {"video-after", "VIDEO",
     "$MPEG4\n<VCODEC NAME=\"h264\" $1>$AAC</VCODEC>\n<VCODEC NAME=\"h264\" $2>$AAC</VCODEC>"},
    {"container-after", "MUSIC",
     "<ACODEC NAME=\"opus\" OPTION=\"-c:a libopus\"><FORMAT NAME=\"ogg\" MIME=\"audio/ogg\" OPTION=\"-f ogg\"/>"
     "\n<FORMAT $1 MIME=\"application/octet-stream\"/>\n<FORMAT $2 MIME=\"application/octet-stream\"/></ACODEC>"},
    {"advice", "MUSIC", "<ACODEC $1><FORMAT/></ACODEC>"},
    {"video-advice", "VIDEO",
     R"(<VCODEC NAME="h264" $1><ACODEC NAME="aac"><FORMAT NAME="mp4"/></ACODEC></VCODEC>)"},
};

/// The document of a question: the place of its element, and its attributes in one part or two.
std::string documentOf(const std::string &question)
{
    const std::size_t blank = std::min(question.find_first_of(" \n"), question.size());
    const std::string place = question.substr(0, blank);
    std::string rest = question.substr(std::min(blank + 1, question.size())), document = rest;
    for (const auto &row : s_Places) {
        if (row.name != place) continue;
        const std::size_t bar = std::min(rest.find("//"), rest.size());
        document = std::string("<DEVICE NAME=\"T\"><") + row.parent + ">" + row.rules + "</" +
                   row.parent + "></DEVICE>";
        fill(document, "$1", rest.substr(0, bar));
        fill(document, "$2", rest.substr(std::min(bar + 2, rest.size())));
    }
    fill(document, "$MP3", kMp3);
    fill(document, "$MPEG4", kMpeg4);
    fill(document, "$AAC", kAac);
    fill(document, "$MP4", kMp4);
    fill(document, "$ADTS", kAdts);
    return document;
}

TEST(ProfileCheck, FindsWhatThePageShows)
{
    for (const DocExample &example :
         readDocExamples(VORNAK_SOURCE_DIR "/tests/tools/findings.md")) {
        const Found found = checkText(documentOf(example.command));
        std::string ids;
        for (const std::string &id : found.ids) ids += id + "\n";
        const bool isWhole = example.output.find(' ') != std::string::npos; // with what to do
        EXPECT_EQ(isWhole ? found.text : ids, example.output) << example.command << "\n"
                                                              << found.text;
    }
}

TEST(ProfileCheck, FindsWhatTheListShows)
{
    const TempDir dir;
    for (const tool::FaultKind &kind : tool::faultKinds())
        for (const char *part : {kind.bad, kind.good}) {
            const auto findings =
                tool::checkProfile(dir.write("profile.xml", tool::exampleProfile(part)));
            EXPECT_EQ(std::ranges::count(findings, kind.fault, &tool::Finding::fault) > 0,
                      part == kind.bad)
                << kind.id << ": " << part;
        }
}

TEST(ProfileCheck, OnlySoMuchIsCounted)
{
    const std::string rule = documentOf("audio PROFILE=\"lc$1\""), bars(1021, '|');
    const auto idsOf = [](std::string document, std::string_view mark, const std::string &value) {
        fill(document, mark, value);
        return checkText(document).ids;
    };
    EXPECT_EQ(idsOf(rule, "$1", bars), Ids{});
    EXPECT_EQ(idsOf(rule, "$1", bars + "|"), Ids{"3:name-list-too-long"});

    const std::string entry = std::string("\n") + kMp4;
    std::string entries;
    for (int i = 0; i < 256; ++i) entries += entry;
    const std::string list = documentOf("document\n<DEVICE NAME=\"T\"><MUSIC><ACODEC NAME=\"aac\" "
                                        "OPTION=\"-c:a aac\">$1</ACODEC></MUSIC></DEVICE>");
    const auto tooMany = [&](const std::string &all) {
        return std::ranges::count(idsOf(list, "$1", all), "258:too-many-rules");
    };
    EXPECT_EQ(tooMany(entries), 0);
    EXPECT_EQ(tooMany(entries + entry), 1);
}

TEST(ProfileCheck, ExamplesAreClean)
{
    int examples = 0;
    for (const auto &file :
         std::filesystem::directory_iterator(VORNAK_SOURCE_DIR "/examples/profiles")) {
        const ProcessResult result = run({VORNAK_CLI, "profile", "check", file.path()});
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
