// A field that few of many records have.
#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <utility>

namespace brell {

// As std::optional and used like it, but as small as a pointer: the value has a place of its own where there
// is one. Copied and compared as a whole.
template <class T>
class Rare {
public:
    Rare() = default;
    Rare(std::nullopt_t) {}
    Rare(T value) : value_(std::make_unique<T>(std::move(value))) {}
    template <std::convertible_to<T> Value>
    Rare(const Value& value) : Rare(T(value)) {}
    Rare(std::optional<T> value) : value_(value ? std::make_unique<T>(*std::move(value)) : nullptr) {}
    Rare(const Rare& other) : value_(other ? std::make_unique<T>(*other) : nullptr) {}
    Rare(Rare&&) noexcept = default;
    Rare& operator=(Rare other) noexcept {
        value_.swap(other.value_);
        return *this;
    }
    ~Rare() = default;

    T& emplace() { return *(value_ = std::make_unique<T>()); }

    bool has_value() const { return value_ != nullptr; }
    explicit operator bool() const { return has_value(); }
    const T& operator*() const { return *value_; }
    T& operator*() { return *value_; }
    const T* operator->() const { return value_.get(); }
    T* operator->() { return value_.get(); }
    const T& value() const { return has_value() ? *value_ : throw std::bad_optional_access(); }
    T value_or(T other) const { return has_value() ? *value_ : other; }

    bool operator==(const Rare& other) const {
        return has_value() == other.has_value() && (!has_value() || *value_ == *other);
    }

private:
    std::unique_ptr<T> value_;
};

}  // namespace brell
