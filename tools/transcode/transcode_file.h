// One file through ffmpeg, and what the profile says of the result.
#pragma once

#include "tools/decide/decide_files.h"
#include "tools/transcode/library_command.h"

#include <string>

namespace vornak::tool {

/// Probes a file and decides about it.
FileResult probeAndDecide(const ProfileSession &session, const DecisionRequest &request,
                          const std::string &path);

/// Why a file is not sent as it is: "audio: 6 channels, rule 0 (aac, line 14) allows 2".
std::string reasonsOf(const Decision &decision, const DecisionRequest &request,
                      const ProfileSession &session);

/**
 * Runs ffmpeg with the command's options, showing how far it has come; complains of a failure with
 * ffmpeg's last lines.
 * @param output  a file that isn't there yet
 * @return 0, the tool's exit status after a failure, or 128 and the signal that interrupted it
 */
int transcode(const std::string &ffmpeg, const std::string &media, const Decision &decision,
              const TranscodeCommand &command, const std::string &output);

/// The same for a file that is only copied.
int copy(const std::string &media, const std::string &output);

} // namespace vornak::tool
