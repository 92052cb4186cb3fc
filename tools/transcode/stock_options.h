// The appliance's transcoder speaks a dialect of its own; what it says, for a stock ffmpeg.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

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

} // namespace vornak::tool
