// The installed package, at another place than it was installed to, as somebody else's build uses
// it; and what README.md says about that.
#include "tests/support/doc_examples.h"
#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <optional>

namespace vornak::test {
namespace {

using testing::HasSubstr;

const std::string kSources = VORNAK_SOURCE_DIR;
const std::string kProfile = kSources + "/examples/profiles/living-room-tv.xml";

class Installed : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_dir.emplace();
        shell("cmake --install " VORNAK_BUILD_DIR " --prefix $PWD/first >log && mv first moved");
        // by pkg-config; the other way is in README.md
        build("host-c", "cc -std=c11 $S/host-c/main.c vornak-platform");
        build("host-cpp", "c++ -std=c++17 $S/host-cpp/*.cpp pugixml");
    }
    static void TearDownTestSuite() { s_dir.reset(); }

    /// Runs a command in the folder that holds moved/, S being the examples.
    static ProcessResult shell(const std::string &command)
    {
        return run({"env", "-C", s_dir->path(), "S=" + kSources + "/examples",
                    "PKG_CONFIG_PATH=" + *s_dir / "moved/lib/pkgconfig", "sh", "-c", command});
    }

    /// Compiles without a warning. The command's last word is a module beside vornak.
    static void build(const std::string &program, std::string command)
    {
        const std::size_t module = command.rfind(' ');
        command.replace(module, 1, " $(pkg-config --cflags --libs vornak ");
        const ProcessResult built = shell(
            command + ") -Wl,-rpath,$PWD/moved/lib -Wall -Wextra -Wpedantic -Werror -o " + program);
        EXPECT_EQ(built.err, "") << command;
    }

    static std::optional<TempDir> s_dir;
};
std::optional<TempDir> Installed::s_dir;

TEST_F(Installed, RunsWhereItWasMovedAndNamesNoOtherPlace)
{
    EXPECT_EQ(shell("moved/bin/vornak profile check moved/share/vornak/profiles/phone.xml").status,
              0);
    EXPECT_EQ(shell("grep -rlF -e " VORNAK_SOURCE_DIR "/ -e $PWD/first moved").out, "");
}

TEST_F(Installed, IsFoundByTheVersionAndThePartsThatAreAskedFor)
{
    const struct {
        const char *arguments;
        bool found;
    } cases[] = {
        {"1.0 REQUIRED COMPONENTS library platform tool", true},
        {"1.99 REQUIRED", false},
        {"2.0 REQUIRED", false},
        {"1.0 REQUIRED COMPONENTS bench", false},
    };
    for (const auto &c : cases) {
        s_dir->write("find/CMakeLists.txt",
                     std::string("cmake_minimum_required(VERSION 3.22)\n"
                                 "project(find NONE)\nfind_package(vornak ") +
                         c.arguments + ")\n");
        EXPECT_EQ(shell("cmake -S find -B found -DCMAKE_PREFIX_PATH=$PWD/moved").status == 0,
                  c.found)
            << c.arguments;
    }
    EXPECT_EQ(shell("pkg-config --exists 'vornak >= 1.0' 'vornak-platform >= 1.0'").status, 0);
    EXPECT_NE(shell("pkg-config --exists 'vornak >= 2'").status, 0);
}

// Nothing of it leaks into the other project, and nothing is installed there.
TEST_F(Installed, AsAPartOfAnotherProjectOnlyTheLibraryIsBuilt)
{
    s_dir->write("part/CMakeLists.txt",
                 "cmake_minimum_required(VERSION 3.22)\nproject(part CXX)\ninclude(FetchContent)\n"
                 "set(CMAKE_DISABLE_FIND_PACKAGE_pugixml ON)\n"
                 "FetchContent_Declare(vornak SOURCE_DIR " VORNAK_SOURCE_DIR ")\n"
                 "FetchContent_MakeAvailable(vornak)\n"
                 "get_property(parts DIRECTORY ${vornak_SOURCE_DIR} PROPERTY SUBDIRECTORIES)\n"
                 "foreach(part ${parts})\n"
                 "  get_property(all DIRECTORY ${part} PROPERTY BUILDSYSTEM_TARGETS)\n"
                 "  list(APPEND targets ${all})\nendforeach()\n"
                 "get_property(all DIRECTORY ${vornak_SOURCE_DIR} PROPERTY BUILDSYSTEM_TARGETS)\n"
                 "get_property(options DIRECTORY PROPERTY COMPILE_OPTIONS)\n"
                 "message(NOTICE \"${targets} ${all} [${options}${CMAKE_CXX_STANDARD}\"\n"
                 "  \"${CMAKE_BUILD_TYPE}${CMAKE_CXX_FLAGS}]\")\n"
                 "if(NOT TARGET vornak::vornak OR TARGET vornak::platform)\n"
                 "  message(FATAL_ERROR targets)\nendif()\n");
    const ProcessResult configured = shell("cmake -S part -B part >log");
    EXPECT_EQ(configured.err, " vornak_build;vornak []\n");
    EXPECT_EQ(shell("cmake --install part --prefix $PWD/nothing >log; ls nothing").out, "");
}

