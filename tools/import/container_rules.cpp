#include "tools/import/container_rules.h"

#include "base/media_ids.h"
#include "tools/import/common_codecs.h"
#include "tools/import/container_facts.h"
#include "tools/import/names.h"

#include <algorithm>
#include <tuple>

namespace vornak::tool {
namespace {

bool isMade(int format, int sound, const Surrounding &surrounding)
{
    return !containerOption(format, sound, surrounding.isMusic).empty();
}

/// Whether sound of the codec and the picture can be put into the container.
bool isMakeable(int format, int sound, const Surrounding &surrounding)
{
    return isMade(format, sound, surrounding) && canHold(format, sound) &&
           (surrounding.isMusic || canHold(format, surrounding.picture));
}

/// The place in the order of a rule's containers.
auto placeOf(int format, int sound, const Surrounding &surrounding)
{
    const auto wish = std::ranges::find_if(surrounding.wishes, [&](const Wish &each) {
        return each.isVideo != surrounding.isMusic && each.format == format;
    });
    return std::tuple(format == 0, !isMakeable(format, sound, surrounding),
                      !isMade(format, sound, surrounding), wish - surrounding.wishes.begin(),
                      rankOf(format, surrounding.isMusic));
}

/// Whether an entry before takes what this one would take.
bool isCovered(int format, const std::vector<ContainerRule> &before)
{
    return std::ranges::any_of(before, [format](const ContainerRule &rule) {
        const int earlier = rule.container.format;
        const bool isOfAnySubtype = subtypePart(earlier) == 0;
        return earlier == format || (isOfAnySubtype && earlier == containerPart(format));
    });
}

std::vector<Container> distinctContainers(const std::vector<const Way *> &ways)
{
    std::vector<Container> all;
    for (const Way *way : ways)
        for (const Container &container : way->containers)
            if (std::ranges::find(all, container.format, &Container::format) == all.end())
                all.push_back(container);
    return all;
}

/// Whether there is no container that is not among these.
bool areAll(const std::vector<Container> &containers)
{
    return std::ranges::all_of(allContainers(), [&](int format) {
        return std::ranges::find(containers, format, &Container::format) != containers.end();
    });
}

} // namespace

std::vector<ContainerRule> containersOf(const std::vector<const Way *> &ways, int sound,
                                        const Surrounding &surrounding)
{
    std::vector<Container> all = distinctContainers(ways);
    if (areAll(all)) all = {{0, mimeOf(0, surrounding.isMusic), {}}};
    if (all.size() == 1 && all.front().format == 0) { // nothing can be put into "any"
        const int general = "matroska"_container;
        all.push_back({general, mimeOf(general, surrounding.isMusic), {}});
    }
    std::ranges::stable_sort(all, {}, [&](const Container &container) {
        return placeOf(container.format, sound, surrounding);
    });
    std::vector<ContainerRule> rules;
    for (const Container &container : all) {
        if (isCovered(container.format, rules)) continue;
        std::string option = containerOption(container.format, sound, surrounding.isMusic);
        if (container.timeStamped) option += " -mpegts_m2ts_mode 1";
        rules.push_back({container, option});
    }
    rules.front().noTranscode = !isMakeable(rules.front().container.format, sound, surrounding);
    return rules;
}

} // namespace vornak::tool
