// The rules of a profile's sections, with all that lies in them.
#pragma once

#include "base/rule_tables.h"
#include "include/vornak_host.h"

namespace vornak {

// Both build the table of `parent`'s elements, VCODEC or ACODEC. They throw when out of memory;
// what was built by then is in `table`. False: there is no such element, and `table` stays as
// it is.
bool readVideoRules(const XMLNode &parent, VideoRule *&table);
bool readAudioRules(const XMLNode &parent, AudioRule *&table);

} // namespace vornak
