#include "store/context/predicate.h"

#include "store/context/managed_object.h"
#include "text/case_folding.h"

#include <fmt/format.h>

#include <algorithm>
#include <compare>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

namespace quorlo {
namespace {

// A value that outlives the one it was made from. Records are kept, so that a condition on a folder
// that was deleted is still one, and false.
using Value = std::variant<std::monostate, std::int64_t, double, Date, std::u16string, std::string,
                           std::shared_ptr<const ManagedObject>>;

struct Constant {
  bool value;
};
struct Compare {
  const Property* property;
  Predicate::Comparison comparison;
  Value value;
};
struct Contains {
  const Property* property;
  FoldedNeedle part;
};
struct Join {
  bool conjunction;
  std::vector<Predicate> conditions;
};
struct Parentheses {
  Predicate condition;
};

Value keep(const ValueView& view) {
  return std::visit(
      [](const auto& value) -> Value {
        using Held = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<Held, const ManagedObject*>) {
          if (value == nullptr) return std::monostate();
          return value->shared_from_this();
        } else if constexpr (std::is_same_v<Held, std::u16string_view>) {
          return std::u16string(value);
        } else if constexpr (std::is_same_v<Held, std::string_view>) {
          return std::string(value);
        } else {
          return value;
        }
      },
      view);
}

ValueView look(const Value& kept) {
  return std::visit(
      [](const auto& value) -> ValueView {
        if constexpr (std::is_same_v<std::decay_t<decltype(value)>, std::shared_ptr<const ManagedObject>>) {
          return value.get();
        } else {
          return value;
        }
      },
      kept);
}

bool holds(Predicate::Comparison comparison, const ValueView& left, const ValueView& right) {
  const auto order = compare(left, right);
  if (comparison == Predicate::Comparison::equal) return std::is_eq(order);
  if (comparison == Predicate::Comparison::notEqual) return !std::is_eq(order);
  if (left.index() == 0 || right.index() == 0) return false;
  switch (comparison) {
    case Predicate::Comparison::less:
      return std::is_lt(order);
    case Predicate::Comparison::atMost:
      return std::is_lteq(order);
    case Predicate::Comparison::greater:
      return std::is_gt(order);
    default:
      return std::is_gteq(order);
  }
}

std::string_view sign(Predicate::Comparison comparison) {
  constexpr std::string_view kSigns[] = {"==", "!=", "<", "<=", ">", ">="};
  return kSigns[static_cast<int>(comparison)];
}

std::string print(const Value& value) {
  if (std::holds_alternative<std::monostate>(value)) return "nil";
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return fmt::format("{}", *integer);
  if (const auto* number = std::get_if<double>(&value)) return fmt::format("{}", *number);
  return "%@";
}

template <class... Visitors>
struct Overloaded : Visitors... {
  using Visitors::operator()...;
};
template <class... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

}  // namespace

struct Predicate::Node {
  std::variant<Constant, Compare, Contains, Join, Parentheses> form;
};

Predicate Predicate::always(bool value) {
  return Predicate(std::make_shared<Node>(Node{Constant{value}}));
}

Predicate Predicate::compare(const Property& property, Comparison comparison, const ValueView& value) {
  return Predicate(std::make_shared<Node>(Node{Compare{&property, comparison, keep(value)}}));
}

Predicate Predicate::contains(const Property& property, std::u16string_view part) {
  return Predicate(std::make_shared<Node>(Node{Contains{&property, FoldedNeedle(part)}}));
}

Predicate Predicate::all(std::vector<Predicate> conditions) {
  return Predicate(std::make_shared<Node>(Node{Join{true, std::move(conditions)}}));
}

Predicate Predicate::any(std::vector<Predicate> conditions) {
  return Predicate(std::make_shared<Node>(Node{Join{false, std::move(conditions)}}));
}

Predicate Predicate::inParentheses() const {
  return Predicate(std::make_shared<Node>(Node{Parentheses{*this}}));
}

bool Predicate::evaluate(const ManagedObject& record) const {
  const auto isTrue = [&record](const Predicate& each) { return each.evaluate(record); };
  return std::visit(
      Overloaded{
          [](const Constant& it) { return it.value; },
          [&](const Compare& it) { return holds(it.comparison, it.property->read(record), look(it.value)); },
          [&](const Contains& it) {
            const auto value = it.property->read(record);
            const auto* text = std::get_if<std::u16string_view>(&value);
            return text != nullptr && it.part.isIn(*text);
          },
          [&](const Join& it) {
            return it.conjunction ? std::ranges::all_of(it.conditions, isTrue)
                                  : std::ranges::any_of(it.conditions, isTrue);
          },
          [&](const Parentheses& it) { return isTrue(it.condition); },
      },
      node_->form);
}

std::optional<std::u16string> Predicate::requiredText() const {
  using Text = std::optional<std::u16string>;
  return std::visit(Overloaded{
                        [](const auto&) -> Text { return std::nullopt; },
                        [](const Contains& it) -> Text {
                          const auto& folded = it.part.folded();
                          return it.property->isSearched && !folded.empty() ? Text(folded) : std::nullopt;
                        },
                        [](const Join& it) -> Text {
                          Text required;
                          for (const auto& each : it.conditions) {
                            auto text = each.requiredText();
                            if (it.conjunction && text) return text;
                            if (!it.conjunction && (!text || (required && required != text)))
                              return std::nullopt;
                            required = std::move(text);
                          }
                          return required;
                        },
                        [](const Parentheses& it) { return it.condition.requiredText(); },
                    },
                    node_->form);
}

std::string Predicate::text() const {
  return std::visit(
      Overloaded{
          [](const Constant& it) -> std::string { return it.value ? "TRUEPREDICATE" : "FALSEPREDICATE"; },
          [](const Compare& it) {
            return fmt::format("{} {} {}", it.property->name, sign(it.comparison), print(it.value));
          },
          [](const Contains& it) { return fmt::format("{} CONTAINS[c] %@", it.property->name); },
          [](const Join& it) {
            std::string text;
            for (const auto& each : it.conditions) {
              if (!text.empty()) text += it.conjunction ? " AND " : " OR ";
              const bool isJoin = std::holds_alternative<Join>(each.node_->form);
              text += isJoin ? '(' + each.text() + ')' : each.text();
            }
            return text;
          },
          [](const Parentheses& it) { return '(' + it.condition.text() + ')'; },
      },
      node_->form);
}

const Property* Predicate::propertyForeignTo(Entity entity) const {
  const auto unlessOf = [entity](const Property* it) { return it->entity == entity ? nullptr : it; };
  return std::visit(Overloaded{
                        [](const Constant&) -> const Property* { return nullptr; },
                        [&](const Compare& it) { return unlessOf(it.property); },
                        [&](const Contains& it) { return unlessOf(it.property); },
                        [&](const Join& it) -> const Property* {
                          for (const auto& each : it.conditions) {
                            if (const auto* found = each.propertyForeignTo(entity)) return found;
                          }
                          return nullptr;
                        },
                        [&](const Parentheses& it) { return it.condition.propertyForeignTo(entity); },
                    },
                    node_->form);
}

}  // namespace quorlo
