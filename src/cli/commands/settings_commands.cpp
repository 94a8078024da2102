#include "app/settings/setting.h"
#include "app/settings/settings_controller.h"
#include "app/settings/sound_manager.h"
#include "app/settings/stored_user_defaults.h"
#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/commands/settings_values.h"
#include "cli/definition/command_definition.h"
#include "cli/definition/command_parser.h"
#include "cli/terminal_text.h"
#include "platform/environment/environment.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <system_error>

namespace quorlo {
namespace {

using Json = nlohmann::ordered_json;

std::string textOf(CommandSession& session, Setting setting) {
  return settingText(describe(setting), currentValue(session.defaults(), setting));
}

std::string defaultText(const SettingDescription& setting) {
  return settingText(setting, setting.defaultValue ? &*setting.defaultValue : nullptr);
}

Json jsonOf(CommandSession& session, const std::vector<Setting>& settings) {
  auto list = Json::array();
  for (const auto each : settings) {
    list.push_back(settingJson(describe(each), currentValue(session.defaults(), each)));
  }
  return {{"settings", std::move(list)}};
}

// For people: what is there, and in which way it is not the default.
void printForPeople(CommandSession& session, const std::vector<Setting>& settings) {
  std::size_t width = 0;
  for (const auto each : settings) width = std::max(width, describe(each).key.size());
  for (const auto each : settings) {
    const auto& setting = describe(each);
    auto line = fmt::format("{:<{}}  {}", setting.key, width, textOf(session, each));
    if (const auto usual = defaultText(setting); !usual.empty() && usual != textOf(session, each)) {
      line += fmt::format("  (default: {})", usual);
    }
    if (setting.owner == SettingOwner::program) line += "  [read only]";
    session.out().write(cutToWidth(printable(line, LineBreaks::shown), session.out().columns()) + "\n");
    session.out().write(fmt::format("  {}\n", setting.meaning));
  }
}

Result<ExitStatus> list(CommandSession& session) {
  const auto settings = settingsByKey();
  if (session.json()) {
    session.printJson(jsonOf(session, settings));
  } else if (session.out().isTerminal()) {
    printForPeople(session, settings);
  } else {
    for (const auto each : settings) {
      session.out().write(fmt::format("{}\t{}\n", describe(each).key, textOf(session, each)));
    }
  }
  return ExitStatus::done;
}

Result<ExitStatus> get(CommandSession& session, const std::string& key) {
  const auto setting = settingWithKey(key);
  if (!setting) return setting.error();
  if (session.json()) {
    session.printJson(
        settingJson(describe(setting.value()), currentValue(session.defaults(), setting.value())));
  } else {
    session.out().write(textOf(session, setting.value()) + "\n");
  }
  return ExitStatus::done;
}

// What the settings say can be read, or a change would lose the rest of them.
Status mayChange(CommandSession& session) {
  const auto readable = session.defaults().readable();
  if (readable) return {};
  return Error{readable.error().message + "\nCorrect the file, or move it away to begin with the defaults."};
}

Status isThere(const Environment& environment, const std::string& sound) {
  const auto folder = environment.dataDirectory() / kCustomSoundsFolder;
  std::error_code failure;
  const bool isName = !sound.empty() && sound == std::filesystem::path(sound).filename();
  if (isName && std::filesystem::is_regular_file(folder / sound, failure)) return {};
  return Error{fmt::format("\"{}\" is no sound file in {}; put it there first.", sound, folder.string())};
}

// By the rules that hold in the settings window. What the desktop permits, the running Quorlo finds out.
void apply(CommandSession& session, Setting setting, const DefaultsValue& value) {
  auto& settings = session.settings();
  switch (setting) {
    case Setting::abbreviationsEnabled:
      settings.setAccessibilityCheck([] { return true; });
      return settings.setAbbreviationsEnabled(std::get<bool>(value));
    case Setting::abbreviationDelimiterKey:
      return settings.setAbbreviationDelimiterKey(DelimiterKeys(std::get<std::int64_t>(value)));
    case Setting::debugModeEnabled:
      // It ends a day after it was switched on.
      if (std::get<bool>(value)) settings.setDebugEnabledDate(session.environment().now());
      return settings.setDebugModeEnabled(std::get<bool>(value));
    default:
      return session.defaults().setValue(describe(setting).domain, describe(setting).key, value);
  }
}

// Writes what has been changed, and shows it.
Result<ExitStatus> finish(CommandSession& session, const std::vector<Setting>& changed) {
  if (const auto written = session.defaults().synchronize(); !written) return written.error();
  if (session.json()) {
    session.printJson(jsonOf(session, changed));
  } else {
    for (const auto each : changed) {
      session.out().write(fmt::format("{}: {}\n", describe(each).key, textOf(session, each)));
    }
  }
  return ExitStatus::done;
}

Result<ExitStatus> set(CommandSession& session, const std::string& key,
                       const std::vector<std::string>& words) {
  const auto setting = settingWithKey(key);
  if (!setting) return setting.error();
  const auto& description = describe(setting.value());
  if (const auto allowed = mayBeSet(description); !allowed) return allowed.error();
  const auto value = readSettingValue(description, words);
  if (!value) return value.error();
  if (setting.value() == Setting::customSnippetSound) {
    if (const auto there = isThere(session.environment(), std::get<std::string>(value.value())); !there) {
      return there.error();
    }
  }
  if (const auto may = mayChange(session); !may) return may.error();

  const auto autoPaste = session.settings().autoPasteIsEnabled();
  apply(session, setting.value(), value.value());
  std::vector<Setting> changed{setting.value()};
  // Abbreviations bring it along.
  if (setting.value() != Setting::autoPasteIsEnabled &&
      session.settings().autoPasteIsEnabled() != autoPaste) {
    changed.push_back(Setting::autoPasteIsEnabled);
  }
  return finish(session, changed);
}

struct ResetOptions {
  std::vector<std::string> keys;
  bool all = false;
};

Result<std::vector<Setting>> toReset(const ResetOptions& options) {
  std::vector<Setting> settings;
  if (options.all) {
    settings = settingsByKey();
    std::erase_if(settings, [](Setting each) { return !mayBeSet(describe(each)).ok(); });
    return settings;
  }
  for (const auto& key : options.keys) {
    const auto setting = settingWithKey(key);
    if (!setting) return setting.error();
    if (const auto allowed = mayBeSet(describe(setting.value())); !allowed) return allowed.error();
    settings.push_back(setting.value());
  }
  return settings;
}

Result<ExitStatus> reset(CommandSession& session, const ResetOptions& options) {
  const auto settings = toReset(options);
  if (!settings) return settings.error();
  if (settings.value().empty()) {
    session.note("Name the settings to reset, or give --all.");
    return ExitStatus::wrongUsage;
  }
  if (const auto may = mayChange(session); !may) return may.error();
  session.settings();  // takes an earlier version's over, which must not come back later
  for (const auto each : settings.value()) {
    session.defaults().removeValue(describe(each).domain, describe(each).key);
  }
  return finish(session, settings.value());
}

void addGetCommand(CommandParser& parser, CommandDefinition& group) {
  const auto key = std::make_shared<std::optional<std::string>>();
  auto& command = parser.add(group, "get", "Print the value of a setting",
                             [key](CommandSession& session) { return get(session, **key); });
  command.addText("key", *key, "Its name", "SETTING").required();
}

void addSetCommand(CommandParser& parser, CommandDefinition& group) {
  const auto key = std::make_shared<std::optional<std::string>>();
  const auto words = std::make_shared<std::vector<std::string>>();
  auto& command = parser.add(group, "set", "Change a setting",
                             [key, words](CommandSession& session) { return set(session, **key, *words); });
  command.addText("key", *key, "Its name", "SETTING").required();
  command.addTexts("value", *words, "The new value; of several at once, one after the other", "VALUE")
      .required();
  command.setFooter(
      "A Quorlo that runs applies the change at once.\n\n"
      "Examples:\n"
      "  quorlo settings set AbbreviationsEnabled true\n"
      "  quorlo settings set AbbreviationDelimiterKey space tab . ,\n"
      "  quorlo settings set PasteBetweenSnippetPartsDelay 0.5");
}

void addResetCommand(CommandParser& parser, CommandDefinition& group) {
  const auto options = std::make_shared<ResetOptions>();
  auto& command = parser.add(group, "reset", "Give settings their defaults again",
                             [options](CommandSession& session) { return reset(session, *options); });
  command.addTexts("keys", options->keys, "Their names", "SETTING");
  command.addFlag("--all", options->all, "All that can be set");
}

}  // namespace

void addSettingsCommands(CommandParser& parser) {
  auto& group = parser.addGroup("settings", "Read and change the settings");
  parser.add(group, "list", "List all settings", [](CommandSession& session) { return list(session); })
      .setFooter("With --json each comes with its type, its default and what is allowed.");
  addGetCommand(parser, group);
  addSetCommand(parser, group);
  addResetCommand(parser, group);
}

}  // namespace quorlo
