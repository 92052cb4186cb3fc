// A profile in prose, for people who never read one.
#pragma once

#include <string>

namespace vornak::tool {

class ProfileSession;

/// What the player takes, and what all else becomes: a page of paragraphs.
std::string wordsOf(const ProfileSession &session);

} // namespace vornak::tool
