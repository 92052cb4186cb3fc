// Whether the file is XML that all read alike: its encoding, and what only some readers take.
#include "tools/check/checks.h"

#include "base/ascii_case.h"

#include <algorithm>
#include <fmt/format.h>
#include <string>
#include <string_view>

namespace vornak::tool {
namespace {

constexpr const char *kNoUtf8 = "no UTF-8, as which it is read";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

/// The bytes of the character of UTF-8 at the start of a text that isn't empty; 0: it is none.
std::size_t characterSize(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const std::size_t size = byte(0) < 0x80   ? 1
                             : byte(0) < 0xC2 ? 0
                             : byte(0) < 0xE0 ? 2
                             : byte(0) < 0xF0 ? 3
                             : byte(0) < 0xF5 ? 4
                                              : 0;
    if (size > text.size()) return 0;
    for (std::size_t i = 1; i < size; ++i)
        if ((byte(i) & 0xC0) != 0x80) return 0;
    return size;
}

/// Where a text stops being UTF-8; its end: nowhere.
std::size_t endOfUtf8(std::string_view text)
{
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t size = characterSize(text.substr(at));
        if (size == 0) return at;
        at += size;
    }
    return at;
}

bool isAscii(std::string_view text)
{
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// The encoding that the file says, in lower case; empty where it says none.
std::string declaredEncoding(pugi::xml_node device)
{
    std::string name;
    for (const pugi::xml_node node : device.root().children())
        if (node.type() == pugi::node_declaration) name = node.attribute("encoding").value();
    return lowerCase(name);
}

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names)
{
    return std::ranges::find(names, name) != names.end();
}

/// What the bytes are in place of what they are said to be; empty: they are that.
std::string otherEncoding(std::string_view bytes, const std::string &declared)
{
    const bool isLatin = isOneOf(declared, {"iso-8859-1", "latin1", "latin-1"});
    const bool isUtf8 = endOfUtf8(bytes) == bytes.size();
    const bool isWide = bytes.find('\0') != std::string_view::npos;
    const bool isSaidWide = declared.starts_with("utf-16") || declared.starts_with("utf-32");
    if (isWide) return declared.empty() || isSaidWide ? "" : "of wide characters";
    if (isSaidWide) return "of bytes";
    if (isAscii(bytes)) return {};
    const bool isSaidUtf8 = isOneOf(declared, {"", "utf-8", "utf8"});
    if (isUtf8) return isSaidUtf8 ? "" : "UTF-8";
    return isLatin ? "" : kNoUtf8;
}

void checkComment(pugi::xml_node comment, Report &report)
{
    const std::string_view words = comment.value();
    const std::size_t hyphens = words.find("--");
    if (hyphens == std::string_view::npos && !words.ends_with('-')) return;
    report.add(Fault::NotWellFormed, report.document().offsetOf(comment), {},
               "a comment holds \"--\" or ends with \"-\", for which other readers of XML refuse "
               "the file",
               "write one hyphen, and a blank before -->");
}

void checkDeclaration(pugi::xml_node declaration, Report &report)
{
    std::string_view text = report.document().text();
    const std::size_t mark = text.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0;
    text.remove_prefix(mark);
    if (text.starts_with("<?xml")) return;
    report.add(Fault::NotWellFormed, report.document().offsetOf(declaration), {},
               "something stands before <?xml, for which other readers of XML refuse the file",
               "begin the file with it");
    const std::size_t blanks = std::min(text.find_first_not_of(" \t\r\n"), text.size());
    if (text.substr(blanks).starts_with("<?xml")) report.mend({mark, blanks, {}});
}

class FormCheck : public pugi::xml_tree_walker {
public:
    explicit FormCheck(Report &report) : report_(report) {}

    bool for_each(pugi::xml_node &node) override
    {
        if (node.type() == pugi::node_comment) checkComment(node, report_);
        if (node.type() == pugi::node_declaration) checkDeclaration(node, report_);
        return true;
    }

private:
    Report &report_;
};

} // namespace

void checkEncoding(pugi::xml_node device, Report &report)
{
    const std::string_view bytes = report.document().bytes();
    if (bytes.starts_with(kUtf8Mark)) {
        report.add(Fault::ByteOrderMark, 0, {},
                   "the file begins with a byte-order mark, which not all readers pass over",
                   "save it as UTF-8 without a mark");
        report.mend({0, kUtf8Mark.size(), {}});
    }
    FormCheck forms(report);
    device.root().traverse(forms);
    const std::string declared = declaredEncoding(device);
    const std::string other = otherEncoding(bytes, declared);
    if (other.empty()) return;
    const std::size_t place = other == kNoUtf8 ? endOfUtf8(bytes) : 0;
    report.add(Fault::EncodingMismatch, place, {},
               fmt::format("the file is to be {}, but is {}",
                           declared.empty() ? "utf-8" : excerpt(declared), other),
               "save it as UTF-8, and declare that or nothing");
}

} // namespace vornak::tool
