// The fields of a restriction, GStreamer's properties of a stream, as limits of rules.
#pragma once

#include "tools/import/dlna_document.h"
#include "tools/import/limits.h"

#include <string>
#include <vector>

namespace vornak::tool {

/// What keeps a restriction of pictures or sound, with remarks on what rules say otherwise or not
/// at all. Nothing keeps it if the union is empty.
Union limitsThatFit(const DlnaRestriction &restriction, Player &player);

/// The containers of a restriction. @param isMusic  where rules tell more apart
std::vector<Container> containersThatFit(const DlnaRestriction &restriction, bool isMusic,
                                         Player &player);

/// The file that sound of a codec makes up alone, without a container; 0: none.
int bareContainer(int codec);

} // namespace vornak::tool
