#include "profile/rule_kinds.h"

#include "profile/read_rules.h"

namespace vornak {
namespace {

bool identifyContainer(ContainerEntry &entry, const XMLNode &element, const char *name)
{
    const char *subtype = element.getAttribute("SUBTYPE", 0);
    return ContainerFormatNameToID(name, subtype, &entry.formatId) == 0;
}

constexpr RuleKind<ContainerEntry> kContainer = {
    "FORMAT", nullptr, identifyContainer, readProperties<s_ContainerReading>,
    [](const XMLNode &, ContainerEntry &) { return true; }};

template <class Rule>
bool identifyCodec(Rule &rule, const XMLNode &, const char *name)
{
    return CodecNameToID(name, &idOf(rule)) == 0;
}

constexpr RuleKind<AudioRule> kAudio = {
    "ACODEC", "audio profile", identifyCodec<AudioRule>, readProperties<s_AudioReading>,
    [](const XMLNode &element, AudioRule &rule) {
        return readRules(element, kContainer, rule.pFormatTable);
    }};

constexpr RuleKind<VideoRule> kVideo = {"VCODEC", "video profile", identifyCodec<VideoRule>,
                                        readProperties<s_VideoReading>,
                                        [](const XMLNode &element, VideoRule &rule) {
                                            return readAudioRules(element, rule.pAudioTable);
                                        }};

} // namespace

bool readAudioRules(const XMLNode &parent, AudioRule *&table)
{
    return readRules(parent, kAudio, table);
}

bool readVideoRules(const XMLNode &parent, VideoRule *&table)
{
    return readRules(parent, kVideo, table);
}

} // namespace vornak
