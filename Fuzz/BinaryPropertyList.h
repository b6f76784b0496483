// Writes the binary form, which the product only reads: what is written here must be read there.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "BrellCore/Support/PropertyList.h"

namespace brell::fuzz {

class BinaryWriter {
public:
    // The value holds no PlistBigInteger.
    static std::string written(const PlistValue& value) {
        BinaryWriter writer;
        const std::size_t top = writer.add(value);
        return writer.file(top);
    }

    // Each adds an object, and those in it, and gives its number.
    std::size_t operator()(bool value) { return add(std::string(1, value ? '\x09' : '\x08')); }
    std::size_t operator()(std::int64_t number) {
        return add("\x13" + bigEndian(static_cast<std::uint64_t>(number), 8));
    }
    std::size_t operator()(const PlistBigInteger&) { return 0; }
    std::size_t operator()(double number) { return add("\x23" + real(number)); }
    std::size_t operator()(const PlistDate& date) { return add("\x33" + real(date.seconds)); }
    std::size_t operator()(const PlistData& data) { return add(marker(0x4, data.bytes.size()) + data.bytes); }
    std::size_t operator()(const PlistUid& uid) { return add("\x87" + bigEndian(uid.number, 8)); }
    std::size_t operator()(const std::string& text) {
        const bool ascii = std::all_of(text.begin(), text.end(),
                                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
        if (ascii) return add(marker(0x5, text.size()) + text);
        const std::string wideText = units(text);
        return add(marker(0x6, wideText.size() / 2) + wideText);
    }
    std::size_t operator()(const PlistArray& array) {
        std::string object = marker(0xA, array.size());
        for (const PlistValue& element : array) object += bigEndian(add(element), wide);
        return add(std::move(object));
    }
    std::size_t operator()(const PlistDictionary& dictionary) {
        std::string keys, values;
        for (const PlistEntry& entry : dictionary.entries) {
            keys += bigEndian((*this)(entry.key), wide);
            values += bigEndian(add(entry.value), wide);
        }
        return add(marker(0xD, dictionary.entries.size()) + keys + values);
    }

private:
    static constexpr std::size_t wide = 4;  // bytes of a reference and of an offset

    static std::string bigEndian(std::uint64_t number, std::size_t size) {
        std::string bytes(size, '\0');
        for (std::size_t i = size; i-- > 0; number >>= 8) bytes[i] = static_cast<char>(number & 0xFF);
        return bytes;
    }
    static std::string real(double number) { return bigEndian(std::bit_cast<std::uint64_t>(number), 8); }

    // The object's first byte, and the count behind it when it does not fit.
    static std::string marker(unsigned kind, std::size_t count) {
        const std::string first(1, static_cast<char>(kind << 4 | std::min<std::size_t>(count, 15)));
        return count < 15 ? first : first + "\x12" + bigEndian(count, 4);
    }

    // The UTF-16 units of UTF-8 text that is valid.
    static std::string units(std::string_view text) {
        std::string all;
        for (std::size_t at = 0; at < text.size();) {
            const auto lead = static_cast<unsigned char>(text[at]);
            const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
            std::uint32_t codePoint = length == 1 ? lead : lead & (0x7Fu >> length);
            for (std::size_t i = 1; i < length; ++i)
                codePoint = codePoint << 6 | (static_cast<unsigned char>(text[at + i]) & 0x3Fu);
            at += length;
            if (codePoint >= 0x10000) all += bigEndian(0xD800 + ((codePoint - 0x10000) >> 10), 2);
            all += bigEndian(codePoint < 0x10000 ? codePoint : 0xDC00 + (codePoint & 0x3FF), 2);
        }
        return all;
    }

    std::size_t add(const PlistValue& value) { return std::visit(*this, value.payload); }
    std::size_t add(std::string object) {
        objects_.push_back(std::move(object));
        return objects_.size() - 1;
    }

    std::string file(std::size_t top) const {
        std::string bytes = "bplist00", table;
        for (const std::string& object : objects_) {
            table += bigEndian(bytes.size(), wide);
            bytes += object;
        }
        const std::size_t tableBegin = bytes.size();
        bytes += table + std::string(6, '\0') + bigEndian(wide, 1) + bigEndian(wide, 1);
        return bytes + bigEndian(objects_.size(), 8) + bigEndian(top, 8) + bigEndian(tableBegin, 8);
    }

    std::vector<std::string> objects_;
};

}  // namespace brell::fuzz
