// How the registry finds a name: tables folded and sorted while compiling, one binary search.
#pragma once

#include "platform/registry_names.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace vornak {

/// A second name for what a table names already.
struct Alias {
    const char *alias;
    const char *name;
};

/// Names by their folded form. A name may stand in the table several times, with one id.
template <std::size_t Size>
class NameIndex {
public:
    template <std::size_t Names, std::size_t Aliases>
    consteval NameIndex(const std::array<RegistryName, Names> &names,
                        const std::array<Alias, Aliases> &aliases)
    {
        for (const RegistryName &row : names) add(row.name, row);
        for (const Alias &row : aliases) add(row.alias, rowOf(names, row.name));
        std::ranges::sort(entries_, {}, &Entry::folded);
        end_ = std::unique(entries_.begin(), entries_.end()) - entries_.begin();
        if (std::adjacent_find(entries_.begin(), entries_.begin() + end_,
                               [](const Entry &one, const Entry &other) {
                                   return one.folded == other.folded;
                               }) != entries_.begin() + end_)
            throw "two names fold to the same text";
    }

    /// The row of a name or an alias, or null.
    constexpr const RegistryName *find(const char *name) const
    {
        const std::optional<FoldedName> folded = foldName(name);
        if (!folded) return nullptr;
        const auto end = entries_.begin() + end_;
        const auto entry =
            std::ranges::lower_bound(entries_.begin(), end, *folded, {}, &Entry::folded);
        return entry != end && entry->folded == *folded ? &entry->row : nullptr;
    }

private:
    struct Entry {
        FoldedName folded;
        RegistryName row;

        constexpr bool operator==(const Entry &other) const
        {
            return folded == other.folded && row.id == other.row.id;
        }
    };

    consteval void add(const char *name, const RegistryName &row)
    {
        entries_[end_++] = {foldName(name).value(), row};
    }

    template <std::size_t Names>
    static consteval RegistryName rowOf(const std::array<RegistryName, Names> &names,
                                        std::string_view name)
    {
        for (const RegistryName &row : names)
            if (row.name == name) return row;
        throw "an alias of no name";
    }

    std::array<Entry, Size> entries_{};
    std::ptrdiff_t end_ = 0;
};

template <std::size_t Names, std::size_t Aliases>
NameIndex(const std::array<RegistryName, Names> &, const std::array<Alias, Aliases> &)
    -> NameIndex<Names + Aliases>;

/// What the functions from a name to an id do: 0 and the id written, or 1.
template <std::size_t Size>
int findId(const NameIndex<Size> &index, const char *name, int *id)
{
    if (!name || !id) return 1;
    const RegistryName *row = index.find(name);
    if (!row) return 1;
    *id = row->id;
    return 0;
}

} // namespace vornak
