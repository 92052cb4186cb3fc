// A process with all that it has started.
#pragma once

#include <csignal>
#include <fstream>
#include <string>
#include <sys/types.h>

namespace vornak::test {

/// Sends a signal to a process and all that come from it, the youngest first: as who stops a
/// service does.
inline void sendToAll(pid_t process, int signal)
{
    const std::string id = std::to_string(process);
    std::ifstream children("/proc/" + id + "/task/" + id + "/children");
    for (pid_t child = 0; children >> child;) sendToAll(child, signal);
    kill(process, signal);
}

} // namespace vornak::test
