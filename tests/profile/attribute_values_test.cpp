#include "tests/profile/profile_fixture.h"
#include "tests/profile/recording_host.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vornak::test {
namespace {

using Video = TRANSCODE_VIDEO_MAPPING_ST;

TRANSCODE_AUDIO_MAPPING_ST &audio(const Video &rule)
{
    return rule.pAudioTable[0];
}

TANASCODE_FORMAT_MAPPING_ST &format(const Video &rule)
{
    return audio(rule).pFormatTable[0];
}

/// A video rule with one audio rule with one container, and attributes more at `element`.
std::string ruleWith(std::string_view element, const std::string &attributes)
{
    const auto at = [&](std::string_view tag) { return tag == element ? attributes : ""; };
    return "<VCODEC NAME='h264' " + at("VCODEC") + "><ACODEC NAME='aac' " + at("ACODEC") +
           "><FORMAT NAME='mp4' " + at("FORMAT") + "/></ACODEC></VCODEC>";
}

/// `text` with the letters `from` replaced by `to`.
std::string replaceAll(std::string text, char from, std::string_view to)
{
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, 1, to);
    return text;
}

class AttributeValuesTest : public ProfileFixture {
protected:
    /// Loads a profile of a rule for each text, with that text at `element`.
    Video *loadRules(std::string_view element, const std::vector<std::string> &attributes)
    {
        std::string rules;
        for (const std::string &text : attributes) rules += ruleWith(element, text);
        profile_ = load(video(rules));
        plain_ = load(
            video(replaceAll("x" + std::string(attributes.size(), '*'), '*', ruleWith("", ""))));
        return profile_->pVideoTable;
    }

    LoadedProfile profile_;
    LoadedProfile plain_; // as many rules with nothing but their names
};

/// A text, and the numbers that attributes of each kind take it for.
struct NumberCase {
    std::string text;
    int decimal, suffixed, sampleRate;
};
constexpr auto Decimal = &NumberCase::decimal, Suffixed = &NumberCase::suffixed,
               SampleRate = &NumberCase::sampleRate;

constexpr struct {
    const char *element, *attribute;
    int NumberCase::*as;
    int &(*field)(Video &);
} s_Numbers[] = {
    {"VCODEC", "LEVEL", Decimal, [](Video &v) -> int & { return v.vLevel; }},
    {"VCODEC", "NOTRANSCODE", Decimal, [](Video &v) -> int & { return v.noTranscode; }},
    {"VCODEC", "MAXWIDTH", Suffixed, [](Video &v) -> int & { return v.maxWidth; }},
    {"VCODEC", "MINWIDTH", Suffixed, [](Video &v) -> int & { return v.minWidth; }},
    {"VCODEC", "MAXHEIGHT", Suffixed, [](Video &v) -> int & { return v.maxHeight; }},
    {"VCODEC", "MINHEIGHT", Suffixed, [](Video &v) -> int & { return v.minHeight; }},
    {"VCODEC", "MAXBITRATE", Suffixed, [](Video &v) -> int & { return v.maxBitrate; }},
    {"VCODEC", "MINBITRATE", Suffixed, [](Video &v) -> int & { return v.minBitrate; }},
    {"VCODEC", "VATRANSCODE", Suffixed, [](Video &v) -> int & { return v.vaTranscode; }},
    {"VCODEC", "FRAME", Suffixed, [](Video &v) -> int & { return v.frame; }},
    {"VCODEC", "TOLERANCE", Suffixed, [](Video &v) -> int & { return v.tolerance; }},
    {"ACODEC", "LEVEL", Decimal, [](Video &v) -> int & { return audio(v).aLevel; }},
    {"ACODEC", "NOTRANSCODE", Decimal, [](Video &v) -> int & { return audio(v).noTranscode; }},
    {"ACODEC", "MAXCHANNELS", Decimal, [](Video &v) -> int & { return audio(v).maxChannels; }},
    {"ACODEC", "MINCHANNELS", Decimal, [](Video &v) -> int & { return audio(v).minChannels; }},
    {"ACODEC", "MAXFREQUENCY", SampleRate,
     [](Video &v) -> int & { return audio(v).maxSampleRate; }},
    {"ACODEC", "MINFREQUENCY", SampleRate,
     [](Video &v) -> int & { return audio(v).minSampleRate; }},
    {"ACODEC", "MAXBITRATE", Suffixed, [](Video &v) -> int & { return audio(v).maxBitrate; }},
    {"ACODEC", "MINBITRATE", Suffixed, [](Video &v) -> int & { return audio(v).minBitrate; }},
    {"FORMAT", "NOTRANSCODE", Decimal, [](Video &v) -> int & { return format(v).noTranscode; }},
    {"FORMAT", "NONSEEKABLE", Decimal, [](Video &v) -> int & { return format(v).nonSeekable; }},
};

