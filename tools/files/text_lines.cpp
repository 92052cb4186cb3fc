#include "tools/files/text_lines.h"

#include "tools/terminal/printable.h"

#include <cerrno>
#include <fmt/format.h>
#include <iostream>
#include <stdexcept>
#include <system_error>

namespace vornak::tool {
namespace {

constexpr std::streamsize kLongest = 16'000'000; // bytes: a film with thousands of tracks

} // namespace

TextLines::TextLines(const std::string &path)
    : title_(path == "-" ? "standard input" : printable(path)),
      buffer_(std::make_unique_for_overwrite<char[]>(kLongest))
{
    if (path != "-") file_.open(path, std::ios::binary);
    if (!file_) throw std::system_error(errno, std::generic_category(), title_);
}

std::istream &TextLines::stream()
{
    return file_.is_open() ? file_ : std::cin;
}

bool TextLines::next(std::string &line)
{
    std::istream &in = stream();
    if (!in) return false; // also of another thread, while one says what is wrong
    in.getline(buffer_.get(), kLongest);
    if (in.bad()) refuse(number_ + 1, "can't be read");
    if (in.fail() && !in.eof()) refuse(number_ + 1, "longer than any line that vornak writes");
    if (in.fail()) return false;
    ++number_;
    isCut_ = in.eof();
    line.assign(buffer_.get(), static_cast<std::size_t>(in.gcount() - (isCut_ ? 0 : 1)));
    return true;
}

void TextLines::refuse(std::size_t line, std::string_view why) const
{
    throw std::runtime_error(fmt::format("{}:{}: {}", title_, line, why));
}

} // namespace vornak::tool
