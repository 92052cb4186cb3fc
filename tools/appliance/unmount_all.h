#pragma once

namespace vornak::tool {

/// Unmounts and removes all of the library's mount points under /tmp, and says which; returns
/// the exit status.
int unmountAll();

} // namespace vornak::tool
