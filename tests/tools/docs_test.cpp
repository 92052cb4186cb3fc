// The pages of docs/: what they list is what there is, and what they show is what happens.
#include "include/vornak_host.h"
#include "platform/registry_names.h"
#include "tools/check/schema.h"
#include "tools/decide/reason_text.h"
#include "tools/profile/id_names.h"

#include "tests/support/doc_examples.h"
#include "tests/support/temp_dir.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

namespace vornak::test {
namespace {

using Names = std::vector<std::string>;

std::string page(const std::string &name)
{
    std::ifstream file(VORNAK_SOURCE_DIR "/docs/" + name);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

/// The text below a heading, up to the next one.
std::string section(const std::string &heading, const std::string &name = "profile-format.md")
{
    const std::string text = page(name);
    const std::size_t start = text.find(heading + "\n");
    EXPECT_NE(start, std::string::npos) << heading;
    if (start == std::string::npos) return {};
    return text.substr(start, text.find("\n#", start + 1) - start);
}

Names codeSpans(const std::string &text)
{
    static const std::regex span("`([^`]+)`");
    Names names;
    for (std::sregex_iterator i(text.begin(), text.end(), span), end; i != end; ++i)
        names.push_back((*i)[1]);
    return names;
}

/// The cells of each row of the tables in a section, headings left out.
std::vector<Names> rows(const std::string &text)
{
    std::vector<Names> all;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("| `")) continue;
        Names cells;
        std::istringstream cellStream(line.substr(2));
        for (std::string cell; std::getline(cellStream, cell, '|');)
            cells.push_back(
                cell.substr(std::min(cell.find_first_not_of(' '), cell.size()),
                            cell.find_last_not_of(' ') - cell.find_first_not_of(' ') + 1));
        all.push_back(cells);
    }
    return all;
}

TEST(ProfileGuide, ListsTheNamesOfTheRegistry)
{
    Names video, audio;
    for (const RegistryName &row : s_CodecNames) {
        if (row.id > 0 && row.id < 0x10000) video.emplace_back(row.name);
        if (row.id >= 0x10000 && row.id < 0x17000) audio.emplace_back(row.name);
    }
    EXPECT_EQ(codeSpans(section("### Video codecs")), video);
    EXPECT_EQ(codeSpans(section("### Audio codecs")), audio);
    EXPECT_EQ(codeSpans(section("### Containers")), tool::knownContainers());

    Names exceptions;
    for (const Names &row : rows(section("### Play exceptions")))
        exceptions.push_back(codeSpans(row.front()).front());
    EXPECT_EQ(exceptions, tool::knownPlayExceptions());
}

TEST(ProfileGuide, SaysWhatOtherNamesStandFor)
{
    int codecs = 0;
    int profiles = 0;
    for (const Names &row : rows(section("## Reference: names"))) {
        const std::string name = codeSpans(row[1]).front();
        int id = 0;
        const bool isCodec = CodecNameToID(name.c_str(), &id) == 0;
        const auto lookup = isCodec ? CodecNameToID : ProfileNameToID;
        EXPECT_EQ(lookup(name.c_str(), &id), 0) << name;
        for (const std::string &alias : codeSpans(row[0])) {
            int found = -1;
            EXPECT_EQ(lookup(alias.c_str(), &found), 0) << alias;
            EXPECT_EQ(found, id) << alias << " is not " << name;
            if (!isCodec) {
                EXPECT_NE(CodecNameToID(alias.c_str(), &found), 0) << alias << " is a codec, too";
            }
            ++(isCodec ? codecs : profiles);
        }
    }
    EXPECT_GE(codecs, 20);
    EXPECT_GE(profiles, 10);
}

TEST(ProfileGuide, ListsProfilesAndSubtypesByTheirOwner)
{
    Names profiles, subtypes;
    int last = -1;
    for (const ProfileName &row : profileNames()) {
        if (row.codecId != last) profiles.push_back(tool::codecText(row.codecId));
        last = row.codecId;
        profiles.emplace_back(row.name);
    }
    for (const SubtypeName &row : s_SubtypeNames) {
        if (row.containerId != last) subtypes.push_back(tool::containerText(row.containerId));
        last = row.containerId;
        subtypes.emplace_back(row.name);
    }
    EXPECT_EQ(codeSpans(section("### Profiles")), profiles);
    EXPECT_EQ(codeSpans(section("### Subtypes")), subtypes);
}

TEST(ProfileGuide, ListsElementsAndAttributes)
{
    std::vector<Names> attributes, documented;
    for (const tool::AttributeRow &row : tool::attributeRows()) {
        attributes.push_back({row.name});
        for (const tool::ElementRow &element : tool::elementRows())
            if ((row.elements & element.element) != 0) attributes.back().emplace_back(element.name);
    }
    std::vector<Names> elements, documentedElements;
    for (const tool::ElementRow &row : tool::elementRows()) {
        elements.push_back({row.name});
        for (const tool::ElementRow &parent : tool::elementRows())
            if ((row.parents & parent.element) != 0) elements.back().emplace_back(parent.name);
    }
    for (const Names &row : rows(section("## Reference: elements and attributes"))) {
        Names names = codeSpans(row[0] + row[1]);
        (row.size() == 2 ? documentedElements : documented).push_back(names);
    }
    EXPECT_EQ(documentedElements, elements);
    EXPECT_EQ(documented, attributes);
}

TEST(FindingsPage, IsWhatIsListed)
{
    const std::string list = run({VORNAK_CLI, "profile", "check", "--list"}).out;
    EXPECT_TRUE(page("profile-check.md").ends_with("\n\n" + list)) << "it is to end with\n" << list;
}

TEST(JsonGuide, ListsTheReasonCodes)
{
    std::set<std::string> documented;
    for (const Names &row : rows(section("## A part", "json.md")))
        for (const std::string &code : codeSpans(row[0])) documented.insert(code);
    std::set<std::string> codes;
    for (const auto &row : tool::s_RefusalCodes) codes.emplace(row.code);
    for (const auto &row : tool::s_Reasons)
        if (row.code != tool::ReasonCode::Compared) codes.emplace(row.name);
    EXPECT_EQ(documented, codes);
}

/// A profile of what a block of the guide shows, which may be a part of one.
std::string wholeProfile(const std::string &block)
{
    const std::pair<const char *, const char *> wrappers[] = {
        {"<VCODEC", "VIDEO"}, {"<ACODEC", "MUSIC"}, {"<MUSIC", "DEVICE"}, {"<VIDEO", "DEVICE"}};
    for (const auto &[start, parent] : wrappers)
        if (block.starts_with(start)) {
            const std::string name = parent;
            const std::string attributes = name == "DEVICE" ? " NAME=\"T\"" : "";
            return wholeProfile("<" + name + attributes + ">" + block + "</" + name + ">");
        }
    return block;
}

TEST(ProfileGuide, ShowsWhatHappens)
{
    const std::string text = page("profile-format.md");
    const std::regex block("```(xml|console)\n([^`]*)```");
    const TempDir dir;
    int profiles = 0;
    for (std::sregex_iterator i(text.begin(), text.end(), block), end; i != end; ++i) {
        if ((*i)[1] == "console") continue;
        ++profiles;
        dir.write("kitchen.xml", wholeProfile((*i)[2]));
        const ProcessResult result =
            run({"env", "-C", dir.path(), VORNAK_CLI, "profile", "check", "kitchen.xml"});
        const auto next = std::next(i);
        const std::string shown = next != end && (*next)[1] == "console" ? (*next)[2].str() : "";
        EXPECT_EQ(result.status, shown.empty() ? 0 : 1) << (*i)[2] << result.out;
        if (!shown.empty()) {
            EXPECT_EQ(shown, "$ vornak profile check kitchen.xml\n" + result.out);
        }
    }
    EXPECT_GE(profiles, 6);
}

TEST(ProfileGuide, ShowsTheJsonThatIsPrinted)
{
    const std::string text = page("json.md");
    const auto blockAfter = [&](const std::string &start, std::size_t from) {
        const std::size_t begin = text.find(start, from) + start.size();
        return text.substr(begin, text.find("```\n", begin) - begin);
    };
    const TempDir dir;
    const std::string title = "# The JSON of `vornak profile ";
    const std::size_t first = text.find(title + "check`\n");
    ASSERT_NE(first, std::string::npos);
    dir.write("kitchen.xml", blockAfter("```xml\n", first));
    for (const std::string subcommand : {"check", "diff", "show"}) {
        const std::size_t at = text.find(title + subcommand + "`\n");
        ASSERT_NE(at, std::string::npos);
        const std::size_t command = text.rfind('`', text.find("` prints", at) - 1) + 1;
        const ProcessResult result =
            run({"env", "-C", dir.path(), "sh", "-c",
                 "vornak() { " VORNAK_CLI " \"$@\"; }; " +
                     text.substr(command, text.find('`', command) - command)});
        EXPECT_EQ(result.out, blockAfter("```json\n", at));
    }
}

/// The text with those bit rates masked that are the encoder's choice.
std::string masked(const std::string &text)
{
    const std::regex chosen("(, [0-9]+x[0-9]+), [0-9]+ bit/s|( Hz), [0-9]+ bit/s( \\(estimated)");
    return std::regex_replace(text, chosen, "$1$2, N bit/s$3");
}

/// The text between a line and the next "```".
std::string blockAfter(const std::string &page, const std::string &line, std::size_t &from)
{
    const std::size_t begin = page.find(line + "\n", from) + line.size() + 1;
    from = page.find("```\n", begin);
    return page.substr(begin, from - begin);
}

TEST(DecidePages, ShowTheDocumentAndTheSameInWords)
{
    const std::string text = page("json.md");
    std::size_t at = 0;
    const TempDir dir;
    dir.write("player.xml", blockAfter(text, "```xml", at));
    const std::string makeFilm = blockAfter(text, "```sh", at);
    const std::string decideFilm = blockAfter(text, "```sh", at);
    dir.write("make", "vornak() { \"$TOOL\" \"$@\"; }\n" + makeFilm + decideFilm);
    const ProcessResult result = run({"env", "-C", dir.path(), "TOOL=" VORNAK_CLI, "sh", "./make"});
    ASSERT_EQ(result.status, 0) << result.err;

    const auto maskedJson = [](nlohmann::json document) {
        auto &source = document["files"][0]["source"];
        for (auto *stream : {&source["video"], &source["audioTracks"][0]})
            (*stream)["bitrate"] = (*stream)["bitrate"].get<int>() > 0;
        source["duration"] = source["duration"].get<double>() > 1;
        return document;
    };
    EXPECT_EQ(maskedJson(nlohmann::json::parse(result.out)),
              maskedJson(nlohmann::json::parse(blockAfter(text, "```json", at))));

    // the same in words
    const ProcessResult words =
        run({"env", "-C", dir.path(), VORNAK_CLI, "decide", "-p", "player.xml", "film.mkv"});
    const std::string indented =
        std::regex_replace(words.out, std::regex("(^|\n)(?=[^\n])"), "$1    ");
    EXPECT_NE(masked(page("decide.md")).find(masked(indented)), std::string::npos) << indented;
    for (const DocExample &example : readDocExamples(VORNAK_SOURCE_DIR "/docs/decide.md")) {
        const ProcessResult shown = run(
            {"env", "-C", dir.path(), "sh", "-c",
             "ln -sf player.xml tv.xml; vornak() { " VORNAK_CLI " \"$@\"; }; " + example.command});
        EXPECT_EQ(shown.out + shown.err, example.output) << example.command;
    }
}

TEST(CollectionsPage, ShowsWhatItsCommandsPrintAndTheirJsonFollowsItsSchemas)
{
    const TempDir dir;
    std::size_t at = 0;
    const std::string text = page("collections.md");
    for (const char *name : {"tv.xml", "hifi.xml"}) dir.write(name, blockAfter(text, "```xml", at));
    const auto examples = readDocExamples(VORNAK_SOURCE_DIR "/docs/collections.md");
    EXPECT_GE(examples.size(), 10U);
    const std::string tools = std::filesystem::path(VORNAK_CLI).parent_path();
    const std::string start = "cd " + dir.path().string() + "; PATH=" + tools + ":\"$PATH\"; ";
    expectDocExamples(examples, start);

    const ProcessResult followed =
        run({"sh", "-c",
             start + "echo '<DEVICE' >players/broken.xml; "
                     "vornak matrix --profiles players --json --probed media.jsonl >matrix.json; "
                     "for kind in probe:media.jsonl matrix:matrix.json; do \"$0\" "
                     "\"$1/vornak-${kind%:*}.schema.json\" ${kind#*:}; done",
             VORNAK_SOURCE_DIR "/tests/tools/follows_schema", VORNAK_SOURCE_DIR "/docs/schemas"});
    EXPECT_EQ(followed.out, "4 documents\n1 document\n") << followed.err;
}

TEST(CollectionsPage, HasTheReasonsOfTheMatrixFromDecide)
{
    const ProcessResult both = run({"bash", "-c", R"script(
        cd "$1"; media='--probed expectations/media.jsonl'
        shown=$("$0" matrix --json --profiles profiles $media | jq -r '. as $m | .profiles | keys[] as $p
            | $m.files[] | . as $file | $m.whys[.cells[$p]] | select(.part)
            | $file.path + ": " + $file.source, (.lines[] | "  " + $m.texts[.].text),
              (.visited[] | $m.visited[.]
              | "  " + $m.texts[.[0]].text, (.[1:][] | "    " + $m.texts[.].text))')
        [ "$(wc -l <<<"$shown")" -gt 500 ] &&
        diff <(echo "$shown") <(for profile in profiles/*; do "$0" decide -p $profile --explain $media |
                     sed '/^$/d; /^  *\(subtitles\|hardware\|elements\): /d; /^19 files/,$d'; done)
        )script",
                                    VORNAK_CLI, VORNAK_SOURCE_DIR "/examples"});
    EXPECT_EQ(both.status, 0) << both.out;
}

TEST(TranscodingPage, ShowsWhatItsCommandsPrint)
{
    const TempDir dir;
    std::size_t at = 0;
    dir.write("tv.xml", blockAfter(page("transcoding.md"), "```xml", at));
    const auto examples = readDocExamples(VORNAK_SOURCE_DIR "/docs/transcoding.md");
    EXPECT_EQ(examples.size(), 6U);
    const std::string tools = std::filesystem::path(VORNAK_CLI).parent_path();
    expectDocExamples(examples, "cd " + dir.path().string() + "; PATH=" + tools + ":\"$PATH\"");
}

} // namespace
} // namespace vornak::test
