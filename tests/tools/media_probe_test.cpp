// Real clips, made anew by ffmpeg for each run, against what was asked of it.
#include "include/vornak_host.h"
#include "tests/support/capture.h"
#include "tests/tools/probed_clips.h"
#include "tools/decide/decision.h"
#include "tools/transcode/ffmpeg_line.h"
#include "tools/transcode/library_command.h"

#include <algorithm>
#include <filesystem>
#include <random>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace vornak::test {
namespace {

using namespace tool;

struct Clip {
    const char *name;
    const char *options; // of ffmpeg: an input of video (0), sound (1), other sound (2), cover (3)
    const char *expected;
};

// Video: codec, profile, level, size, play exceptions. Audio: codec, profile, channels, rate, and
// a star behind the default track.
const Clip s_Clips[] = {
    {"h264.mp4",
     "-map 0 -map 1 -c:v libx264 -preset veryfast -pix_fmt yuv420p -profile:v main -level 3.1 "
     "-c:a aac -ac 2",
     "mp4/isom: h264 main 31 192x128; aac lc 2 48000*"},
    {"constrained.mov", "-map 0 -map 1 X264 -profile:v baseline -level 3.0 -c:a pcm_s16le",
     "mp4/qt: h264 constrained_baseline 30 192x128; pcm_s16le - 1 48000*"},
    {"turned.mp4", "-map 0 X264 -level 3.1 -metadata:s:v rotate=90 -brand mp42",
     "mp4/mp42: h264 constrained_baseline 31 192x128"},
    {"phone.3gp", "-map 0 -map 1 X264 -level 1.3 -c:a aac",
     "mp4/3gp: h264 constrained_baseline 13 192x128; aac lc 1 48000*"},
    {"high.mkv",
     "-map 0 -map 1 -map 2 -c:v libx264 -preset veryfast -pix_fmt yuv420p -level 4.1 -c:a ac3 "
     "-disposition:a:0 0 -disposition:a:1 default -metadata:s:a:1 language=ger",
     "matroska: h264 high 41 192x128; ac3 - 1 48000; ac3 - 1 44100*ger"},
    {"bluray.m2ts", "-map 0 -map 1 X264 -level 4.0 -c:a ac3 -mpegts_m2ts_mode 1",
     "mpegts_m2ts: h264 constrained_baseline 40 192x128; ac3 - 1 48000"},
    {"cast.ts", "-map 0 -map 1 X264 -level 4.0 -c:a aac",
     "mpegts: h264 constrained_baseline 40 192x128; aac lc 1 48000"},
    {"ten.mkv", "-map 0 -c:v libx264 -preset veryfast -pix_fmt yuv420p10le -level 4.0",
     "matroska: h264 high10 40 192x128 10bit"},
    {"chroma422.mp4", "-map 0 -c:v libx264 -preset veryfast -pix_fmt yuv422p -level 4.0",
     "mp4/isom: h264 high422 40 192x128 chroma422"},
    {"chroma444.mp4", "-map 0 -c:v libx264 -preset veryfast -pix_fmt yuv444p -level 4.0",
     "mp4/isom: h264 high444 40 192x128 chroma444"},
    {"refs.mp4", "-map 0 X264 -s 1280x720 -refs 6 -level 3.1",
     "mp4/isom: h264 constrained_baseline 31 1280x720 too_many_refs"},
    {"refs_that_fit.ts", "-map 0 X264 -s 1280x720 -refs 5 -level 3.1",
     "mpegts: h264 constrained_baseline 31 1280x720"},
    {"fields.mp4", "-map 0 X264 -profile:v main -flags +ildct+ilme -level 3.1",
     "mp4/isom: h264 main 31 192x128 interlaced"},
    {"fields.mkv", "-map 0 X264 -profile:v main -flags +ildct+ilme -level 3.1",
     "matroska: h264 main 31 192x128 interlaced"},
    {"hdr.mp4",
     "-map 0 -c:v libx265 -preset ultrafast -pix_fmt yuv420p10le -x265-params "
     "log-level=none:level-idc=4.1:transfer=smpte2084:colorprim=bt2020:colormatrix=bt2020nc",
     "mp4/isom: hevc main10 123 192x128 10bit,hdr"},
    {"hevc.mkv",
     "-map 0 -map 1 -c:v libx265 -preset ultrafast -pix_fmt yuv420p -x265-params "
     "log-level=none:level-idc=3.1 -c:a eac3",
     "matroska: hevc main 93 192x128; eac3 - 1 48000"},
    {"hevc_fields.mp4",
     "-map 0 -c:v libx265 -preset ultrafast -pix_fmt yuv420p -x265-params "
     "log-level=none:level-idc=3.1:interlace=tff",
     "mp4/isom: hevc main 93 192x128 interlaced"},
    {"hevc_fields.mkv",
     "-map 0 -c:v libx265 -preset ultrafast -pix_fmt yuv420p -x265-params "
     "log-level=none:level-idc=3.1:interlace=tff",
     "matroska: hevc main 93 192x128 interlaced"},
    {"hevc_fields.ts",
     "-map 0 -c:v libx265 -preset ultrafast -pix_fmt yuv420p -x265-params "
     "log-level=none:level-idc=3.1:interlace=tff",
     "mpegts: hevc main 93 192x128 interlaced"},
    {"camera.dv", "-map 0 -map 1 -s 720x576 -pix_fmt yuv420p -c:v dvvideo -c:a pcm_s16le -ac 2",
     "dv: dvvideo - 0 720x576 interlaced; pcm_s16le - 2 48000"},
    {"camera.avi", "-map 0 -s 720x576 -pix_fmt yuv420p -c:v dvvideo",
     "avi: dvvideo - 0 720x576 interlaced"},
    {"fields.mpg", "-map 0 -map 1 -c:v mpeg2video -flags +ildct+ilme -c:a mp2",
     "mpegps: mpeg2video main 8 192x128 interlaced; mp2 - 1 48000"},
    {"disc.vob", "-map 0 -map 1 -s 720x576 -r 25 -c:v mpeg2video -c:a ac3 -f dvd",
     "mpegps_dvd: mpeg2video main 8 720x576; ac3 - 1 48000"},
    {"video_cd.mpg", "-map 0 -map 1 -c:v mpeg1video -c:a mp2",
     "mpegps_mpeg1: mpeg1video - 0 192x128; mp2 - 1 48000"},
    {"xvid.avi", "-map 0 -map 1 -c:v mpeg4 -c:a libmp3lame",
     "avi: mpeg4 simple 1 192x128; mp3 - 1 48000"},
    {"quarter.avi", "-map 0 -c:v mpeg4 -flags +qpel", "avi: mpeg4 advanced_simple 1 192x128 qpel"},
    {"fields_mpeg4.mp4", "-map 0 -c:v mpeg4 -flags +ildct+ilme",
     "mp4/isom: mpeg4 simple 1 192x128 interlaced"},
    {"web.webm", "-map 0 -map 1 -c:v libvpx-vp9 -deadline realtime -cpu-used 8 -c:a libopus",
     "matroska/webm: vp9 profile0 0 192x128; opus - 1 48000"},
    {"old_web.webm", "-map 0 -map 1 -c:v libvpx -deadline realtime -cpu-used 8 -c:a libvorbis",
     "matroska/webm: vp8 profile0 0 192x128; vorbis - 1 48000"},
    {"changing.mp4", "-map 0 -vf select='lt(n,12)+not(mod(n,3))' -vsync vfr X264 -level 3.0",
     "mp4/isom: h264 constrained_baseline 30 192x128 vfr"},
    {"changing.mkv", "-map 0 -vf select='lt(n,12)+not(mod(n,3))' -vsync vfr X264 -level 3.0",
     "matroska: h264 constrained_baseline 30 192x128 vfr"},
    {"broadcast.mkv", "-map 0 -vf fps=30000/1001 X264 -level 3.0", // gaps of 33 and 34 milliseconds
     "matroska: h264 constrained_baseline 30 192x128"},
    {"windows.wmv", "-map 0 -map 1 -c:v wmv2 -c:a wmav2", "asf: wmv2 - 0 192x128; wmav2 - 1 48000"},
    {"flash.flv", "-map 0 -map 2 -c:v flv -c:a libmp3lame", "flv: flv1 - 0 192x128; mp3 - 1 44100"},
    {"edit.mov", "-map 0 -c:v prores_ks", "mp4/qt: prores hq 0 192x128 10bit,chroma422"},
    {"free.ogv", "-map 0 -map 1 -c:v libtheora -c:a libvorbis",
     "ogg: theora - 0 192x128; vorbis - 1 48000"},
    {"song.mp3", "-map 1 -c:a libmp3lame -b:a 128k", "mp3; mp3 - 1 48000"},
    {"cover.mp3", "-map 1 -map 3 -c:a libmp3lame -c:v copy -disposition:v attached_pic",
     "mp3; mp3 - 1 48000"},
    {"cover.m4a", "-map 2 -map 3 -c:a aac -c:v copy -disposition:v attached_pic",
     "mp4/m4a; aac lc 1 44100*"},
    {"song.flac", "-map 1 -map 3 -c:a flac -c:v copy -disposition:v attached_pic",
     "flac; flac - 1 48000"},
    {"song.oga", "-map 1 -c:a flac -f ogg", "ogg; flac - 1 48000"},
    {"lossless.m4a", "-map 1 -c:a alac", "mp4/m4a; alac - 1 48000*"},
    {"song.wav", "-map 1 -c:a pcm_s24le -ac 2", "wav; pcm_s24le - 2 48000"},
    {"song.aiff", "-map 2 -c:a pcm_s16be", "aiff; pcm_s16be - 1 44100"},
    {"song.au", "-map 2 -c:a pcm_mulaw", "au; pcm_mulaw - 1 44100"},
    {"song.aac", "-map 1 -c:a aac", "adts; aac lc 1 48000"},
    {"song.ac3", "-map 1 -c:a ac3 -ac 6", "ac3; ac3 - 6 48000"},
    {"song.dts", "-map 1 -c:a dca -strict -2 -ac 2", "dts; dts dts 2 48000"},
    {"song.wma", "-map 2 -c:a wmav2", "asf; wmav2 - 1 44100"},
    {"song.wv", "-map 1 -c:a wavpack", "wavpack; wavpack - 1 48000"},
    {"photo.png", "-map 0 -frames:v 1", "image; still"},
    {"photo.jpg", "-map 0 -frames:v 1 -pix_fmt yuvj420p", "image; still"},
    {"photo.avif", "-map 0 -frames:v 1 -c:v libaom-av1 -cpu-used 8 -pix_fmt yuv420p",
     "image; still"},
    {"photo.gif", "-map 0 -frames:v 1 -pix_fmt rgb8", "image; still"},
    {"moving.webp", "-map 0 -frames:v 4", "image; still"}, // which libavformat can't read
    {"pair.mpo", "-map 0 -frames:v 2 -c:v mjpeg -f mjpeg", "image; still"},
    {"moving.gif", "-map 0 -pix_fmt rgb8", "gif: gif - 0 192x128 chroma444"},
    {"moving.png", "-map 0 -c:v apng -f apng", "apng: apng - 0 192x128 chroma444"},
    {"raw.mjpeg", "-map 0 -c:v mjpeg -pix_fmt yuvj420p -f mjpeg",
     "mjpeg: mjpeg baseline 0 192x128"},
};

std::string profileText(const std::string &name, int bit, int codecId)
{
    char text[VORNAK_NAME_SIZE] = {};
    if (bit == 0) return name.empty() ? "-" : "no bit for " + name;
    return ProfileIDToName(text, bit, codecId) == 0 && name == text ? name : "another name";
}

/// The codec's name, when its id is what the registry has for it.
std::string codecText(const std::string &name, int id)
{
    int known = kUnknownId;
    CodecNameToID(name.c_str(), &known);
    return id == known ? name : "another id";
}

std::string containerText(const MediaInfo &media)
{
    char name[VORNAK_NAME_SIZE] = {};
    char subtype[VORNAK_NAME_SIZE] = {};
    if (media.formatId == kUnknownId) return media.containerName;
    if (ContainerFormatIDToName(name, subtype, media.formatId) != 0) return "no container";
    std::string text = name + VORNAK_CONTAINER_PREFIX;
    if (*subtype) text += std::string("/") + (subtype + VORNAK_SUBTYPE_PREFIX);
    return text == media.containerName ? text : "another container";
}

std::string exceptionText(const VideoStream &video)
{
    std::string names;
    int bits = 0;
    for (const std::string &name : video.playExceptionNames) {
        int bit = 0;
        PlayExceptionNameToID(name.c_str(), &bit);
        bits |= bit;
        names += (names.empty() ? " " : ",") + name;
    }
    return bits == video.playExceptions ? names : " other bits";
}

std::string describe(const VideoStream &video)
{
    return codecText(video.codecName, video.codecId) + ' ' +
           profileText(video.profileName, video.profile, video.codecId) + ' ' +
           std::to_string(video.level) + ' ' + std::to_string(video.width) + 'x' +
           std::to_string(video.height) + exceptionText(video);
}

std::string describe(const AudioTrack &track)
{
    return codecText(track.codecName, track.codecId) + ' ' +
           profileText(track.profileName, track.profile, track.codecId) + ' ' +
           std::to_string(track.channels) + ' ' + std::to_string(track.sampleRate) +
           (track.isDefault ? "*" : "") + (track.language == "und" ? "" : track.language);
}

std::string describe(const ProbeResult &result)
{
    if (!result.media) return "error: " + result.error;
    const MediaInfo &media = *result.media;
    std::string text = containerText(media);
    if (media.video) text += ": " + describe(*media.video);
    for (const AudioTrack &track : media.audio) text += "; " + describe(track);
    return text + (media.stillImage ? "; still" : "");
}

bool hasAllBitRates(const MediaInfo &media)
{
    return (!media.video || media.video->bitrate > 0) &&
           std::ranges::all_of(media.audio,
                               [](const AudioTrack &track) { return track.bitrate > 0; });
}

/// All clips, made by one run of ffmpeg.
class MediaProbe : public ProbedClips {
protected:
    static void SetUpTestSuite()
    {
        ProbedClips::SetUpTestSuite();
        if (!folder_) return;
        std::vector<std::string> all = {"-f", "lavfi",          "-i", "testsrc2=s=192x128:r=25:d=1",
                                        "-f", "lavfi",          "-i", "anoisesrc=d=1:r=48000:a=0.1",
                                        "-f", "lavfi",          "-i", "sine=d=1:f=880:r=44100",
                                        "-i", clip("cover.png")};
        for (const Clip &made : s_Clips) {
            const std::vector<std::string> options = words(made.options);
            all.insert(all.end(), options.begin(), options.end());
            all.push_back(clip(made.name));
        }
        runFfmpeg(all);
    }
};

TEST_F(MediaProbe, FindsWhatTheClipWasMadeOf)
{
    for (const Clip &made : s_Clips) {
        const ProbeResult result = probeMedia(clip(made.name));
        EXPECT_EQ(describe(result), made.expected) << made.name;
        if (!result.media || result.media->stillImage) continue;
        EXPECT_NEAR(result.media->duration, 1, 0.2) << made.name;
        for (std::size_t i = 0; i < result.media->audio.size(); ++i)
            EXPECT_EQ(result.media->audio[i].number, i + 1) << made.name;
    }
}

TEST_F(MediaProbe, FindsTheSameOnManyThreads)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 6; ++i)
        threads.emplace_back([i] {
            for (std::size_t k = 0; k < std::size(s_Clips); ++k) {
                const Clip &made =
                    s_Clips[(k + static_cast<std::size_t>(i) * 7) % std::size(s_Clips)];
                EXPECT_EQ(describe(probeMedia(clip(made.name))), made.expected) << made.name;
            }
        });
    for (std::thread &thread : threads) thread.join();
}

