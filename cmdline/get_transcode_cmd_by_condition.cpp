#include "cmdline/limit_slots.h"
#include "include/vornak.h"

#include "base/fixed_text.h"
#include "base/heap.h"

#include <bit>
#include <cstring>

namespace vornak {
namespace {

constexpr int kSecondDialect = 1; // TRANSCODE_CONSTRAINT_ST::mode; any other is the first
constexpr std::uint64_t kFormattedMarks = markOf(kSlots) - 1;

std::string_view valueOf(const TRANSCODE_CONSTRAINT_ST &set, int slot)
{
    return {set.value[slot], strnlen(set.value[slot], sizeof set.value[slot])};
}

/// Appends a picture size, "1280x720", in the form that its option takes.
int appendSize(std::string_view value, Form form, FixedText &fragment)
{
    const HeapText size(strndup(value.data(), value.size()));
    if (!size) return VORNAK_CMD_NO_MEMORY;
    char *x = std::strchr(size.get(), 'x');
    if (!x) return VORNAK_CMD_BAD_INPUT;
    *x = '\0';
    const char *const width = size.get(), *const height = x + 1;
    if (form == Form::Scale)
        fragment.appendCut(width, ":", height);
    else
        fragment.appendCut(height, "p");
    return VORNAK_CMD_OK;
}

/// Writes the option of a slot, cut where the fragment ends.
int formatSlot(int slot, int mode, std::string_view value, FixedText &fragment)
{
    if (value.empty()) return VORNAK_CMD_BAD_INPUT;
    const auto &row = s_SlotOptions[slot];
    const Option &option = mode == kSecondDialect ? row.second : row.first;
    if (option.form == Form::Nothing) return VORNAK_CMD_OK;
    fragment.appendCut(option.text);
    if (option.form != Form::Value) return appendSize(value, option.form, fragment);
    fragment.appendCut(value);
    return VORNAK_CMD_OK;
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
