// What a player takes, in plain records: what the readers of other formats and `profile new` make,
// and what becomes a Device profile. What that doesn't say, or says otherwise, are its remarks.
#pragma once

#include <compare>
#include <fmt/format.h>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace vornak::tool {

/// The values of a property that are taken, both ends included; 0: no end.
struct Range {
    int least = 0;
    int most = 0;

    bool operator==(const Range &) const = default;
};

/// What is taken of a stream, a picture's or sound's: what keeps all of these.
struct Limits {
    int codec = 0;    ///< 0: any
    int profiles = 0; ///< bits; 0: any
    Range bitrate = {};

    // of pictures
    int level = 0; ///< the highest, as the stream codes it; 0: any
    Range width = {}, height = {};
    int refused = 0; ///< play exceptions none of which a picture may have

    // of sound
    Range channels = {}, sampleRate = {};

    bool operator==(const Limits &) const = default;
};

/// A container that is taken, with what is announced of files in it.
struct Container {
    int format = 0; ///< the registry's id, with its subtype; 0: any
    std::string mime, pn;
    bool timeStamped = false; ///< a transport stream with packets of 192 bytes

    bool operator==(const Container &) const = default;
};

/// A kind of file that is played: picture and sound keep their limits, in one of the containers. A
/// player plays a file that fits any of its ways.
struct Way {
    std::optional<Limits> picture; ///< none: music
    Limits sound;
    std::vector<Container> containers;
    std::vector<int> pictureOrigins, soundOrigins; ///< positions in Player::origins
};

/// What the player would like to be given. 0: any.
struct Wish {
    bool isVideo = false;
    int picture = 0, sound = 0, format = 0;
};

/// Something of a foreign profile that a Device profile says otherwise, or not at all.
struct Remark {
    enum Kind { LeftOut, Looser, Stricter };

    std::string file; ///< its name without a folder, printable
    int line;         ///< 0: it is about the file as a whole
    Kind kind;
    std::string text; ///< printable

    auto operator<=>(const Remark &) const = default; // NOLINT: its zero is taken for a null
};

struct Player {
    std::string name;
    std::vector<Way> ways;
    std::vector<Wish> wishes;         ///< the best first
    std::vector<std::string> origins; ///< where things were read; printable
    std::set<Remark> remarks;
};

/// The position of an origin, which is added if it is new.
int originOf(Player &player, const std::string &origin);

/// Takes note of what is said of a line otherwise, or not at all. Reasons are printable.
class Note {
public:
    /// @param what  before each reason; empty: nothing
    Note(std::set<Remark> &remarks, std::string file, int line, std::string what)
        : remarks_(&remarks), file_(std::move(file)), line_(line), what_(std::move(what))
    {}

    template <class... Args>
    void leftOut(fmt::format_string<Args...> reason, Args &&...args) const
    {
        add(Remark::LeftOut, fmt::format(reason, std::forward<Args>(args)...));
    }

    /// For what is said, but takes more.
    template <class... Args>
    void looser(fmt::format_string<Args...> reason, Args &&...args) const
    {
        add(Remark::Looser, fmt::format(reason, std::forward<Args>(args)...));
    }

    template <class... Args>
    void stricter(fmt::format_string<Args...> reason, Args &&...args) const
    {
        add(Remark::Stricter, fmt::format(reason, std::forward<Args>(args)...));
    }

private:
    void add(Remark::Kind kind, const std::string &reason) const
    {
        remarks_->insert({file_, line_, kind, what_.empty() ? reason : what_ + ": " + reason});
    }

    std::set<Remark> *remarks_;
    std::string file_;
    int line_;
    std::string what_;
};

/// What a foreign profile's file holds. Throws ProfileError.
std::string readForeignFile(const std::string &path);

/// The name of a file without its folder, printable.
std::string shownFileName(const std::string &path);

} // namespace vornak::tool
