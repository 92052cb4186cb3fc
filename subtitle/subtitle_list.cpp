#include "subtitle/subtitle_list.h"

#include "base/ascii_case.h"
#include "base/fixed_text.h"

#include <algorithm>

namespace vornak {
namespace {

constexpr std::string_view kNoLanguage = "unkown"; // spelled so in every list

/// The text between the stem with its separator, one character, and the point before the
/// extension.
std::string_view languageTag(std::string_view name, std::size_t stemLength, std::size_t point)
{
    const std::size_t start = stemLength + 1;
    return point > start ? name.substr(start, point - start) : std::string_view();
}

} // namespace

void SubtitleList::addMatches(std::string_view name, std::size_t stemLength,
                              const VIDEO_SUBTITLE_ST *kinds)
{
    const std::size_t point = name.rfind('.');
    for (; kinds->type != VORNAK_SUBTITLE_END && !isFull(); ++kinds) {
        if (equalIgnoringCase(name.substr(stemLength), kinds->fullPath))
            add(*kinds, name, kNoLanguage);
        else if (point != std::string_view::npos &&
                 beginsIgnoringCase(name.substr(point), kinds->ext))
            add(*kinds, name, languageTag(name, stemLength, point));
    }
}

void SubtitleList::add(const VIDEO_SUBTITLE_ST &kind, std::string_view name,
                       std::string_view language)
{
    VIDEO_SUBTITLE_ST &record = records_[count_];
    before_[count_++] = record;
    record.type = kind.type;
    copyCut(record.fileName, sizeof record.fileName, name);
    copyCut(record.lang, sizeof record.lang, language);
    copyCut(record.ext, sizeof record.ext, kind.ext);
    FixedText fullPath(record.fullPath);
    fullPath.appendCut(folder_);
    fullPath.appendCut(name);
}

void SubtitleList::end()
{
    records_[count_].type = VORNAK_SUBTITLE_END;
    records_[count_].fullPath[0] = '\0';
}

void SubtitleList::undo()
{
    std::copy_n(before_, count_, records_);
    count_ = 0;
}

} // namespace vornak
