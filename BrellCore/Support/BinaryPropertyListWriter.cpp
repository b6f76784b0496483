// Writes the binary form: each object behind those it refers to, then the table of their offsets and the
// trailer.
#include <algorithm>
#include <bit>

#include "BrellCore/Support/PropertyListParts.h"

namespace brell {

namespace {

using plist::Kind;
using plist::refuse;

constexpr std::size_t wide = 8;  // bytes of a count, a reference and an offset: enough for any

std::string bigEndian(std::uint64_t number, std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = size; i-- > 0; number >>= 8) bytes[i] = static_cast<char>(number & 0xFF);
    return bytes;
}

// The first byte of an object.
std::string marker(Kind kind, unsigned low) {
    return std::string(1, static_cast<char>(static_cast<unsigned>(kind) << 4 | low));
}

// The same with a count, which stands behind it when it does not fit.
std::string counted(Kind kind, std::size_t count) {
    if (count < 0xF) return marker(kind, static_cast<unsigned>(count));
    return marker(kind, 0xF) + marker(Kind::integer, 3) + bigEndian(count, wide);
}

std::string utf16(std::string_view text) {
    std::string units;
    for (std::string_view rest = text; !rest.empty();) {
        const std::int32_t codePoint = nextCodePoint(rest);
        if (codePoint < 0) refuse("the text \"{}\" is not UTF-8", excerpt(text));
        const auto number = static_cast<std::uint32_t>(codePoint);
        if (number >= 0x10000) units += bigEndian(0xD800 + ((number - 0x10000) >> 10), 2);
        units += bigEndian(number < 0x10000 ? number : 0xDC00 + (number & 0x3FF), 2);
    }
    return units;
}

// Visited with what a PlistValue holds; each adds an object, and those in it, and gives its number.
class BinaryWriter {
public:
    std::size_t add(const PlistValue& value) {
        plist::checkLevel(++level_);
        budget_.take(1);
        const std::size_t number = std::visit(*this, value.payload);
        --level_;
        return number;
    }
    std::string file(std::size_t top) const;

    std::size_t operator()(bool value) { return object(marker(Kind::simple, value ? 9 : 8)); }
    std::size_t operator()(std::int64_t number) {
        return object(marker(Kind::integer, 3) + bigEndian(static_cast<std::uint64_t>(number), 8));
    }
    std::size_t operator()(double number) { return object(real(Kind::real, number)); }
    std::size_t operator()(const PlistDate& date) { return object(real(Kind::date, date.seconds)); }
    std::size_t operator()(const PlistUid& uid) {
        return object(marker(Kind::uid, 7) + bigEndian(uid.number, 8));
    }
    std::size_t operator()(const PlistData& data) {
        return object(counted(Kind::data, data.bytes.size()) + data.bytes);
    }
    std::size_t operator()(const std::string& text);
    std::size_t operator()(const PlistArray& array);
    std::size_t operator()(const PlistDictionary& dictionary);
    std::size_t operator()(const PlistBigInteger& number) {
        refuse("the integer {} does not fit into 64 bits", excerpt(number.text));
    }

private:
    static std::string real(Kind kind, double number) {
        return marker(kind, 3) + bigEndian(std::bit_cast<std::uint64_t>(number), 8);
    }
    std::size_t object(std::string bytes) {
        objects_.push_back(std::move(bytes));
        return objects_.size() - 1;
    }

    std::vector<std::string> objects_;
    int level_ = 0;
    plist::ValueBudget budget_;
};

std::size_t BinaryWriter::operator()(const std::string& text) {
    if (isAscii(text)) return object(counted(Kind::ascii, text.size()) + text);
    const std::string units = utf16(text);
    return object(counted(Kind::utf16, units.size() / 2) + units);
}

std::size_t BinaryWriter::operator()(const PlistArray& array) {
    std::string bytes = counted(Kind::array, array.size());
    for (const PlistValue& value : array) bytes += bigEndian(add(value), wide);
    return object(std::move(bytes));
}

std::size_t BinaryWriter::operator()(const PlistDictionary& dictionary) {
    std::string keys, values;
    for (const auto* entry : plist::sortedUniqueKeys(dictionary)) {
        keys += bigEndian((*this)(entry->key), wide);
        values += bigEndian(add(entry->value), wide);
    }
    return object(counted(Kind::dictionary, dictionary.entries.size()) + keys + values);
}

std::string BinaryWriter::file(std::size_t top) const {
    std::string bytes = "bplist00", table;
    for (const std::string& object : objects_) {
        table += bigEndian(bytes.size(), wide);
        bytes += object;
    }
    const std::size_t tableBegin = bytes.size();
    bytes += table + std::string(6, '\0') + bigEndian(wide, 1) + bigEndian(wide, 1);
    return bytes + bigEndian(objects_.size(), 8) + bigEndian(top, 8) + bigEndian(tableBegin, 8);
}

}  // namespace

std::string writeBinaryPropertyList(const PlistValue& value) {
    BinaryWriter writer;
    const std::size_t top = writer.add(value);
    return writer.file(top);
}

}  // namespace brell