/// A broadcast that was cut begins far before the next pictures that say how large they are.
TEST_F(MediaProbe, ReadsOnForTheSizeOfThePictures)
{
    runFfmpeg({"-f", "lavfi", "-i", "testsrc2=s=320x180:r=25:d=12", "-c:v", "libx264", "-preset",
               "ultrafast", "-pix_fmt", "yuv420p", "-g", "999", clip("one_gop.ts")});
    constexpr std::size_t kPackets = 300;
    const std::string film = readFile(clip("one_gop.ts")), rest = film.substr(188 * kPackets);
    std::string late;
    while (late.size() < 6'000'000) late += rest;
    folder_->write("late.ts", late + film);
    EXPECT_EQ(probe("late.ts").video.value().width, 320);
    const ProbeResult never = probeMedia(folder_->write("never.ts", rest));
    EXPECT_EQ(never.code, "cannot-probe");
    EXPECT_TRUE(never.error.starts_with("doesn't say how large its pictures are")) << never.error;
}

std::int64_t bytesRead()
{
    std::ifstream counters("/proc/self/io");
    std::string name;
    std::int64_t bytes = 0;
    counters >> name >> bytes;
    return bytes;
}

/// The end of an unfinished download: no more is read for it than for any file, and the zeros are
/// no part of its streams.
TEST_F(MediaProbe, IsNotHeldUpByZeros)
{
    for (const char *name :
         {"high.mkv", "cast.ts", "fields.mpg", "xvid.avi", "flash.flv", "web.webm", "song.mp3",
          "song.wav", "song.ac3", "song.flac", "photo.png", "raw.mjpeg"}) {
        const ProbeResult whole = probeMedia(clip(name));
        const std::string path = folder_->write("zeros", readFile(clip(name)));
        std::filesystem::resize_file(path, std::uintmax_t{2} << 30);
        const std::int64_t before = bytesRead();
        const ProbeResult result = probeMedia(path);
        EXPECT_LT(bytesRead() - before, 300'000'000) << name;
        EXPECT_EQ(describe(result), describe(whole)) << name;
        if (!result.media || !result.media->video) continue;
        EXPECT_LT(result.media->video->bitrate, 3 * whole.media->video->bitrate) << name;
    }
}

