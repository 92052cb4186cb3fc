// Lists of names in attribute values: "main | high".
#pragma once

#include <cstddef>
#include <string_view>

namespace vornak {

/// Takes the names of a list one by one. Blanks count nowhere, and empty names are passed over. A
/// list of more than kLongest characters is cut at its last whole name.
class NameList {
public:
    static constexpr std::size_t kLongest = 1023;

    explicit NameList(const char *list) : rest_(list) {}

    /// The next name, valid until the next call; null at the end.
    const char *next();

    /// The name taken last as it is written, with its blanks.
    std::string_view written() const { return written_; }

    /// At the end: whether the list was cut.
    bool isCut() const { return isCut_; }

private:
    bool takeName();

    const char *rest_;
    std::string_view written_;
    std::size_t seen_ = 0; // characters that are no blanks
    bool isCut_ = false;
    char name_[kLongest + 1];
};

/**
 * The bits of all names in `text`, ORed. A name that `lookup` does not know is reported on
 * standard error.
 * @param lookup  a function of the host's registry; 0 means that it knows the name
 * @param kind    what the report calls the name
 */
int parseNameList(const char *text, int (*lookup)(const char *name, int *bit), const char *kind);

} // namespace vornak
