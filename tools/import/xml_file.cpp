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
    const pugi::xml_parse_result result =
        document_.load_buffer(text_.data(), text_.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result)
        throw ImportError(path_, lineAt(text_, static_cast<std::size_t>(result.offset)),
                          fmt::format("not well-formed XML: {}", result.description()));
    for (std::size_t i = 0; i < text_.size(); ++i)
        if (text_[i] == '\n') lineEnds_.push_back(i);
    if (!root()) throw ImportError(path_, 0, "it holds no XML element");
}

int XmlFile::lineOf(pugi::xml_node element) const
{
    const auto offset = static_cast<std::size_t>(element.offset_debug());
    return 1 + static_cast<int>(std::ranges::lower_bound(lineEnds_, offset) - lineEnds_.begin());
}

} // namespace vornak::tool