TEST_F(MediaProbe, TellsPackedPicturesByTheEncodersName)
{
    std::string packed = readFile(clip("xvid.avi"));
    for (std::size_t at = 0; (at = packed.find("Lavc", at)) != std::string::npos;)
        packed.replace(at, 13, "DivX503b1393p");
    EXPECT_EQ(describe(probeMedia(folder_->write("packed.avi", packed))),
              "avi: mpeg4 simple 1 192x128 packed_bitstream; mp3 - 1 48000");
}

TEST_F(MediaProbe, TellsPhotosFromSequencesByTheBrand)
{
    const std::string film = readFile(clip("h264.mp4"));
    for (const char *brand : {"heic", "heix", "mif1", "avis", "msf1", "hevc", "hevx"}) {
        const ProbeResult result = probeMedia(folder_->write(
            "branded.mp4", replaced(film.substr(0, 12), "isom", brand) + film.substr(12)));
        const bool photo = std::string_view("heic heix mif1").find(brand) != std::string::npos;
        EXPECT_EQ(describe(result), photo ? "image; still" : s_Clips[0].expected) << brand;
    }
    // no libavformat of today opens this
    EXPECT_EQ(describe(probeMedia(folder_->write("photo.heic", "sizeftypheic....mif1heic"))),
              "image; still");
}

