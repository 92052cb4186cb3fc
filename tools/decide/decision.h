// One file, one profile: what the library decides.
#pragma once

#include "base/rule_facts.h"
#include "tools/probe/media_info.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vornak::tool {

class ProfileSession;

/// What a host may ask for beside the source's properties.
struct DecisionRequest {
    int preferFormatId = 0;      ///< container preferred for the output; 0: none
    bool force = false;          ///< transcode whatever the rules say
    int audioTrack = 0;          ///< the track assigned, from 1; 0: none
    bool matchVideo = true;      ///< false: take video rule 0 as it is
    int extraPlayExceptions = 0; ///< bits beside those found in the file
};

/// What comes of a file as a whole, by what costs most.
enum class Outcome { Kept, Remuxed, Audio, Video, Refused, Unreadable };
inline constexpr int kOutcomes = 6;

/// "kept", "remuxed", "audio", "video", "refused", "unreadable"
std::string_view nameOf(Outcome outcome);

/// The library's answer and what it was asked. Rules and texts belong to the profile.
struct Decision {
    MediaInfo media;
    bool isVideo = false;  ///< decided by the VIDEO section, else by the MUSIC section
    bool isSilent = false; ///< a video without audio: `audio` stands in for it
    int track = -1;        ///< position of the audio track in media.audio, or -1

    VideoSource video = {}; ///< what the library was given
    AudioSource audio = {};
    int formatId = kUnknownId; ///< as matched: a video's forms of MPEG streams are folded

    int result = VORNAK_KEPT; ///< VORNAK_DECIDED, …KEPT, …NONSEEKABLE, …NOT_ALLOWED
    int videoIndex = -1;      ///< -1: not asked for, as in the next two
    int audioIndex = -1;
    int formatIndex = -1;
    const char *mime = nullptr;
    const char *dlnaProfile = nullptr;
    int outputFormatId = kUnknownId;
    bool isWavPcm = false;

    const VideoRule *videoTable = nullptr; ///< the tables that the indexes point into
    const AudioRule *audioTable = nullptr;
    const VideoRule *videoRule = nullptr; ///< the rules at the indexes' positions
    const AudioRule *audioRule = nullptr;
    const ContainerEntry *entry = nullptr;

    bool containerChanges = false; ///< the output's container is not the file's
    std::vector<int>
        otherTracks; ///< where audio is transcoded: numbers of those that would be kept
    Outcome outcome = Outcome::Kept;

    /// The track that was decided about; null in a silent video.
    const AudioTrack *audioTrack() const
    {
        return track < 0 ? nullptr : &media.audio[static_cast<std::size_t>(track)];
    }
    bool isRefused() const { return result == VORNAK_NOT_ALLOWED; }
    /// Whether the output can be sought in. Not of a refusal, which has none. What is made while it
    /// is sent can't be where NONSEEKABLE says so; the library looks at that for transcodes only.
    bool isSeekable() const { return outcome == Outcome::Kept || entry->nonSeekable != 1; }
    bool transcodesVideo() const { return isTranscoded(videoIndex); }
    bool transcodesAudio() const { return isTranscoded(audioIndex) && !isSilent; }
};

/// A file for which there is no decision.
struct Undecided {
    std::string_view code; ///< a stable name
    std::string message;   ///< one line, printable
    Outcome outcome = Outcome::Unreadable;
};

/// Any thread.
std::variant<Decision, Undecided> decide(const ProfileSession &session,
                                         const DecisionRequest &request, MediaInfo media);

} // namespace vornak::tool
