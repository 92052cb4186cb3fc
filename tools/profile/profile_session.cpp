#include "tools/profile/profile_session.h"

#include "tools/profile/profile_document.h"
#include "tools/terminal/diverted_output.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <cstdlib>
#include <fmt/format.h>
#include <sstream>
#include <unistd.h>

namespace vornak::tool {
namespace {

constexpr int kEndOfTable = -1;

void release(TRANSCODE_AUDIO_MAPPING_ST *table) noexcept
{
    for (auto *rule = table; rule && rule->aCodecId != kEndOfTable; ++rule) {
        for (auto *entry = rule->pFormatTable; entry && entry->formatId != kEndOfTable; ++entry) {
            std::free(entry->mime);
            std::free(entry->pn);
            std::free(entry->option);
        }
        std::free(rule->pFormatTable);
        std::free(rule->option);
    }
    std::free(table);
}

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

void ReleaseProfile::operator()(TRANSCODE_DEVICE_PROFILE_ST *profile) const noexcept
{
    for (auto *rule = profile->pVideoTable; rule && rule->vCodecId != kEndOfTable; ++rule) {
        release(rule->pAudioTable);
        std::free(rule->option);
    }
    std::free(profile->pVideoTable);
    release(profile->pAudioTable);
    std::free(profile->deviceName);
    std::free(profile);
}

ProfileSession::ProfileSession(const std::string &path)
{
    const ProfileDocument document(path); // says what is wrong, where the library only refuses
    {
        DivertedOutput messages(STDERR_FILENO);
        profile_.reset(
            ParseSingleTranscodeXML(path.c_str(), VORNAK_MEDIA_MUSIC | VORNAK_MEDIA_VIDEO, 0, 0));
        warnings_ = warningsIn(messages.take());
    }
    if (!profile_) throw ProfileError(path, 0, "the library refuses to load it");
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
        if (!rule || rule->vCodecId == kEndOfTable) return;
        lines_[rule] = document.lineOf(element);
        findAudioLines(document, element, rule->pAudioTable);
        ++rule;
    }
}

void ProfileSession::findAudioLines(const ProfileDocument &document, const pugi::xml_node &parent,
                                    const TRANSCODE_AUDIO_MAPPING_ST *table)
{
    const auto *rule = table;
    for (const pugi::xml_node element : audioRules(parent)) {
        if (!rule || rule->aCodecId == kEndOfTable) return;
        lines_[rule] = document.lineOf(element);
        const auto *entry = rule->pFormatTable;
        for (const pugi::xml_node format : containerEntries(element)) {
            if (!entry || entry->formatId == kEndOfTable) break;
            lines_[entry++] = document.lineOf(format);
        }
        ++rule;
    }
}

void complainOfWarnings(const std::string &path, const ProfileSession &session)
{
    for (const std::string &warning : session.warnings())
        complainOf(path, fmt::format("warning: {} (vornak profile check says where)", warning));
}

} // namespace vornak::tool
