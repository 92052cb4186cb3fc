// A Device profile, loaded through the library, with the line of each of its rules.
#pragma once

#include "profile/profile_release.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace pugi {
class xml_node;
}

namespace vornak::tool {

class ProfileDocument;

class ProfileSession {
public:
    /// Loads both sections; throws ProfileError. Not while other threads write to standard error.
    explicit ProfileSession(const std::string &path);

    TRANSCODE_DEVICE_PROFILE_ST &profile() const { return *profile_; }

    /// The line at which a rule or container entry of the profile begins; 0: unknown.
    int lineOf(const void *record) const;

    /// What the library said about the profile while it loaded it, printable.
    const std::vector<std::string> &warnings() const { return warnings_; }

private:
    void findLines(const ProfileDocument &document);
    void findAudioLines(const ProfileDocument &document, const pugi::xml_node &parent,
                        const TRANSCODE_AUDIO_MAPPING_ST *table);

    ProfileOwner profile_;
    std::unordered_map<const void *, int> lines_;
    std::vector<std::string> warnings_;
};

/// Prints what the library said about the profile, a line each.
void complainOfWarnings(const std::string &path, const ProfileSession &session);

} // namespace vornak::tool
