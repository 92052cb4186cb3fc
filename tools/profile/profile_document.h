// A profile file as it is written, with the lines that the loaded records know nothing of.
#pragma once

#include "tools/profile/regular_file.h"

#include <cstddef>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace vornak::tool {

class ProfileDocument {
public:
    /// Reads and parses the file; throws ProfileError for all that the loader refuses.
    explicit ProfileDocument(const std::string &path);

    /// The DEVICE element that the loader takes; it has a NAME.
    pugi::xml_node device() const { return device_; }

    /// The file as text: in UTF-8, whatever it is written in. All offsets count its bytes.
    const std::string &text() const { return text_; }

    /// The file as it is written.
    const std::string &bytes() const { return isConverted() ? bytes_ : text_; }

    bool isConverted() const { return !bytes_.empty(); }

    /// The line of an element's start tag, from 1.
    int lineOf(pugi::xml_node element) const;
    int lineAt(std::size_t offset) const;
    std::size_t startOfLine(int line) const { return lineStarts_[std::size_t(line) - 1]; }

    /// Where an element's start tag begins, or a text; of a comment, what it says.
    std::size_t offsetOf(pugi::xml_node node) const;

    /// An attribute as it is written, with references such as "&amp;" in its value.
    struct WrittenAttribute {
        std::size_t name, value; ///< offsets
        std::size_t size;        ///< of the value
    };

    /// The attributes of the element, in their order.
    std::vector<WrittenAttribute> writtenAttributes(pugi::xml_node element) const;

    struct WrittenTag {
        int line;
        std::string text; ///< in one line: blanks stand for line ends
    };

    /// The start tags of all elements in DEVICE, in their order.
    std::vector<WrittenTag> writtenTags() const;

private:
    std::string writtenTag(pugi::xml_node element) const;
    void parse(const std::string &title);
    void findLines();
    /// What to do about an error of the parser that says too little by itself; else empty.
    std::string explain(pugi::xml_parse_status status, std::size_t offset) const;
    /// The element that lacks its end tag where the parser stopped; null: it can't be told.
    pugi::xml_node openElement(std::size_t offset) const;
    pugi::xml_node findDevice(const std::string &title) const;

    std::string text_, bytes_; // of these the second where the first was made of it
    std::vector<std::size_t> lineStarts_;
    pugi::xml_document document_;
    pugi::xml_node device_;
};

/// The elements behind the records of a table, in the records' order: those that the loader
/// accepts, found in the element whose table it is.
std::vector<pugi::xml_node> videoRules(pugi::xml_node video);
std::vector<pugi::xml_node> audioRules(pugi::xml_node musicOrVcodec);
std::vector<pugi::xml_node> containerEntries(pugi::xml_node acodec);

} // namespace vornak::tool
