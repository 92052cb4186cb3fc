#include "tools/transcode/delivery.h"

#include "tools/decide/reason_text.h"
#include "tools/files/output_place.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/held_signals.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"
#include "tools/transcode/library_command.h"
#include "tools/transcode/make_output.h"
#include "tools/transcode/work_file.h"

#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>

namespace vornak::tool {
namespace {

constexpr std::string_view kAdvice =
    ", so nothing is made of it (--accept-damaged takes what there is)";

std::string madeText(const Making &making)
{
    if (!making.command) return "copied, it is sent as it is";
    return fmt::format("made from {} ({})", printable(making.file.path),
                       nameOf(making.file.decision.outcome));
}

/// Sees whether the profile takes the output as it is.
int verify(const Making &making)
{
    const DecidedFile &file = making.file;
    const DecisionRequest request{.matchVideo = file.request.matchVideo};
    const FileResult result = decideFile(file.session, request, probeMedia(making.work->path()));
    if (const auto *undecided = std::get_if<Undecided>(&result))
        return complainOf(making.output, "not verified: " + undecided->message);
    const auto &decision = std::get<Decision>(result);
    if (decision.outcome == Outcome::Kept) return kDone;
    return complainOf(making.output, "not verified, it would not be sent as it is: " +
                                         reasonsOf(decision, request, file.session));
}

void refuseSource(const Making &making)
{
    std::error_code ignored;
    if (std::filesystem::equivalent(making.file.path, making.output, ignored))
        throw std::runtime_error(fmt::format("{}: is the file to transcode; name another output",
                                             printable(making.output)));
}

int intoPlace(Making &making, const Delivery &wanted)
try {
    refuseSource(making);
    const OutputPlace place(wanted.output, wanted.replace);
    const HeldSignals signals; // until nothing of the work is left
    const WorkFile work(place.folder());
    making.work = &work;
    if (const int status = makeOutput(making, signals); status != kDone) return status;
    const int verified = wanted.verify ? verify(making) : kDone;
    if (const int signal = signals.takeInterruption()) return sayInterrupted(making, signal);
    if (verified == kDone) work.moveTo(place);
    return verified;
} catch (const WriteError &error) {
    complain(error.what());
    return kIncomplete;
}

int intoStandardOutput(const Making &making)
{
    const HeldSignals signals;
    const int status = makeOutput(making, signals);
    if (status == kDone) complainOf(making.output, madeText(making));
    return status;
}

int intoFile(Making &making, const Delivery &wanted)
{
    const int status = intoPlace(making, wanted);
    if (status != kDone) return status;
    const std::string output = printable(wanted.output);
    writeOut(fmt::format("{}: {}\n", output, madeText(making)));
    if (wanted.verify) writeOut(fmt::format("{}: verified, it is sent as it is\n", output));
    return kDone;
}

} // namespace

int deliver(const DecidedFile &file, const Delivery &wanted)
{
    const Decision &decision = file.decision;
    if (decision.isRefused())
        return complainOf(file.path, "refused, NOTRANSCODE forbids to transcode: " +
                                         reasonsOf(decision, file.request, file.session));
    Making making{.file = file,
                  .program = wanted.ffmpeg,
                  .output = wanted.output == "-" ? "standard output" : wanted.output,
                  .acceptDamaged = wanted.acceptDamaged,
                  .advice = kAdvice};
    std::variant<LibraryCommand, std::string> made;
    if (needsCommand(decision)) {
        made = makeCommand(decision, wanted.dialect);
        if (const auto *problem = std::get_if<std::string>(&made))
            return complainOf(file.path, *problem);
        making.command = &std::get<LibraryCommand>(made);
    } else if (!wanted.copy) {
        complainOf(file.path, "needs no transcoding, it is sent as it is (--copy copies it)");
        return kNothingToDo;
    }
    return wanted.output == "-" ? intoStandardOutput(making) : intoFile(making, wanted);
}

} // namespace vornak::tool
