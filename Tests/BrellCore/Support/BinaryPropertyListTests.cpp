// The binary form of property lists, put together byte by byte: good files, and files made to do harm.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <string>
#include <vector>

#include "BrellCore/Support/PropertyList.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using namespace std::string_literals;
using namespace testing;

std::string bigEndian(std::uint64_t number, std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = size; i-- > 0; number >>= 8) bytes[i] = static_cast<char>(number & 0xFF);
    return bytes;
}

// A binary file of these objects, each given as its own bytes.
struct BinaryFile {
    std::vector<std::string> objects;
    std::uint64_t top = 0;
    std::size_t offsetSize = 2;
    std::size_t referenceSize = 1;

    std::string bytes() const {
        std::string file = "bplist00";
        std::vector<std::uint64_t> begins;
        for (const std::string& object : objects) {
            begins.push_back(file.size());
            file += object;
        }
        const std::size_t tableBegin = file.size();
        for (const std::uint64_t begin : begins) file += bigEndian(begin, offsetSize);
        file += std::string(6, '\0') + bigEndian(offsetSize, 1) + bigEndian(referenceSize, 1);
        return file + bigEndian(begins.size(), 8) + bigEndian(top, 8) + bigEndian(tableBegin, 8);
    }
};

PlistValue readObject(const std::string& object) {
    return readPropertyList(BinaryFile{{object}}.bytes());
}

std::string reasonFor(const BinaryFile& file) {
    return messageOf([&] { readPropertyList(file.bytes()); });
}

// With a count that does not fit into the first byte.
std::string longCount(char kind, std::uint64_t count) {
    return kind + ("\x13"s + bigEndian(count, 8));
}

std::string realBytes(double number) {
    return bigEndian(std::bit_cast<std::uint64_t>(number), 8);
}

}  // namespace

TEST(BinaryPropertyListTest, EveryObjectMeansItsKind) {
    struct Sample {
        std::string object;
        PlistValue meant;
    };
    const std::string long300(300, 'x');
    const Sample samples[] = {
        {"\x08", {false}},
        {"\x09", {true}},
        {"\x10\xFF", {std::int64_t{255}}},
        {"\x11\xFF\xFE", {std::int64_t{65534}}},
        {"\x12\x80\0\0\0"s, {std::int64_t{2147483648}}},
        {"\x13" + bigEndian(~std::uint64_t{0}, 8), {std::int64_t{-1}}},
        {"\x14" + bigEndian(0, 8) + bigEndian(7, 8), {std::int64_t{7}}},
        {"\x14" + std::string(16, '\xFF'), {std::int64_t{-1}}},
        {"\x14" + bigEndian(0, 8) + std::string(8, '\xFF'),
         {PlistBigInteger{"0x0000000000000000FFFFFFFFFFFFFFFF"}}},
        {"\x14" + std::string(8, '\xFF') + bigEndian(0, 8),
         {PlistBigInteger{"-0x00000000000000010000000000000000"}}},
        {"\x22\x3E\x80\0\0"s, {0.25}},
        {"\x23" + realBytes(1e-300), {1e-300}},
        {"\x33" + realBytes(-0.5), {PlistDate{-0.5}}},
        {"\x40", {PlistData{}}},
        {"\x42\0\xFF"s, {PlistData{"\0\xFF"s}}},
        {"\x50", {""s}},
        {"\x52"s + "a\0"s, {"a\0"s}},
        {longCount('\x5F', 300) + long300, {long300}},
        {"\x5F\x10\x02zz", {"zz"s}},
        {"\x63\0\xE4\xD8\x3D\xDE\0"s, {"\xC3\xA4\xF0\x9F\x98\x80"s}},
        {"\x81\x01\0"s, {PlistUid{256}}},
        {"\x87" + bigEndian(~std::uint64_t{0}, 8), {PlistUid{~std::uint64_t{0}}}},
        {"\xA0", {PlistArray{}}},
        {"\xD0", {PlistDictionary{}}},
    };
    for (const Sample& sample : samples)
        EXPECT_EQ(readObject(sample.object), sample.meant) << ::testing::PrintToString(sample.object);
}

