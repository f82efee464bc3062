#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "talcpath.h"

namespace VariantImpl {

/// The content of a variant. The operations stand in the order of their slots.
class VariantContentBase {
 public:
  virtual ~VariantContentBase() = default;
  virtual const std::type_info& Type() const = 0;
  virtual std::unique_ptr<VariantContentBase> Clone() const = 0;
};

template <typename T>
class Holder final : public VariantContentBase {
 public:
  explicit Holder(T held) : value(std::move(held)) {}
  const std::type_info& Type() const override { return typeid(T); }
  std::unique_ptr<VariantContentBase> Clone() const override { return std::make_unique<Holder>(value); }

  T value;
};

}  // namespace VariantImpl

namespace TalcPathPrivate {

using Bytes = std::vector<std::uint8_t>;
/// Used by the hardware capabilities.
using TextList = std::vector<std::string>;
using Range = std::pair<std::int32_t, std::int32_t>;

/// A value of one of the kinds that the protocol and the capabilities know, or nothing. Kinds are exact: what was put
/// in as one type comes out as that type and no other.
///
///     Variant value(std::uint8_t{1});
///     variant_cast<std::uint8_t>(value);    // 1
///     variant_cast<std::uint16_t>(value);   // throws TalcPath::bad_variant_cast
class Variant {
 public:
  Variant() = default;
  explicit Variant(std::int8_t value) { Hold(value); }
  explicit Variant(std::uint8_t value) { Hold(value); }
  explicit Variant(std::int16_t value) { Hold(value); }
  explicit Variant(std::uint16_t value) { Hold(value); }
  explicit Variant(std::int32_t value) { Hold(value); }
  explicit Variant(std::uint32_t value) { Hold(value); }
  explicit Variant(std::int64_t value) { Hold(value); }
  explicit Variant(std::uint64_t value) { Hold(value); }
  explicit Variant(Bytes value) { Hold(std::move(value)); }
  /// A symbol's name.
  explicit Variant(std::string value) { Hold(std::move(value)); }
  explicit Variant(TextList value) { Hold(std::move(value)); }
  explicit Variant(Range value) { Hold(std::move(value)); }

  Variant(const Variant& other) : content_(other.content_ ? other.content_->Clone() : nullptr), type_(other.type_) {}
  Variant(Variant&& other) noexcept { Swap(other); }
  Variant& operator=(const Variant& other) {
    Variant copy(other);
    Swap(copy);
    return *this;
  }
  Variant& operator=(Variant&& other) noexcept {
    Swap(other);
    return *this;
  }
  ~Variant() = default;

  void Swap(Variant& other) noexcept {
    content_.swap(other.content_);
    std::swap(type_, other.type_);
  }
  /// The stored value's type; void when empty.
  const std::type_info& Type() const { return *type_; }

  /// The stored value if it is exactly a T, else null.
  template <typename T>
  const T* As() const {
    // Every variant is made in this library, so one type has one identity.
    if (type_ != &typeid(T)) return nullptr;
    return &static_cast<const VariantImpl::Holder<T>*>(content_.get())->value;
  }
  template <typename T>
  T* As() {
    return const_cast<T*>(std::as_const(*this).template As<T>());
  }

 private:
  template <typename T>
  void Hold(T value) {
    content_ = std::make_unique<VariantImpl::Holder<T>>(std::move(value));
    type_ = &content_->Type();
  }

  std::unique_ptr<VariantImpl::VariantContentBase> content_;
  /// What the content says of itself; asked for at every access.
  const std::type_info* type_ = &typeid(void);
};

template <typename T>
T* variant_cast(Variant* variant) {
  return variant == nullptr ? nullptr : variant->As<T>();
}

template <typename T>
const T* variant_cast(const Variant* variant) {
  return variant == nullptr ? nullptr : variant->As<T>();
}

/// A copy of the value. Throws `bad_variant_cast` unless it is exactly a T.
template <typename T>
T variant_cast(const Variant& variant) {
  const T* const value = variant.As<T>();
  if (value == nullptr) throw TalcPath::bad_variant_cast();
  return *value;
}

}  // namespace TalcPathPrivate
