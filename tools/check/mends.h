// The safe mends of findings, made in the profile's text: all else in it stays as it is written.
#pragma once

#include "tools/check/finding.h"

#include <string>
#include <vector>

namespace vornak::tool {

/// The edits of the findings by their places, less those that lie in an earlier one.
std::vector<Edit> editsOf(const std::vector<Finding> &findings);

/// Edits of a text as edits of the one that it was made of by `before`. Those are left out that lie
/// where `before` changes something.
std::vector<Edit> joined(const std::vector<Edit> &before, const std::vector<Edit> &edits);

std::string withEdits(const std::string &text, const std::vector<Edit> &edits);

/// What the edits change, as `diff -u` shows it. @param name  of the file
std::string diffOf(const std::string &name, const std::string &text,
                   const std::vector<Edit> &edits);

} // namespace vornak::tool
