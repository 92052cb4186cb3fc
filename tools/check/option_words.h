// What the option texts of a profile say to an ffmpeg-style transcoder.
#pragma once

#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>

namespace vornak::tool {

// The options that name an encoder.
inline constexpr std::string_view s_VideoCodecOptions[] = {"-c:v", "-codec:v", "-vcodec", "-c:v:0"};
inline constexpr std::string_view s_AudioCodecOptions[] = {"-c:a", "-codec:a", "-acodec", "-c:a:0"};

inline constexpr std::string_view s_PictureProfileOptions[] = {"-profile:v", "-vprofile", "-vp"};

/// A rule's OPTION, which may be null.
constexpr std::string_view textOf(const char *option)
{
    return option ? option : "";
}

/// The word after the last of the named options, as a transcoder takes the last. Nothing when
/// none is there; empty when the text ends with it.
std::optional<std::string_view> optionValue(std::string_view text,
                                            std::span<const std::string_view> names);
inline std::optional<std::string_view> optionValue(std::string_view text,
                                                   std::initializer_list<std::string_view> names)
{
    return optionValue(text, std::span(names.begin(), names.size()));
}
inline std::optional<std::string_view> optionValue(std::string_view text, std::string_view name)
{
    return optionValue(text, std::span(&name, 1));
}

/// "2500k" as 2500000; nothing for what is no number. K, M and G count thousands.
std::optional<double> optionNumber(std::string_view word);

/// Takes the next word off `text`; empty at its end.
std::string_view takeWord(std::string_view &text);

} // namespace vornak::tool