TEST_F(MediaProbe, TakesAFileWithoutABrandForQuickTime)
{
    std::string old = readFile(clip("constrained.mov"));
    old.replace(4, 4, "free"); // the box that has it
    folder_->write("old.mov", old);
    int mov = 0;
    ASSERT_EQ(ContainerFormatNameToID("mov", nullptr, &mov), 0);
    EXPECT_EQ(probe("old.mov").formatId, mov);
}

TEST_F(MediaProbe, TakesAnyFileNameForOne)
{
    const std::string content = readFile(clip("h264.mp4"));
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder_->path());
    for (const char *name : {"-", "-i.mp4", "pipe:0", "http:x.mp4", "concat:h264.mp4|h264.mp4",
                             "%03d.mp4", "line\nbreak\x1b[31m.mp4", "no_extension", "\xFF\xFE.mp4",
                             "wrong.mp3", "wrong.txt", "wrong.png"}) {
        folder_->write(name, content);
        EXPECT_EQ(describe(probeMedia(name)), s_Clips[0].expected) << name;
    }
    std::filesystem::current_path(before);
}

/// A folder holds what somebody else wrote: lists of other files, in every form that ffmpeg knows.
TEST_F(MediaProbe, OpensNoOtherFile)
{
    const std::string decoy = clip("decoy.ts"), trace = clip("trace");
    std::filesystem::copy_file(clip("cast.ts"), decoy);
    const std::vector<std::string> targets = {"decoy.ts", decoy, "file:" + decoy,
                                              "http://127.0.0.1:9/decoy.ts"};
    const struct {
        const char *name, *before, *after; // what a target stands between
    } lists[] = {
        {"a.m3u8", "#EXTM3U\n#EXT-X-TARGETDURATION:9\n#EXTINF:9,\n", "\n#EXT-X-ENDLIST\n"},
        {"b.ts", "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=9\n", "\n"},
        {"c.mp4", "#EXTM3U\n#EXT-X-TARGETDURATION:9\n#EXT-X-MAP:URI=\"", "\"\n#EXTINF:9,\na.ts\n"},
        {"d.ffconcat", "ffconcat version 1.0\nfile '", "'\n"},
        {"e.sdp", "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\na=control:",
         "\nm=video 5004 RTP/AVP 96\na=rtpmap:96 H264/90000\n"},
        {"f.mpd",
         "<MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\" type=\"static\"><Period><AdaptationSet "
         "mimeType=\"video/mp4\"><Representation id=\"1\" bandwidth=\"9\"><BaseURL>",
         "</BaseURL></Representation></AdaptationSet></Period></MPD>"},
        {"g.rm", "rtsp://127.0.0.1:9/\n", "\n"},
        {"h.idx", "# VobSub index file, v7 (do not modify this line!)\n# ", "\n"},
    };
    std::vector<std::string> files = {"http://127.0.0.1:9/decoy.ts", "concat:decoy.ts|decoy.ts",
                                      "file:decoy.ts", "tcp://127.0.0.1:9", "%03d.png"};
    for (const auto &list : lists)
        for (const std::string &target : targets)
            files.push_back(folder_->write(std::to_string(files.size()) + list.name,
                                           list.before + target + list.after));
    const std::string profile = VORNAK_SOURCE_DIR "/examples/profiles/living-room-tv.xml";
    const auto opened = [&](std::vector<std::string> command) {
        std::vector<std::string> traced = {
            "env", "-C", folder_->path(), "strace", "-f",
            "-qq", "-o", trace,           "-e",     "trace=open,openat,socket,connect"};
        traced.insert(traced.end(), command.begin(), command.end());
        run(traced);
        return readFile(trace);
    };
    const std::string sign = "\"" + decoy + "\"";
    if (opened({"cat", decoy}).find(sign) == std::string::npos)
        GTEST_SKIP() << "strace is not there, or isn't allowed to trace";
    std::vector<std::string> decide = {VORNAK_CLI, "decide", "-p", profile};
    decide.insert(decide.end(), files.begin(), files.end());
    std::vector<std::string> traces = {opened(decide)};
    EXPECT_NE(traces[0].find("\"" + files.back() + "\""), std::string::npos); // it looked at them
    // the words of a transcode, for a file that was exchanged since it was decided about
    Decision decision;
    decision.media.demuxer = "mpegts";
    for (const std::string &file : files) {
        std::vector<std::string> ffmpeg = {"timeout", "5", "ffmpeg", "-v", "quiet", "-nostdin"};
        for (std::string &word : ffmpegArguments(file, decision, {})) ffmpeg.push_back(word);
        ffmpeg.insert(ffmpeg.end(), {"-f", "null", "-"});
        traces.push_back(opened(ffmpeg));
    }
    for (const std::string &text : traces) {
        EXPECT_EQ(text.find(sign), std::string::npos);
        EXPECT_EQ(text.find("\"decoy.ts\""), std::string::npos);
        EXPECT_EQ(text.find("AF_INET"), std::string::npos);
    }
}

