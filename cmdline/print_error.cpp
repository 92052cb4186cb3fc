#include "include/vornak.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

constexpr const char *s_ErrorMessages[] = {
    "Processing success.",     // VORNAK_CMD_OK
    "The input is invalid.",   // VORNAK_CMD_BAD_INPUT
    "The output is invalid.",  // VORNAK_CMD_BAD_OUTPUT
    "Memory allocate failed.", // VORNAK_CMD_NO_MEMORY
};
static_assert(std::size(s_ErrorMessages) == VORNAK_CMD_NO_MEMORY + 1);

} // namespace

int printError(int code)
{
    if (code < VORNAK_CMD_OK || code > VORNAK_CMD_NO_MEMORY) return 0;
    const int printed =
        std::printf("ParseTranscodeParameter error causing by \"%s\"", s_ErrorMessages[code]);
    return std::max(printed, 0);
}
