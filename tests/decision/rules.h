// Small rule tables for the decision tests.
#pragma once

#include "include/vornak.h"

#include <vector>

namespace vornak::test {

inline TANASCODE_FORMAT_MAPPING_ST entry(int formatId, int nonSeekable = 0, int noTranscode = 0)
{
    TANASCODE_FORMAT_MAPPING_ST e{};
    e.formatId = formatId;
    e.nonSeekable = nonSeekable;
    e.noTranscode = noTranscode;
    return e;
}

inline TRANSCODE_AUDIO_MAPPING_ST audioRule(int codecId, TANASCODE_FORMAT_MAPPING_ST *formats)
{
    TRANSCODE_AUDIO_MAPPING_ST rule{};
    rule.aCodecId = codecId;
    rule.pFormatTable = formats;
    return rule;
}

inline TRANSCODE_VIDEO_MAPPING_ST videoRule(int codecId, TRANSCODE_AUDIO_MAPPING_ST *audio)
{
    TRANSCODE_VIDEO_MAPPING_ST rule{};
    rule.vCodecId = codecId;
    rule.pAudioTable = audio;
    return rule;
}

// Ids as the registry numbers them.
constexpr int kMp3 = 0x15001, kAac = 0x15002, kAc3 = 0x15003, kPcm16 = 0x10000, kH264 = 28;
constexpr int kMp3File = 1, kWavFile = 2, kMp4 = 8, kProgramStream = 10, kTransportStream = 11,
              kMatroska = 12, kAdts = 16;

constexpr int kUntouched = -77; // what the outputs hold before a call

/// The source of most cases: stereo AAC.
struct AudioInput {
    int codecId = kAac, profileId = 1, level = 2, channels = 2, bitrate = 128000,
        sampleRate = 48000, formatId = kMp4;
};

/// What a decision delivers.
struct Outcome {
    int result = kUntouched, video = kUntouched, audio = kUntouched, format = kUntouched,
        dst = kUntouched, wavPcm = kUntouched;
    char *mime = nullptr, *pn = nullptr;

    bool operator==(const Outcome &) const = default;
};

inline Outcome decideMusic(TRANSCODE_AUDIO_MAPPING_ST *table, const AudioInput &in = {},
                           int prefer = 0, int force = 0)
{
    Outcome o;
    o.result = getMusicTranscodeIndex2(table, in.codecId, in.profileId, in.level, in.channels,
                                       in.bitrate, in.sampleRate, in.formatId, &o.audio, &o.format,
                                       &o.mime, &o.pn, &o.dst, prefer, &o.wavPcm, force);
    return o;
}

} // namespace vornak::test
