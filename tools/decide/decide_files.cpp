#include "tools/decide/decide_files.h"

#include "tools/files/count_media.h"
#include "tools/files/ordered_work.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"
#include "tools/terminal/progress.h"

#include <fmt/format.h>
#include <thread>

namespace vornak::tool {
namespace {

struct Rendered {
    FileText file;
    std::string complaint;
    Outcome outcome;
};

} // namespace

Outcome outcomeOf(const FileResult &result)
{
    return std::visit([](const auto &any) { return any.outcome; }, result);
}

FileResult decideFile(const ProfileSession &session, const DecisionRequest &request,
                      ProbeResult probe)
{
    if (!probe.media) return Undecided{probe.code, probe.error};
    return decide(session, request, std::move(*probe.media));
}

std::optional<DecidedFile> decideOne(const std::string &profile, const DecisionRequest &request,
                                     SeenFile file)
{
    ProfileSession session(profile);
    complainOfWarnings(profile, session);
    FileResult result = decideFile(session, request, std::move(file.probe));
    if (auto *decision = std::get_if<Decision>(&result))
        return DecidedFile{std::move(file.path), request, std::move(session), std::move(*decision)};
    complainOf(file.path, std::get<Undecided>(result).message);
    return std::nullopt;
}

Totals decideFiles(const ProfileSession &session, const DecisionRequest &request,
                   const MediaNames &media, std::string_view separator, const RenderFile &render)
{
    Totals totals;
    const auto source = openMedia(media);
    FileProgress progress(countMedia(media));

    const auto decideOne = [&](const MediaSource::Look &look) {
        SeenFile file = look();
        const FileResult result = decideFile(session, request, std::move(file.probe));
        Rendered rendered{render(file, result), {}, outcomeOf(result)};
        if (const auto *undecided = std::get_if<Undecided>(&result))
            rendered.complaint = aboutFile(file.path, undecided->message);
        return rendered;
    };
    const auto emit = [&](const Rendered &rendered) {
        const std::string &text = rendered.file.text;
        // first, so that on a terminal the complaint has a line of its own
        if (!text.empty() && totals.shown > 0) writeOut(separator);
        if (!rendered.complaint.empty()) {
            complain(rendered.complaint);
            ++totals.undecided;
        }
        writeOut(text);
        totals.shown += !text.empty();
        totals.reasons.add(rendered.file.reason);
        totals.add(rendered.outcome);
        progress.advance();
    };
    workInOrder(
        std::thread::hardware_concurrency(), [&] { return source->next(); }, decideOne, emit);
    totals.skipped = source->skipped();
    return totals;
}

} // namespace vornak::tool
