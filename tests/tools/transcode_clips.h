// The tool at work on real clips, with a real ffmpeg or with programs that pass for one.
#pragma once

#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <string>

namespace vornak::test {

// Rules whose limits do the work, in the words of the appliance's transcoder: its options give
// neither size nor channels nor rates.
constexpr const char *kLimits = R"(<DEVICE NAME="Limits">
  <MUSIC>
    <ACODEC NAME="mp3" MAXCHANNELS="1" MAXFREQUENCY="32000" MAXBITRATE="70K" OPTION="-c:a libmp3lame">
      <FORMAT NAME="mp3"/>
    </ACODEC>
  </MUSIC>
  <VIDEO>
    <VCODEC NAME="h264" PROFILE="main" MAXWIDTH="160" MAXHEIGHT="120" MAXBITRATE="400K"
            OPTION="-c:v libx264 -vprofile main -pix_fmt yuv420p">
      <ACODEC NAME="ac3" MAXCHANNELS="2" MAXFREQUENCY="44100" MAXBITRATE="128K" OPTION="-c:a ac3">
        <FORMAT NAME="matroska" OPTION="-f mkvtimestamp_v2"/>
      </ACODEC>
    </VCODEC>
  </VIDEO>
</DEVICE>
)";

constexpr const char *kPcm = R"(<DEVICE NAME="Pcm">
  <MUSIC>
    <ACODEC NAME="pcm_s16le" OPTION="-c:a pcm_s16le -ar 44100 -ac 2">
      <FORMAT NAME="wav" OPTION="-f wav -fflags +bitexact -map_metadata -1"/>
    </ACODEC>
  </MUSIC>
</DEVICE>
)";

class TranscodeClips : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_Dir = new TempDir;
        s_Dir->write("limits.xml", kLimits);
        s_Dir->write("pcm.xml", kPcm);
        make("film.mkv", "testsrc2=s=320x240:r=25", "c=5.1:s=48000",
             "-c:v mpeg4 -b:v 2M -c:a flac -t 2");
        make("song.flac", "", "c=stereo:s=44100", "-t 3");
        make("song.mp3", "", "c=mono:s=32000", "-c:a libmp3lame -b:a 32k -t 1");
    }
    static void TearDownTestSuite()
    {
        delete s_Dir;
        s_Dir = nullptr;
    }

    static void make(const std::string &name, const std::string &picture, const std::string &sound,
                     const std::string &options)
    {
        const std::string inputs = (picture.empty() ? "" : "-f lavfi -i " + picture) +
                                   " -f lavfi -i 'aevalsrc=0.3*sin(2000*t):" + sound + "' ";
        const auto made =
            run({"sh", "-c", "cd \"$1\" && exec ffmpeg -v error " + inputs + options + " " + name,
                 "sh", s_Dir->path()});
        ASSERT_EQ(made.status, 0) << made.err;
    }

    /// Runs a command of the shell in the directory of the clips, with the tool in PATH.
    static ProcessResult shell(const std::string &command)
    {
        const std::string path = std::filesystem::path(VORNAK_CLI).parent_path();
        return run({"sh", "-c", "PATH=$2:$PATH; cd \"$1\"; " + command, "sh", s_Dir->path(), path});
    }

    /// A program that is called as ffmpeg is.
    static std::string program(const std::string &name, const std::string &script)
    {
        std::string path = s_Dir->write(name, "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    static std::set<std::string> names()
    {
        std::set<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(s_Dir->path()))
            names.insert(entry.path().filename());
        return names;
    }

    static std::string contentOf(const std::string &name)
    {
        std::ifstream file(*s_Dir / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static inline TempDir *s_Dir = nullptr;
};

} // namespace vornak::test
