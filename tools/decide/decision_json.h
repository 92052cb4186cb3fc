// Decisions as a JSON document, written piece by piece. docs/json.md describes it.
#pragma once

#include "tools/decide/decide_files.h"
#include "tools/decide/explanation.h"
#include "tools/terminal/json_document.h"

#include <string>
#include <string_view>

namespace vornak::tool {

class ProfileSession;
struct Surroundings;

/// What all documents say of a profile, of what was asked, and at their end.
/// @param countReasons  with how many files there are of each
Json profileFields(const std::string &path, const ProfileSession &session);
Json optionFields(const DecisionRequest &request);
Json summaryFields(const Totals &totals, bool countReasons);

/// The document, which is called `document`, up to its list of files.
std::string jsonHead(std::string_view document, const std::string &profilePath,
                     const DecisionRequest &request, const ProfileSession &session);

/// An entry of the list, without the comma.
std::string jsonOf(const std::string &path, const Decision &decision,
                   const Explanation &explanation, const Surroundings &around,
                   const ProfileSession &session, bool withVisits);
std::string jsonOf(const std::string &path, const Undecided &undecided);

/// What follows the list.
std::string jsonTail(const Totals &totals, bool countReasons);

} // namespace vornak::tool
