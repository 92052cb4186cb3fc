#include "tests/profile/profile_fixture.h"
#include "tests/profile/recording_host.h"

#include <algorithm>
#include <atomic>
#include <pthread.h>
#include <thread>
#include <vector>

namespace vornak::test {
namespace {

class LoadProfileTest : public ProfileFixture {};

TEST_F(LoadProfileTest, Documents)
{
    const std::string music = "<MUSIC><ACODEC NAME='aac'><FORMAT NAME='mp4'/></ACODEC></MUSIC>";
    const std::string video = "<VIDEO><VCODEC NAME='h264'><ACODEC NAME='mp3'/></VCODEC></VIDEO>";
    const std::string audioTable = "  audio 86018 count=1\n    format 8 count=1\n    free 1\n"
                                   "  free 1\n";
    const std::string videoTable = "  video 28 count=1\n    free 1\n  free 1\n";
    const std::string none = "  no table\n";
    const struct {
        std::string document;
        int mediaFlags;
        std::string content; // after the device's line; empty: no profile
    } cases[] = {
        {"<DEVICE NAME='d'>" + music + video + "</DEVICE>", 5, audioTable + videoTable},
        {"<DEVICE NAME='d'>" + video + music + "</DEVICE>", 5, audioTable + videoTable},
        {"<DEVICE NAME='d'>" + music + video + "</DEVICE>", 1, audioTable + none},
        {"<DEVICE NAME='d'>" + music + video + "</DEVICE>", 4, none + videoTable},
        {"<DEVICE NAME='d'>" + music + video + "</DEVICE>", 0, none + none},
        {"<DEVICE NAME='d'>" + music + video + "</DEVICE>", ~5, none + none},
        {"<DEVICE NAME='d'>" + music + video + "</DEVICE>", -1, audioTable + videoTable},
        {"<DEVICE NAME='d'>" + music + "</DEVICE>", 4, none + none},
        {"<DEVICE NAME='d'>" + music + "<MUSIC/><VIDEO/>" + video + "</DEVICE>", 5,
         audioTable + none},
        {"<DEVICE NAME='d'><MUSIC/>" + music + video + video + "</DEVICE>", 5, none + videoTable},
        {"<DEVICE NAME='d'><music/><X>" + music + "</X></DEVICE>", 5, none + none},
        {"<DEVICE NAME='d'><ACODEC NAME='aac'><FORMAT NAME='mp4'/></ACODEC></DEVICE>", 5,
         none + none},
        {"<DEVICE NAME='d' NAME='e'/>", 5, none + none},
        {"<DEVICE NAME='d' OTHER='x'>text<OTHER/></DEVICE>", 5, none + none},
        {"<x/><DEVICE NAME='d'>" + music + "</DEVICE><DEVICE/>", 5, audioTable + none},
        {"<?xml version='1.0'?><!-- c --><DEVICE NAME='d'><!--" + music + "--></DEVICE>", 5,
         none + none},
        {"<DEVICE/>", 5, ""},
        {"<DEVICE NAME=''/>", 5, ""},
        {"<DEVICE name='d'/>", 5, ""},
        {"<DEVICE/><DEVICE NAME='d'/>", 5, ""},
        {"<ROOT><DEVICE NAME='d'/></ROOT>", 5, ""},
        {"<device NAME='d'/>", 5, ""},
        {"<DEVICE NAME='d'>", 5, ""},
        {"<DEVICE NAME='d'></DEVICE", 5, ""},
        {"DEVICE", 5, ""},
        {"", 5, ""},
    };
    for (const auto &c : cases) {
        const LoadedProfile profile = load(c.document, c.mediaFlags);
        EXPECT_EQ(profile != nullptr, !c.content.empty()) << c.document;
        if (profile) {
            const std::string flags =
                c.mediaFlags == 0 ? "" : " flags=" + std::to_string(c.mediaFlags);
            EXPECT_EQ(describe(*profile), "device name='d'" + flags + "\n" + c.content)
                << c.document;
        }
        EXPECT_EQ(warnings_, "") << c.document;
    }
}

TEST_F(LoadProfileTest, KeepsTheCallersData)
{
    const std::string path = files_.write("p.xml", "<DEVICE NAME='a &amp; b'/>");
    const LoadedProfile profile(ParseSingleTranscodeXML(path.c_str(), 2, -7, 1 << 30));
    EXPECT_EQ(describe(*profile), "device name='a & b' flags=2 data1=-7 data2=1073741824\n"
                                  "  no table\n  no table\n");
}

/// `lines` with two blanks less before each.
std::string outdent(std::string lines)
{
    for (std::size_t at = 0; (at = lines.find("\n  ", at)) != std::string::npos; ++at)
        lines.erase(at + 1, 2);
    return lines;
}

TEST_F(LoadProfileTest, PacksTheRulesThatItAccepts)
{
    const std::string formats = "<FORMAT NAME='mp4' SUBTYPE='m4a' PN='p'/><FORMAT NAME='avi' "
                                "OPTION='o'/><FORMAT/><FORMAT NAME='' MIME='m'/>"
                                "<FORMAT NAME='ts' OPTION='o'/>";
    const std::string formatTable = "      format 65544 pn='p' count=5\n"
                                    "      format 9 option='o' count=5\n"
                                    "      free 4\n";
    const struct {
        std::string rules;
        std::string content; // of the audio table
    } cases[] = {
        {"", "no table\n"},
        {"<OTHER/>", "no table\n"},
        {"<ACODEC/>", "free 1\n"},
        {"<ACODEC NAME=''><FORMAT NAME='mp4'/></ACODEC>", "free 1\n"},
        {"<ACODEC NAME='opus'><FORMAT NAME='mp4'/></ACODEC>", "free 1\n"},
        {"<ACODEC NAME='AAC'><FORMAT NAME='mp4'/></ACODEC>", "free 1\n"},
        {"<ACODEC NAME='unset' OPTION='o'><FORMAT NAME='mp4'/></ACODEC>", "free 1\n"},
        {"<ACODEC NAME='aac' OPTION='o' LEVEL='1'/>", "free 1\n"},
        {"<ACODEC NAME='aac' OPTION='o'><FORMAT/></ACODEC>",
         "audio 86018 option='o' count=1\n      free 1\n    free 1\n"},
        {"<ACODEC NAME='aac'>" + formats + "</ACODEC>",
         "audio 86018 count=1\n" + formatTable + "    free 1\n"},
        {"<ACODEC NAME='mp3'>" + formats + "</ACODEC><ACODEC NAME='?'>" + formats +
             "</ACODEC><ACODEC NAME='aac'>" + formats + "</ACODEC>",
         "audio 86017 count=3\n" + formatTable + "    audio 86018 count=3\n" + formatTable +
             "    free 2\n"},
        // a dropped rule leaves nothing to the next one in its slot
        {"<ACODEC NAME='aac' PROFILE='main' LEVEL='1' NOTRANSCODE='1' MAXCHANNELS='1' "
         "MINCHANNELS='1' MAXFREQUENCY='1' MINFREQUENCY='1' MAXBITRATE='1' MINBITRATE='1' "
         "OPTION='o'><OTHER/></ACODEC><ACODEC NAME='any'>" +
             formats + "</ACODEC>",
         "audio 0 count=2\n" + formatTable + "    free 2\n"},
    };
    for (const auto &c : cases) {
        const LoadedProfile asMusic = load(music(c.rules));
        EXPECT_EQ(describe(*asMusic),
                  "device name='d' flags=5\n  " + outdent(c.content) + "  no table\n")
            << c.rules;
        const LoadedProfile inVideo =
            load(video("<VCODEC NAME='mpeg2' OPTION='v'>" + c.rules + "</VCODEC>"));
        const bool dropped = c.content == "no table\n";
        EXPECT_EQ(describe(*inVideo),
                  "device name='d' flags=5\n  no table\n" +
                      (dropped ? "" : "  video 2 option='v' count=1\n    " + c.content) +
                      "  free 1\n")
            << c.rules;
    }
}

TEST_F(LoadProfileTest, PacksVideoRules)
{
    const std::string audio = "<ACODEC NAME='aac'/>";
    const std::string rejected = "<VCODEC/><VCODEC NAME='' OPTION='o'>" + audio +
                                 "</VCODEC><VCODEC NAME='hevc' OPTION='o'>" + audio +
                                 "</VCODEC><VCODEC NAME='unset' OPTION='o'>" + audio + "</VCODEC>";
    const std::string dropped =
        "<VCODEC NAME='mpeg2' PROFILE='main' LEVEL='1' NOTRANSCODE='1' MAXWIDTH='1' MINWIDTH='1' "
        "MAXHEIGHT='1' MINHEIGHT='1' MAXBITRATE='1' MINBITRATE='1' OPTION='o' VATRANSCODE='1' "
        "FRAME='1' TOLERANCE='1' PLAY_EXCEPTION='10bit'><FORMAT NAME='mp4'/></VCODEC>";
    const std::string accepted = "<VCODEC NAME='h264' OPTION='o'>" + audio + "</VCODEC>";
    const LoadedProfile profile =
        load(video(rejected + accepted + dropped + accepted + dropped + rejected));
    EXPECT_EQ(describe(*profile), "device name='d' flags=5\n  no table\n"
                                  "  video 28 option='o' count=12\n    free 1\n"
                                  "  video 28 option='o' count=12\n    free 1\n"
                                  "  free 11\n");
    EXPECT_EQ(describe(*load(video("<VCODEC NAME='h264'/>"))),
              "device name='d' flags=5\n  no table\n  free 1\n");
}

TEST_F(LoadProfileTest, AsksTheHostInOrder)
{
    takeNodeCalls();
    takeRegistryCalls();
    load("<DEVICE NAME='d'><MUSIC><ACODEC NAME='mp3'><FORMAT NAME='ts'/></ACODEC></MUSIC>"
         "<VIDEO><VCODEC/><VCODEC NAME='h264' PLAY_EXCEPTION='10bit' PROFILE='main|high'>"
         "<ACODEC NAME='aac' PROFILE='x'><FORMAT NAME='mp4' SUBTYPE=''/><FORMAT NAME='mp4' "
         "SUBTYPE='m4a'/></ACODEC></VCODEC></VIDEO></DEVICE>");
    EXPECT_EQ(takeRegistryCalls(), "codec(mp3) container(ts,null) codec(h264) profile(main) "
                                   "profile(high) exception(10bit) codec(aac) profile(x) "
                                   "container(mp4,) container(mp4,m4a) ");
    const std::string format = "n:NAME n:SUBTYPE n:NOTRANSCODE n:PN n:MIME n:NONSEEKABLE n:OPTION ";
    const std::string audio = "n:NAME n:PROFILE n:LEVEL n:NOTRANSCODE p:MAXCHANNELS p:MINCHANNELS "
                              "p:MAXFREQUENCY p:MINFREQUENCY p:MAXBITRATE p:MINBITRATE n:OPTION ";
    EXPECT_EQ(takeNodeCalls(),
              "open(null) DEVICE[0] n:NAME MUSIC[0] count(ACODEC) ACODEC[0] " + audio +
                  "count(FORMAT) FORMAT[0] " + format +
                  "VIDEO[0] count(VCODEC) VCODEC[0] n:NAME VCODEC[1] n:NAME n:PROFILE n:LEVEL "
                  "n:NOTRANSCODE p:MAXWIDTH p:MINWIDTH p:MAXHEIGHT p:MINHEIGHT p:MAXBITRATE "
                  "p:MINBITRATE n:OPTION p:VATRANSCODE p:FRAME p:TOLERANCE n:PLAY_EXCEPTION "
                  "count(ACODEC) ACODEC[0] " +
                  audio + "count(FORMAT) FORMAT[0] " + format + "FORMAT[1] " + format);
}

TEST_F(LoadProfileTest, GivesUpWhenTheHostThrows)
{
    const std::string formats = "<FORMAT NAME='mp4' OPTION='o'/>";
    const std::string good = "<ACODEC NAME='aac' OPTION='o'>" + formats + "</ACODEC>";
    const std::string documents[] = {
        music(good + "<ACODEC NAME='throws'/>"),
        music(good + "<ACODEC NAME='aac' PROFILE='main|throws'/>"),
        music("<ACODEC NAME='aac' OPTION='o'>" + formats + "<FORMAT NAME='throws'/></ACODEC>"),
        video("<VCODEC NAME='h264' OPTION='o'>" + good + "<ACODEC NAME='throws'/></VCODEC>"),
        video("<VCODEC NAME='h264' OPTION='o' PLAY_EXCEPTION='throws'>" + good + "</VCODEC>"),
        video("<VCODEC NAME='h264' OPTION='o'>" + good + "</VCODEC><VCODEC NAME='throws'/>"),
    };
    for (const std::string &document : documents) EXPECT_EQ(load(document), nullptr) << document;
}

TEST_F(LoadProfileTest, LetsItsThreadBeCancelled)
{
    const std::string path = files_.write("p.xml", music("<ACODEC NAME='cancelled'/>"));
    pthread_t thread;
    const auto load = [](void *name) -> void * {
        return ParseSingleTranscodeXML(static_cast<const char *>(name), 5, 0, 0);
    };
    ASSERT_EQ(pthread_create(&thread, nullptr, load, const_cast<char *>(path.c_str())), 0);
    void *end = nullptr;
    ASSERT_EQ(pthread_join(thread, &end), 0);
    EXPECT_EQ(end, PTHREAD_CANCELED);
}

TEST_F(LoadProfileTest, RefusesFilesThatAreNoProfiles)
{
    EXPECT_EQ(ParseSingleTranscodeXML(nullptr, 5, 0, 0), nullptr);
    const std::string text = files_.write("text", std::string(100'000, 'x'));
    for (const std::string &path : {text, files_ / "missing", std::string(files_.path()),
                                    std::string("/dev/null"), std::string()})
        EXPECT_EQ(loadFile(path), nullptr) << path;
}

TEST_F(LoadProfileTest, IgnoresAMillionNestedElements)
{
    std::string nested = "<VCODEC NAME='h264'>";
    for (int i = 0; i < 1'000'000; ++i) nested += "<X>";
    for (int i = 0; i < 1'000'000; ++i) nested += "</X>";
    nested += "</VCODEC>";
    EXPECT_EQ(describe(*load(video(nested))), "device name='d' flags=5\n  no table\n  free 1\n");
    EXPECT_EQ(load(video(nested.substr(0, nested.size() - 1))), nullptr);
}

TEST_F(LoadProfileTest, LoadsOnManyThreadsAtOnce)
{
    std::string rules;
    for (int i = 0; i < 50; ++i) rules += "<ACODEC NAME='aac' PROFILE='|main||high|'/>";
    rules += "<ACODEC NAME='mp3' PROFILE='high | main'><FORMAT NAME='mp4'/></ACODEC>";
    const std::string path = files_.write("profile.xml", music(rules));
    std::vector<std::string> contents(8);
    std::vector<std::thread> threads;
    threads.reserve(contents.size());
    for (std::string &content : contents) {
        threads.emplace_back([&] {
            for (int i = 0; i < 20; ++i) {
                const LoadedProfile profile(ParseSingleTranscodeXML(path.c_str(), 5, 0, 0));
                content += describe(*profile);
            }
        });
    }
    for (std::thread &thread : threads) thread.join();

    const std::string one = describe(*loadFile(path));
    std::string expected;
    for (int i = 0; i < 20; ++i) expected += one;
    EXPECT_NE(one.find("audio 86017 profile=3 "), std::string::npos) << one;
    EXPECT_EQ(std::count(contents.begin(), contents.end(), expected), 8);
}

} // namespace
} // namespace vornak::test
