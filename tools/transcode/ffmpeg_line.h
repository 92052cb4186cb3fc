// The words that run a stock ffmpeg for a file.
#pragma once

#include <string>
#include <vector>

namespace vornak::tool {

struct Decision;
struct TranscodeCommand;

/// From the input to the options, without the program's name and the output: the first video
/// stream that is no cover picture, and the audio track that was decided about.
std::vector<std::string> ffmpegArguments(const std::string &media, const Decision &decision,
                                         const TranscodeCommand &command);

/// How a file is called for ffmpeg, whatever it looks like.
std::string fileUrl(const std::string &path);

/// A name for the output, beside the file: "film.transcoded.ts"
std::string outputName(const std::string &media, int formatId);

} // namespace vornak::tool
