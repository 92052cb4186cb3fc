#include "tools/decide/surroundings.h"

#include "tools/decide/media_source.h"

namespace vornak::tool {
namespace {

/// The software decoder: which machine will decode is not known here.
const char *decoderOf(int codecId)
{
    return CodecId_To_GSTCodecStr(codecId, 0, 0, 0);
}

} // namespace

Surroundings lookAround(const SeenFile &file, const Decision &decision, int hardwareAgent)
{
    Surroundings around;
    if (decision.isVideo) {
        around.subtitles = file.subtitles();
        around.ruleAllowsHardware =
            isVideoSupportVATranscode(decision.videoTable, decision.videoIndex) == 1;
        around.hardwareAgent = hardwareAgent;
        around.videoDecoder = decoderOf(decision.video.codecId);
    }
    around.demuxer = FormatId_To_GSTMuxDecStr(decision.media.formatId);
    if (decision.audioTrack()) around.audioDecoder = decoderOf(decision.audio.codecId);
    if (!decision.isRefused())
        around.muxer = FormatId_To_GSTMuxEncStr(decision.outputFormatId, nullptr);
    return around;
}

} // namespace vornak::tool
