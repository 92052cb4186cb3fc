// Profiles that are right, drawn at random over all names: nothing is found in them.
#include "include/vornak_host.h"
#include "platform/registry_names.h"
#include "profile/sample_rates.h"
#include "tools/check/checks.h"
#include "tools/check/transcoder.h"
#include "tools/profile/coded_levels.h"
#include "tools/profile/dlna_names.h"
#include "tools/profile/id_names.h"
#include "tools/profile/media_names.h"

#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <cstdlib>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <random>
#include <set>

namespace vornak::test {
namespace {

using Names = std::vector<std::string>;

class Draw {
public:
    explicit Draw(unsigned seed) : random_(seed) {}

    std::string profile()
    {
        std::string text =
            "<DEVICE NAME=\"T\">\n<MUSIC>\n" + audioRules(-1) + "</MUSIC>\n<VIDEO>\n";
        std::set<int> taken;
        for (int i = 0, count = 1 + below(4); i < count; ++i) {
            const auto [codec, encoder] = i == 0 ? anyEncoder(true) : std::pair{anyCodec(true), ""};
            if (!taken.insert(codec).second) continue;
            text += fmt::format("<VCODEC NAME=\"{}\"{}{}>\n{}</VCODEC>\n", tool::codecText(codec),
                                videoLimits(codec, i == 0),
                                encoder.empty() ? "" : videoOption(encoder), audioRules(codec));
        }
        return text + "</VIDEO>\n</DEVICE>\n";
    }

private:
    int below(std::size_t count) { return static_cast<int>(random_() % count); }
    bool often() { return below(2) == 0; }
    const auto &any(const auto &list)
    {
        return list[static_cast<std::size_t>(below(std::size(list)))];
    }

    int anyCodec(bool isVideo)
    {
        for (;;) {
            const int id = any(s_CodecNames).id;
            if (id > 0 && id < kFirstSubtitleCodec && (id < kFirstAudioCodec) == isVideo) return id;
        }
    }

    std::pair<int, std::string> anyEncoder(bool isVideo)
    {
        static const Names s_names[] = {tool::encoderNames(false), tool::encoderNames(true)};
        for (;;) {
            const std::string &name = any(s_names[isVideo ? 1 : 0]);
            const int id = tool::encodedCodec(name).value_or(-1);
            if (id > 0 && (id < kFirstAudioCodec) == isVideo) return {id, name};
        }
    }

    std::string someOf(const Names &names)
    {
        Names some;
        for (const std::string &name : names)
            if (often()) some.push_back(name);
        return fmt::format("{}", fmt::join(some, any(Names{"|", " | "})));
    }

    std::string attribute(const char *name, const std::string &value)
    {
        return value.empty() ? "" : fmt::format(" {}=\"{}\"", name, value);
    }

    std::string profiles(int codec)
    {
        Names names;
        for (const ProfileName &row : profileNames())
            if (row.codecId == codec) names.emplace_back(row.name);
        return attribute("PROFILE", someOf(names));
    }

    std::string videoLimits(int codec, bool isFirst)
    {
        std::string text = isFirst ? "" : profiles(codec);
        const tool::LevelScale *scale = tool::levelScaleOf(codec);
        if (scale && often()) text += fmt::format(" LEVEL=\"{}\"", any(scale->levels));
        if (often()) text += fmt::format(" MAXWIDTH=\"{}\" MAXHEIGHT=\"1080\"", 720 + below(4000));
        if (often()) text += fmt::format(" MAXBITRATE=\"{}M\"", 3 + below(90));
        if (often()) text += attribute("PLAY_EXCEPTION", someOf(tool::knownPlayExceptions()));
        if (often()) text += " VATRANSCODE=\"1\" FRAME=\"-1\"";
        return text + (!isFirst && often() ? " NOTRANSCODE=\"1\"" : "");
    }

    std::string videoOption(const std::string &encoder)
    {
        return fmt::format(" OPTION=\"-c:v {}{} -b:v {}k -maxrate 3M -bufsize 3M\"", encoder,
                           encoder == "libx264" || encoder == "libx265" ? " -pix_fmt yuv420p" : "",
                           300 + below(2700));
    }

