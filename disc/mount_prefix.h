#pragma once

namespace vornak {

/// What the paths of all mount points of the library's own naming begin with.
constexpr const char *kMountPrefix = "/tmp/Trans_mount_";

} // namespace vornak
