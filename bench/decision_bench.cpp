// A video decision against the same one written by hand.
#include "base/media_ids.h"
#include "bench/decision_by_hand.h"
#include "bench/measure.h"

#include <array>
#include <cstdlib>
#include <random>
#include <tuple>

namespace vornak::bench {
namespace {

constexpr int kVideoRules = 32, kAudioRules = 8, kFormats = 4;
constexpr int kH264 = "h264"_codec, kHevc = "hevc"_codec;
constexpr int kAac = "aac"_codec, kAc3 = "ac3"_codec;

struct Profile {
    std::array<TANASCODE_FORMAT_MAPPING_ST, kFormats + 1> formats{};
    std::array<TRANSCODE_AUDIO_MAPPING_ST, kAudioRules + 1> audio{};
    std::array<TRANSCODE_VIDEO_MAPPING_ST, kVideoRules + 1> video{};

    Profile()
    {
        formats.fill({.formatId = kMp4});
        audio.fill({.aCodecId = kAac,
                    .aProfileId = 7,
                    .aLevel = 5,
                    .maxChannels = 2,
                    .maxBitrate = 320000,
                    .maxSampleRate = 48000,
                    .minChannels = 1,
                    .minBitrate = 1000,
                    .minSampleRate = 8000,
                    .pFormatTable = formats.data()});
        video.fill({.vCodecId = kH264,
                    .vProfileId = 7,
                    .vLevel = 51,
                    .maxWidth = 1920,
                    .maxHeight = 1080,
                    .maxBitrate = 20000000,
                    .minWidth = 16,
                    .minHeight = 16,
                    .minBitrate = 1000,
                    .playException = 4,
                    .pAudioTable = audio.data()});
        formats.back().formatId = audio.back().aCodecId = video.back().vCodecId = -1;
    }

    /// Only the last rules take the source; the others refuse it by what they compare last, or
    /// have another codec.
    static Profile fittingLast(bool otherCodecs)
    {
        Profile profile;
        for (int i = 0; i + 1 < kVideoRules; ++i)
            (otherCodecs ? profile.video[i].vCodecId = kHevc
                         : profile.video[i].minBitrate = 15000000);
        for (int i = 0; i + 1 < kAudioRules; ++i)
            (otherCodecs ? profile.audio[i].aCodecId = kAc3
                         : profile.audio[i].minSampleRate = 48000);
        for (int i = 0; i + 1 < kFormats; ++i) profile.formats[i].formatId = "mpegts"_container;
        return profile;
    }
};

/// What a host passes, and what comes of it. An index of its own for each, or one for both.
struct Call {
    int vCodec = kH264, vProfile = 2, vLevel = 41, width = 1280, height = 720, vBitrate = 5000000;
    int aCodec = kAac, aProfile = 1, aLevel = 2, channels = 2, aBitrate = 128000,
        sampleRate = 44100;
    int format = kMp4, flag = 2, prefer = 0, match = 1, force = 0, track = 0;
    bool oneIndex = false, wantsTexts = true;

    struct Answer {
        int result, video, audio, format, dst;
        char *mime, *pn;
        bool operator==(const Answer &) const = default;
    };

    Answer of(decltype(getVideoTranscodeIndex2) *decide, TRANSCODE_VIDEO_MAPPING_ST *table) const
    {
        Answer a{.result = 9, .video = 9, .audio = 9, .format = 9, .dst = 9};
        a.result = decide(table, vCodec, vProfile, vLevel, width, height, vBitrate, aCodec,
                          aProfile, aLevel, channels, aBitrate, sampleRate, format, &a.video,
                          &a.audio, oneIndex ? &a.audio : &a.format, wantsTexts ? &a.mime : nullptr,
                          wantsTexts ? &a.pn : nullptr, wantsTexts ? &a.dst : nullptr, prefer,
                          match, force, track, flag);
        return a;
    }
};

/// Numbers small enough that rules and sources often meet.
class Dice {
public:
    int below(int end) { return std::uniform_int_distribution(0, end - 1)(engine_); }
    bool once(int in) { return below(in) == 0; }
    int limit() { return below(5) - 1; }

