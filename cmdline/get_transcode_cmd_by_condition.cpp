#include "cmdline/option_formatters.h"
#include "include/vornak.h"

#include <bit>
#include <cstring>

namespace vornak {
namespace {

constexpr std::uint64_t kFormattedMarks = markOf(kFormattedSlots) - 1;

std::string_view valueOf(const TRANSCODE_CONSTRAINT_ST &set, int slot)
{
    return {set.value[slot], strnlen(set.value[slot], sizeof set.value[slot])};
}

int renderMarkedSlots(const TRANSCODE_CONSTRAINT_ST &set, FixedText &cmd)
{
    char buffer[VORNAK_CMD_SIZE];
    for (std::uint64_t marks = set.mask & kFormattedMarks; marks != 0; marks &= marks - 1) {
        const int slot = std::countr_zero(marks);
        FixedText fragment(buffer);
        const int result = formatSlot(slot, set.mode, valueOf(set, slot), fragment);
        if (result != VORNAK_CMD_OK) return result;
        if (!cmd.append(fragment.view())) return VORNAK_CMD_BAD_OUTPUT;
    }
    return VORNAK_CMD_OK;
}

} // namespace
} // namespace vornak

int getTranscodeCmdByCondition(const TRANSCODE_CONSTRAINT_ST *set, TRANSCODE_CMD_ST *result)
{
    if (!result) return VORNAK_CMD_BAD_OUTPUT;
    std::memset(result->cmd, 0, sizeof result->cmd);
    if (!set) return VORNAK_CMD_BAD_INPUT;
    vornak::FixedText cmd(result->cmd);
    return vornak::renderMarkedSlots(*set, cmd);
}
