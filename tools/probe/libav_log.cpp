#include "tools/probe/libav_log.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>

extern "C" {
#include <libavutil/log.h>
}

namespace vornak::tool {
namespace {

// The callback has no argument of its own, but it is called on the thread that is at work.
thread_local char t_firstError[200];

void keepFirstError(void *, int level, const char *format, va_list arguments)
{
    if (level > AV_LOG_ERROR || t_firstError[0] != '\0') return;
    std::vsnprintf(t_firstError, sizeof t_firstError, format, arguments);
}

} // namespace

void startListeningToLibav()
{
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_callback(keepFirstError); });
    t_firstError[0] = '\0';
}

std::string firstLibavError()
{
    std::string text = t_firstError;
    text.erase(text.find_last_not_of(" .\n") + 1);
    return text;
}

} // namespace vornak::tool
