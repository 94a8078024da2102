#pragma once

#include "base/date.h"
#include "store/context/property.h"

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// A condition on records of one entity: a small expression tree, immutable and cheap to copy, that can
// be evaluated and that prints itself.
//
// Nil equals nil and differs from everything else, so a snippet without a folder satisfies
// "category.type != 100". Any other comparison with nil is false.
class Predicate {
 public:
  enum class Comparison { equal, notEqual, less, atMost, greater, atLeast };

  static Predicate always(bool value);
  static Predicate all(std::vector<Predicate> conditions);  // joined by AND
  static Predicate any(std::vector<Predicate> conditions);  // joined by OR

  static Predicate compare(const Property& property, Comparison comparison, const ValueView& value);

  // The text holds `part`, compared caselessly; an empty part is in no text.
  static Predicate contains(const Property& property, std::u16string_view part);

  // The same condition, printed in parentheses.
  Predicate inParentheses() const;

  bool evaluate(const ManagedObject& record) const;

  // A text, in the form of foldCase, that every record which satisfies the condition contains in one of its
  // searched properties; absent when the condition does not ask for one.
  std::optional<std::u16string> requiredText() const;

  // For logs and tests, for example "(abbreviation == %@) AND (deletionDate == nil)". Numbers stand as
  // they are; "%@" stands for texts, dates and records, so that no log shows what the user wrote.
  std::string text() const;

  // A property that records of `entity` do not have, if the condition asks for one.
  const Property* propertyForeignTo(Entity entity) const;

 private:
  struct Node;
  explicit Predicate(std::shared_ptr<const Node> node) : node_(std::move(node)) {}

  std::shared_ptr<const Node> node_;
};

// A property of known type, from which conditions are written: QLSnippet::kUseCount.greaterThan(0).
// `View` is std::int64_t, double, Date, std::u16string_view, std::string_view or a pointer to a record.
template <class View>
struct Attribute : Property {
  Predicate equals(View value) const { return is(Predicate::Comparison::equal, value); }
  Predicate differsFrom(View value) const { return is(Predicate::Comparison::notEqual, value); }
  Predicate lessThan(View value) const { return is(Predicate::Comparison::less, value); }
  Predicate atMost(View value) const { return is(Predicate::Comparison::atMost, value); }
  Predicate greaterThan(View value) const { return is(Predicate::Comparison::greater, value); }
  Predicate atLeast(View value) const { return is(Predicate::Comparison::atLeast, value); }
  Predicate isNil() const { return Predicate::compare(*this, Predicate::Comparison::equal, ValueView()); }
  Predicate isNotNil() const {
    return Predicate::compare(*this, Predicate::Comparison::notEqual, ValueView());
  }

  Predicate contains(std::u16string_view part) const requires std::same_as<View, std::u16string_view> {
    return Predicate::contains(*this, part);
  }

 private:
  Predicate is(Predicate::Comparison comparison, View value) const {
    return Predicate::compare(*this, comparison, ValueView(value));
  }
};

}  // namespace quorlo
