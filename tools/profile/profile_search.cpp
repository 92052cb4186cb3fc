#include "tools/profile/profile_search.h"

#include "tools/terminal/nearest_name.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <map>
#include <stdexcept>

namespace vornak::tool {
namespace {

namespace fs = std::filesystem;

constexpr const char *kExtension = ".xml";

/// Where the user keeps what programs are set up with; empty: nowhere.
fs::path userFolder()
{
    const char *configured = std::getenv("XDG_CONFIG_HOME");
    if (configured && *configured == '/') return configured; // a relative one doesn't count
    const char *home = std::getenv("HOME");
    return home && *home ? fs::path(home) / ".config" : fs::path();
}

/// Empty where /proc isn't mounted.
fs::path programFolder()
{
    std::error_code unknown;
    return fs::read_symlink("/proc/self/exe", unknown).parent_path();
}

} // namespace

std::vector<std::string> profileFolders()
{
    std::vector<std::string> folders;
    const fs::path user = userFolder();
    if (!user.empty()) folders.push_back(user / "vornak/profiles");
    folders.emplace_back("/etc/vornak/profiles");
    const fs::path program = programFolder();
    if (!program.empty())
        folders.push_back((program / VORNAK_DATA_FROM_PROGRAM "/profiles").lexically_normal());
    return folders;
}

std::vector<NamedProfile> namedProfiles()
{
    std::map<std::string, std::string> paths;
    for (const std::string &folder : profileFolders()) {
        std::error_code missing;
        for (const fs::directory_entry &entry : fs::directory_iterator(folder, missing))
            if (entry.path().extension() == kExtension)
                paths.try_emplace(entry.path().stem(), entry.path());
    }
    std::vector<NamedProfile> profiles;
    profiles.reserve(paths.size());
    for (const auto &[name, path] : paths) profiles.push_back({name, path});
    return profiles;
}

std::string findProfile(const std::string &pathOrName)
{
    if (pathOrName == "-" || pathOrName.find('/') != std::string::npos ||
        pathOrName.ends_with(kExtension))
        return pathOrName;
    const std::vector<NamedProfile> profiles = namedProfiles();
    const auto found = std::ranges::find(profiles, pathOrName, &NamedProfile::name);
    if (found != profiles.end()) return found->path;
    // Only now: whoever else may write to the working directory doesn't choose what a name means.
    std::error_code ignored;
    if (fs::exists(pathOrName, ignored)) return pathOrName;
    std::vector<std::string> names;
    names.reserve(profiles.size());
    for (const NamedProfile &profile : profiles) names.push_back(profile.name);
    throw std::runtime_error(
        fmt::format("{}: neither a file nor a profile's name{} (vornak profile list shows them)",
                    printable(pathOrName), didYouMean(pathOrName, names)));
}

} // namespace vornak::tool
