// The steps around reading a JSON text with simdjson on demand.
#pragma once

#include <simdjson.h>

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace brell {

// Starts on a text that readFile brought with simdjson's padding behind it. Raises simdjson_error for text
// that is not UTF-8 or not JSON in its outlines; what lies deeper is checked as it is read.
inline simdjson::ondemand::document startReading(simdjson::ondemand::parser& parser,
                                                 const std::string& padded) {
    return parser.iterate(simdjson::padded_string_view(padded.data(), padded.size(), padded.capacity()));
}

// Reads a value that nobody wants, whatever the size of its numbers: what is passed over unread may be no
// JSON at all. Deeper than this many levels it is passed over all the same. Raises simdjson_error and
// std::runtime_error.
void checkWellFormed(simdjson::ondemand::value value, int levels = 64);

// The integer under "format" of a whole JSON object; nothing when it has none, or two. Anything else in the
// object does not matter, be it more than anybody here can read: so that a newer file counts as newer and not
// as broken.
std::optional<std::int64_t> formatOf(const std::string& padded);

struct KnownKey {
    std::string_view name;
    bool isRequired = true;
};

// The keys that an object may have, each at most once, ticked off as they are met; at most 32. They are
// found soonest in the order in which they stand here.
template <class Key, std::size_t count>
class KnownKeys {
public:
    explicit constexpr KnownKeys(const std::array<Key, count>& keys) : keys_(keys) {}

    // The one that the field has; nullptr for any other.
    const Key* met(simdjson::ondemand::field& field) {
        // As it is written, which takes no copy; only then by what escapes in it stand for.
        if (const Key* key = find(field.key())) return key;
        // By way of a result: of a field itself newer libraries want another argument.
        using Result = simdjson::simdjson_result<simdjson::ondemand::field>;
        return find(Result(simdjson::ondemand::field(field)).unescaped_key().value());
    }
    void checkAllMet() const {
        for (std::size_t i = 0; i < count; ++i)
            if (keys_[i].isRequired && (met_ & 1u << i) == 0)
                throw std::runtime_error("the key \"" + std::string(keys_[i].name) + "\" is missing");
    }

private:
    template <class Text>
    const Key* find(const Text& text) {
        for (std::size_t looks = 0; looks < count; ++looks) {
            const std::size_t place = next_;
            next_ = place + 1 < count ? place + 1 : 0;
            if (!(text == keys_[place].name)) continue;
            if ((met_ & 1u << place) != 0)
                throw std::runtime_error("the key \"" + std::string(keys_[place].name) + "\" stands twice");
            met_ |= 1u << place;
            return &keys_[place];
        }
        return nullptr;
    }

    const std::array<Key, count>& keys_;
    std::size_t next_ = 0;
    unsigned met_ = 0;
};

// A key whose value goes into a record.
template <class Record>
struct Member : KnownKey {
    void (*read)(simdjson::ondemand::value& value, std::string_view key, Record& record);
};

// Reads an object into a fresh record. Keys may come in any order; unknown ones are passed over. Raises what
// the members' readers do, and std::runtime_error for a key that is missing or stands twice.
template <class Record, std::size_t count>
void readMembers(simdjson::ondemand::object object, const std::array<Member<Record>, count>& members,
                 Record& record) {
    KnownKeys known(members);
    for (auto each : object) {
        simdjson::ondemand::field&& field = std::move(each);  // raises what is wrong; a copy would be dear
        if (const auto* member = known.met(field))
            member->read(field.value(), member->name, record);
        else
            checkWellFormed(field.value());
    }
    known.checkAllMet();
}

// True when nothing but white space follows the value that was read to its end.
inline bool isAtEnd(simdjson::ondemand::document& document) {
    return document.current_location().error() == simdjson::OUT_OF_BOUNDS;
}

}  // namespace brell
