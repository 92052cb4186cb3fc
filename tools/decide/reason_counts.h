// The one reason that a file's outcome is owed to, and how many files share it.
#pragma once

#include "tools/decide/explanation.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

class ProfileSession;

/// The first reason of the first part that changes; of a file that is kept, of its first stream.
struct MainReason {
    Outcome outcome = Outcome::Kept;
    std::string_view part = {}; ///< "video", "audio", "container"; empty: no decision
    std::string_view code = {}; ///< a stable name, of reasons or of errors
    std::string text = {};      ///< "6 channels, rule 0 (aac, line 14) allows 2"
    int line = 0; ///< of the profile, where the rule stands whose doing it is; 0: of none
    std::string ofMany = {}; ///< without the file's own values: "channels, rule 0 (aac, line 14) …"
};

MainReason mainReason(const Decision &decision, const Explanation &explanation,
                      const ProfileSession &session);
MainReason mainReason(const Undecided &undecided);

/// Whether a reason of that code is one for all profiles.
bool isOfFile(std::string_view code);

/// How many files there are of each reason, but those that are kept. As large as the profile has
/// rules, however many files there are.
class ReasonCounts {
public:
    struct Row {
        std::size_t files = 0;
        Outcome outcome = Outcome::Kept;
        std::string_view part, code;
        std::string text;
        int line = 0;
    };

    void add(const MainReason &reason);

    /// The most frequent first.
    std::vector<Row> rows() const;

private:
    std::map<std::string, Row> rows_; // by what tells them apart
};

} // namespace vornak::tool
