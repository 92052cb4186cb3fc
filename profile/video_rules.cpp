#include "profile/video_rules.h"

#include "profile/codec_rules.h"
#include "profile/name_list.h"
#include "profile/read_rules.h"
#include "profile/suffixed_number.h"

namespace vornak {
namespace {

using Video = TRANSCODE_VIDEO_MAPPING_ST;

int parseProfiles(const char *names)
{
    return parseNameList(names, ProfileNameToID, "video profile");
}

int parsePlayExceptions(const char *names)
{
    return parseNameList(names, PlayExceptionNameToID, "video PLAY_EXCEPTION");
}

constexpr Attribute<Video> s_VideoAttributes[] = {
    {"PROFILE", Taken::NonEmpty, into<&Video::vProfileId, parseProfiles>},
    {"LEVEL", Taken::NonEmpty, into<&Video::vLevel, parseDecimal>},
    {"NOTRANSCODE", Taken::NonEmpty, into<&Video::noTranscode, parseDecimal>},
    {"MAXWIDTH", Taken::Present, into<&Video::maxWidth, parseSuffixedNumber>},
    {"MINWIDTH", Taken::Present, into<&Video::minWidth, parseSuffixedNumber>},
    {"MAXHEIGHT", Taken::Present, into<&Video::maxHeight, parseSuffixedNumber>},
    {"MINHEIGHT", Taken::Present, into<&Video::minHeight, parseSuffixedNumber>},
    {"MAXBITRATE", Taken::Present, into<&Video::maxBitrate, parseSuffixedNumber>},
    {"MINBITRATE", Taken::Present, into<&Video::minBitrate, parseSuffixedNumber>},
    {"OPTION", Taken::NonEmpty, into<&Video::option, copyText>},
    {"VATRANSCODE", Taken::Present, into<&Video::vaTranscode, parseSuffixedNumber>},
    {"FRAME", Taken::Present, into<&Video::frame, parseSuffixedNumber>},
    {"TOLERANCE", Taken::Present, into<&Video::tolerance, parseSuffixedNumber>},
    {"PLAY_EXCEPTION", Taken::NonEmpty, into<&Video::playException, parsePlayExceptions>},
};

bool identifyVideo(Video &rule, const XMLNode &, const char *name)
{
    return CodecNameToID(name, &rule.vCodecId) == 0;
}

bool readAudioRules(Video &rule, const XMLNode &element)
{
    return parseCodecRules(&rule.pAudioTable, element) == 0;
}

constexpr RuleKind<Video> kVideo = {"VCODEC", identifyVideo, s_VideoAttributes, readAudioRules};

} // namespace

void parseVideoRules(TRANSCODE_VIDEO_MAPPING_ST **table, const XMLNode &section)
{
    readRules(section, kVideo, *table);
}

} // namespace vornak
