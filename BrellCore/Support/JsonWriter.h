// Writes JSON text straight from records; the caller gives the keys in sorted order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace brell {

// A value that JSON can't carry. what() names what it is, without a final stop.
class JsonWriteError final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~JsonWriteError() override;
};

class JsonWriter {
public:
    enum class Layout {
        pretty,   // one member per line, two blanks a level, "key" : value
        compact,  // no white space
    };

    // depth is the number of levels around what is written, for the indentation.
    explicit JsonWriter(Layout layout, int depth = 0) : layout_(layout), depth_(depth) {}

    void reserve(std::size_t bytes) { text_.reserve(bytes); }

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }
    void key(std::string_view name);

    void string(std::string_view text);  // JsonWriteError when it is not UTF-8
    void boolean(bool value);
    void integer(std::int64_t value);
    void real(double value);          // JsonWriteError when it is not finite; exact to the bit
    void raw(std::string_view json);  // a value that is JSON already

    const std::string& text() const noexcept { return text_; }
    std::string take() { return std::move(text_); }

private:
    void open(char bracket);
    void close(char bracket);
    void beforeValue();
    void newLine();
    void quoted(std::string_view text);

    Layout layout_;
    int depth_;
    bool empty_ = true;  // nothing yet inside the innermost brackets
    bool afterKey_ = false;
    std::string text_;
};

}  // namespace brell