TEST_F(AttributeValuesTest, Numbers)
{
    const NumberCase texts[] = {
        {"", 0, 0, 8000},         {"0", 0, 0, 8000},      {"1", 1, 1, 8000},
        {"720", 720, 720, 8000},  {" 720", 720, 0, 8000}, {"\t720", 720, 0, 8000},
        {"720 ", 720, 720, 8000}, {"+5", 5, 0, 8000},     {"-3", -3, -3, 8000},
        {"--3", 0, 0, 8000},      {"-", 0, 0, 8000},      {"-2K", -2, -2000, 8000},
        {"- 2", 0, 0, 8000},      {"1.5M", 1, 1, 8000},   {"1K5", 1, 10005, 11025},
        {"K", 0, 0, 8000},        {"0x10", 0, 0, 8000},   {"1e6", 1, 1, 8000},
        {"44.1K", 44, 44, 8000},
    };
    // between two standard rates the nearer one counts, and from halfway on the higher one
    const NumberCase rates[] = {
        {"2k3k", 2, 20003000, 5644800}, {"19024", 19024, 19024, 16000},
        {"19025", 19025, 19025, 22050}, {"44000", 44000, 44000, 44056},
        {"44077", 44077, 44077, 44056}, {"44078", 44078, 44078, 44100},
        {"44100", 44100, 44100, 44100}, {"47000", 47000, 47000, 47250},
        {"47625", 47625, 47625, 48000}, {"48001", 48001, 48001, 48000},
        {"50199", 50199, 50199, 50000}, {"50200", 50200, 50200, 50400},
        {"128K", 128, 128000, 96000},   {"2M", 2, 2000000, 2822400},
        {"96k", 96, 96000, 96000},      {"8001", 8001, 8001, 8000},
        {"9000", 9000, 9000, 8000},     {"9512", 9512, 9512, 8000},
        {"9513", 9513, 9513, 11025},    {"4294967297", 1, 1, 8000},
    };
    std::vector<NumberCase> cases = {
        {"6000000", 6000000, 6000000, 5644800},
        {"2147483647", 2147483647, 2147483647, 5644800},
        {"2147483648", -2147483647 - 1, -2147483647 - 1, 8000},
        {"-2147483648", -2147483647 - 1, -2147483647 - 1, 8000},
        {"4295M", 4295, 32704, 32000},                  // 4295000000 - 2^32
        {"5000000000K", 705032704, 658067456, 5644800}, // 5 * 10^9, and times 1000, mod 2^32
        {"9223372036854775807", -1, -1, 8000},
        {"9223372036854775808", -1, 0, 8000}, // the plain number ends at the largest
        {"-9223372036854775809", 0, -1, 8000},
        {"1" + std::string(1'000'000, '0'), -1, 0, 8000},
    };
    cases.insert(cases.end(), std::begin(texts), std::end(texts));
    cases.insert(cases.end(), std::begin(rates), std::end(rates));
    for (const auto &attribute : s_Numbers) {
        std::vector<std::string> written;
        for (const auto &c : cases) { // of several attributes the first counts
            const std::string name = std::string(attribute.attribute) + "='";
            written.push_back(name + c.text);
            written.back() += "' " + name + "9'";
        }
        Video *rules = loadRules(attribute.element, written);
        for (std::size_t i = 0; i < cases.size(); ++i) {
            const int value = std::exchange(attribute.field(rules[i]), 0);
            EXPECT_EQ(value, cases[i].*attribute.as)
                << attribute.element << ' ' << attribute.attribute << ' ' << cases[i].text;
        }
        EXPECT_EQ(describe(*profile_), describe(*plain_)) << attribute.attribute;
    }
}

constexpr struct {
    const char *element, *attribute;
    char *&(*field)(Video &);
} s_Texts[] = {
    {"VCODEC", "OPTION", [](Video &v) -> char *& { return v.option; }},
    {"ACODEC", "OPTION", [](Video &v) -> char *& { return audio(v).option; }},
    {"FORMAT", "OPTION", [](Video &v) -> char *& { return format(v).option; }},
    {"FORMAT", "MIME", [](Video &v) -> char *& { return format(v).mime; }},
    {"FORMAT", "PN", [](Video &v) -> char *& { return format(v).pn; }},
};

TEST_F(AttributeValuesTest, Texts)
{
    const std::string large(1'000'000, 'x');
    const struct {
        std::string written;
        const char *value;
    } cases[] = {
        {"", nullptr},
        {"-f mpegts", "-f mpegts"},
        {" ", " "},
        {"&quot;&#9;&lt;", "\"\t<"},
        {"\xff\xfe\x80", "\xff\xfe\x80"},
        {large, large.c_str()},
    };
    for (const auto &attribute : s_Texts) {
        std::vector<std::string> written;
        for (const auto &c : cases)
            written.push_back(std::string(attribute.attribute) + "='" + c.written + "'");
        Video *rules = loadRules(attribute.element, written);
        for (std::size_t i = 0; i < std::size(cases); ++i) {
            char *text = std::exchange(attribute.field(rules[i]), nullptr);
            EXPECT_STREQ(text, cases[i].value) << attribute.element << attribute.attribute;
            std::free(text);
        }
        EXPECT_EQ(describe(*profile_), describe(*plain_)) << attribute.attribute;
    }
}

