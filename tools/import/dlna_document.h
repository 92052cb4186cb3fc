// gupnp-dlna's descriptions of DLNA profiles: files that include each other, in which restrictions
// and profiles inherit from others.
#pragma once

#include "tools/import/player.h"
#include "tools/profile/id_names.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <utility>
#include <vector>

namespace vornak::tool {

class XmlFile {
public:
    /// Parses the text; throws ProfileError for what is not well-formed, or not in UTF-8.
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

/// What a field may be: one of the values, or within the range.
struct DlnaField {
    std::string name;
    std::vector<std::string> values;
    std::optional<std::pair<std::string, std::string>> range;
    std::string file; ///< its name
    int line;
    std::size_t ancestor; ///< 0: the restriction's own; else of one that it inherits from

    bool admits(const std::string &value) const;
};

/// All fields must hold, those of one name, too.
struct DlnaRestriction {
    std::string type; ///< container, audio, video, image or text
    std::vector<DlnaField> fields;
    std::string file;
    int line;
};

struct DlnaProfile {
    std::string name, mime;
    std::optional<DlnaRestriction> container;
    std::vector<DlnaRestriction> streams; ///< each stream keeps one of its type
    std::string file;
    int line;
};

/// A number, or a fraction's value; nothing: the text is neither.
std::optional<double> dlnaNumber(const std::string &text);

class DlnaDocument {
public:
    /// @param path     of a file, or a folder of files. Throws ProfileError.
    /// @param relaxed  whether to read what holds in the relaxed mode, not in the strict one
    /// @param player   receives remarks
    DlnaDocument(const std::string &path, bool relaxed, Player &player);

    /// The profiles of a name, in the files' order.
    std::vector<DlnaProfile> profilesNamed(const std::string &name) const;

    /// All names of profiles, once each.
    std::vector<std::string> names() const;

private:
    /// An element and the file in which it stands.
    struct Place {
        pugi::xml_node element;
        const XmlFile *file;
    };

    void load(const std::string &path, std::vector<std::string> &open);
    void loadIncluded(const XmlFile &file, pugi::xml_node include, std::vector<std::string> &open);
    void index(const XmlFile &file);
    bool isUsed(pugi::xml_node element) const;
    bool addFields(Place place, std::vector<std::string> &from,
                   std::vector<DlnaField> &fields) const;
    std::optional<DlnaRestriction> restrictionAt(Place place) const;
    bool inherit(Place place, std::vector<std::string> &from, DlnaProfile &profile) const;
    bool inheritFrom(const std::string &name, Place place, std::vector<std::string> &from,
                     DlnaProfile &profile) const;
    Note noteAt(Place place, const std::string &what) const;

    std::string folder_;
    bool relaxed_;
    Player &player_;
    std::vector<std::unique_ptr<XmlFile>> files_;
    std::map<std::string, Place> restrictions_, profilesById_;
    std::vector<Place> profiles_;
};

} // namespace vornak::tool
