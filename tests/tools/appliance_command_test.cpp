// The subcommands that ask the appliance, on a stand-in for one.
#include "tests/support/doc_examples.h"
#include "tests/support/private_mounts_test.h"
#include "tests/tools/stand_in_appliance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>

namespace vornak::test {
namespace {

class ApplianceCommandTest : public PrivateMountsTest {
protected:
    void SetUp() override
    {
        PrivateMountsTest::SetUp();
        if (IsSkipped()) return;
        appliance_ = std::make_unique<StandInAppliance>();
        if (!appliance_->isComplete()) GTEST_SKIP() << "not everything could be mounted";
    }

    ProcessResult run(const std::string &command) const { return appliance_->run(command); }

    std::unique_ptr<StandInAppliance> appliance_;
};

TEST_F(ApplianceCommandTest, ThePageShowsWhatIsPrinted)
{
    appliance_->installQueryTool();
    appliance_->write("/answers/ENABLE", "TRUE\n");
    appliance_->write("/answers/Install_Path", "/share/vol1/Harvel\n");
    appliance_->write("/share/vol1/Harvel/gst-transcode-agent2", "");
    appliance_->write("/share/vol1/Harvel/gst-transcode-agent", "");
    appliance_->write("/tmp/.Harvel.alive", "");
    std::filesystem::create_directory(appliance_->at("/share/vol1/Public"));
    appliance_->link("vol1/Public", "/share/Public");

    const std::vector<DocExample> examples =
        readDocExamples(VORNAK_SOURCE_DIR "/docs/appliance.md");
    EXPECT_GE(examples.size(), 13U);
    for (const DocExample &example : examples)
        EXPECT_EQ(run("(" + example.command + ") 2>&1").out, example.output) << example.command;
}

TEST_F(ApplianceCommandTest, AnswersOfABareMachine)
{
    const ProcessResult bare = run("vornak appliance --json | jq -c '.[] | objects | "
                                   "[.result, .answer, .said]'");
    EXPECT_EQ(bare.err, "");
    const std::string noTool = R"("sh: 1: /sbin/tolvex: not found")";
    EXPECT_EQ(bare.out, "[1,null," + noTool + "]\n[1,null," + noTool + "]\n[0,null," + noTool +
                            "]\n[0,null,null]\n[1,null,null]\n");

    // A registry that answers with what a terminal must not get.
    appliance_->installQueryTool();
    appliance_->write("/answers/ENABLE", "\x1b[2Jtrue\xff\n");
    appliance_->write("/answers/Install_Path", "\n");
    const ProcessResult odd = run("vornak appliance | grep -v asked");
    EXPECT_EQ(odd.out, "add-on enabled   \\x1b[2Jtrue\\xff\n"
                       "install path     \n"
                       "transcode agent  none\n"
                       "marker file      none\n"
                       "volume root      none\n");
    EXPECT_EQ(run("vornak appliance --json | jq -r .enabled.answer").out, "\\x1b[2Jtrue\\xff\n");
}

TEST_F(ApplianceCommandTest, FirstGenerationAgent)
{
    appliance_->installQueryTool();
    appliance_->write("/answers/ENABLE", "TRUE\n");
    appliance_->write("/share/addon/gst-transcode-agent", "");
    appliance_->write("/answers/Install_Path", "/share/addon\n");
    const char *const agent = "vornak appliance --json | jq -c '[.agent.result, .agent.answer]'";
    EXPECT_EQ(run(agent).out, "[1,\"gst-transcode-agent\"]\n");
    appliance_->write("/answers/ENABLE", "true\n");
    EXPECT_EQ(run(agent).out, "[0,null]\n");
}

TEST_F(ApplianceCommandTest, CachedCopiesOfAnyName)
{
    const std::string odd = "a\n'$(x)' \xff.mkv";
    appliance_->write("/share/-v.mkv", "");
    appliance_->write("/share/.@__thumb/transcode/-v.mkv.B_A", "");
    appliance_->write("/share/folder/" + odd, "");
    appliance_->write("/share/folder/.@__thumb/transcode/" + odd + ".B_A", "");
    appliance_->write("/share/folder/song.flac", "");

    const ProcessResult result = run("vornak cached --tags A B folder no.mkv -- -v.mkv");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "vornak: no.mkv: No such file or directory\n");
    EXPECT_EQ(result.out, "folder/a\\x0a'$(x)' \\xff.mkv: "
                          "folder/.@__thumb/transcode/a\\x0a'$(x)' \\xff.mkv.B_A\n"
                          "folder/song.flac: no cached copy\n"
                          "-v.mkv: ./.@__thumb/transcode/-v.mkv.B_A\n");

