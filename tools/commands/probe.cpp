// vornak probe: what the files hold, as lines that stand in for them.
#include "tools/collection/probe_files.h"
#include "tools/collection/probed_lines_file.h"
#include "tools/commands/decision_options.h"
#include "tools/commands/subcommands.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"

#include <CLI/CLI.hpp>

#include <fmt/format.h>
#include <memory>

namespace vornak::tool {
namespace {

constexpr const char *kProbeHelp =
    R"(Writes what each media file holds as a line of JSON, which stands in for the file.)";

constexpr const char *kProbeExamples = R"(Examples:
  vornak probe film.mkv > film.jsonl
      one line, all that a decision needs; nothing of the film itself
  vornak decide -p tv.xml --probed film.jsonl
      the decision about it, wherever the film is
  vornak probe -o films.jsonl /media/films
      all that lies below a folder; run again, it probes what has changed since

Exit status: 0 all files are probed, 1 some can't be, which their lines say, 2 bad usage.)";

struct ProbeOptions {
    MediaNames media;
    std::string output;
};

int runProbe(const ProbeOptions &options)
{
    claimStandardOutput();
    std::optional<ProbedLinesFile> file;
    if (!options.output.empty()) file.emplace(options.output);
    const ProbeTotals totals =
        probeFiles(options.media, file ? &*file : nullptr, [&](std::string_view line, bool isNew) {
            if (file)
                file->add(line, isNew);
            else
                writeOut(line);
        });
    if (file) {
        file->finish();
        writeOut(fmt::format("{} {}: {} probed, {} as before\n", totals.files,
                             totals.files == 1 ? "file" : "files", totals.files - totals.known,
                             totals.known));
    }
    return totals.failed > 0 ? kIncomplete : kDone;
}

} // namespace

void addProbe(CLI::App &app, int &status)
{
    auto options = std::make_shared<ProbeOptions>();
    CLI::App *command = app.add_subcommand("probe", kProbeHelp);
    addMediaArgument(*command, options->media);
    command
        ->add_option("-o,--output", options->output,
                     "Make this file the lines of MEDIA: those of files that are as they were stay")
        ->type_name("FILE");
    command->footer(kProbeExamples);
    command->callback([options, &status] { status = runProbe(*options); });
}

} // namespace vornak::tool
