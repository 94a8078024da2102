#pragma once

#include "app/settings/setting.h"
#include "base/result.h"

#include <nlohmann/json_fwd.hpp>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// Settings and their values as the command line writes them: switches as true and false, choices by their
// names, sets as names with blanks between, delays as seconds.

// All of them; of two that share a key the first.
std::vector<Setting> settingsByKey();

// Without regard to case; an error that names similar ones where there is none.
Result<Setting> settingWithKey(std::string_view key);

// One that the user may change; else an error.
Status mayBeSet(const SettingDescription& setting);

// The value that the words name; an error that says what is allowed.
Result<DefaultsValue> readSettingValue(const SettingDescription& setting, std::span<const std::string> words);

// What readSettingValue takes, in words.
std::string allowedValues(const SettingDescription& setting);

// Empty for null.
std::string settingText(const SettingDescription& setting, const DefaultsValue* value);

// Key, type, value, default, what is allowed and what it means.
nlohmann::ordered_json settingJson(const SettingDescription& setting, const DefaultsValue* value);

}  // namespace quorlo
