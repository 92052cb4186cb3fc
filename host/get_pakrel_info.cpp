#include "host/addon_registry.h"
#include "include/vornak.h"

#include "base/fixed_text.h"

#include <algorithm>
#include <string_view>

namespace vornak {
namespace {

// A locale must not widen what may reach the command interpreter, so no isalnum().
bool isNameCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-' || c == '.';
}

bool isPlainName(const char *name)
{
    if (!name || !*name) return false;
    const std::string_view text(name);
    return std::all_of(text.begin(), text.end(), isNameCharacter);
}

} // namespace
} // namespace vornak

int getPakrelInfo(const char *section, const char *key, char *value, int size)
{
    using namespace vornak;
    if (!isPlainName(section) || !isPlainName(key) || !value || size < 1) return 1;

    char line[kRegistryLineSize];
    if (!queryAddonRegistry(section, key, line)) return 1;
    copyCut(value, static_cast<std::size_t>(size), line);
    return 0;
}
