// Loading a profile against a plain loader over the same XML parser that fills the same records.
// The registry is the program's own and next to free, so that the loaders are what is measured.
#include "bench/measure.h"
#include "include/vornak.h"
#include "include/vornak_host.h"

#include "tests/support/loaded_profile.h"
#include "tests/support/temp_dir.h"

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <pugixml.hpp>
#include <string>
#include <string_view>

int CodecNameToID(const char *name, int *id)
{
    *id = static_cast<unsigned char>(name[0]);
    return 0;
}

int ProfileNameToID(const char *name, int *bit)
{
    *bit = 1 << (name[0] - 'a');
    return 0;
}

int PlayExceptionNameToID(const char *name, int *bit)
{
    *bit = 1 << (name[0] - 'a');
    return 0;
}

int ContainerFormatNameToID(const char *name, const char *subtype, int *id)
{
    *id = name[0] | (subtype ? 1 << 16 : 0);
    return 0;
}

namespace vornak::bench {
namespace {

using test::LoadedProfile;

char *copyOf(pugi::xml_attribute attribute)
{
    return *attribute.value() == '\0' ? nullptr : strdup(attribute.value());
}

int bitsOf(pugi::xml_attribute list, int (*lookup)(const char *, int *))
{
    std::string text = list.value();
    std::erase(text, ' ');
    int bits = 0;
    char *rest = nullptr;
    for (char *name = strtok_r(text.data(), "|", &rest); name;
         name = strtok_r(nullptr, "|", &rest)) {
        int bit = 0;
        if (lookup(name, &bit) == 0) bits |= bit;
    }
    return bits;
}

int numberOf(pugi::xml_attribute attribute)
{
    char *end = nullptr;
    const long number = std::strtol(attribute.value(), &end, 10);
    const long factor = *end == 'K' ? 1000 : *end == 'M' ? 1000000 : 1;
    return static_cast<int>(number * factor);
}

/// The rate as it is: the profiles here name standard ones alone.
int rateOf(pugi::xml_attribute attribute)
{
    return numberOf(attribute);
}

template <class Rule>
Rule *tableFor(int Rule::*id, int count)
{
    auto *table = static_cast<Rule *>(std::calloc(count + 1, sizeof(Rule)));
    for (int i = 0; i <= count; ++i) table[i].*id = -1;
    return table;
}

template <class Children>
int countOf(Children children)
{
    return static_cast<int>(std::distance(children.begin(), children.end()));
}

TANASCODE_FORMAT_MAPPING_ST *readFormats(pugi::xml_node codec)
{
    const auto children = codec.children("FORMAT");
    const int count = countOf(children);
    auto *table = tableFor(&TANASCODE_FORMAT_MAPPING_ST::formatId, count);
    auto *entry = table;
    for (const pugi::xml_node child : children) {
        const pugi::xml_attribute subtype = child.attribute("SUBTYPE");
        if (ContainerFormatNameToID(child.attribute("NAME").value(),
                                    subtype ? subtype.value() : nullptr, &entry->formatId) != 0)
            continue;
        entry->noTranscode = child.attribute("NOTRANSCODE").as_int();
        entry->pn = copyOf(child.attribute("PN"));
        entry->mime = copyOf(child.attribute("MIME"));
        entry->nonSeekable = child.attribute("NONSEEKABLE").as_int();
        entry->option = copyOf(child.attribute("OPTION"));
        entry->count = count;
        ++entry;
    }
    return table;
}

TRANSCODE_AUDIO_MAPPING_ST *readAudio(pugi::xml_node parent)
{
    const auto children = parent.children("ACODEC");
    const int count = countOf(children);
    auto *table = tableFor(&TRANSCODE_AUDIO_MAPPING_ST::aCodecId, count);
    auto *rule = table;
    for (const pugi::xml_node child : children) {
        if (CodecNameToID(child.attribute("NAME").value(), &rule->aCodecId) != 0) continue;
        rule->aProfileId = bitsOf(child.attribute("PROFILE"), ProfileNameToID);
        rule->aLevel = child.attribute("LEVEL").as_int();
        rule->noTranscode = child.attribute("NOTRANSCODE").as_int();
        rule->maxChannels = child.attribute("MAXCHANNELS").as_int();
        rule->minChannels = child.attribute("MINCHANNELS").as_int();
        rule->maxSampleRate = rateOf(child.attribute("MAXFREQUENCY"));
        rule->minSampleRate = rateOf(child.attribute("MINFREQUENCY"));
        rule->maxBitrate = numberOf(child.attribute("MAXBITRATE"));
        rule->minBitrate = numberOf(child.attribute("MINBITRATE"));
        rule->option = copyOf(child.attribute("OPTION"));
        rule->pFormatTable = readFormats(child);
        rule->count = count;
        ++rule;
    }
    return table;
}

TRANSCODE_VIDEO_MAPPING_ST *readVideo(pugi::xml_node section)
{
    const auto children = section.children("VCODEC");
    const int count = countOf(children);
    auto *table = tableFor(&TRANSCODE_VIDEO_MAPPING_ST::vCodecId, count);
    auto *rule = table;
    for (const pugi::xml_node child : children) {
        if (CodecNameToID(child.attribute("NAME").value(), &rule->vCodecId) != 0) continue;
        rule->vProfileId = bitsOf(child.attribute("PROFILE"), ProfileNameToID);
        rule->vLevel = child.attribute("LEVEL").as_int();
        rule->noTranscode = child.attribute("NOTRANSCODE").as_int();
        rule->maxWidth = numberOf(child.attribute("MAXWIDTH"));
        rule->minWidth = numberOf(child.attribute("MINWIDTH"));
        rule->maxHeight = numberOf(child.attribute("MAXHEIGHT"));
        rule->minHeight = numberOf(child.attribute("MINHEIGHT"));
        rule->maxBitrate = numberOf(child.attribute("MAXBITRATE"));
        rule->minBitrate = numberOf(child.attribute("MINBITRATE"));
        rule->option = copyOf(child.attribute("OPTION"));
        rule->vaTranscode = numberOf(child.attribute("VATRANSCODE"));
        rule->frame = numberOf(child.attribute("FRAME"));
        rule->tolerance = numberOf(child.attribute("TOLERANCE"));
        rule->playException = bitsOf(child.attribute("PLAY_EXCEPTION"), PlayExceptionNameToID);
        rule->pAudioTable = readAudio(child);
        rule->count = count;
        ++rule;
    }
    return table;
}

LoadedProfile loadPlainly(const std::string &path)
{
    pugi::xml_document document;
    if (!document.load_file(path.c_str())) return nullptr;
    const pugi::xml_node device = document.child("DEVICE");
    auto *profile = static_cast<TRANSCODE_DEVICE_PROFILE_ST *>(
        std::calloc(1, sizeof(TRANSCODE_DEVICE_PROFILE_ST)));
    profile->deviceName = copyOf(device.attribute("NAME"));
    profile->mediaFlags = 5;
    if (const pugi::xml_node music = device.child("MUSIC")) profile->pAudioTable = readAudio(music);
    if (const pugi::xml_node video = device.child("VIDEO")) profile->pVideoTable = readVideo(video);
    return LoadedProfile(profile);
}

LoadedProfile loadByTheLibrary(const std::string &path)
{
    return LoadedProfile(ParseSingleTranscodeXML(path.c_str(), 5, 0, 0));
}

constexpr std::string_view kAudioRule = R"(
      <ACODEC NAME="aac" PROFILE="lc | he" MAXCHANNELS="2" MAXFREQUENCY="48000" MAXBITRATE="320K"
              OPTION="-c:a aac -b:a 128k -ac 2 -ar 48000">
        <FORMAT NAME="mp4" SUBTYPE="isom" MIME="video/mp4" PN="AVC_MP4_MP_SD" OPTION="-f mp4"/>
        <FORMAT NAME="mpegts" MIME="video/mpeg" NONSEEKABLE="1" OPTION="-f mpegts"/>
      </ACODEC>)";

constexpr std::string_view kVideoRule = R"(
    <VCODEC NAME="h264" PROFILE="baseline | main | high" LEVEL="41" MAXWIDTH="1920" MINWIDTH="16"
            MAXHEIGHT="1080" MAXBITRATE="20M" PLAY_EXCEPTION="interlaced" VATRANSCODE="1"
            OPTION="-c:v libx264 -preset veryfast -profile:v main -level 4.1 -b:v 2500k">)";

