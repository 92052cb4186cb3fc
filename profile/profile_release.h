// The owner of a loaded profile.
#pragma once

#include "include/vornak.h"

#include <memory>

namespace vornak {

/// Frees a profile and all that it holds; also one that is not filled to the end.
struct ReleaseProfile {
    void operator()(TRANSCODE_DEVICE_PROFILE_ST *profile) const noexcept;
};

using ProfileOwner = std::unique_ptr<TRANSCODE_DEVICE_PROFILE_ST, ReleaseProfile>;

} // namespace vornak
