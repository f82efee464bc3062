#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "dictionary/Variant.h"

namespace {

using TalcPath::bad_variant_cast;
using TalcPathPrivate::Bytes;
using TalcPathPrivate::Range;
using TalcPathPrivate::TextList;
using TalcPathPrivate::Variant;
using TalcPathPrivate::variant_cast;
using VariantImpl::Holder;
using VariantImpl::VariantContentBase;

/// Calls `use` with a value of each kind. The numbers are all 65, so that only their kinds tell them apart.
template <typename Use>
void ForEachKind(Use use) {
  const auto samples = std::make_tuple(std::int8_t{65}, std::uint8_t{65}, std::int16_t{65}, std::uint16_t{65},
                                       std::int32_t{65}, std::uint32_t{65}, std::int64_t{65}, std::uint64_t{65},
                                       Bytes{65}, std::string("A"), TextList{"A"}, Range{65, 65});
  std::apply([&](const auto&... sample) { (use(sample), ...); }, samples);
}

template <typename T>
using Plain = std::remove_cvref_t<T>;

TEST(VariantTest, GivesBackExactlyTheKindThatItHoldsAndNoOther) {
  ForEachKind([](const auto& held) {
    Variant variant(held);
    EXPECT_EQ(variant.Type(), typeid(Plain<decltype(held)>));
    ForEachKind([&](const auto& other) {
      using T = Plain<decltype(other)>;
      SCOPED_TRACE(std::string(typeid(held).name()) + " as " + typeid(T).name());
      if constexpr (std::is_same_v<T, Plain<decltype(held)>>) {
        ASSERT_NE(variant_cast<T>(&variant), nullptr);
        EXPECT_EQ(*variant_cast<T>(&variant), held);
        EXPECT_EQ(*variant_cast<T>(&std::as_const(variant)), held);
        EXPECT_EQ(variant_cast<T>(variant), held);
      } else {
        EXPECT_EQ(variant_cast<T>(&variant), nullptr);
        EXPECT_EQ(variant_cast<T>(&std::as_const(variant)), nullptr);
        EXPECT_THROW(static_cast<void>(variant_cast<T>(variant)), bad_variant_cast);
      }
    });
  });
}

TEST(VariantTest, EmptyIsOfNoTypeAndNoCastSucceeds) {
  Variant empty;
  EXPECT_EQ(empty.Type(), typeid(void));
  ForEachKind([&](const auto& sample) {
    using T = Plain<decltype(sample)>;
    EXPECT_EQ(variant_cast<T>(&empty), nullptr);
    EXPECT_THROW(static_cast<void>(variant_cast<T>(empty)), bad_variant_cast);
  });
}

TEST(VariantTest, CastOfNoVariantIsNull) {
  EXPECT_EQ(variant_cast<std::uint8_t>(static_cast<Variant*>(nullptr)), nullptr);
  EXPECT_EQ(variant_cast<std::uint8_t>(static_cast<const Variant*>(nullptr)), nullptr);
}

TEST(VariantTest, FailedCastTellsItsOwnTextAsABadCast) {
  try {
    static_cast<void>(variant_cast<std::uint16_t>(Variant(std::uint8_t{1})));
    FAIL() << "did not throw";
  } catch (const std::bad_cast& error) {
    EXPECT_STREQ(error.what(), "bad_variant_cast: failed conversion using variant_cast");
    EXPECT_EQ(typeid(error), typeid(bad_variant_cast));
  }
}

TEST(VariantTest, CopyHasContentOfItsOwn) {
  ForEachKind([](const auto& held) {
    using T = Plain<decltype(held)>;
    const Variant original(held);
    Variant copy(original);
    ASSERT_NE(variant_cast<T>(&copy), nullptr);
    EXPECT_NE(variant_cast<T>(&copy), variant_cast<T>(&original));
    *variant_cast<T>(&copy) = T();
    EXPECT_EQ(variant_cast<T>(copy), T());
    EXPECT_EQ(variant_cast<T>(original), held);
  });
}

TEST(VariantTest, CopyOfAnEmptyOneIsEmpty) {
  const Variant empty;
  const Variant copy(empty);
  EXPECT_EQ(copy.Type(), typeid(void));
  Variant assigned(std::uint8_t{1});
  assigned = empty;
  EXPECT_EQ(assigned.Type(), typeid(void));
}

TEST(VariantTest, AssignmentReplacesTheKindAndLeavesItsSourceAlone) {
  Variant target(std::uint8_t{1});
  Variant source(Bytes{1, 2, 3});
  target = source;
  variant_cast<Bytes>(&source)->front() = 9;
  EXPECT_EQ(variant_cast<Bytes>(target), (Bytes{1, 2, 3}));
  EXPECT_EQ(variant_cast<Bytes>(source), (Bytes{9, 2, 3}));
}

TEST(VariantTest, AssignmentToItselfChangesNothing) {
  Variant variant(std::string("On"));
  const Variant& same = variant;
  variant = same;
  EXPECT_EQ(variant_cast<std::string>(variant), "On");
}

TEST(VariantTest, SwapExchangesTheContentsWithoutCopies) {
  Variant first(std::string("On"));
  Variant second(std::int64_t{-5});
  const std::string* const text = variant_cast<std::string>(&first);
  const std::int64_t* const number = variant_cast<std::int64_t>(&second);
  first.Swap(second);
  EXPECT_EQ(variant_cast<std::int64_t>(&first), number);
  EXPECT_EQ(variant_cast<std::string>(&second), text);

  Variant empty;
  first.Swap(empty);
  EXPECT_EQ(first.Type(), typeid(void));
  EXPECT_EQ(variant_cast<std::int64_t>(&empty), number);
}

TEST(VariantTest, MoveHandsTheContentOver) {
  Variant source(std::string("On"));
  const std::string* const text = variant_cast<std::string>(&source);
  Variant moved(std::move(source));
  EXPECT_EQ(variant_cast<std::string>(&moved), text);
  Variant assigned(std::uint8_t{1});
  assigned = std::move(moved);
  EXPECT_EQ(variant_cast<std::string>(&assigned), text);
}

TEST(VariantTest, ContentIsClonedThroughItsBase) {
  const Holder<std::string> holder("On");
  const VariantContentBase& content = holder;
  const auto clone = content.Clone();
  ASSERT_NE(clone, nullptr);
  EXPECT_NE(clone.get(), &content);
  EXPECT_EQ(clone->Type(), typeid(std::string));
  ASSERT_NE(dynamic_cast<const Holder<std::string>*>(clone.get()), nullptr);
  EXPECT_EQ(static_cast<const Holder<std::string>&>(*clone).value, "On");
}

/// The slot of a virtual operation in the table of its class: a member pointer is the slot's offset plus 1.
template <typename Operation>
std::uintptr_t SlotOf(Operation operation) {
  std::uintptr_t word = 0;
  static_assert(sizeof operation >= sizeof word);
  std::memcpy(&word, &operation, sizeof word);
  return (word - 1) / sizeof(void*);
}

TEST(VariantTest, ContentsOperationsHaveTheirSlots) {
  // The destructor comes first and takes two.
  EXPECT_EQ(SlotOf(&VariantContentBase::Type), 2U);
  EXPECT_EQ(SlotOf(&VariantContentBase::Clone), 3U);
}

}  // namespace