std::string audioRules(int count)
{
    std::string rules;
    for (int i = 0; i < count; ++i) rules += kAudioRule;
    return rules;
}

/// A profile of about `size` bytes: eight music rules, and video rules with four audio rules each.
std::string realisticProfile(std::size_t size)
{
    std::string document =
        "<DEVICE NAME=\"TV\">\n  <MUSIC>" + audioRules(8) + "\n  </MUSIC>\n  <VIDEO>";
    while (document.size() < size)
        document.append(kVideoRule).append(audioRules(4)).append("\n    </VCODEC>");
    return document + "\n  </VIDEO>\n</DEVICE>\n";
}

std::string musicProfile(int rules)
{
    return "<DEVICE NAME=\"TV\">\n  <MUSIC>" + audioRules(rules) + "\n  </MUSIC>\n</DEVICE>\n";
}

void compareLoaders(const test::TempDir &files)
{
    const struct {
        std::size_t size;
        const char *library, *plain;
    } rows[] = {{20'000, "load-20KB", "plain-20KB"},
                {200'000, "load-200KB", "plain-200KB"},
                {2'000'000, "load-2MB", "plain-2MB"}};
    for (const auto &row : rows) {
        const std::string path = files.write("profile.xml", realisticProfile(row.size));
        if (test::describe(*loadByTheLibrary(path)) != test::describe(*loadPlainly(path)))
            std::abort();
        measure(row.library, [&] { loadByTheLibrary(path); });
        measure(row.plain, [&] { loadPlainly(path); });
        ratio(row.library, row.plain, 1.5);
    }
}

/// The same bytes as one file of many rules and as loads of a file of few.
void compareFewAndMany(const test::TempDir &files)
{
    const std::string many = files.write("many.xml", musicProfile(5000));
    const std::string few = files.write("few.xml", musicProfile(20));
    measure("load-2MB-under-one-parent", [&] { loadByTheLibrary(many); });
    measure("load-250-times-8KB", [&] {
        for (int i = 0; i < 250; ++i) loadByTheLibrary(few);
    });
    ratio("load-2MB-under-one-parent", "load-250-times-8KB", 1);
}

} // namespace
} // namespace vornak::bench

int main()
{
    const vornak::test::TempDir files;
    vornak::bench::compareLoaders(files);
    vornak::bench::compareFewAndMany(files);
}
