#pragma once

#include "base/observers.h"
#include "platform/user_defaults.h"

#include <array>
#include <map>
#include <utility>

namespace quorlo {

class FakeUserDefaults : public UserDefaults {
 public:
  const DefaultsValue* value(DefaultsDomain domain, std::string_view key) const override {
    const auto& values = values_[index(domain)];
    const auto found = values.find(key);
    return found == values.end() ? nullptr : &found->second;
  }

  void setValue(DefaultsDomain domain, std::string_view key, DefaultsValue value) override {
    values_[index(domain)].insert_or_assign(std::string(key), std::move(value));
  }

  void removeValue(DefaultsDomain domain, std::string_view key) override {
    values_[index(domain)].erase(std::string(key));
  }

  Subscription observeExternalChanges(Observer observer) override {
    return observers_.add(std::move(observer));
  }

  // As another process would.
  void changeFromElsewhere(DefaultsDomain domain, const std::string& key, DefaultsValue value) {
    setValue(domain, key, std::move(value));
    observers_.notify(domain, key);
  }

 private:
  static std::size_t index(DefaultsDomain domain) { return domain == DefaultsDomain::standard ? 0 : 1; }

  std::array<std::map<std::string, DefaultsValue, std::less<>>, 2> values_;
  Observers<DefaultsDomain, const std::string&> observers_;
};

}  // namespace quorlo