TEST(BinaryPropertyListTest, SharedObjectsAndEveryWidthOfReferencesAreRead) {
    const PlistValue expected{PlistDictionary{{{"b", {PlistArray{{true}, {true}}}}, {"a", {true}}}}};
    for (std::size_t width = 1; width <= 8; ++width) {
        const auto references = [&](std::initializer_list<std::uint64_t> numbers) {
            std::string bytes;
            for (const std::uint64_t number : numbers) bytes += bigEndian(number, width);
            return bytes;
        };
        const BinaryFile file{
            {"\x09", "Qa", "Qb", "\xD2" + references({1, 2, 0, 4}), "\xA2" + references({0, 0})},
            3,
            width,
            width};
        EXPECT_EQ(readPropertyList(file.bytes()), expected) << width;
    }
}

TEST(BinaryPropertyListTest, AFewBytesCannotBecomeALargeValue) {
    std::vector<std::string> doubling;  // each array holds the next one twice
    for (char next = 1; next < 100; ++next) doubling.push_back("\xA2"s + next + next);
    doubling.push_back("\x09");
    EXPECT_NE(reasonFor({doubling}).find("more than a million values"), std::string::npos);

    std::vector<std::string> chain;  // arrays and dictionaries in turn, the last with a key for all
    for (char next = 1; next < 127; ++next) chain.push_back(next % 2 ? "\xA1"s + next : "\xD1\x7F"s + next);
    chain.push_back("\xA1\x7F");
    chain.push_back("Qk");
    chain.push_back("\xA1\0"s);
    EXPECT_TRUE(readPropertyList(BinaryFile{chain}.bytes()).as<PlistArray>());  // 128 levels
    EXPECT_NE(reasonFor({chain, 128}).find("more than 128 levels"), std::string::npos);

    const std::size_t times = 2'000;
    const std::string copies = longCount('\xAF', times) + std::string(times, '\x01');
    const auto sharing = [&](std::size_t size) {
        return BinaryFile{{copies, longCount('\x5F', size) + std::string(size, 'x')}};
    };
    EXPECT_EQ(readPropertyList(sharing(60).bytes()).as<PlistArray>()->size(), times);
    EXPECT_NE(reasonFor(sharing(2'000)).find("beyond all measure"), std::string::npos);
}

TEST(BinaryPropertyListTest, WrittenValuesReadBackExactly) {
    PlistArray values{{true}, {false},  {INT64_MIN},       {INT64_MAX},
                      {-0.0}, {5e-324}, {PlistDate{-0.5}}, {PlistUid{~std::uint64_t{0}}}};
    for (const std::size_t size : {0u, 14u, 15u, 70'000u}) {
        values.push_back({std::string(size, 'x')});
        values.push_back({PlistData{std::string(size, '\xFF')}});
        values.push_back({PlistArray(size, {true})});
    }
    for (const char* text : {"\uFEFFa", "\u0080\uFFFF", "\U00010000a\U0010FFFF"})
        values.push_back({std::string(text)});
    values.push_back({PlistDictionary{{{"b", {PlistDictionary{}}}, {"\u00E9", {"a\0"s}}}}});
    const PlistValue value{std::move(values)};

    const std::string bytes = writeBinaryPropertyList(value);
    EXPECT_EQ(readPropertyList(bytes), value);
    EXPECT_EQ(writeBinaryPropertyList(readPropertyList(bytes)), bytes);  // -0.0 equals 0.0

    for (const PlistValue& refused :
         {PlistValue{"\xED\xA0\x80"s}, PlistValue{PlistBigInteger{"9223372036854775808"}},
          PlistValue{PlistDictionary{{{"a", {true}}, {"a", {true}}}}},
          PlistValue{PlistArray(1'000'000, {true})}})
        EXPECT_TRUE(thrownBy<PlistError>([&] { writeBinaryPropertyList(refused); }));
}

}  // namespace brell