constexpr struct {
    const char *element, *attribute, *kind, *lookup;
    std::string_view one, two; // names of the bits 1 and 2
    int &(*field)(Video &);
} s_Lists[] = {
    {"VCODEC", "PROFILE", "video profile", "profile", "main", "high",
     [](Video &v) -> int & { return v.vProfileId; }},
    {"VCODEC", "PLAY_EXCEPTION", "video PLAY_EXCEPTION", "exception", "interlaced", "10bit",
     [](Video &v) -> int & { return v.playException; }},
    {"ACODEC", "PROFILE", "audio profile", "profile", "main", "high",
     [](Video &v) -> int & { return audio(v).aProfileId; }},
};

class NameListsTest : public AttributeValuesTest {
protected:
    /// Expects the bits and the lookups of a list; 1 and 2 in it stand for the known names.
    template <class List>
    void expectList(const List &list, const std::string &text, int bits,
                    const std::vector<std::string> &lookups)
    {
        const auto name = [&](const std::string &letters) {
            return replaceAll(replaceAll(letters, '1', list.one), '2', list.two);
        };
        std::string calls, warnings;
        for (const std::string &lookup : lookups) {
            calls += list.lookup + ("(" + name(lookup) + ") ");
            if (lookup == "1" || lookup == "2") continue;
            warnings += std::string("[ParseSingleTranscodeXML:N] skip unknow ") + list.kind +
                        " name: " + name(lookup) + " !\n";
        }
        const bool ofAudio = list.element == std::string_view("ACODEC");
        takeRegistryCalls();
        const LoadedProfile profile = load(
            video(ruleWith(list.element, std::string(list.attribute) + "='" + name(text) + "'")));
        EXPECT_EQ(takeRegistryCalls(),
                  "codec(h264) " + (ofAudio ? "codec(aac) " + calls : calls + "codec(aac) ") +
                      "container(mp4,null) ");
        EXPECT_EQ(warnings_, warnings);
        EXPECT_EQ(std::exchange(list.field(profile->pVideoTable[0]), 0), bits) << text;
        EXPECT_EQ(describe(*profile), describe(*load(video(ruleWith("", ""))))) << text;
    }
};

TEST_F(NameListsTest, AreSplitAndLookedUp)
{
    const struct {
        std::string text;
        int bits;
        std::vector<std::string> lookups;
    } cases[] = {
        {"", 0, {}},
        {" ", 0, {}},
        {"||", 0, {}},
        {" | | ", 0, {}},
        {"1", 1, {"1"}},
        {" 1 | 2 ", 3, {"1", "2"}},
        {"|2||1|", 3, {"2", "1"}},
        {"1|1", 1, {"1", "1"}},
        {"1|what|2", 3, {"1", "what", "2"}},
        {"w h a t", 0, {"what"}},
        {"1,2", 0, {"1,2"}},
        {"\t1", 0, {"\t1"}},
        {"1&#xA;|2", 2, {"1\n", "2"}},
        {"%s%n", 0, {"%s%n"}},
        {"\xff", 0, {"\xff"}},
    };
    for (const auto &list : s_Lists) {
        for (const auto &c : cases) expectList(list, c.text, c.bits, c.lookups);
    }
}

/// A name of this length that the registry does not know.
std::string unknown(std::size_t length)
{
    return std::string(length, 'u');
}

TEST_F(NameListsTest, AreCutAtTheLastNameThatFitsIn1023Characters)
{
    for (const auto &list : s_Lists) {
        const std::size_t rest = 1023 - list.one.size() - 1; // after the first name and its bar
        const struct {
            std::string text;
            int bits;
            std::vector<std::string> lookups;
        } cases[] = {
            {"1|" + unknown(rest), 1, {"1", unknown(rest)}},
            {"1|" + unknown(rest + 1), 1, {"1"}},
            {"1|" + unknown(rest) + "|2", 1, {"1", unknown(rest)}},
            {"1|" + unknown(rest - 1) + "|2", 1, {"1", unknown(rest - 1)}},
            {"1|" + unknown(rest) + " |2", 1, {"1", unknown(rest)}},
            {"1|" + unknown(rest) + " 2", 1, {"1"}},
            {"1|" + unknown(rest) + std::string(5000, ' '), 1, {"1", unknown(rest)}},
            {std::string(5000, ' ') + "1" + std::string(5000, ' ') + "|2", 3, {"1", "2"}},
            {std::string(1023, '|') + "1", 0, {}},
            {unknown(1023), 0, {unknown(1023)}},
            {unknown(1024), 0, {}},
            {unknown(1'000'000), 0, {}},
        };
        for (const auto &c : cases) expectList(list, c.text, c.bits, c.lookups);
    }
}

} // namespace
} // namespace vornak::test
