// Commands for the C library's command interpreter.
#pragma once

#include "base/fixed_text.h"
#include "include/vornak_host.h"

#include <cstdlib>

namespace vornak {

/// A name that a caller gave, made safe for a command line by the host.
class ShellName {
public:
    /// Takes a name as it is; false when it is too long.
    [[nodiscard]] bool set(const char *name) { return FixedText(text_).append(name); }

    /// Converts it into what a shell reads back as the name; false when the host can't.
    [[nodiscard]] bool convert() { return Telmo_stringConvert2SystemCmdFilename(text_) == 0; }

    const char *text() const { return text_; }

private:
    char text_[VORNAK_SHELL_NAME_SIZE];
};

constexpr std::size_t kCommandSize = 2048;

/// Runs the command that the pieces make, with its output thrown away, and returns what system()
/// returns. One that doesn't fit its buffer is not run and gives 1.
template <class... Pieces>
int runSilently(Pieces... pieces)
{
    char buffer[kCommandSize];
    FixedText command(buffer);
    if (!command.append(pieces..., " >/dev/null 2>/dev/null")) return 1;
    return std::system(buffer);
}

} // namespace vornak