TEST_F(Installed, HostsAnswerAndLeaveNothing)
{
    const auto video = [&](const char *rule, const char *codec, const char *container,
                           const char *entry) {
        return std::string("<DEVICE NAME='T'><VIDEO><VCODEC NAME='h264' ") + rule +
               "><ACODEC NAME='" + codec + "' OPTION='-c:a x'><FORMAT NAME='" + container + "' " +
               entry + "/></ACODEC></VCODEC></VIDEO></DEVICE>";
    };
    const std::string noRule = "host-c: the profile has no rule for such files\n";
    const struct {
        std::string profile;
        int status;
        std::string printed;
    } cases[] = {
        {"<DEVICE/>", 2, "host-c: can't load the profile\n"},
        {"<DEVICE NAME='T'><MUSIC/></DEVICE>", 1, noRule},
        {"<DEVICE NAME='T'><VIDEO/></DEVICE>", 1, noRule},
        {video("", "none", "mp4", ""), 1, noRule},
        {video("", "flac", "none", ""), 1, noRule},
        // the second entry's text is lost where a table is thought to end at id 0
        {video("", "flac", "any", "MIME='video/any'/><FORMAT NAME='mp4' MIME='video/mp4'"), 0,
         "video: keep, rule 0\naudio: keep, rule 0\noutput: container matroska, entry 0\n"
         "MIME type video/any, DLNA profile none\nsent as it is\n"},
        {video("NOTRANSCODE='1'", "flac", "mp4", ""), 0,
         "refused: it would have to be transcoded, and the profile forbids that\n"},
        {video("", "ac3", "mp4", "NONSEEKABLE='1'"), 0,
         "video: keep, rule 0\naudio: transcode, rule 0\noutput: container mp4, entry 0\n"
         "MIME type none, DLNA profile none\nthe output can't be sought in\n"
         "transcoder's options:  -c:v copy -c:a x\n"},
    };
    const std::string checked = "valgrind -q --error-exitcode=9 --leak-check=full "
                                "--show-leak-kinds=all --errors-for-leak-kinds=all ./";
    for (const auto &c : cases) {
        s_dir->write("t.xml", c.profile);
        const ProcessResult result = shell(checked + "host-c t.xml 2>&1");
        EXPECT_EQ(result.out, c.printed) << c.profile;
        EXPECT_EQ(result.status, c.status) << c.profile;
        EXPECT_EQ(shell("./host-cpp t.xml").status, c.status == 2 ? 2 : 0) << c.profile;
    }
    for (const char *host : {"host-c ", "host-cpp "})
        EXPECT_EQ(shell(checked + std::string(host).append(kProfile)).err, "") << host;
}

// A program that opens the library itself is passed over unless it exports what it defines.
TEST_F(Installed, OpenedLibrariesSeeARegistryThatIsExported)
{
    s_dir->write("open.cpp", R"(#include <dlfcn.h>
#include <vornak.h>
int main(int, char **argv)
{
    dlopen("libvornak_platform.so.1", RTLD_NOW | RTLD_GLOBAL);
    void *library = dlopen("libvornak.so.1", RTLD_NOW);
    auto load = (decltype(&ParseSingleTranscodeXML))dlsym(library, "ParseSingleTranscodeXML");
    return load(argv[1], VORNAK_MEDIA_VIDEO, 0, 0) ? 0 : 1;
}
)");
    const auto whoseRegistry = [](const std::string &options) {
        shell("c++ -std=c++17 open.cpp $(ls $S/host-cpp/*.cpp | grep -v /main.cpp) -Imoved/include "
              "-Wl,-rpath,$PWD/moved/lib -lpugixml -o open " +
              options);
        return shell("LD_DEBUG=bindings LD_LIBRARY_PATH=moved/lib ./open " + kProfile +
                     " 2>&1 | grep CodecNameToID")
            .out;
    };
    EXPECT_THAT(whoseRegistry(""), HasSubstr("libvornak_platform.so.1 [0]: normal symbol"));
    EXPECT_THAT(whoseRegistry("-rdynamic"), HasSubstr("to ./open [0]: normal symbol"));
}

// As in a clone that is built already; what builds it is left out.
TEST_F(Installed, ReadmeShowsWhatHappens)
{
    const TempDir clone;
    for (const char *part : {"CMakeLists.txt", "examples", "include"})
        std::filesystem::create_symlink(kSources + "/" + part, clone / part);
    std::filesystem::create_symlink(VORNAK_BUILD_DIR, clone / "build");
    std::vector<DocExample> examples = readDocExamples(kSources + "/README.md");
    const std::size_t all = examples.size();
    std::erase_if(examples, [](const DocExample &example) {
        return example.command.starts_with("scripts/") ||
               example.command.starts_with("cmake -S . ") ||
               example.command == "cmake --build build";
    });
    EXPECT_EQ(all - examples.size(), 4U);
    expectDocExamples(examples, "cd " + std::string(clone.path()) + "; HOME=$PWD; export HOME");
}

} // namespace
} // namespace vornak::test
