#include "tools/import/note.h"

#include "tools/import/oddities.h"
#include "tools/profile/id_names.h"
#include "tools/terminal/printable.h"

#include <filesystem>
#include <fmt/format.h>

namespace vornak::tool {

Note noteAt(Player &player, const std::string &file, int line, const std::string &what)
{
    return [&player, file, line, what](Remark::Kind kind, const std::string &reason) {
        player.remarks.insert(
            {file, line, kind, what.empty() ? reason : fmt::format("{}: {}", what, reason)});
    };
}

void noteOddities(const PictureLimits &limits, const Note &note)
{
    const std::string profiles =
        limits.profiles == 0
            ? ""
            : fmt::format(" ({})", fmt::join(profileTexts(limits.profiles, limits.codec), ", "));
    const std::string what = codecText(limits.codec) + profiles;
    if (isForDolbyVision(limits))
        note(Remark::Stricter, what + " with dolby_vision is refused, and not transcoded either");
    const PictureLimits rest = isForDolbyVision(limits) ? withoutDolbyVision(limits) : limits;
    if (const int others = alsoTurnedAway(rest); others != 0)
        note(Remark::Stricter,
             fmt::format("to turn away {} with {} a rule has to turn away what has {} alone, too",
                         what, fmt::join(playExceptionTexts(rest.refused), ", "),
                         fmt::join(playExceptionTexts(others), ", ")));
}

std::string shownFileName(const std::string &path)
{
    return printable(std::filesystem::path(path).filename().string());
}

} // namespace vornak::tool
