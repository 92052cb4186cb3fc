#include "tools/commands/profile_output.h"

#include "tools/files/output_place.h"
#include "tools/terminal/held_signals.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"
#include "tools/transcode/work_file.h"

#include <CLI/CLI.hpp>

#include <fmt/format.h>
#include <fstream>
#include <stdexcept>
#include <sys/stat.h>

namespace vornak::tool {

void addOutputOptions(CLI::App &command, ProfileOutput &output)
{
    command
        .add_option("-o,--output", output.path,
                    "Write the profile to this file and not to standard output")
        ->type_name("FILE");
    command.add_flag("--force", output.replace, "Replace the file if there is one");
}

void writeProfile(const std::string &text, const ProfileOutput &output, unsigned mode)
{
    if (output.path.empty()) return writeOut(text);
    const OutputPlace place(output.path, output.replace);
    const HeldSignals signals; // until nothing of the work is left
    const WorkFile work(place.folder());
    std::ofstream file(work.path(), std::ios::binary);
    file << text;
    file.close();
    if (!file)
        throw std::runtime_error(fmt::format("{}: can't be written whole", printable(output.path)));
    if (mode != 0) chmod(work.path().c_str(), mode);
    work.moveTo(place);
}

} // namespace vornak::tool
