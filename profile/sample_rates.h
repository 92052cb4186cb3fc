// The sample rates that a limit can have.
#pragma once

namespace vornak {

/// The standard rate next to `rate`, the higher one from halfway on.
int snapSampleRate(int rate);

} // namespace vornak
