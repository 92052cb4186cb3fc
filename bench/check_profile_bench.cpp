// Checking profiles against loading them.
#include "bench/measure.h"
#include "tools/check/checks.h"

#include "tests/support/loaded_profile.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace vornak::bench {
namespace {

constexpr int kRounds = 20;

std::vector<std::string> examples()
{
    std::vector<std::string> paths;
    for (const auto &file : std::filesystem::directory_iterator(VORNAK_PROFILES))
        paths.push_back(file.path());
    return paths;
}

} // namespace
} // namespace vornak::bench

int main()
{
    using namespace vornak::bench;
    const std::vector<std::string> paths = examples();
    measure("check_profiles", [&] {
        for (int round = 0; round < kRounds; ++round)
            for (const std::string &path : paths)
                if (!vornak::tool::checkProfile(path).empty()) std::abort();
    });
    measure("load_profiles", [&] {
        for (int round = 0; round < kRounds; ++round)
            for (const std::string &path : paths)
                if (!vornak::test::LoadedProfile(ParseSingleTranscodeXML(
                        path.c_str(), VORNAK_MEDIA_MUSIC | VORNAK_MEDIA_VIDEO, 0, 0)))
                    std::abort();
    });
    ratio("check_profiles", "load_profiles", 20);
}
