// What the option texts of a profile say to an ffmpeg-style transcoder.
#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace vornak::tool {

/// The word after the last of the named options, as a transcoder takes the last. Nothing when
/// none is there; empty when the text ends with it.
std::optional<std::string_view> optionValue(std::string_view text,
                                            std::span<const std::string_view> names);
inline std::optional<std::string_view> optionValue(std::string_view text, std::string_view name)
{
    return optionValue(text, std::span(&name, 1));
}

/// "2500k" as 2500000; nothing for what is no number. K, M and G count thousands.
std::optional<double> optionNumber(std::string_view word);

/// The registry's id of what an encoder makes ("libx264", "h264_vaapi"); nothing when unknown.
std::optional<int> encodedCodec(std::string_view encoder);

} // namespace vornak::tool
