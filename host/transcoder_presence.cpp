// Whether the add-on's transcoders are there: isHWFfmpegExist() and isVATranscodeExist().
#include "host/addon_registry.h"
#include "include/vornak.h"

#include "base/fixed_text.h"

#include <string_view>
#include <sys/stat.h>

namespace vornak {
namespace {

bool exists(const char *path)
{
    struct stat status {};
    return stat(path, &status) == 0;
}

/// A path too long for its buffer names nothing: cut, it could name the other agent.
bool hasProgram(std::string_view directory, std::string_view program)
{
    char path[kPathSize];
    return FixedText(path).append(directory, "/", program) && exists(path);
}

} // namespace
} // namespace vornak

int isHWFfmpegExist()
{
    return vornak::exists("/tmp/.Harvel.alive") ? 1 : 0;
}

int isVATranscodeExist()
{
    using namespace vornak;
    char line[kRegistryLineSize];
    if (!queryAddonRegistry("Harvel", "ENABLE", line) || std::string_view(line) != "TRUE") return 0;
    if (!queryAddonRegistry("Harvel", "Install_Path", line)) return 0;
    if (hasProgram(line, "gst-transcode-agent2")) return 2;
    return hasProgram(line, "gst-transcode-agent") ? 1 : 0;
}
