#include "tools/commands/whole_file.h"

#include "tools/files/output_place.h"
#include "tools/terminal/held_signals.h"
#include "tools/terminal/printable.h"
#include "tools/transcode/work_file.h"

#include <fmt/format.h>
#include <fstream>
#include <stdexcept>
#include <sys/stat.h>

namespace vornak::tool {

void writeWholeFile(const std::string &text, const OutputPlace &place, unsigned mode)
{
    const HeldSignals signals; // until nothing of the work is left
    const WorkFile work(place.folder());
    std::ofstream file(work.path(), std::ios::binary);
    file << text;
    file.close();
    if (!file)
        throw std::runtime_error(
            fmt::format("{}: can't be written whole", printable(place.path())));
    if (mode != 0) chmod(work.path().c_str(), mode);
    work.moveTo(place);
}

} // namespace vornak::tool
