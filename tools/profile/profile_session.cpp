#include "tools/profile/profile_session.h"

#include "base/rule_tables.h"
#include "tools/profile/profile_document.h"
#include "tools/profile/profile_file.h"
#include "tools/terminal/diverted_output.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <fmt/format.h>
#include <sstream>
#include <unistd.h>

namespace vornak::tool {
namespace {

/// The library's lines, each without the place in its source, "[NAME:LINE] ", at the beginning.
std::vector<std::string> warningsIn(const std::string &text)
{
    std::vector<std::string> warnings;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        const std::size_t place = line.starts_with('[') ? line.find("] ") : std::string::npos;
        if (place != std::string::npos) line.erase(0, place + 2);
        warnings.push_back(printable(line));
    }
    return warnings;
}

} // namespace

ProfileSession::ProfileSession(const std::string &path)
{
    const ProfileDocument document(path); // says what is wrong, where the library only refuses
    {
        DivertedOutput messages(STDERR_FILENO);
        profile_.reset(ParseSingleTranscodeXML(profilePath(path).c_str(),
                                               VORNAK_MEDIA_MUSIC | VORNAK_MEDIA_VIDEO, 0, 0));
        warnings_ = warningsIn(messages.take());
    }
    if (!profile_) throw ProfileError(profileTitle(path), 0, "the library refuses to load it");
    findLines(document);
}

int ProfileSession::lineOf(const void *record) const
{
    const auto found = lines_.find(record);
    return found == lines_.end() ? 0 : found->second;
}

void ProfileSession::findLines(const ProfileDocument &document)
{
    findAudioLines(document, document.device().child("MUSIC"), profile_->pAudioTable);
    const auto *rule = profile_->pVideoTable;
    for (const pugi::xml_node element : videoRules(document.device().child("VIDEO"))) {
        if (!rule || idOf(*rule) == kEndOfTable) return;
        lines_[rule] = document.lineOf(element);
        findAudioLines(document, element, rule->pAudioTable);
        ++rule;
    }
}

void ProfileSession::findAudioLines(const ProfileDocument &document, const pugi::xml_node &parent,
                                    const AudioRule *table)
{
    const auto *rule = table;
    for (const pugi::xml_node element : audioRules(parent)) {
        if (!rule || idOf(*rule) == kEndOfTable) return;
        lines_[rule] = document.lineOf(element);
        const auto *entry = rule->pFormatTable;
        for (const pugi::xml_node format : containerEntries(element)) {
            if (!entry || idOf(*entry) == kEndOfTable) break;
            lines_[entry++] = document.lineOf(format);
        }
        ++rule;
    }
}

void complainOfWarnings(const std::string &path, const ProfileSession &session)
{
    for (const std::string &warning : session.warnings())
        complainOf(profileTitle(path),
                   fmt::format("warning: {} (vornak profile check says where)", warning));
}

} // namespace vornak::tool
