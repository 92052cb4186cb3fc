// Containers with what is announced of files in them.
#pragma once

#include "tools/import/player.h"

namespace vornak::tool {

Container musicIn(int format, const Limits &sound);
Container videoIn(int format);

} // namespace vornak::tool
