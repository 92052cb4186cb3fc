// The words that run a stock ffmpeg for a file. The appliance's transcoder speaks a dialect of its
// own, which is translated.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

struct Decision;
struct LibraryCommand;

/// From the input to the options, without the program's name and the output: the first video
/// stream that is no cover picture, and the audio track that was decided about.
std::vector<std::string> ffmpegArguments(const std::string &media, const Decision &decision,
                                         const LibraryCommand &command);

/**
 * The arguments of a stock ffmpeg that do what two option texts ask for. The texts are split at
 * blanks, quotes have no meaning in them.
 * @param limits    the limits that the source exceeds. Where `options` says something about the
 *                  same, that counts: a profile's author knows better. A picture size is
 *                  appended to the filters of `options`, unless they scale by themselves.
 * @param options   container, video and audio
 * @param formatId  the output's container, for options that name none
 */
std::vector<std::string> stockArguments(std::string_view limits, std::string_view options,
                                        int formatId);

/// How a file is called for ffmpeg, whatever it looks like.
std::string fileUrl(const std::string &path);

/// A name for the output, beside the file and no other file's: "film.mkv.transcoded.ts"
std::string outputName(const std::string &media, int formatId);

} // namespace vornak::tool
