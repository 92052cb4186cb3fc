#include "tools/import/dlna_document.h"

#include "tools/profile/id_names.h"
#include "tools/profile/regular_file.h"
#include "tools/terminal/printable.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fmt/format.h>
#include <iterator>
#include <utility>

namespace vornak::tool {
namespace {

constexpr std::size_t kMostFiles = 200;
constexpr std::size_t kMostAncestors = 60; // of a restriction, and of a profile

bool isBelow(const std::filesystem::path &path, const std::filesystem::path &folder)
{
    const auto [end, rest] = std::ranges::mismatch(folder, path);
    (void)rest;
    return end == folder.end();
}

/// A path without links and dots, as far as it exists.
std::filesystem::path realPlace(const std::filesystem::path &path)
{
    std::error_code error;
    return std::filesystem::weakly_canonical(std::filesystem::absolute(path, error), error);
}

DlnaField readField(pugi::xml_node element, const XmlFile &file, std::size_t ancestor)
{
    DlnaField field{element.attribute("name").value(),
                    {},
                    {},
                    shownFileName(file.path()),
                    file.lineOf(element),
                    ancestor};
    for (const pugi::xml_node value : element.children("value"))
        field.values.emplace_back(value.text().get());
    if (const pugi::xml_node range = element.child("range"))
        field.range = {range.attribute("min").value(), range.attribute("max").value()};
    return field;
}

/// A profile's own container stands in place of one that it inherits.
void add(DlnaRestriction restriction, DlnaProfile &profile)
{
    if (restriction.type == "container")
        profile.container = std::move(restriction);
    else
        profile.streams.push_back(std::move(restriction));
}

} // namespace

XmlFile::XmlFile(std::string path, std::string text)
    : path_(std::move(path)), text_(std::move(text))
{
    if (text_.find('\0') != std::string::npos)
        throw ProfileError(path_, 0, "it is no text in UTF-8");
    for (std::size_t i = 0; i < text_.size(); ++i)
        if (text_[i] == '\n') lineEnds_.push_back(i);
    const pugi::xml_parse_result result =
        document_.load_buffer(text_.data(), text_.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result)
        throw ProfileError(path_, lineAt(result.offset),
                           fmt::format("not well-formed XML: {}", result.description()));
    if (!root()) throw ProfileError(path_, 0, "it holds no XML element");
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

std::optional<double> dlnaNumber(const std::string &text)
{
    double above = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, above);
    if (error != std::errc()) return std::nullopt;
    if (stop == end) return above;
    double below = 0;
    const auto [last, second] = std::from_chars(stop + 1, end, below);
    if (*stop != '/' || second != std::errc() || last != end || below <= 0) return std::nullopt;
    return above / below;
}

bool DlnaField::admits(const std::string &value) const
{
    if (!range) return std::ranges::find(values, value) != values.end();
    const auto number = dlnaNumber(value);
    const auto least = dlnaNumber(range->first);
    const auto most = dlnaNumber(range->second);
    return number && least && most && *least <= *number && *number <= *most;
}

DlnaDocument::DlnaDocument(const std::string &path, bool relaxed, Player &player)
    : relaxed_(relaxed), player_(player)
{
    std::vector<std::string> open;
    std::error_code error;
    const bool isFolder = std::filesystem::is_directory(path, error);
    std::filesystem::path given = path;
    if (!isFolder) given = given.parent_path();
    folder_ = realPlace(given.empty() ? "." : given).string();
    if (!isFolder) {
        load(path, open);
        return;
    }
    std::vector<std::string> paths;
    for (const auto &entry : std::filesystem::directory_iterator(path, error))
        if (entry.path().extension() == ".xml") paths.push_back(entry.path().string());
    if (paths.empty()) throw ProfileError(path, 0, "the folder holds no XML files");
    std::ranges::sort(paths);
    for (const std::string &each : paths) load(each, open);
}

void DlnaDocument::load(const std::string &path, std::vector<std::string> &open)
{
    const std::filesystem::path plain = std::filesystem::path(path).lexically_normal();
    const auto isThis = [&](const auto &file) { return file->path() == plain; };
    if (std::ranges::any_of(files_, isThis)) return;
    if (files_.size() == kMostFiles)
        throw ProfileError(path, 0, "more files than profiles are described in");
    files_.push_back(std::make_unique<XmlFile>(plain.string(), readForeignFile(path)));
    const XmlFile &file = *files_.back();
    if (std::string_view(file.root().name()) != "dlna-profiles")
        throw ProfileError(
            path, file.lineOf(file.root()),
            fmt::format("the outermost element is {}; it is dlna-profiles in gupnp-dlna's files, "
                        "and Jellyfin's profiles are read in JSON",
                        printable(std::string_view(file.root().name()).substr(0, 60))));
    open.push_back(plain.string());
    for (const pugi::xml_node include : file.root().children("include"))
        loadIncluded(file, include, open);
    open.pop_back();
    index(file);
}

void DlnaDocument::loadIncluded(const XmlFile &file, pugi::xml_node include,
                                std::vector<std::string> &open)
{
    const std::string ref = include.attribute("ref").value();
    const std::filesystem::path path =
        (std::filesystem::path(file.path()).parent_path() / ref).lexically_normal();
    const auto refuse = [&](std::string_view why) {
        throw ProfileError(file.path(), file.lineOf(include),
                           fmt::format("include of {}: {}", printable(ref.substr(0, 200)), why));
    };
    std::error_code error;
    const std::filesystem::path target = realPlace(path);
    if (ref.empty() || !isBelow(target, folder_)) refuse("it lies outside the folder");
    if (std::ranges::find(open, path.string()) != open.end())
        refuse("files include each other in a circle");
    if (!std::filesystem::is_regular_file(target, error)) refuse("there is no such file");
    load(path.string(), open);
}

void DlnaDocument::index(const XmlFile &file)
{
    for (const pugi::xml_node group : file.root().children("restrictions"))
        for (const pugi::xml_node each : group.children("restriction"))
            restrictions_.try_emplace(each.attribute("id").value(), Place{each, &file});
    for (const pugi::xml_node each : file.root().children("dlna-profile")) {
        profiles_.push_back({each, &file});
        for (const char *const key : {"id", "name"})
            if (const char *id = each.attribute(key).value(); *id != '\0')
                profilesById_.try_emplace(id, Place{each, &file});
    }
}

Note DlnaDocument::noteAt(Place place, const std::string &what) const
{
    return {player_.remarks, shownFileName(place.file->path()), place.file->lineOf(place.element),
            what};
}

bool DlnaDocument::isUsed(pugi::xml_node element) const
{
    const std::string_view used = element.attribute("used").value();
    return used != (relaxed_ ? "in-strict" : "in-relaxed");
}

/// The fields of a restriction and of those that it inherits from, each once; false, with a remark,
/// where that can't be followed, so that nothing keeps the restriction.
bool DlnaDocument::addFields(Place place, std::vector<std::string> &from,
                             std::vector<DlnaField> &fields) const
{
    const std::size_t ancestor = from.size();
    for (const pugi::xml_node child : place.element.children()) {
        const std::string_view kind = child.name();
        if (!isUsed(child)) continue;
        if (kind == "field") fields.push_back(readField(child, *place.file, ancestor));
        if (kind != "parent") continue;
        const std::string name = child.attribute("name").value();
        if (std::ranges::find(from, name) != from.end()) continue;
        from.push_back(name);
        const auto parent = restrictions_.find(name);
        if (parent == restrictions_.end() || from.size() > kMostAncestors) {
            noteAt({child, place.file}, "parent " + printable(name))
                .stricter("{}, so nothing fits", parent == restrictions_.end()
                                                     ? "there is no such restriction"
                                                     : "one of too many parents");
            return false;
        }
        if (!addFields(parent->second, from, fields)) return false;
    }
    return true;
}

std::optional<DlnaRestriction> DlnaDocument::restrictionAt(Place place) const
{
    DlnaRestriction restriction{place.element.attribute("type").value(),
                                {},
                                shownFileName(place.file->path()),
                                place.file->lineOf(place.element)};
    std::vector<std::string> from;
    if (!addFields(place, from, restriction.fields)) return std::nullopt;
    return restriction;
}

bool DlnaDocument::inheritFrom(const std::string &name, Place place, std::vector<std::string> &from,
                               DlnaProfile &profile) const
{
    if (const auto found = restrictions_.find(name); found != restrictions_.end()) {
        auto restriction = restrictionAt(found->second);
        if (!restriction) return false;
        add(*std::move(restriction), profile);
        return true;
    }
    if (std::ranges::find(from, name) != from.end()) return true;
    from.push_back(name);
    const auto found = profilesById_.find(name);
    if (found != profilesById_.end() && from.size() <= kMostAncestors)
        return inherit(found->second, from, profile);
    noteAt(place, printable(name))
        .stricter("{}, so nothing fits", found == profilesById_.end()
                                             ? "there is nothing of that name to inherit from"
                                             : "one of too many parents");
    return false;
}

/// Adds the restrictions of a profile, those that it inherits before its own.
bool DlnaDocument::inherit(Place place, std::vector<std::string> &from, DlnaProfile &profile) const
{
    const std::string base = place.element.attribute("base-profile").value();
    if (!base.empty() && !inheritFrom(base, place, from, profile)) return false;
    for (const pugi::xml_node child : place.element.children()) {
        const std::string_view kind = child.name();
        const Place here{child, place.file};
        if (!isUsed(child)) continue;
        if (kind == "parent" && !inheritFrom(child.attribute("name").value(), here, from, profile))
            return false;
        if (kind == "restriction")
            if (auto restriction = restrictionAt(here)) add(*std::move(restriction), profile);
    }
    return true;
}

std::vector<DlnaProfile> DlnaDocument::profilesNamed(const std::string &name) const
{
    std::vector<DlnaProfile> found;
    for (const Place place : profiles_) {
        if (name != place.element.attribute("name").value()) continue;
        DlnaProfile profile{
            name, place.element.attribute("mime").value(), {},
            {},   shownFileName(place.file->path()),       place.file->lineOf(place.element)};
        std::vector<std::string> from = {place.element.attribute("id").value()};
        if (inherit(place, from, profile)) found.push_back(std::move(profile));
    }
    return found;
}

std::vector<std::string> DlnaDocument::names() const
{
    std::vector<std::string> names;
    for (const Place place : profiles_) {
        const std::string name = place.element.attribute("name").value();
        if (!name.empty() && std::ranges::find(names, name) == names.end()) names.push_back(name);
    }
    return names;
}

} // namespace vornak::tool
