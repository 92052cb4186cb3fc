// Loads profiles from texts and keeps what the loader wrote.
#pragma once

#include "include/vornak.h"

#include "tests/support/capture.h"
#include "tests/support/loaded_profile.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace vornak::test {

constexpr int kBothSections = VORNAK_MEDIA_MUSIC | VORNAK_MEDIA_VIDEO;

/// `warnings` with N for the number in each "[name:number]".
inline std::string withoutLineNumbers(std::string warnings)
{
    for (std::size_t at = 0; (at = warnings.find(':', at)) != std::string::npos; ++at) {
        const std::size_t end = warnings.find_first_not_of("0123456789", at + 1);
        if (end > at + 1 && warnings[at + 1] != '0' && warnings.compare(end, 1, "]") == 0)
            warnings.replace(at + 1, end - at - 1, "N");
    }
    return warnings;
}

class ProfileFixture : public testing::Test {
protected:
    LoadedProfile load(std::string_view document, int mediaFlags = kBothSections)
    {
        return loadFile(files_.write("profile.xml", document), mediaFlags);
    }

    LoadedProfile loadFile(const std::string &path, int mediaFlags = kBothSections)
    {
        Capture err(2);
        LoadedProfile profile(ParseSingleTranscodeXML(path.c_str(), mediaFlags, 0, 0));
        warnings_ = withoutLineNumbers(err.take());
        return profile;
    }

    TempDir files_;
    std::string warnings_; // of the last load, with N for the line numbers
};

/// A profile of one MUSIC section.
inline std::string music(const std::string &rules)
{
    return "<DEVICE NAME='d'><MUSIC>" + rules + "</MUSIC></DEVICE>";
}

/// A profile of one VIDEO section.
inline std::string video(const std::string &rules)
{
    return "<DEVICE NAME='d'><VIDEO>" + rules + "</VIDEO></DEVICE>";
}

} // namespace vornak::test
