#include "profile/codec_rules.h"

#include "profile/name_list.h"
#include "profile/read_rules.h"
#include "profile/sample_rates.h"
#include "profile/suffixed_number.h"

namespace vornak {
namespace {

using Format = TANASCODE_FORMAT_MAPPING_ST;
using Audio = TRANSCODE_AUDIO_MAPPING_ST;

constexpr Attribute<Format> s_FormatAttributes[] = {
    {"NOTRANSCODE", Taken::NonEmpty, into<&Format::noTranscode, parseDecimal>},
    {"PN", Taken::NonEmpty, into<&Format::pn, copyText>},
    {"MIME", Taken::NonEmpty, into<&Format::mime, copyText>},
    {"NONSEEKABLE", Taken::NonEmpty, into<&Format::nonSeekable, parseDecimal>},
    {"OPTION", Taken::NonEmpty, into<&Format::option, copyText>},
};

bool identifyFormat(Format &format, const XMLNode &element, const char *name)
{
    const char *subtype = element.getAttribute("SUBTYPE", 0);
    return ContainerFormatNameToID(name, subtype, &format.formatId) == 0;
}

constexpr RuleKind<Format> kFormat = {"FORMAT", identifyFormat, s_FormatAttributes,
                                      [](Format &, const XMLNode &) { return true; }};

int parseProfiles(const char *names)
{
    return parseNameList(names, ProfileNameToID, "audio profile");
}

int parseSampleRate(const char *text)
{
    return snapSampleRate(parseSuffixedNumber(text));
}

constexpr Attribute<Audio> s_AudioAttributes[] = {
    {"PROFILE", Taken::NonEmpty, into<&Audio::aProfileId, parseProfiles>},
    {"LEVEL", Taken::NonEmpty, into<&Audio::aLevel, parseDecimal>},
    {"NOTRANSCODE", Taken::NonEmpty, into<&Audio::noTranscode, parseDecimal>},
    {"MAXCHANNELS", Taken::Present, into<&Audio::maxChannels, parseDecimal>},
    {"MINCHANNELS", Taken::Present, into<&Audio::minChannels, parseDecimal>},
    {"MAXFREQUENCY", Taken::Present, into<&Audio::maxSampleRate, parseSampleRate>},
    {"MINFREQUENCY", Taken::Present, into<&Audio::minSampleRate, parseSampleRate>},
    {"MAXBITRATE", Taken::Present, into<&Audio::maxBitrate, parseSuffixedNumber>},
    {"MINBITRATE", Taken::Present, into<&Audio::minBitrate, parseSuffixedNumber>},
    {"OPTION", Taken::NonEmpty, into<&Audio::option, copyText>},
};

bool identifyAudio(Audio &rule, const XMLNode &, const char *name)
{
    return CodecNameToID(name, &rule.aCodecId) == 0;
}

bool readFormats(Audio &rule, const XMLNode &element)
{
    return readRules(element, kFormat, rule.pFormatTable);
}

constexpr RuleKind<Audio> kAudio = {"ACODEC", identifyAudio, s_AudioAttributes, readFormats};

} // namespace

int parseCodecRules(TRANSCODE_AUDIO_MAPPING_ST **table, const XMLNode &parent)
{
    return readRules(parent, kAudio, *table) ? 0 : 1;
}

} // namespace vornak