    int container()
    {
        constexpr int some[] = {0,
                                kMp4,
                                "mp4/isom"_container,
                                "mp4/m4a"_container,
                                "mpegts"_container,
                                "mpegts_m2ts"_container,
                                "mpegps_dvd"_container,
                                "mpegps"_container};
        return some[below(std::size(some))];
    }

private:
    std::mt19937 engine_{20};
};

void roll(Dice &dice, Profile &profile)
{
    static char texts[] = "abcd";
    for (auto &entry : profile.formats)
        entry = {.formatId = dice.container(),
                 .mime = &texts[dice.below(4)],
                 .pn = &texts[dice.below(4)],
                 .nonSeekable = dice.once(3),
                 .noTranscode = dice.once(3)};
    for (auto &rule : profile.audio)
        rule = {.aCodecId = dice.below(4),
                .aProfileId = dice.limit(),
                .aLevel = dice.limit(),
                .maxChannels = dice.limit(),
                .maxBitrate = dice.limit(),
                .maxSampleRate = dice.limit(),
                .minChannels = dice.limit(),
                .minBitrate = dice.limit(),
                .minSampleRate = dice.limit(),
                .pFormatTable = dice.once(9) ? nullptr : profile.formats.data()};
    for (auto &rule : profile.video)
        rule = {.vCodecId = dice.below(4),
                .vProfileId = dice.limit(),
                .vLevel = dice.limit(),
                .maxWidth = dice.limit(),
                .maxHeight = dice.limit(),
                .maxBitrate = dice.limit(),
                .minWidth = dice.limit(),
                .minHeight = dice.limit(),
                .minBitrate = dice.limit(),
                .tolerance = dice.limit(),
                .playException = dice.below(8),
                .noTranscode = dice.once(4),
                .pAudioTable = dice.once(9) ? nullptr : profile.audio.data()};
    profile.formats[dice.below(kFormats) + 1].formatId = -1;
    profile.audio[dice.below(kAudioRules) + 1].aCodecId = -1;
    profile.video[dice.below(kVideoRules) + 1].vCodecId = -1;
    profile.formats.back().formatId = profile.audio.back().aCodecId =
        profile.video.back().vCodecId = -1;
}

Call rollCall(Dice &dice)
{
    Call call;
    for (int *codec : {&call.vCodec, &call.aCodec}) *codec = dice.below(3) + 1;
    for (int *value :
         {&call.vProfile, &call.vLevel, &call.width, &call.height, &call.vBitrate, &call.aProfile,
          &call.aLevel, &call.channels, &call.aBitrate, &call.sampleRate, &call.flag})
        *value = dice.below(5);
    call.format = dice.container();
    call.prefer = dice.once(3) ? dice.container() : 0;
    call.match = !dice.once(4);
    call.force = dice.once(6);
    call.track = dice.once(6);
    call.oneIndex = dice.once(4);
    call.wantsTexts = !dice.once(4);
    return call;
}

/// Both must give the same for tables and sources made at random.
void compareAtRandom()
{
    Dice dice;
    Profile profile;
    for (int i = 0; i < 100'000; ++i) {
        if (i % 10 == 0) roll(dice, profile);
        const Call call = rollCall(dice);
        if (call.of(getVideoTranscodeIndex2, profile.video.data()) !=
            call.of(decideByHand, profile.video.data()))
            std::abort();
    }
}

void compare(const char *library, const char *hand, Profile profile, double limit)
{
    Call call;
    opaque(call);
    Call::Answer answer{};
    measure(library, [&] { answer = call.of(getVideoTranscodeIndex2, profile.video.data()); });
    if (answer.result != VORNAK_KEPT) std::abort();
    measure(hand, [&] { answer = call.of(decideByHand, profile.video.data()); });
    if (answer.result != VORNAK_KEPT) std::abort();
    ratio(library, hand, limit);
}

} // namespace
} // namespace vornak::bench

int main()
{
    using namespace vornak::bench;
    compareAtRandom();
    compare("decision/last-rules-fit", "by-hand/last-rules-fit", Profile::fittingLast(false), 1.10);
    compare("decision/other-codecs", "by-hand/other-codecs", Profile::fittingLast(true), 1.15);
    compare("decision/first-rules-fit", "by-hand/first-rules-fit", {}, 1.25);
}
