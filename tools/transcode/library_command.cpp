#include "tools/transcode/library_command.h"

#include "base/media_ids.h"
#include "tools/profile/id_names.h"
#include "tools/terminal/diverted_output.h"
#include "tools/terminal/output.h"

#include <cmath>
#include <fmt/format.h>
#include <memory>
#include <mutex>
#include <unistd.h>

namespace vornak::tool {
namespace {

/// The container for entries that name none: that of the decided output, without its subtype.
int defaultContainer(const Decision &decision)
{
    return containerPart(decision.outputFormatId);
}

// A rule for any codec leaves a stream as it is, so no limit can be kept by it.
bool changesVideo(const Decision &decision)
{
    return decision.isVideo && decision.transcodesVideo() &&
           decision.videoRule->vCodecId != kAnyCodec;
}

bool changesAudio(const Decision &decision)
{
    return decision.transcodesAudio() && decision.audioRule->aCodecId != kAnyCodec;
}

void recordLimits(const Decision &decision, TRANSCODE_CONSTRAINT_ST &set)
{
    const VideoSource &v = decision.video;
    const AudioSource &a = decision.audio;
    const int video[] = {v.codecId, v.profileId, v.level, v.width, v.height, v.bitrate};
    const int audio[] = {a.codecId, a.profileId, a.level, a.channels, a.bitrate, a.sampleRate};
    const std::lock_guard alone(standardErrorMutex());
    const DivertedOutput comments(STDERR_FILENO);
    if (changesVideo(decision))
        genVideoTranscodeParameter(decision.videoIndex, decision.videoTable, video, &set);
    if (changesAudio(decision))
        genAudioTranscodeParameter(decision.audioIndex, decision.audioTable, audio, &set);
}

std::string limitsOf(const Decision &decision, int dialect)
{
    const auto set = std::make_unique<TRANSCODE_CONSTRAINT_ST>();
    set->mode = dialect == 2 ? 1 : 0;
    recordLimits(decision, *set);
    TRANSCODE_CMD_ST rendered = {};
    getTranscodeCmdByCondition(set.get(), &rendered); // can't fail for what the library recorded
    return rendered.cmd;
}

/// The option text and the tag, both empty where there is no container option.
void askOptions(const Decision &decision, LibraryCommand &command)
{
    char options[VORNAK_OPTION_TEXT_SIZE] = "", tag[VORNAK_TAG_SIZE] = "";
    const std::int64_t frames = command.pcm ? command.pcm->frames : 0;
    if (decision.isVideo)
        getVideoTranscodeParams2(decision.videoTable, decision.videoIndex, decision.audioIndex,
                                 decision.formatIndex, options, tag, 0, defaultContainer(decision));
    else
        getMusicTranscodeParams2(decision.audioTable, decision.audioIndex, decision.formatIndex,
                                 options, tag, defaultContainer(decision), frames);
    command.options = options;
    command.tag = tag;
}

void askAttributes(const Decision &decision, LibraryCommand &command)
{
    char *mime = nullptr, *dlnaProfile = nullptr;
    if (decision.isVideo) {
        getVideoTranscodeDLNAAttr(decision.videoTable, decision.videoIndex, decision.audioIndex,
                                  decision.formatIndex, &mime, &dlnaProfile);
        command.frame = getVideoTranscodeFrame(decision.videoTable, decision.videoIndex);
        command.hardwareAllowed =
            isVideoSupportVATranscode(decision.videoTable, decision.videoIndex) == 1;
    } else {
        getMusicTranscodeDLNAAttr(decision.audioTable, decision.audioIndex, decision.formatIndex,
                                  &mime, &dlnaProfile);
    }
    command.mime = mime;
    command.dlnaProfile = dlnaProfile;
}

} // namespace

bool needsCommand(const Decision &decision)
{
    return decision.outcome != Outcome::Kept && !decision.isRefused();
}

std::optional<PcmEstimate> estimatePcm(const Decision &decision)
{
    if (decision.isVideo || !changesAudio(decision)) return std::nullopt;
    PcmEstimate estimate;
    estimate.seconds = static_cast<int>(std::lround(decision.media.duration));
    if (guessMusicTranscodeFileLength(decision.audioTable, decision.audioIndex,
                                      decision.formatIndex, estimate.seconds, 0,
                                      defaultContainer(decision), &estimate.bytes,
                                      &estimate.headerBytes, &estimate.frames) != 0)
        return std::nullopt;
    return estimate;
}

std::variant<LibraryCommand, std::string> makeCommand(const Decision &decision, int dialect)
{
    LibraryCommand command;
    command.dialect = dialect;
    command.pcm = estimatePcm(decision);
    askOptions(decision, command);
    if (command.options.empty())
        return fmt::format("the profile names no container for the output, and there is no option "
                           "for {}",
                           containerText(defaultContainer(decision)));
    askAttributes(decision, command);
    command.limits = limitsOf(decision, dialect);
    return command;
}

} // namespace vornak::tool
