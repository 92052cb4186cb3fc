// What was found in a profile: the list of it, as it is made.
#pragma once

#include "tools/check/fault_kinds.h"
#include "tools/profile/profile_document.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vornak::tool {

/// Bytes of a profile's text to be replaced.
struct Edit {
    std::size_t offset, size;
    std::string text;
};

struct Finding {
    std::size_t offset = 0; ///< in the profile's text
    Fault fault{};
    std::string element;   ///< its name, printable; empty: the file as a whole
    std::string attribute; ///< its name, printable; empty: the element as a whole
    std::string problem;
    std::string advice;
    std::vector<Edit> edits = {}; ///< together the one mend that is safe, where there is such
    int line = 0, column = 0;     ///< from 1, in characters
};

class Report {
public:
    explicit Report(const ProfileDocument &document) : document_(document) {}

    void add(Fault fault, pugi::xml_node element, std::string problem, std::string advice);
    void add(Fault fault, std::size_t offset, pugi::xml_node element, std::string problem,
             std::string advice);
    /// @param attribute  of the element; a null one means the element as a whole
    void add(Fault fault, pugi::xml_node element, pugi::xml_attribute attribute,
             std::string problem, std::string advice);

    // The mend of what was added last.
    void mend(Edit edit) { findings_.back().edits = {std::move(edit)}; }
    /// The element gets another name, in its start tag and its end tag.
    void mendElementName(pugi::xml_node element, const std::string &name);
    /// The attribute gets another value, in which nothing has to be escaped.
    void mendValue(pugi::xml_node element, pugi::xml_attribute attribute, std::string_view value);
    /// The attribute gives way to others, name and all.
    void mendWhole(pugi::xml_node element, pugi::xml_attribute attribute, std::string text);
    /// The attribute is taken out, with the blanks before it.
    void mendByRemoval(pugi::xml_node element, pugi::xml_attribute attribute);

    const ProfileDocument &document() const { return document_; }

    /// An element's attribute as it is written.
    const ProfileDocument::WrittenAttribute &written(pugi::xml_node element,
                                                     pugi::xml_attribute attribute);
    std::string_view writtenValue(pugi::xml_node element, pugi::xml_attribute attribute);

    /// "did you mean NAME?", or `otherwise` when no known name is near. The search is slow, so
    /// only so many words of one profile get it.
    std::string suggest(std::string_view word, const std::vector<std::string> &known,
                        std::string otherwise);

    std::vector<Finding> &findings() { return findings_; }

    /// Drops what is found in a number only because its reading stopped within it.
    void dropConsequences();

    /// The findings in the order of their places, which they get with it; what is found in one
    /// place stays in the order of finding.
    std::vector<Finding> sorted() &&;

private:
    const ProfileDocument &document_;
    std::vector<Finding> findings_;
    pugi::xml_node lastElement_; // whose attributes are below
    std::unordered_map<std::size_t, ProfileDocument::WrittenAttribute> written_;
    int suggestions_ = 0;
};

/// Text of the profile, printable, and cut when it is long.
std::string excerpt(std::string_view text);

/// NAME="value", printable.
std::string shown(pugi::xml_attribute attribute);

} // namespace vornak::tool
