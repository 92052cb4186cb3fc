// Profiles by name, and what the shells are told while a command line is typed.
#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace vornak::test {
namespace {

using testing::HasSubstr;

class ProfileNames : public testing::Test {
protected:
    ProfileNames()
    {
        dir_.write("home/.config/vornak/profiles/mine.xml", "<DEVICE NAME='Mine'/>");
        dir_.write("home/.config/vornak/profiles/phone.xml", "<DEVICE NAME='My phone'/>");
        dir_.write("xdg/vornak/profiles/broken.xml", "<DEVICE");
        dir_.write("phone-file", "<DEVICE NAME='File'/>");
    }

    /// A command line of the shell, in the folder and with the home of the test.
    ProcessResult shell(const std::string &command) const
    {
        const std::string bin = std::filesystem::path(VORNAK_CLI).parent_path();
        return run({"env", "-u", "XDG_CONFIG_HOME", "-C", dir_.path(), "HOME=" + dir_ / "home",
                    "PATH=" + bin + ":" + std::getenv("PATH"), "sh", "-c", command});
    }

    TempDir dir_;
};

TEST_F(ProfileNames, AreLookedForFromTheUsersFoldersOn)
{
    const std::string mine = dir_ / "home/.config/vornak/profiles/mine.xml";
    const ProcessResult list = shell("vornak profile list");
    EXPECT_THAT(list.out, HasSubstr("\nmine            Mine            " + mine + "\n"));
    EXPECT_THAT(list.out, HasSubstr("\nphone           My phone  "));
    EXPECT_THAT(list.out, HasSubstr("\nolder-tv        Older TV  "));

    const struct {
        const char *command, *out, *err;
    } cases[] = {
        {"vornak profile show mine | head -n 1", "Mine\n", ""},
        {"vornak profile show phone-file | head -n 1", "File\n", ""},
        {"cp phone-file mine; vornak profile show mine | head -n 1", "Mine\n", ""}, // perhaps a
        {"vornak profile show ./mine | head -n 1", "File\n", ""},                   // stranger's
        {"mkdir folder; vornak profile show folder", "", "vornak: folder: it is a directory\n"},
        {"rm mine; vornak profile show ./mine", "",
         "vornak: ./mine: can't read it: No such file or directory\n"},
        {"vornak profile check minr", "",
         "vornak: minr: neither a file nor a profile's name; did you mean mine? "
         "(vornak profile list shows them)\n"},
        {"vornak profile show mine --color=always | head -n 1 | tr '\\033' E", "E[1mMineE[0m\n",
         ""},
        {"NO_COLOR=1 vornak profile show mine --color never | head -n 1", "Mine\n", ""},
        {"vornak profile show mine --color no", "",
         "vornak: --color: no not in {auto,always,never} (try: vornak profile show --help)\n"},
        {"VORNAK_PROFILE=minr vornak decide none", "",
         "vornak: minr: neither a file nor a profile's name; did you mean mine? "
         "(vornak profile list shows them)\n"},
        {"VORNAK_PROFILE=minr vornak decide -p mine none", "",
         "vornak: none: No such file or directory\n"},
        {"XDG_CONFIG_HOME=$PWD/xdg vornak profile list --json | jq -c '.profiles[0].device'",
         "null\n", nullptr},
        {"XDG_CONFIG_HOME=xdg vornak profile show mine | head -n 1", "Mine\n", ""},
    };
    for (const auto &c : cases) {
        const ProcessResult result = shell(c.command);
        if (*c.out) {
            EXPECT_EQ(result.out, c.out) << c.command;
        }
        if (c.err) {
            EXPECT_EQ(result.err, c.err) << c.command;
        }
    }
}

TEST_F(ProfileNames, AndIdsAreCompleted)
{
    const struct {
        const char *words, *candidates; // names without their meanings, in one line
    } cases[] = {
        {"len", "length "},
        {"profile c", "check "},
        {"decide --play", "--play-exception "},
        {"decide -p m", "mine :files .xml "},
        {"decide -p = m", "mine :files .xml "}, // as bash splits it
        {"decide --profile=m", "--profile=mine :files .xml "},
        {"decide --profile mine ''", ":files "},
        {"decide -p mine -- --p", ":files "},
        {"profile show ol", "older-tv :files .xml "},
        {"profile diff mine ol", "older-tv :files "},
        {"command --prefer mp4/is", "mp4/isom "},
        {"elements --codec h26", "h261 h263 h263p h263i h264 "},
        {"decide --color a", "auto always "},
        {"decide --only kept,au", "kept,audio "},
        {"profile check --fix=d", "--fix=diff "},
        {"profile check --severity ''", "error warning note "},
        {"profile new --like t", "tv "},
        {"decide --json=", ""},
        {"cached --tags decide ''", ""},
        {"cached --tags decide b ''", ":files "},
        {"nothing --p", ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(
            shell(std::string("vornak --complete ") + c.words + " | cut -f 1 | tr '\\n' ' '").out,
            c.candidates)
            << c.words;
}

TEST_F(ProfileNames, AreCompletedInEveryShell)
{
    const std::string folder = VORNAK_SOURCE_DIR "/packaging/completions/";
    dir_.write("phone-tv.xml", "");
    dir_.write("phones/tv.xml", "");
    dir_.write("bash.sh", "source " + folder +
                              "vornak.bash\ncompopt() { :; }\n"
                              "COMP_WORDS=(vornak decide -p ph) COMP_CWORD=3\n_vornak\n"
                              "echo ${COMPREPLY[@]}\n");
    EXPECT_EQ(shell("bash bash.sh").out, "phone phone-tv.xml phones\n");
    EXPECT_EQ(
        shell("fish -c 'source " + folder + "vornak.fish; complete -C \"vornak decide -p ph\"'")
            .out,
        "phone\nphones/\nphone-file\nphone-tv.xml\n");
    dir_.write("zsh.sh", "_describe() { echo $names; }\n_files() { echo $@; }\n"
                         "words=(vornak decide -p ph) CURRENT=4\nsource " +
                             folder + "_vornak\n");
    EXPECT_EQ(shell("zsh -f zsh.sh").out, "phone\n-g *.xml\n");
}

} // namespace
} // namespace vornak::test
