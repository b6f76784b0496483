// Reads the binary form: objects one after the other, a table of their offsets, and a trailer that says where
// the table stands. First every object is measured, so that none reaches beyond the file or into another;
// then the value is put together from the top object by following references.
#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>

#include "BrellCore/Support/PropertyListParts.h"

namespace brell::plist {

namespace {

constexpr std::size_t headerSize = 8, trailerSize = 32;

// Text and data that many references share are copied for each; more than this many times the file's size,
// and a little for the smallest ones, is an attack.
constexpr std::size_t copiesOfFile = 64, copiesAtLeast = 65'536;

// One object as measured; a position counts from the start of the file.
struct Object {
    std::size_t begin = 0;
    std::size_t contents = 0;  // behind the first byte and the count
    std::size_t end = 0;
    std::size_t count = 0;  // of bytes, characters or references
    Kind kind = Kind::simple;
    bool open = false;  // its value is being put together
};

bool isCounted(Kind kind) {
    return kind == Kind::data || kind == Kind::ascii || kind == Kind::utf16 || kind == Kind::array ||
           kind == Kind::dictionary;
}

// The count that the lower half of the first byte stands for, 15 for one that follows; nothing for what is
// not read: null, filling bytes, sets and impossible widths.
std::optional<std::size_t> shortCount(Kind kind, unsigned low) {
    const auto bytesIf = [](bool allowed, std::size_t bytes) {
        return allowed ? std::optional(bytes) : std::nullopt;
    };
    switch (kind) {
        case Kind::simple: return bytesIf(low == 8 || low == 9, 0);
        case Kind::integer: return bytesIf(low <= 4, std::size_t{1} << low);
        case Kind::real: return bytesIf(low == 2 || low == 3, std::size_t{1} << low);
        case Kind::date: return bytesIf(low == 3, 8);
        case Kind::uid: return bytesIf(low <= 7, low + 1);
        case Kind::data:
        case Kind::ascii:
        case Kind::utf16:
        case Kind::array:
        case Kind::dictionary: return low;
    }
    return std::nullopt;
}

struct Trailer {
    std::size_t offsetSize, referenceSize, objects, top, table;
};

// size is 1 to 8.
std::uint64_t bigEndian(std::string_view bytes, std::size_t at, std::size_t size) {
    std::uint64_t number = 0;
    for (const char byte : bytes.substr(at, size)) number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

Trailer trailerOf(std::string_view bytes) {
    if (bytes.size() < headerSize + trailerSize) refuse("the binary form is cut short");
    if (!bytes.starts_with("bplist00")) refuse("its binary form is of another version than 00");
    const std::size_t at = bytes.size() - trailerSize;
    const Trailer trailer{bigEndian(bytes, at + 6, 1), bigEndian(bytes, at + 7, 1),
                          bigEndian(bytes, at + 8, 8), bigEndian(bytes, at + 16, 8),
                          bigEndian(bytes, at + 24, 8)};
    const auto isWidth = [](std::size_t size) { return size >= 1 && size <= 8; };
    if (!isWidth(trailer.offsetSize) || !isWidth(trailer.referenceSize))
        refuse("its trailer names an impossible width of offsets or references");
    // The table fills exactly what is between the objects and the trailer, and every object has a byte.
    if (trailer.table < headerSize || trailer.table > at || trailer.objects > trailer.table - headerSize ||
        trailer.objects * trailer.offsetSize != at - trailer.table)
        refuse("its trailer does not fit its size");
    if (trailer.top >= trailer.objects) refuse("its trailer names a top object that it does not have");
    return trailer;
}

class BinaryReader {
public:
    explicit BinaryReader(std::string_view bytes);

    PlistValue top() {
        budget_.take(1);
        return value(trailer_.top, 1);
    }

private:
    Object measured(std::size_t begin) const;
    void readLongCount(Object& object) const;
    void checkOverlap() const;
    std::size_t unitOf(Kind kind) const;

    PlistValue value(std::size_t index, int level);
    PlistValue contentsOf(const Object& object, int level);
    PlistValue integer(const Object& object) const;
    PlistValue date(const Object& object) const;
    PlistValue array(const Object& object, int level);
    PlistValue dictionary(const Object& object, int level);
    double real(const Object& object) const;
    std::string key(std::size_t index);
    std::string ascii(const Object& object);
    std::string utf16(const Object& object);
    std::string_view copied(const Object& object);
    std::size_t reference(const Object& object, std::size_t index) const;

    std::string_view bytes_;
    Trailer trailer_;
    std::vector<Object> objects_;
    ValueBudget budget_;
    std::size_t mayCopy_;
};

BinaryReader::BinaryReader(std::string_view bytes)
    : bytes_(bytes), trailer_(trailerOf(bytes)), mayCopy_(copiesAtLeast + bytes.size() * copiesOfFile) {
    objects_.reserve(trailer_.objects);
    for (std::size_t i = 0; i < trailer_.objects; ++i) {
        const std::uint64_t offset =
            bigEndian(bytes_, trailer_.table + i * trailer_.offsetSize, trailer_.offsetSize);
        if (offset < headerSize || offset >= trailer_.table)
            refuse("the offset of object {} lies outside the objects", i);
        objects_.push_back(measured(offset));
    }
    checkOverlap();
}

Object BinaryReader::measured(std::size_t begin) const {
    const unsigned marker = static_cast<unsigned char>(bytes_[begin]);
    Object object{begin, begin + 1, 0, 0, static_cast<Kind>(marker >> 4)};
    if (const auto count = shortCount(object.kind, marker & 0xF))
        object.count = *count;
    else
        refuse("the object at byte {} is of no kind that a preference holds", begin);
    if (isCounted(object.kind) && object.count == 0xF) readLongCount(object);
    const std::size_t unit = unitOf(object.kind);
    if (object.contents > trailer_.table || object.count > (trailer_.table - object.contents) / unit)
        refuse("the object at byte {} reaches beyond the objects", begin);
    object.end = object.contents + object.count * unit;
    return object;
}

// A count above 14 stands in an integer behind the first byte. When that is the last byte of the objects,
// what is read belongs to the table or the trailer, and the object is found to reach too far.
void BinaryReader::readLongCount(Object& object) const {
    const unsigned marker = static_cast<unsigned char>(bytes_[object.contents]), low = marker & 0xF;
    if (static_cast<Kind>(marker >> 4) != Kind::integer || low > 3)
        refuse("the count of the object at byte {} is malformed", object.begin);
    const std::size_t width = std::size_t{1} << low;
    object.count = bigEndian(bytes_, object.contents + 1, width);
    object.contents += 1 + width;
}

std::size_t BinaryReader::unitOf(Kind kind) const {
    if (kind == Kind::utf16) return 2;
    if (kind == Kind::array) return trailer_.referenceSize;
    if (kind == Kind::dictionary) return 2 * trailer_.referenceSize;
    return 1;
}

void BinaryReader::checkOverlap() const {
    std::vector<std::pair<std::size_t, std::size_t>> ranges;
    ranges.reserve(objects_.size());
    for (const Object& object : objects_) ranges.emplace_back(object.begin, object.end);
    std::sort(ranges.begin(), ranges.end());
    for (std::size_t i = 1; i < ranges.size(); ++i)
        if (ranges[i].first < ranges[i - 1].second)
            refuse("the objects at bytes {} and {} lie over each other", ranges[i - 1].first,
                   ranges[i].first);
}

PlistValue BinaryReader::value(std::size_t index, int level) {
    checkLevel(level);
    Object& object = objects_[index];
    if (object.open) refuse("the object at byte {} contains itself", object.begin);
    object.open = true;
    PlistValue result = contentsOf(object, level);
    object.open = false;
    return result;
}

PlistValue BinaryReader::contentsOf(const Object& object, int level) {
    switch (object.kind) {
        case Kind::simple: return {bytes_[object.begin] == 9};
        case Kind::integer: return integer(object);
        case Kind::real: return {real(object)};
        case Kind::date: return date(object);
        case Kind::data: return {PlistData{std::string(copied(object))}};
        case Kind::ascii: return {ascii(object)};
        case Kind::utf16: return {utf16(object)};
        case Kind::uid: return {PlistUid{bigEndian(bytes_, object.contents, object.count)}};
        case Kind::array: return array(object, level);
        case Kind::dictionary: break;
    }
    return dictionary(object, level);
}

// Up to four bytes are unsigned, eight are signed, sixteen hold what fits into neither.
PlistValue BinaryReader::integer(const Object& object) const {
    if (object.count <= 8)
        return {static_cast<std::int64_t>(bigEndian(bytes_, object.contents, object.count))};
    std::uint64_t high = bigEndian(bytes_, object.contents, 8);
    std::uint64_t low = bigEndian(bytes_, object.contents + 8, 8);
    const bool negative = high >> 63 != 0;
    const auto number = static_cast<std::int64_t>(low);
    if (high == (number < 0 ? ~std::uint64_t{0} : 0)) return {number};
    if (negative) {
        low = 0 - low;
        high = ~high + (low == 0 ? 1 : 0);
    }
    return {PlistBigInteger{fmt::format("{}0x{:016X}{:016X}", negative ? "-" : "", high, low)}};
}

double BinaryReader::real(const Object& object) const {
    const std::uint64_t bits = bigEndian(bytes_, object.contents, object.count);
    if (object.count == 4) return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    return std::bit_cast<double>(bits);
}

PlistValue BinaryReader::date(const Object& object) const {
    const double seconds = real(object);
    if (!std::isfinite(seconds)) refuse("the date at byte {} is no moment", object.begin);
    return {PlistDate{seconds}};
}

PlistValue BinaryReader::array(const Object& object, int level) {
    budget_.take(object.count);  // before the memory for them is taken
    PlistArray result;
    result.reserve(object.count);
    for (std::size_t i = 0; i < object.count; ++i) result.push_back(value(reference(object, i), level + 1));
    return {std::move(result)};
}

PlistValue BinaryReader::dictionary(const Object& object, int level) {
    budget_.take(object.count);
    PlistDictionary result;
    result.entries.reserve(object.count);
    for (std::size_t i = 0; i < object.count; ++i) {
        std::string name = key(reference(object, i));
        result.entries.emplace_back(std::move(name), value(reference(object, object.count + i), level + 1));
    }
    sortedUniqueKeys(result);
    return {std::move(result)};
}

std::string BinaryReader::key(std::size_t index) {
    const Object& object = objects_[index];
    if (object.kind == Kind::ascii) return ascii(object);
    if (object.kind == Kind::utf16) return utf16(object);
    refuse("the object at byte {} is a key but no text", object.begin);
}

std::string BinaryReader::ascii(const Object& object) {
    const std::string_view text = copied(object);
    if (!isAscii(text)) refuse("the text at byte {} is not ASCII, as it says", object.begin);
    return std::string(text);
}

std::string BinaryReader::utf16(const Object& object) {
    const std::string_view units = copied(object);
    std::string text;
    text.reserve(object.count);
    for (std::size_t at = 0; at < units.size(); at += 2) {
        auto codePoint = static_cast<std::int32_t>(bigEndian(units, at, 2));
        if (codePoint >= 0xD800 && codePoint < 0xE000) {
            const std::uint64_t second = at + 4 <= units.size() ? bigEndian(units, at + 2, 2) : 0;
            if (codePoint >= 0xDC00 || second < 0xDC00 || second >= 0xE000)
                refuse("the text at byte {} has half a surrogate pair", object.begin);
            codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + static_cast<std::int32_t>(second - 0xDC00);
            at += 2;
        }
        appendUtf8(text, codePoint);
    }
    return text;
}

std::string_view BinaryReader::copied(const Object& object) {
    const std::size_t size = object.end - object.contents;
    if (size > mayCopy_) refuse("it repeats its text and data beyond all measure");
    mayCopy_ -= size;
    return bytes_.substr(object.contents, size);
}

std::size_t BinaryReader::reference(const Object& object, std::size_t index) const {
    const std::uint64_t number =
        bigEndian(bytes_, object.contents + index * trailer_.referenceSize, trailer_.referenceSize);
    if (number >= objects_.size())
        refuse("the object at byte {} refers to object {}, which does not exist", object.begin, number);
    return static_cast<std::size_t>(number);
}

}  // namespace

PlistValue readBinary(std::string_view bytes) {
    return BinaryReader(bytes).top();
}

}  // namespace brell::plist
