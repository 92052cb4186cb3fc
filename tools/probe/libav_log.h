// libavformat and libavcodec say why they fail in their log alone.
#pragma once

#include <string>

namespace vornak::tool {

/// Keeps the libraries from printing, in the whole process, and begins to listen for the first
/// error that they report on this thread.
void startListeningToLibav();

/// That error, or the empty text.
std::string firstLibavError();

} // namespace vornak::tool
