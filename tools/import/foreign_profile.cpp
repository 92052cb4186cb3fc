#include "tools/import/foreign_profile.h"

#include "tools/import/dlna_profiles.h"
#include "tools/import/jellyfin_profile.h"
#include "tools/profile/id_names.h"
#include "tools/profile/profile_file.h"
#include "tools/profile/regular_file.h"

#include <filesystem>
#include <stdexcept>
#include <string_view>

namespace vornak::tool {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// The first character that is no blank, after a byte-order mark; NUL: there is none.
char firstCharacter(std::string_view text)
{
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first == std::string_view::npos ? '\0' : text[first];
}

std::vector<SinkEntry> wantedProfiles(const ImportOptions &options)
{
    std::vector<SinkEntry> wanted;
    for (const std::string &list : options.names)
        for (const std::string &name : splitList(list, ',')) wanted.push_back({name, {}, name});
    for (SinkEntry &entry : readSinkProtocolInfo(options.sink)) wanted.push_back(std::move(entry));
    if (wanted.empty())
        throw std::runtime_error(
            "say which of the DLNA profiles the player takes: --names, or what "
            "it states as its sink, --sink-protocol-info");
    return wanted;
}

Player readProfile(const ImportOptions &options)
{
    std::error_code error;
    if (std::filesystem::is_directory(options.file, error))
        return readDlnaProfiles(options.file, wantedProfiles(options), options.relaxed);
    const std::string text = readForeignFile(options.file);
    switch (firstCharacter(text)) {
    case '<':
        if (text.find("<DEVICE") != std::string::npos)
            throw ProfileError(profileTitle(options.file), 0, "it is a Device profile already");
        return readDlnaProfiles(options.file, wantedProfiles(options), options.relaxed);
    case '{':
        if (!options.names.empty() || !options.sink.empty())
            throw std::runtime_error("--names and --sink-protocol-info are for DLNA profiles; a "
                                     "Jellyfin profile is taken whole");
        return readJellyfinProfile(profileTitle(options.file), text);
    default:
        throw ProfileError(
            profileTitle(options.file), 0,
            "it is neither a JSON object, as Jellyfin's device profiles are, nor XML, "
            "as gupnp-dlna's are");
    }
}

} // namespace

Player readForeignProfile(const ImportOptions &options)
{
    Player player = readProfile(options);
    if (!options.name.empty()) player.name = options.name;
    if (player.name.empty())
        player.name =
            options.file == "-" ? "Player" : std::filesystem::path(options.file).stem().string();
    return player;
}

} // namespace vornak::tool
