#include "tools/import/import_file.h"

#include "tools/import/jellyfin_profile.h"
#include "tools/import/text_file.h"

#include <string_view>

namespace vornak::tool {

Player readForeignProfile(const ImportOptions &options)
{
    const std::string text = readTextFile(options.file);
    Player player = readJellyfinProfile(options.file, text);
    if (!options.name.empty()) player.name = options.name;
    return player;
}

} // namespace vornak::tool
