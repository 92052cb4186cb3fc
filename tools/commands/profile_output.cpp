#include "tools/commands/profile_output.h"

#include "tools/commands/whole_file.h"
#include "tools/files/output_place.h"
#include "tools/terminal/output.h"

#include <CLI/CLI.hpp>

namespace vornak::tool {

void addOutputOptions(CLI::App &command, ProfileOutput &output)
{
    command
        .add_option("-o,--output", output.path,
                    "Write the profile to this file; -: to standard output, as without it")
        ->type_name("FILE");
    command.add_flag("--force", output.replace, "Replace the file if there is one");
}

void writeProfile(const std::string &text, const ProfileOutput &output, unsigned mode)
{
    if (output.path.empty() || output.path == "-") return writeOut(text);
    writeWholeFile(text, OutputPlace(output.path, output.replace), mode);
}

} // namespace vornak::tool
