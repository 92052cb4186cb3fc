// vornak profile: the subcommands that look at a profile alone, or make one.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace vornak::tool {

struct ProfileOptions {
    std::string path;
    bool json = false;
};

void addProfileOptions(CLI::App &command, ProfileOptions &options);

void addProfileShow(CLI::App &app, int &status);
void addProfileDiff(CLI::App &app, int &status);
void addProfileCheck(CLI::App &app, int &status);
void addProfileNew(CLI::App &app, int &status);
void addProfileImport(CLI::App &app, int &status);
void addProfileList(CLI::App &app, int &status);

} // namespace vornak::tool
