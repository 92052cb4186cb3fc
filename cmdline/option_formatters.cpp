#include "cmdline/option_formatters.h"

#include "include/vornak.h"

#include "base/heap.h"

#include <cstring>
#include <iterator>

namespace vornak {
namespace {

/// Writes `value`, which is not empty, behind the text of the option.
using Formatter = int (*)(const char *option, std::string_view value, FixedText &fragment);

int formatOption(const char *option, std::string_view value, FixedText &fragment)
{
    fragment.appendCut(option);
    fragment.appendCut(value);
    return VORNAK_CMD_OK;
}

int formatNothing(const char *, std::string_view, FixedText &)
{
    return VORNAK_CMD_OK;
}

/// Splits a picture size at its "x" and hands both halves to `write`.
template <class Write>
int formatSize(std::string_view value, Write write)
{
    const HeapText size(strndup(value.data(), value.size()));
    if (!size) return VORNAK_CMD_NO_MEMORY;
    char *x = std::strchr(size.get(), 'x');
    if (!x) return VORNAK_CMD_BAD_INPUT;
    *x = '\0';
    write(size.get(), x + 1);
    return VORNAK_CMD_OK;
}

int formatScale(const char *option, std::string_view value, FixedText &fragment)
{
    return formatSize(value, [&](const char *width, const char *height) {
        for (const char *piece : {option, width, ":", height}) fragment.appendCut(piece);
    });
}

int formatHeight(const char *option, std::string_view value, FixedText &fragment)
{
    return formatSize(value, [&](const char *, const char *height) {
        for (const char *piece : {option, height, "p"}) fragment.appendCut(piece);
    });
}

struct Option {
    Formatter format;
    const char *text;
};

constexpr struct {
    Slot slot;
    Option first, second;
} s_OptionFormatters[] = {
    // slot                 any mode but 1                   mode 1
    {kSlotVideoProfile, {formatOption, " -vprofile "}, {formatOption, " -vp "}},
    {kSlotVideoLevel, {formatOption, " -level "}, {formatOption, " -vlevel "}},
    {kSlotMaxSize, {formatScale, " -vf scale="}, {formatHeight, " -s "}},
    {kSlotMinSize, {formatScale, " -vf scale="}, {formatHeight, " -s "}},
    {kSlotMaxVideoBitrate, {formatOption, " -b:v "}, {formatOption, " -vb "}},
    {kSlotMinVideoBitrate, {formatOption, " -b:v "}, {formatOption, " -vb "}},
    {kSlotAudioProfile, {formatOption, " -aprofile "}, {formatNothing, ""}},
    {kSlotAudioLevel, {formatOption, " -level "}, {formatNothing, ""}},
    {kSlotMaxChannels, {formatOption, " -ac "}, {formatOption, " -ac "}},
    {kSlotMinChannels, {formatOption, " -ac "}, {formatOption, " -ac "}},
    {kSlotMaxAudioBitrate, {formatOption, " -b:a "}, {formatOption, " -ab "}},
    {kSlotMinAudioBitrate, {formatOption, " -b:a "}, {formatOption, " -ab "}},
    {kSlotMaxSampleRate, {formatOption, " -ar "}, {formatOption, " -ar "}},
    {kSlotMinSampleRate, {formatOption, " -ar "}, {formatOption, " -ar "}},
};

constexpr bool rowsStandAtTheirSlots()
{
    for (int i = 0; i < kFormattedSlots; ++i)
        if (s_OptionFormatters[i].slot != i) return false;
    return std::size(s_OptionFormatters) == kFormattedSlots;
}
static_assert(rowsStandAtTheirSlots());

} // namespace

int formatSlot(int slot, int mode, std::string_view value, FixedText &fragment)
{
    if (value.empty()) return VORNAK_CMD_BAD_INPUT;
    const auto &row = s_OptionFormatters[slot];
    const Option &option = mode == kSecondDialect ? row.second : row.first;
    return option.format(option.text, value, fragment);
}

} // namespace vornak
