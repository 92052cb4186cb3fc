// The subcommands, one a file. Each adds its arguments to the parser and sets `status` when it
// has run.
#pragma once

namespace CLI {
class App;
}

namespace vornak::tool {

using AddSubcommand = void (*)(CLI::App &app, int &status);

void addAppliance(CLI::App &app, int &status);
void addCached(CLI::App &app, int &status);
void addCommand(CLI::App &app, int &status);
void addDecide(CLI::App &app, int &status);
void addDisc(CLI::App &app, int &status);
void addElements(CLI::App &app, int &status);
void addLength(CLI::App &app, int &status);
void addLock(CLI::App &app, int &status);
void addMatrix(CLI::App &app, int &status);
void addProbe(CLI::App &app, int &status);
void addProfile(CLI::App &app, int &status);
void addSubtitles(CLI::App &app, int &status);
void addTranscode(CLI::App &app, int &status);

} // namespace vornak::tool
