// A host of the tests' own: its registry knows a few names, and it records how it is called.
#pragma once

#include <string>

namespace vornak::test {

// Codecs "h264" 28, "mpeg2" 2, "aac" 86018, "mp3" 86017 and "any" 0; profiles "main" 1, "high" 2
// and "tab<TAB>" 4; exceptions "interlaced" 1 and "10bit" 2; containers "mp4" 8, "ts" 9, the
// subtype "m4a" 0x10000. "unset" is a codec whose id stays unset, at "throws" the host throws,
// at "cancelled" its thread is cancelled.
// What is unknown gets a wrong id all the same.

/// The calls since the last time, each as "function(arguments) ".
std::string takeRegistryCalls();
/// The same for calls of XMLNode, "n:" for attributes asked with an index and "p:" with a pointer.
std::string takeNodeCalls();

} // namespace vornak::test