    std::string audioRules(int picture)
    {
        std::string text;
        std::set<int> taken;
        for (int i = 0, count = 1 + below(4); i < count; ++i) {
            const auto [codec, encoder] =
                i == 0 ? anyEncoder(false) : std::pair{anyCodec(false), std::string()};
            if (!taken.insert(codec).second) continue;
            const int channels = 1 + below(6), rate = any(s_StandardSampleRates);
            text += fmt::format(" <ACODEC NAME=\"{}\"", tool::codecText(codec));
            if (!encoder.empty())
                text += fmt::format(" OPTION=\"-c:a {} -b:a 64k -ac {} -ar {}\"", encoder, channels,
                                    rate);
            else
                text += profiles(codec);
            if (often()) text += fmt::format(" MAXCHANNELS=\"{}\"", channels + below(3));
            if (often()) text += fmt::format(" MAXFREQUENCY=\"{}\" MINFREQUENCY=\"8K\"", rate);
            if (often()) text += fmt::format(" MAXBITRATE=\"{}K\"", 64 + below(600));
            text += ">\n" + containers(picture, codec) + " </ACODEC>\n";
        }
        return text + (often() ? ""
                               : " <ACODEC NAME=\"any\">\n" + containers(picture, 0) +
                                     "  <FORMAT NAME=\"*\"/>\n </ACODEC>\n");
    }

    /// A container that a muxer writes, or any for those that the registry doesn't know.
    int containerFor(const std::string &muxer)
    {
        const int container = tool::containerWrittenBy(muxer).value_or(any(s_ContainerNames).id);
        Names subtypes = tool::knownSubtypes(container);
        std::erase_if(subtypes, [&](const std::string &name) {
            int id = 0;
            const std::string text = tool::containerText(container);
            return ContainerFormatNameToID(text.c_str(), name.c_str(), &id) != 0 ||
                   !tool::writesSubtype(muxer, id);
        });
        int id = container;
        if (!subtypes.empty() && often())
            ContainerFormatNameToID(tool::containerText(container).c_str(), any(subtypes).c_str(),
                                    &id);
        return id;
    }

    std::string containers(int picture, int sound)
    {
        std::string text;
        std::set<int> taken = {0};
        for (int i = 0, count = 1 + below(4); i < count; ++i) {
            const std::string &muxer = any(tool::muxerNames());
            const int id = containerFor(muxer);
            if (!taken.insert(containerPart(id)).second && (i > 0 || id == 0)) {
                --i;
                continue;
            }
            const std::string name = tool::containerText(id);
            const std::size_t slash = name.find('/');
            text += fmt::format(
                "  <FORMAT{}{}{}{} OPTION=\"-f {}\"/>\n", attribute("NAME", name.substr(0, slash)),
                attribute("SUBTYPE", slash == std::string::npos ? "" : name.substr(slash + 1)),
                attribute("MIME", any(tool::mimeTypes())),
                attribute("PN", dlnaName(id, picture, sound)), muxer);
        }
        return text;
    }

    /// Any that fits, and says no more of the picture: its limits are drawn by themselves.
    std::string dlnaName(int format, int picture, int sound)
    {
        static const Names s_names = tool::dlnaNames();
        Names fitting;
        for (const std::string &name : s_names) {
            const tool::DlnaName &row = *tool::findDlnaName(name);
            if (row.profiles == 0 && row.width == 0 && row.pictures.empty() == (picture < 0) &&
                tool::allows(row.pictures, picture) &&
                (sound == 0 || tool::allows(row.sounds, sound)) &&
                tool::allows(row.containers, containerPart(format)))
                fitting.push_back(name);
        }
        return fitting.empty() ? "" : any(fitting);
    }

    std::mt19937 random_;
};

TEST(RandomProfile, IsCleanWhereItIsRight)
{
    const char *given = std::getenv("VORNAK_SEED");
    const unsigned seed = given ? static_cast<unsigned>(std::atoi(given)) : 1;
    std::cout << "seed " << seed << " (VORNAK_SEED)\n";
    const TempDir dir;
    Draw draw(seed);
    for (int i = 0; i < 50; ++i) {
        const std::string profile = draw.profile();
        for (const tool::Finding &finding : tool::checkProfile(dir.write("p.xml", profile)))
            if (finding.fault != tool::Fault::PnMissing) // not all names are drawn
                ADD_FAILURE() << finding.line << ": " << finding.problem << "; " << finding.advice
                              << "\n"
                              << profile;
    }
}

} // namespace
} // namespace vornak::test