TEST_F(MediaProbe, SaysWhatIsWrong)
{
    std::filesystem::create_directory(clip("folder.mp4"));
    ASSERT_EQ(mkfifo(clip("pipe.mp4").c_str(), 0600), 0);
    std::string noise(60000, '\0');
    std::mt19937 random(7); // NOLINT(cert-msc51-cpp): the same noise each time
    std::ranges::generate(noise, [&] { return static_cast<char>(random()); });
    const std::string clipped = readFile(clip("h264.mp4")).substr(0, 3000);
    constexpr const char *kNothing = "cannot-probe: is no media file, or a damaged one";
    const std::string noMoov = std::string(kNothing) + " (moov atom not found)";
    const struct {
        std::string path, error;
    } cases[] = {
        {clip("missing.mp4"), "cannot-open: No such file or directory"},
        {clip("h264.mp4/x"), "cannot-open: Not a directory"},
        {"", "cannot-open: No such file or directory"},
        {clip("folder.mp4"), "cannot-open: is a directory"},
        {clip("pipe.mp4"), "cannot-open: neither a file nor a folder"},
        {"/dev/null", "cannot-open: neither a file nor a folder"},
        {folder_->write("empty.mp4", ""), "cannot-probe: is empty"},
        {folder_->write("text.txt", "Some words.\n"), kNothing},
        {folder_->write("text.nfo", "Some words.\n"), kNothing},
        {folder_->write("noise", noise), kNothing},
        {folder_->write("noise.bin", noise), kNothing},
        {folder_->write("noise.mp3", noise), kNothing},
        {folder_->write("noise.mp4", noise), noMoov},
        {folder_->write("cut.mp4", clipped), noMoov},
    };
    for (const auto &c : cases) {
        const ProbeResult result = probeMedia(c.path);
        EXPECT_FALSE(result.media.has_value()) << c.path;
        EXPECT_TRUE((std::string(result.code) + ": " + result.error).starts_with(c.error))
            << c.path << ' ' << result.error;
    }
    // no error of the probe's: whoever decides finds neither video nor sound
    const MediaInfo subtitles =
        probe(folder_->write("words.srt", "1\n00:00:01,000 --> 00:00:02,000\nHello\n"));
    EXPECT_FALSE(subtitles.video || !subtitles.audio.empty());
    if (geteuid() == 0) return; // root reads everything
    std::filesystem::permissions(clip("song.wav"), std::filesystem::perms::none);
    EXPECT_EQ(probeMedia(clip("song.wav")).error, "Permission denied");
    EXPECT_EQ(probeMedia(clip("song.wav")).code, "cannot-open");
    std::filesystem::permissions(clip("song.wav"), std::filesystem::perms::owner_all);
}