    const ProcessResult listed = run("printf '%s\\n' folder no.mkv | "
                                     "vornak cached --music --json --tags A B - 2>/dev/null | "
                                     "jq -c '.files[] | [.pathHex, .copyHex, .error]'");
    const std::string oddHex = "610a27242878292720ff2e6d6b76";
    EXPECT_EQ(listed.out, "[\"666f6c6465722f" + oddHex +
                              "\",\"666f6c6465722f2e405f5f7468756d622f7472616e73636f64652f" +
                              oddHex +
                              "2e425f41\",null]\n"
                              "[\"666f6c6465722f736f6e672e666c6163\",null,null]\n"
                              "[\"6e6f2e6d6b76\",null,\"No such file or directory\"]\n");
}

TEST_F(ApplianceCommandTest, ElementsByName)
{
    const struct {
        const char *arguments;
        int status;
        const char *out, *err;
    } cases[] = {
        {"--codec AVC --container mkv", 0,
         "decoder  h264              ffdec_h264\n"
         "demuxer  matroska          matroskademux\n"
         "muxer    matroska          matroskamux\n",
         ""},
        {"--codec h264 --hardware 1", 0, "decoder  h264              vaapidecode\n", ""},
        {"--codec h264 --hardware 4", 0, "decoder  h264              none\n", ""},
        {"--codec h264 --container mpegts --hardware 1 | head -n 1", 0,
         "decoder  h264              ffdec_h264\n", ""},
        {"--codec vorbis --container wav", 0,
         "decoder  vorbis            none\n"
         "demuxer  wav               wavparse\n"
         "muxer    wav               none\n",
         ""},
        {"--codec twinvq", 0, "decoder  twinvq            ffdec_twinvq\\x09\n", ""},
        {"--codec twinvq --json | jq '.decoders[0].element'", 0, "\"ffdec_twinvq\\t\"\n", ""},
        {"--container webm --json | jq -c '.muxers[0]'", 0,
         "{\"container\":\"matroska/webm\",\"id\":786444,\"element\":\"matroskamux\",\"flag\":0}\n",
         ""},
        {"--container mp3 --json | jq -c '.demuxers[0].element, .muxers[0].element'", 0,
         "null\nnull\n", ""},
        {"--list --hardware 1 --json | jq '[.decoders[].element | select(. == \"vaapidecode\")] | length'",
         0, "5\n", ""},
        {"--list --hardware 4 | grep -c decoder", 1, "0\n", ""},
        {"--codec h246", 2, "", "vornak: unknown codec h246; did you mean h264?\n"},
        {"--container matroshka", 2, "",
         "vornak: unknown container matroshka; did you mean matroska?\n"},
        {"--container mp4/isomm", 2, "", "vornak: mp4 has no subtype isomm; did you mean isom?\n"},
        {"", 2, "",
         "vornak: --codec, --container or --list is required (try: vornak elements --help)\n"},
    };
    for (const auto &c : cases) {
        const ProcessResult result = run(std::string("vornak elements ") + c.arguments);
        EXPECT_EQ(result.out, c.out) << c.arguments;
        EXPECT_EQ(result.err, c.err) << c.arguments;
        EXPECT_EQ(result.status, c.status) << c.arguments;
    }
}

} // namespace
} // namespace vornak::test
