// How the tool tells its caller what came of the work.
#pragma once

namespace vornak::tool {

enum ExitStatus {
    kDone = 0,       ///< everything was decided; a check found nothing
    kIncomplete = 1, ///< some file could not be worked on, the others were; a check found faults
    kUnusable = 2,   ///< bad usage, or a profile that can't be loaded
    kNothingToDo = 3 ///< there was nothing to make, so nothing was made
};

} // namespace vornak::tool
