#include "app/shell/shortcut_binder.h"

#include "base/log.h"
#include "platform/hot_key_center.h"
#include "platform/user_defaults.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <utility>

namespace quorlo {
namespace {

template <class Number>
std::optional<Number> number(const nlohmann::json& dictionary, const char* name) {
  const auto found = dictionary.find(name);
  if (found == dictionary.end() || !found->is_number_unsigned() || found->get<std::uint64_t>() > Number(-1)) {
    return std::nullopt;
  }
  return found->get<Number>();
}

std::optional<Shortcut> decode(const std::string& text) {
  const auto dictionary = nlohmann::json::parse(text, nullptr, false);
  if (!dictionary.is_object()) return std::nullopt;
  const auto keyCode = number<KeyCode>(dictionary, "keyCode");
  const auto flags = number<ModifierFlags>(dictionary, "modifierFlags");
  if (!keyCode || !flags) return std::nullopt;
  return Shortcut{*keyCode, *flags};
}

}  // namespace

ShortcutBinder::ShortcutBinder(UserDefaults& defaults, HotKeyCenter& hotKeys, std::string key,
                               std::function<void()> action, std::function<void(const Error&)> refused)
    : defaults_(defaults),
      hotKeys_(hotKeys),
      key_(std::move(key)),
      action_(std::move(action)),
      refused_(std::move(refused)) {
  externalChanges_ =
      defaults_.observeExternalChanges([this](DefaultsDomain domain, const std::string& changed) {
        if (domain == DefaultsDomain::standard && changed == key_) bind();
      });
  bind();
}

std::optional<Shortcut> ShortcutBinder::shortcut() const {
  const auto* value = defaults_.value(DefaultsDomain::standard, key_);
  const auto* text = value ? std::get_if<std::string>(value) : nullptr;
  return text ? decode(*text) : std::nullopt;
}

void ShortcutBinder::setShortcut(std::optional<Shortcut> shortcut) {
  if (shortcut) {
    defaults_.setValue(
        DefaultsDomain::standard, key_,
        fmt::format(R"({{"keyCode":{},"modifierFlags":{}}})", shortcut->keyCode, shortcut->modifierFlags));
  } else {
    defaults_.removeValue(DefaultsDomain::standard, key_);
  }
  bind();
}

void ShortcutBinder::bind() {
  registration_.reset();
  const auto wanted = shortcut();
  if (!wanted) return;
  auto registration = hotKeys_.registerHotKey(*wanted, action_);
  if (registration) {
    registration_ = std::move(registration).value();
  } else {
    logWarning("WARNING: #mHk3reg - " + registration.error().message);
    if (refused_) refused_(registration.error());
  }
}

}  // namespace quorlo
