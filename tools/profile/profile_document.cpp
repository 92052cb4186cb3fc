#include "tools/profile/profile_document.h"

#include "include/vornak_host.h"
#include "tools/profile/profile_file.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fmt/format.h>
#include <iconv.h>
#include <memory>
#include <utility>

namespace vornak::tool {
namespace {

// As the loader's reader parses: white space in attribute values stays as it is written. But text
// beside the outermost element, comments and the like are kept, to be found.
constexpr unsigned kParseFlags = pugi::parse_escapes | pugi::parse_eol | pugi::parse_fragment |
                                 pugi::parse_cdata | pugi::parse_comments | pugi::parse_declaration;

constexpr struct {
    pugi::xml_encoding encoding;
    const char *name;
    std::size_t unit; ///< bytes of one unit
} s_Encodings[] = {
    {pugi::encoding_latin1, "ISO-8859-1", 1}, {pugi::encoding_utf16_le, "UTF-16LE", 2},
    {pugi::encoding_utf16_be, "UTF-16BE", 2}, {pugi::encoding_utf32_le, "UTF-32LE", 4},
    {pugi::encoding_utf32_be, "UTF-32BE", 4},
};

struct CloseConverter {
    void operator()(iconv_t converter) const noexcept { iconv_close(converter); }
};

/// The text in UTF-8, without what is no character. The parser's own conversion would keep the text
/// to which its offsets refer to itself.
std::string toUtf8(const std::string &text, pugi::xml_encoding encoding)
{
    const auto *const row = std::ranges::find(
        s_Encodings, encoding, [](const auto &candidate) { return candidate.encoding; });
    if (row == std::end(s_Encodings)) return text;
    iconv_t opened = iconv_open("UTF-8", row->name);
    if (reinterpret_cast<std::intptr_t>(opened) == -1) return text;
    const std::unique_ptr<void, CloseConverter> converter(opened);

    std::string out;
    char block[65536];
    char *from = const_cast<char *>(text.data()); // which iconv() only reads
    for (std::size_t left = text.size(); left > 0;) {
        char *to = block;
        std::size_t room = sizeof block;
        const bool stops = iconv(converter.get(), &from, &left, &to, &room) == std::size_t(-1);
        out.append(block, sizeof block - room);
        if (!stops || errno == E2BIG) continue;
        const std::size_t skipped = std::min(left, row->unit);
        from += skipped;
        left -= skipped;
    }
    return out;
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool isNamed(pugi::xml_node element)
{
    return *element.attribute("NAME").value() != '\0';
}

/// The accepted codec elements of one name: known by their NAME, and with a child of the kind
/// that they need.
std::vector<pugi::xml_node> codecRules(pugi::xml_node parent, const char *name, const char *needed)
{
    std::vector<pugi::xml_node> rules;
    for (const pugi::xml_node element : parent.children(name)) {
        int id = 0;
        if (!isNamed(element) || CodecNameToID(element.attribute("NAME").value(), &id) != 0)
            continue;
        if (element.child(needed)) rules.push_back(element);
    }
    return rules;
}

} // namespace

ProfileDocument::ProfileDocument(const std::string &path)
{
    const std::string title = profileTitle(path);
    text_ = readRegularFile(profilePath(path), title); // no pipe: it is read more than once
    parse(title);
    device_ = findDevice(title);
}

void ProfileDocument::parse(const std::string &title)
{
    pugi::xml_parse_result result = document_.load_buffer(text_.data(), text_.size(), kParseFlags);
    if (result.encoding != pugi::encoding_utf8 && result.status != pugi::status_out_of_memory) {
        bytes_ = std::exchange(text_, toUtf8(text_, result.encoding));
        result =
            document_.load_buffer(text_.data(), text_.size(), kParseFlags, pugi::encoding_utf8);
    }
    findLines();
    if (!result)
        throw ProfileError(
            title, lineAt(static_cast<std::size_t>(result.offset)),
            fmt::format("not well-formed XML: {}{}", result.description(),
                        explain(result.status, static_cast<std::size_t>(result.offset))));
    if (!document_.document_element())
        throw ProfileError(title, 0, "it holds no XML element; a profile is a DEVICE element");
}

std::string ProfileDocument::explain(pugi::xml_parse_status status, std::size_t offset) const
{
    if (status == pugi::status_bad_attribute)
        return ": write NAME=\"value\", with straight quotes before and behind the value";
    if (status != pugi::status_end_element_mismatch) return {};
    const pugi::xml_node open = openElement(offset);
    return open ? fmt::format(": {} of line {} is still open", printable(open.name()), lineOf(open))
                : "";
}

pugi::xml_node ProfileDocument::openElement(std::size_t offset) const
{
    // It stops in the name of an end tag, or before the last characters of the file.
    const bool isInTag = text_.find_first_not_of("> \t\r\n", offset) != std::string::npos;
    const std::size_t end = isInTag ? text_.rfind("</", offset) : text_.size();
    const auto lastElement = [](pugi::xml_node parent) {
        pugi::xml_node child = parent.last_child();
        while (child && child.type() != pugi::node_element) child = child.previous_sibling();
        return child;
    };
    pugi::xml_node node = document_;
    while (const pugi::xml_node child = lastElement(node)) node = child;
    if (node == document_) return {};
    const auto attributes = writtenAttributes(node);
    const std::size_t last =
        attributes.empty() ? offsetOf(node) : attributes.back().value + attributes.back().size;
    std::size_t at = text_.find('>', last);
    if (at < end && text_[at - 1] == '/') node = node.parent();
    for (; node && node != document_; node = node.parent()) {
        at = text_.find(fmt::format("</{}", node.name()), at);
        if (at >= end) return node;
        ++at;
    }
    return {};
}

void ProfileDocument::findLines()
{
    lineStarts_.assign(1, 0);
    for (std::size_t end = text_.find('\n'); end != std::string::npos;
         end = text_.find('\n', end + 1))
        lineStarts_.push_back(end + 1);
}

pugi::xml_node ProfileDocument::findDevice(const std::string &title) const
{
    const pugi::xml_node device = document_.child("DEVICE");
    const pugi::xml_node first = document_.document_element();
    if (!device)
        throw ProfileError(title, lineOf(first),
                           fmt::format("the outermost element is {}; a profile is a DEVICE element",
                                       printable(first.name())));
    if (!isNamed(device)) throw ProfileError(title, lineOf(device), "DEVICE needs a NAME");
    return device;
}

int ProfileDocument::lineAt(std::size_t offset) const
{
    const auto after = std::ranges::upper_bound(lineStarts_, offset);
    return static_cast<int>(after - lineStarts_.begin());
}

int ProfileDocument::lineOf(pugi::xml_node element) const
{
    return lineAt(offsetOf(element));
}

std::size_t ProfileDocument::offsetOf(pugi::xml_node node) const
{
    const auto offset = static_cast<std::size_t>(node.offset_debug());
    return node.type() == pugi::node_element ? offset - 1 : offset;
}

std::vector<ProfileDocument::WrittenAttribute>
ProfileDocument::writtenAttributes(pugi::xml_node element) const
{
    std::vector<WrittenAttribute> attributes;
    std::size_t at = offsetOf(element) + 1 + std::strlen(element.name());
    for ([[maybe_unused]] const pugi::xml_attribute attribute : element.attributes()) {
        while (isBlank(text_[at])) ++at;
        const std::size_t name = at, open = text_.find_first_of("\"'", at);
        at = text_.find(text_[open], open + 1) + 1;
        attributes.push_back({name, open + 1, at - open - 2});
    }
    return attributes;
}

std::string ProfileDocument::writtenTag(pugi::xml_node element) const
{
    const std::size_t start = offsetOf(element);
    const std::vector<WrittenAttribute> attributes = writtenAttributes(element);
    const std::size_t last =
        attributes.empty() ? start : attributes.back().value + attributes.back().size;
    const std::size_t end = text_.find('>', last);
    std::string tag;
    for (const char c : std::string_view(text_).substr(start, end + 1 - start))
        if (!isBlank(c))
            tag += c;
        else if (!tag.ends_with(' '))
            tag += ' ';
    return tag;
}

std::vector<ProfileDocument::WrittenTag> ProfileDocument::writtenTags() const
{
    struct Walker : pugi::xml_tree_walker {
        bool for_each(pugi::xml_node &node) override
        {
            if (node.type() == pugi::node_element) elements.push_back(node);
            return true;
        }
        std::vector<pugi::xml_node> elements;
    } walker;
    pugi::xml_node device = device_;
    device.traverse(walker);
    std::vector<WrittenTag> tags;
    for (const pugi::xml_node element : walker.elements)
        tags.push_back({lineOf(element), writtenTag(element)});
    return tags;
}

std::vector<pugi::xml_node> videoRules(pugi::xml_node video)
{
    return codecRules(video, "VCODEC", "ACODEC");
}

std::vector<pugi::xml_node> audioRules(pugi::xml_node musicOrVcodec)
{
    return codecRules(musicOrVcodec, "ACODEC", "FORMAT");
}

std::vector<pugi::xml_node> containerEntries(pugi::xml_node acodec)
{
    std::vector<pugi::xml_node> entries;
    for (const pugi::xml_node element : acodec.children("FORMAT")) {
        const pugi::xml_attribute subtype = element.attribute("SUBTYPE");
        int id = 0;
        if (isNamed(element) &&
            ContainerFormatNameToID(element.attribute("NAME").value(),
                                    subtype ? subtype.value() : nullptr, &id) == 0)
            entries.push_back(element);
    }
    return entries;
}

} // namespace vornak::tool
