// Bit rates below any that there is, as they come of kilobits that are read as bits.
#include "tools/check/checks.h"

#include "base/media_ids.h"
#include "profile/attribute_value.h"
#include "tools/check/option_words.h"
#include "tools/profile/id_names.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace vornak::tool {
namespace {

// The least bit rates that streams have, in bits per second.
constexpr struct {
    int codecId, least;
} s_LeastRates[] = {
    {"mp1"_codec, 32000}, {"mp2"_codec, 8000},   {"mp3"_codec, 8000},    {"aac"_codec, 6000},
    {"ac3"_codec, 32000}, {"eac3"_codec, 32000}, {"dts"_codec, 32000},   {"vorbis"_codec, 8000},
    {"opus"_codec, 4000}, {"speex"_codec, 2000}, {"amr_nb"_codec, 4750}, {"amr_wb"_codec, 6600},
    {"flac"_codec, 8000}, {"alac"_codec, 8000},  {"wmav1"_codec, 4000},  {"wmav2"_codec, 4000},
};
constexpr int kLeastOfPictures = 16000; // a small one every other second
constexpr int kLeastOfSounds = 400;     // speech, as radios send it

int leastBitRate(int codecId)
{
    const auto *const row =
        std::ranges::find(s_LeastRates, codecId, [](const auto &each) { return each.codecId; });
    if (row != std::end(s_LeastRates)) return row->least;
    return codecId < kFirstAudioCodec ? kLeastOfPictures : kLeastOfSounds;
}

/// "320K", or for a picture perhaps "20M": what a small number was to be.
std::string kilobits(double bits, bool isVideo, char kilo)
{
    if (isVideo && bits < 100) return fmt::format("{0}M or {0}{1}", bits, kilo);
    return fmt::format("{}{}", bits, kilo);
}

void reportRate(pugi::xml_node element, pugi::xml_attribute attribute, std::string_view text,
                double bits, int codec, char kilo, Report &report)
{
    const bool isVideo = std::string_view(element.name()) == "VCODEC";
    report.add(
        Fault::BitRateScale, element, attribute,
        fmt::format("{} is {} bits per second, less than any {} has", text, bits, codecText(codec)),
        fmt::format("write {} if kilobits are meant", kilobits(bits, isVideo, kilo)));
}

} // namespace

void checkBitRates(const ElementPlace &place, Report &report)
{
    const auto codec = codecOf(place.element);
    if ((place.row.element & (kVcodec | kAcodec)) == 0 || !codec || *codec == kAnyCodec) return;
    const int least = leastBitRate(*codec);
    const pugi::xml_attribute limit = place.element.attribute("MAXBITRATE");
    const Number most = readNumber(Unit::BitRate, limit.value());
    const bool isRead = *most.end == '\0'; // else that is said
    if (isRead && most.value > 0 && most.value < least)
        reportRate(place.element, limit, shown(limit), most.value, *codec, 'K', report);
    const pugi::xml_attribute option = place.element.attribute("OPTION");
    const auto value = place.row.element == kVcodec
                           ? optionValue(option.value(), {"-b:v", "-vb", "-b:v:0"})
                           : optionValue(option.value(), {"-b:a", "-ab", "-b:a:0"});
    const auto bits = value ? optionNumber(*value) : std::nullopt;
    if (bits && *bits > 0 && *bits < least)
        reportRate(
            place.element, option,
            fmt::format("{} {}", place.row.element == kVcodec ? "-b:v" : "-b:a", excerpt(*value)),
            *bits, *codec, 'k', report);
}

} // namespace vornak::tool
