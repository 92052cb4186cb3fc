// Small rule tables for the decision tests.
#pragma once

#include "include/vornak.h"

#include <vector>

namespace vornak::test {

using Format = TANASCODE_FORMAT_MAPPING_ST;
using AudioRule = TRANSCODE_AUDIO_MAPPING_ST;
using VideoRule = TRANSCODE_VIDEO_MAPPING_ST;

inline Format entry(int formatId, int nonSeekable = 0, int noTranscode = 0)
{
    Format e{};
    e.formatId = formatId;
    e.nonSeekable = nonSeekable;
    e.noTranscode = noTranscode;
    return e;
}

inline AudioRule audioRule(int codecId, Format *formats)
{
    AudioRule rule{};
    rule.aCodecId = codecId;
    rule.pFormatTable = formats;
    return rule;
}

inline VideoRule videoRule(int codecId, AudioRule *audio)
{
    VideoRule rule{};
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
    int codecId = kAac, profileId = 1, level = 4, channels = 2, bitrate = 128000,
        sampleRate = 48000, formatId = kMp4;
};

/// A rule that every other source breaks.
inline AudioRule takingOnly(const AudioInput &source, Format *formats)
{
    AudioRule rule = audioRule(source.codecId, formats);
    rule.aProfileId = source.profileId;
    rule.aLevel = source.level;
    rule.maxChannels = rule.minChannels = source.channels;
    rule.maxBitrate = rule.minBitrate = source.bitrate;
    rule.maxSampleRate = rule.minSampleRate = source.sampleRate;
    return rule;
}

struct VideoInput {
    int codecId = kH264, profileId = 2, level = 41, width = 1920, height = 1080, bitrate = 8000000,
        flag = 0;
    AudioInput audio = {};
    int prefer = 0, match = 1, force = 0, assign = 0;
};

inline VideoRule takingOnly(const VideoInput &source, AudioRule *audio)
{
    VideoRule rule = videoRule(source.codecId, audio);
    rule.vProfileId = source.profileId;
    rule.vLevel = source.level;
    rule.maxWidth = rule.minWidth = source.width;
    rule.maxHeight = rule.minHeight = source.height;
    rule.maxBitrate = rule.minBitrate = source.bitrate;
    return rule;
}

/// What a decision delivers.
struct Outcome {
    int result = kUntouched, video = kUntouched, audio = kUntouched, format = kUntouched,
        dst = kUntouched, wavPcm = kUntouched;
    char *mime = nullptr, *pn = nullptr;

    bool operator==(const Outcome &) const = default;
};

inline Outcome decideMusic(AudioRule *table, const AudioInput &in = {}, int prefer = 0,
                           int force = 0)
{
    Outcome o;
    o.result = getMusicTranscodeIndex2(table, in.codecId, in.profileId, in.level, in.channels,
                                       in.bitrate, in.sampleRate, in.formatId, &o.audio, &o.format,
                                       &o.mime, &o.pn, &o.dst, prefer, &o.wavPcm, force);
    return o;
}

inline Outcome decideVideo(VideoRule *table, const VideoInput &in = {})
{
    Outcome o;
    o.result = getVideoTranscodeIndex2(
        table, in.codecId, in.profileId, in.level, in.width, in.height, in.bitrate,
        in.audio.codecId, in.audio.profileId, in.audio.level, in.audio.channels, in.audio.bitrate,
        in.audio.sampleRate, in.audio.formatId, &o.video, &o.audio, &o.format, &o.mime, &o.pn,
        &o.dst, in.prefer, in.match, in.force, in.assign, in.flag);
    return o;
}

} // namespace vornak::test
