// What holds for all subcommands: their input, their output, their options.
#include "tests/support/deep_folder.h"
#include "tests/support/process.h"
#include "tests/support/small_wav.h"
#include "tests/support/temp_dir.h"

#include <gmock/gmock.h>

namespace vornak::test {
namespace {

using testing::HasSubstr;

constexpr const char *kProfile = R"(<DEVICE NAME="Player">
  <MUSIC>
    <ACODEC NAME="pcm_s16le" OPTION="-c:a pcm_s16le"><FORMAT NAME="wav" MIME="audio/wav" OPTION="-f wav"/></ACODEC>
  </MUSIC>
</DEVICE>
)";
constexpr const char *kOneKept =
    "1 file: 1 kept, 0 remuxed, 0 audio, 0 video, 0 refused, 0 unreadable\n";
constexpr const char *kTwoKept =
    "2 files: 2 kept, 0 remuxed, 0 audio, 0 video, 0 refused, 0 unreadable\n";

class RunVornak : public testing::Test {
protected:
    RunVornak()
    {
        dir_.write("p.xml", kProfile);
        for (const char *name :
             {"a.wav", "b.wav", "disc/BDMV/index.bdmv", "disc/BDMV/STREAM/1.m2ts"})
            dir_.write(name, smallWav());
    }

    /// Runs a command of the shell in the directory, which knows `vornak`.
    ProcessResult shell(const std::string &command, const std::string &input = {}) const
    {
        return run({"sh", "-c",
                    "cd \"$1\" && tool=$2 && vornak() { \"$tool\" \"$@\"; } && " + command, "sh",
                    dir_.path(), VORNAK_CLI},
                   input);
    }

    TempDir dir_;
};

TEST_F(RunVornak, EndsInOneLineWhereNothingCanBeWrittenAndSilentlyWhereNobodyReads)
{
    for (const std::string arguments :
         {"--help", "--version", "decide --help", "profile show --help", "decide -p p.xml a.wav",
          "decide -p p.xml --json a.wav", "command -p p.xml a.wav", "profile check p.xml",
          "profile show p.xml", "profile list", "profile new --name a --music mp3 --container mp3",
          "probe a.wav", "matrix -p p.xml --json a.wav", "subtitles a.wav", "disc disc",
          "elements --list", "appliance", "cached --tags a b a.wav",
          "transcode -p p.xml a.wav --copy -o c.wav"}) {
        SCOPED_TRACE(arguments);
        const ProcessResult full = shell("vornak " + arguments + " >/dev/full");
        EXPECT_EQ(full.status, 1);
        EXPECT_EQ(full.err, "vornak: standard output: No space left on device\n");
        const ProcessResult gone =
            shell("rm -f c.wav; { trap '' PIPE; vornak " + arguments + "; echo $? >&2; } | true");
        EXPECT_EQ(gone.err, "141\n");
    }
    EXPECT_EQ(shell("{ vornak decide -p p.xml a.wav; echo $? >&2; } | true").err, "141\n");
    EXPECT_EQ(shell("vornak decide -p p.xml a.wav >&-").status, 0);
}

TEST_F(RunVornak, ReadsListsAndProfilesOnStandardInput)
{
    using std::string_literals::operator""s;
    const struct {
        const char *arguments;
        std::string input;
        int status;
        std::string out, err; // parts of them
    } cases[] = {
        {"decide -p p.xml --play-exception hdr a.wav b.wav", "", 0, kTwoKept, ""},
        {"decide -p p.xml -", "a.wav\nb.wav\n", 0, kTwoKept, ""},
        {"decide -p p.xml -", "a.wav\r\nb.wav\r\n", 0, kTwoKept, ""},
        {"decide -p p.xml -0 -", "a.wav\0b.wav\0"s, 0, kTwoKept, ""},
        {"subtitles --null -", "a.wav\0b.wav\0"s, 0, "b.wav: no subtitle files\n", ""},
        {"decide -p - a.wav", kProfile, 0, kOneKept, ""},
        {"decide -p - --json a.wav", kProfile, 0, R"("profile":{"path":"-","pathHex":"2d",)", ""},
        {"command -p - a.wav", kProfile, 0, kOneKept, ""},
        {"profile check --severity error -", kProfile, 0,
         "standard input: 0 errors, 1 warning (not shown), 1 note (not shown)\n", ""},
        {"profile show -", kProfile, 0, "Player", ""},
        {"decide -p - a.wav", "<DEVICE NAME='a'>\n<", 2, "",
         "vornak: standard input:2: not well-formed XML"},
        {"decide -p - a.wav", "", 2, "", "vornak: standard input: it holds no XML element"},
        {"decide -p - a.wav -", kProfile, 2, "",
         "vornak: --profile - and MEDIA - both read standard input; name one of them as a file\n"},
        {"decide -p ./- a.wav", kProfile, 2, "", "vornak: ./-: can't read it: No such file"},
    };
    for (const auto &c : cases) {
        const ProcessResult result = shell(std::string("vornak ") + c.arguments, c.input);
        EXPECT_EQ(result.status, c.status) << c.arguments;
        EXPECT_THAT(result.out, HasSubstr(c.out)) << c.arguments;
        EXPECT_THAT(result.err, HasSubstr(c.err)) << c.arguments;
    }
}

TEST_F(RunVornak, ReachesFilesBelowWhatAPathReaches)
{
    writeDeep(dir_.path(), "deep.wav", smallWav());
    EXPECT_THAT(shell("vornak decide -p p.xml ddd*").out, HasSubstr(kOneKept));
    EXPECT_THAT(shell("vornak subtitles ddd*").err,
                HasSubstr("its folder's path is longer than 1023 characters\n"));
    for (const char *command : {"decide -p p.xml", "profile check", "decide - -p", "disc"}) {
        const ProcessResult named =
            shell(std::string("vornak ") + command + ' ' + std::string(5000, 'n'));
        EXPECT_THAT(named.err, HasSubstr("n ... n")) << command;
        EXPECT_LT(named.err.size(), 300) << command;
    }
}

TEST_F(RunVornak, TakesNoLibraryFromTheWorkingDirectory)
{
    const ProcessResult result =
        shell("for library in $(ldd \"$tool\" | sed -n 's/^[[:space:]]*\\(lib[^ ]*\\) .*/\\1/p'); "
              "do echo trap >$library; done; ls | grep -c '\\.so' && vornak --version");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

} // namespace
} // namespace vornak::test
