// Whether the words of an OPTION are ones that the transcoder knows, and go together.
#include "tools/check/checks.h"

#include "tools/check/option_words.h"
#include "tools/check/transcoder.h"

#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <string>
#include <string_view>

namespace vornak::tool {
namespace {

struct OptionPlace {
    pugi::xml_node element;
    pugi::xml_attribute attribute;
    Report &report;
};

/// "profile" of "-profile:v:0"; empty for a word that is no option, such as "-3".
std::string nameOfOption(std::string_view word)
{
    if (word.size() < 2 || word[0] != '-' || !std::isalpha(static_cast<unsigned char>(word[1])))
        return {};
    return std::string(word.substr(1, word.find(':') - 1));
}

void checkEncoderName(std::string_view option, std::string_view encoder, const OptionPlace &place)
{
    if (encoder == "copy" || encodedCodec(encoder)) return;
    static const std::vector<std::string> s_known[] = {encoderNames(false), encoderNames(true)};
    const bool isVideo = std::string_view(place.element.name()) == "VCODEC";
    place.report.add(
        Fault::UnknownEncoder, place.element, place.attribute,
        fmt::format("{} {}: {} knows no such encoder", option, excerpt(encoder), askedCodecs()),
        place.report.suggest(encoder, s_known[isVideo ? 1 : 0],
                             "see ffmpeg -encoders, unless the transcoder's ffmpeg knows more"));
}

void checkMuxerName(std::string_view muxer, const OptionPlace &place)
{
    if (isMuxer(muxer)) return;
    const std::string name(muxer);
    const auto meant = muxerCalled(name);
    place.report.add(
        Fault::UnknownMuxer, place.element, place.attribute,
        fmt::format("-f {}: {} writes no such format", excerpt(muxer), askedFormats()),
        meant ? fmt::format("write -f {}", *meant)
              : place.report.suggest(muxer, muxerNames(),
                                     "see ffmpeg -muxers, unless the transcoder's ffmpeg knows "
                                     "more"));
}

void reportUnknownOption(std::string_view word, const std::string &name, const OptionPlace &place)
{
    static const std::vector<std::string> s_known = optionNames();
    place.report.add(Fault::UnknownOption, place.element, place.attribute,
                     fmt::format("{}: neither ffmpeg nor {} and {} know such an option",
                                 excerpt(word), askedCodecs(), askedFormats()),
                     place.report.suggest(name, s_known,
                                          "see ffmpeg -h full, unless the transcoder's ffmpeg "
                                          "knows more"));
}

void reportStrayWord(std::string_view word, const OptionPlace &place)
{
    place.report.add(Fault::StrayWord, place.element, place.attribute,
                     fmt::format("{} is the {} of another file, and no option", excerpt(word),
                                 word == "-i" ? "mark" : "name"),
                     "write the options alone, without the files");
}

/// "-profile:v high" for "-profile:vhigh": what is behind the letter of the streams is no part of
/// the option's name. Empty for all else.
std::string withBlank(std::string_view word)
{
    const std::size_t colon = word.find(':');
    if (colon == std::string_view::npos || word.size() < colon + 3 || word[colon + 2] == ':' ||
        std::string_view("vVasdt").find(word[colon + 1]) == std::string_view::npos)
        return {};
    return fmt::format("{} {}", word.substr(0, colon + 2), word.substr(colon + 2));
}

void reportLostBlank(std::string_view word, const std::string &meant, const OptionPlace &place)
{
    place.report.add(Fault::UnknownOption, place.element, place.attribute,
                     fmt::format("{}: there are no such streams", excerpt(word)),
                     fmt::format("write {}", excerpt(meant)));
    const std::string_view text = place.report.writtenValue(place.element, place.attribute);
    const std::size_t at = text.find(word);
    if (at == std::string_view::npos) return; // it is written with references
    const std::size_t start = place.report.written(place.element, place.attribute).value + at;
    place.report.mend({start + meant.find(' '), 0, " "});
}

/// The line breaks of a text as one blank each, in which a transcoder's command line survives.
void checkLineBreaks(pugi::xml_node element, pugi::xml_attribute attribute, Report &report)
{
    if (std::string_view(attribute.value()).find_first_of("\n\r") == std::string_view::npos) return;
    report.add(
        Fault::LineBreak, element, attribute,
        fmt::format("{} has a line break in it, which is handed on as it is", attribute.name()),
        "write it on one line");
    std::string value;
    for (const char c : report.writtenValue(element, attribute)) {
        const bool isBlank = c == ' ' || c == '\n' || c == '\r' || c == '\t';
        if (!isBlank || !value.ends_with(' ')) value += isBlank ? ' ' : c;
    }
    if (value.find("&#") == std::string::npos) report.mendValue(element, attribute, value);
}

} // namespace

void checkOption(const ElementPlace &place, Report &report)
{
    if ((place.row.element & (kVcodec | kAcodec | kFormat)) == 0) return;
    for (const char *name : {"OPTION", "MIME", "PN"})
        checkLineBreaks(place.element, place.element.attribute(name), report);

    constexpr std::string_view s_CodecOptions[] = {"c", "codec", "vcodec", "acodec"};
    const OptionPlace option{place.element, place.element.attribute("OPTION"), report};
    std::string_view text = option.attribute.value();
    bool mayBeValue = text.find_first_of("'\"") != std::string_view::npos; // which has blanks
    for (std::string_view word = takeWord(text); !word.empty(); word = takeWord(text)) {
        const std::string name = nameOfOption(word);
        if (name == "i" || (name.empty() && word.front() != '-' && !mayBeValue))
            reportStrayWord(word, option);
        if (name.empty()) continue;
        const OptionForm form = formOfOption(name);
        mayBeValue = mayBeValue || form == OptionForm::Unknown;
        if (form == OptionForm::Unknown) reportUnknownOption(word, name, option);
        if (const std::string meant = withBlank(word); !meant.empty()) {
            reportLostBlank(word, meant, option);
            continue;
        }
        if (form != OptionForm::Value) continue;
        const std::string_view value = takeWord(text);
        if (value.empty()) continue;
        if (std::ranges::find(s_CodecOptions, name) != std::end(s_CodecOptions))
            checkEncoderName(word, value, option);
        if (name == "f") checkMuxerName(value, option);
    }
}

} // namespace vornak::tool
