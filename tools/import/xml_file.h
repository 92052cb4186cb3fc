// An XML file that others wrote, with the lines of its elements.
#pragma once

#include <cstddef>
#include <pugixml.hpp>
#include <string>
#include <vector>

namespace vornak::tool {

class XmlFile {
public:
    /// Parses the text; throws ImportError for what is not well-formed, or not in UTF-8.
    XmlFile(std::string path, std::string text);
    XmlFile(const XmlFile &) = delete;
    XmlFile &operator=(const XmlFile &) = delete;

    const std::string &path() const { return path_; }
    pugi::xml_node root() const { return document_.document_element(); }
    int lineOf(pugi::xml_node element) const;

private:
    int lineAt(std::ptrdiff_t offset) const;

    std::string path_, text_;
    std::vector<std::size_t> lineEnds_;
    pugi::xml_document document_;
};

} // namespace vornak::tool
