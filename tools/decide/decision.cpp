#include "tools/decide/decision.h"

#include "tools/decide/stand_in_audio.h"
#include "tools/profile/profile_session.h"

#include "decision/container_agreement.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <iterator>

namespace vornak::tool {
namespace {

constexpr std::array<std::string_view, kOutcomes> s_OutcomeNames = {
    "kept", "remuxed", "audio", "video", "refused", "unreadable"};

/// A track whose sound begins far into the file may say nothing of itself.
bool isTold(const AudioTrack &track)
{
    return track.channels > 0 && track.sampleRate > 0;
}

/// Position of the assigned track, else of the default one, else of the first that can be decided
/// about; or -1.
int chooseTrack(const std::vector<AudioTrack> &tracks, int assigned)
{
    if (assigned > 0) return assigned <= static_cast<int>(tracks.size()) ? assigned - 1 : -1;
    auto chosen = std::find_if(tracks.begin(), tracks.end(), [](const AudioTrack &track) {
        return track.isDefault && isTold(track);
    });
    if (chosen == tracks.end()) chosen = std::find_if(tracks.begin(), tracks.end(), isTold);
    if (chosen != tracks.end()) return static_cast<int>(chosen - tracks.begin());
    return tracks.empty() ? -1 : 0;
}

VideoSource videoOf(const VideoStream &stream, int extraPlayExceptions)
{
    return {stream.codecId,
            stream.profile,
            stream.level,
            stream.width,
            stream.height,
            stream.bitrate,
            stream.playExceptions | extraPlayExceptions};
}

AudioSource audioOf(const AudioTrack &track)
{
    return {track.codecId,  track.profile, track.level,
            track.channels, track.bitrate, track.sampleRate};
}

void askVideo(const TRANSCODE_DEVICE_PROFILE_ST &profile, const DecisionRequest &request,
              Decision &decision)
{
    const VideoSource &video = decision.video;
    const AudioSource &audio = decision.audio;
    char *mime = nullptr;
    char *dlnaProfile = nullptr;
    decision.formatIndex = -1;
    decision.result = getVideoTranscodeIndex2(
        profile.pVideoTable, video.codecId, video.profileId, video.level, video.width, video.height,
        video.bitrate, audio.codecId, audio.profileId, audio.level, audio.channels, audio.bitrate,
        audio.sampleRate, decision.media.formatId, &decision.videoIndex, &decision.audioIndex,
        &decision.formatIndex, &mime, &dlnaProfile, &decision.outputFormatId,
        request.preferFormatId, request.matchVideo ? 1 : 0, request.force ? 1 : 0,
        request.audioTrack, video.codecFlag);
    decision.mime = mime;
    decision.dlnaProfile = dlnaProfile;
    decision.videoTable = profile.pVideoTable;
    decision.videoRule = recordAt<VideoRule>(profile.pVideoTable, decision.videoIndex);
    decision.audioTable = decision.videoRule ? decision.videoRule->pAudioTable : nullptr;
}

void askMusic(const TRANSCODE_DEVICE_PROFILE_ST &profile, const DecisionRequest &request,
              Decision &decision)
{
    const AudioSource &audio = decision.audio;
    char *mime = nullptr;
    char *dlnaProfile = nullptr;
    int isWavPcm = 0;
    decision.result = getMusicTranscodeIndex2(
        profile.pAudioTable, audio.codecId, audio.profileId, audio.level, audio.channels,
        audio.bitrate, audio.sampleRate, decision.media.formatId, &decision.audioIndex,
        &decision.formatIndex, &mime, &dlnaProfile, &decision.outputFormatId,
        request.preferFormatId, &isWavPcm, request.force ? 1 : 0);
    decision.mime = mime;
    decision.dlnaProfile = dlnaProfile;
    decision.isWavPcm = isWavPcm != 0;
    decision.audioTable = profile.pAudioTable;
}

/// A video without audio is decided twice: which video rule takes it doesn't depend on the
/// audio, and within that rule some audio stands in.
void askSilentVideo(const TRANSCODE_DEVICE_PROFILE_ST &profile, const DecisionRequest &request,
                    Decision &decision)
{
    decision.audio = {kUnknownId, 0, 0, 0, 0, 0};
    askVideo(profile, request, decision);
    if (recordsOf(decision.audioTable).empty()) return;
    decision.audio = standInAudio(decision.audioTable, decision.formatId);
    askVideo(profile, request, decision);
}

/// Whether the library would keep this track, were it the one to be played.
bool wouldKeep(const AudioTrack &track, const TRANSCODE_DEVICE_PROFILE_ST &profile,
               DecisionRequest request, const Decision &decision)
{
    Decision other;
    other.media.formatId = decision.media.formatId;
    other.video = decision.video;
    other.audio = audioOf(track);
    request.audioTrack = 0; // an assigned track would have the video transcoded
    if (decision.isVideo)
        askVideo(profile, request, other);
    else
        askMusic(profile, request, other);
    return !other.transcodesAudio() && !other.isRefused();
}

void findOtherTracks(const TRANSCODE_DEVICE_PROFILE_ST &profile, const DecisionRequest &request,
                     Decision &decision)
{
    if (!decision.transcodesAudio() || request.force) return;
    for (const AudioTrack &track : decision.media.audio)
        if (&track != decision.audioTrack() && wouldKeep(track, profile, request, decision))
            decision.otherTracks.push_back(track.number);
}

Outcome outcomeOf(const Decision &decision)
{
    if (decision.isRefused()) return Outcome::Refused;
    if (decision.transcodesVideo()) return Outcome::Video;
    if (decision.transcodesAudio()) return Outcome::Audio;
    return decision.containerChanges ? Outcome::Remuxed : Outcome::Kept;
}

/// Why a file's streams can't be decided about at all.
std::optional<Undecided> refuseMedia(const MediaInfo &media, const DecisionRequest &request)
{
    if (media.stillImage)
        return Undecided{"still-image", "refused: a still image, neither video nor music",
                         Outcome::Refused};
    if (!media.video && media.audio.empty())
        return Undecided{"no-streams", "it holds neither video nor audio"};
    if (request.audioTrack > static_cast<int>(media.audio.size()))
        return Undecided{"no-such-track", fmt::format("there is no audio track {}, the file has {}",
                                                      request.audioTrack, media.audio.size())};
    const int track = chooseTrack(media.audio, request.audioTrack);
    if (track >= 0 && !isTold(media.audio[static_cast<std::size_t>(track)]))
        return Undecided{
            "cannot-probe",
            fmt::format("audio track {} doesn't say how many channels it has, at least "
                        "not in the first megabytes",
                        track + 1)};
    return std::nullopt;
}

std::optional<Undecided> refuseSection(const TRANSCODE_DEVICE_PROFILE_ST &profile, bool isVideo)
{
    const bool empty = isVideo ? recordsOf<VideoRule>(profile.pVideoTable).empty()
                               : recordsOf<AudioRule>(profile.pAudioTable).empty();
    if (!empty) return std::nullopt;
    return Undecided{"no-section",
                     fmt::format("the profile has no {} section with a valid rule, so nothing is "
                                 "known about such files (vornak profile check says why)",
                                 isVideo ? "VIDEO" : "MUSIC")};
}

/// The chosen rules may lead to no container: theirs are all invalid, or they have none.
std::optional<Undecided> refuseChosen(const ProfileSession &session, const Decision &decision)
{
    if (decision.isRefused() || decision.entry) return std::nullopt;
    if (decision.audioRule)
        return Undecided{"no-container",
                         fmt::format("the audio rule in line {} of the profile has no valid FORMAT",
                                     session.lineOf(decision.audioRule))};
    return Undecided{"no-audio-rule",
                     fmt::format("the video rule in line {} of the profile has no valid ACODEC",
                                 session.lineOf(decision.videoRule))};
}

} // namespace

std::string_view nameOf(Outcome outcome)
{
    return s_OutcomeNames[static_cast<std::size_t>(outcome)];
}

std::variant<Decision, Undecided> decide(const ProfileSession &session,
                                         const DecisionRequest &request, MediaInfo media)
{
    const TRANSCODE_DEVICE_PROFILE_ST &profile = session.profile();
    if (auto reason = refuseMedia(media, request)) return *reason;
    if (auto reason = refuseSection(profile, media.video.has_value())) return *reason;

    Decision decision;
    decision.isVideo = media.video.has_value();
    decision.track = chooseTrack(media.audio, request.audioTrack);
    decision.isSilent = decision.track < 0;
    decision.media = std::move(media);
    if (const AudioTrack *track = decision.audioTrack()) decision.audio = audioOf(*track);
    if (decision.isVideo)
        decision.video = videoOf(*decision.media.video, request.extraPlayExceptions);
    decision.formatId =
        decision.isVideo ? foldMpegStreams(decision.media.formatId) : decision.media.formatId;

    if (!decision.isVideo)
        askMusic(profile, request, decision);
    else if (decision.isSilent)
        askSilentVideo(profile, request, decision);
    else
        askVideo(profile, request, decision);

    decision.audioRule = recordAt(decision.audioTable, decision.audioIndex);
    if (decision.audioRule)
        decision.entry =
            recordAt<ContainerEntry>(decision.audioRule->pFormatTable, decision.formatIndex);
    if (auto reason = refuseChosen(session, decision)) return *reason;
    decision.containerChanges =
        isTranscoded(decision.formatIndex) ||
        (decision.entry && !takesContainer(*decision.entry, decision.formatId));
    findOtherTracks(profile, request, decision);
    decision.outcome = outcomeOf(decision);
    return decision;
}

} // namespace vornak::tool
