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
        std::string text = "<DEVICE NAME=\"T\">\n<MUSIC>\n" + audioRules() + "</MUSIC>\n<VIDEO>\n";
        std::set<int> taken;
        for (int i = 0, count = 1 + below(4); i < count; ++i) {
            const auto [codec, encoder] = i == 0 ? anyEncoder(true) : std::pair{anyCodec(true), ""};
            if (!taken.insert(codec).second) continue;
            picture_ = {0, codec, 0};
            // in this order, which calls' arguments have not
            text += fmt::format("<VCODEC NAME=\"{}\"", tool::codecText(codec));
            text += videoLimits(codec, i == 0);
            if (!encoder.empty()) text += videoOption(encoder);
            text += ">\n" + audioRules();
            text += "</VCODEC>\n";
            picture_ = kMusic;
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
        return fmt::format("{}", fmt::join(some, any(s_bars)));
    }

    std::string attribute(const char *name, const std::string &value)
    {
        return value.empty() ? "" : fmt::format(" {}=\"{}\"", name, value);
    }

    std::string profiles(int codec)
    {
        Names names;
        for (const ProfileName &row : profileNames())
            if (row.codecId == codec && often()) {
                names.emplace_back(row.name);
                (codec == picture_.picture ? picture_.profiles : soundProfiles_) |= row.bit;
            }
        return attribute("PROFILE", fmt::format("{}", fmt::join(names, any(s_bars))));
    }

    std::string videoLimits(int codec, bool isFirst)
    {
        std::string text = isFirst ? "" : profiles(codec);
        const tool::LevelScale *scale = tool::levelScaleOf(codec);
        if (scale && often()) text += fmt::format(" LEVEL=\"{}\"", any(scale->levels));
        if (often()) {
            picture_.width = 352 + below(2000);
            picture_.height = 288 + below(1200);
            text +=
                fmt::format(" MAXWIDTH=\"{}\" MAXHEIGHT=\"{}\"", picture_.width, picture_.height);
        }
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

    std::string audioRules()
    {
        std::string text;
        std::set<int> taken;
        for (int i = 0, count = 1 + below(4); i < count; ++i) {
            const auto [codec, encoder] =
                i == 0 ? anyEncoder(false) : std::pair{anyCodec(false), std::string()};
            if (!taken.insert(codec).second) continue;
            soundProfiles_ = 0;
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
            text += ">\n" + containers(codec) + " </ACODEC>\n";
        }
        soundProfiles_ = 0;
        return text + (often() ? ""
                               : " <ACODEC NAME=\"any\">\n" + containers(0) +
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

    std::string containers(int sound)
    {
        std::string text;
        std::set<int> taken = {0};
        for (int i = 0, count = 1 + below(4); i < count; ++i) {
            const std::string &muxer = any(tool::muxerNames());
            // only what is put into the first container is looked at
            if (i == 0 && (tool::refusesCodec(muxer, std::max(picture_.picture, 0)) ||
                           tool::refusesCodec(muxer, sound))) {
                --i;
                continue;
            }
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
                attribute("MIME", tool::mimeOf(id, picture_.picture < 0)),
                attribute("PN", dlnaName(id, sound)), muxer);
        }
        return text;
    }

    /// Any that fits, and whose picture and sound are among those that the rule takes.
    std::string dlnaName(int format, int sound)
    {
        static const Names s_names = tool::dlnaNames();
        Names fitting;
        for (const std::string &name : s_names) {
            const tool::DlnaName &row = *tool::findDlnaName(name);
            const bool isForMusic = picture_.picture < 0;
            if (row.pictures.empty() == isForMusic && fitsLimits(row) &&
                (sound == 0 || tool::allows(row.sounds, sound)) &&
                tool::allows(row.containers, containerPart(format)))
                fitting.push_back(name);
        }
        return fitting.empty() ? "" : any(fitting);
    }

    bool fitsLimits(const tool::DlnaName &row) const
    {
        const auto share = [](int one, int other) {
            return one == 0 || other == 0 || (one & other) != 0;
        };
        return tool::allows(row.pictures, picture_.picture) &&
               share(row.profiles, picture_.profiles) && share(row.soundProfiles, soundProfiles_) &&
               (row.width == 0 || (picture_.width <= row.width && picture_.height <= row.height));
    }

    static inline const Names s_bars = {"|", " | "};
    static constexpr tool::DlnaUse kMusic = {0, -1, 0};

    std::mt19937 random_;
    tool::DlnaUse picture_ = kMusic; ///< of the rule that is being drawn
    int soundProfiles_ = 0;          ///< the same of its sound
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
            ADD_FAILURE() << finding.line << ": " << finding.problem << "; " << finding.advice
                          << "\n"
                          << profile;
    }
}

} // namespace
} // namespace vornak::test
