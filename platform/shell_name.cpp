#include "include/vornak_host.h"

#include <cstring>
#include <new>
#include <string>
#include <string_view>

namespace {

// Words of these alone are left as they are, so that they need no room for quotes.
constexpr std::string_view kPlainCharacters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                              "0123456789/._-+,:@%";

/// Whether a command might take it for an option, or mount for the LABEL= or UUID= of a device.
/// "./" prevents that, and changes nothing behind a folder that ends in "/".
bool isMoreThanAName(std::string_view name)
{
    return name.starts_with('-') ||
           name.substr(0, name.find('/')).find('=') != std::string_view::npos;
}

std::string quote(std::string_view name)
{
    const std::string start = isMoreThanAName(name) ? "./" : "";
    if (!name.empty() && name.find_first_not_of(kPlainCharacters) == std::string_view::npos)
        return start + std::string(name);
    std::string quoted = start + "'";
    for (const char c : name) {
        if (c == '\'')
            quoted += "'\\''";
        else
            quoted += c;
    }
    return quoted += '\'';
}

} // namespace

int Telmo_stringConvert2SystemCmdFilename(char *name)
try {
    const std::string_view given(name, strnlen(name, VORNAK_SHELL_NAME_SIZE));
    const std::string quoted = quote(given);
    if (quoted.size() >= VORNAK_SHELL_NAME_SIZE) return 1;
    std::memcpy(name, quoted.c_str(), quoted.size() + 1);
    return 0;
} catch (const std::bad_alloc &) {
    return 1;
}
