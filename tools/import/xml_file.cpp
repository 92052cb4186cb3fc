#include "tools/import/xml_file.h"

#include "tools/import/text_file.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace vornak::tool {

XmlFile::XmlFile(std::string path, std::string text)
    : path_(std::move(path)), text_(std::move(text))
{
    if (text_.find('\0') != std::string::npos)
        throw ImportError(path_, 0, "it is no text in UTF-8");
    for (std::size_t i = 0; i < text_.size(); ++i)
        if (text_[i] == '\n') lineEnds_.push_back(i);
    const pugi::xml_parse_result result =
        document_.load_buffer(text_.data(), text_.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result)
        throw ImportError(path_, lineAt(result.offset),
                          fmt::format("not well-formed XML: {}", result.description()));
    if (!root()) throw ImportError(path_, 0, "it holds no XML element");
}

int XmlFile::lineOf(pugi::xml_node element) const
{
    return lineAt(element.offset_debug());
}

int XmlFile::lineAt(std::ptrdiff_t offset) const
{
    const auto end = std::ranges::lower_bound(lineEnds_, static_cast<std::size_t>(offset));
    return 1 + static_cast<int>(end - lineEnds_.begin());
}

} // namespace vornak::tool
