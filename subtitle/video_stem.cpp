#include "subtitle/video_stem.h"

#include "base/ascii_case.h"

namespace vornak {

bool isOneOf(const char *const *extensions, std::string_view rest)
{
    for (; *extensions; ++extensions)
        if (equalIgnoringCase(rest, *extensions)) return true;
    return false;
}

} // namespace vornak
