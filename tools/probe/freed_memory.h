// Memory that is freed and wanted again a moment later.
#pragma once

namespace vornak::tool {

/// Makes the process keep the memory that it frees, up to a bound. Opening a file with its
/// decoders takes some megabytes and gives them back; for the kernel to hand out pages anew each
/// time costs more than all else about a short file. Once a process is enough.
void keepFreedMemory();

} // namespace vornak::tool