/// Whatever is left of a file, or has become of it: an answer, and not a word printed.
TEST_F(MediaProbe, SurvivesDamagedFiles)
{
    std::mt19937 random(11); // NOLINT(cert-msc51-cpp): the same damage each time
    Capture printed(STDERR_FILENO);
    for (const char *name :
         {"h264.mp4", "high.mkv", "cast.ts",        "xvid.avi",        "cover.mp3",
          "web.webm", "hdr.mp4",  "disc.vob",       "song.flac",       "windows.wmv",
          "free.ogv", "song.wav", "flash.flv",      "photo.png",       "song.dts",
          "song.aac", "song.mp3", "hevc_fields.ts", "hevc_fields.mp4", "photo.avif"}) {
        const std::string content = readFile(clip(name));
        for (int round = 0; round < 12; ++round) {
            std::string damaged = content;
            if (round % 2 == 0) damaged.resize(random() % content.size() + 1);
            for (int i = 0; round % 3 != 0 && i < 40; ++i)
                damaged[random() % std::min<std::size_t>(damaged.size(), 4000)] =
                    static_cast<char>(random());
            const ProbeResult result = probeMedia(folder_->write("damaged", damaged));
            EXPECT_NE(result.media.has_value(), !result.error.empty()) << name << ' ' << round;
            EXPECT_TRUE(!result.media || hasAllBitRates(*result.media)) << name << ' ' << round;
        }
    }
    EXPECT_EQ(printed.take(), "");
}

} // namespace
} // namespace vornak::test
