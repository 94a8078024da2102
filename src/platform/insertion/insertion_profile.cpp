#include "platform/insertion/insertion_profile.h"

#include "base/ascii.h"
#include "text/code_points.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

namespace quorlo {
namespace {

constexpr Seconds kLongestPause{5};

template <class Value>
using Name = std::pair<std::string_view, Value>;

// The first of several names is the one that is written.
constexpr auto kModifiers = std::to_array<Name<ModifierFlags>>({
    {"Super", modifier::kControl},
    {"Ctrl", modifier::kCommand},
    {"Control", modifier::kCommand},
    {"Alt", modifier::kOption},
    {"Shift", modifier::kShift},
});
constexpr auto kKeys = std::to_array<Name<KeyCode>>({
    {"Insert", key::kHelp},
    {"Ins", key::kHelp},
    {"Return", key::kReturn},
    {"Enter", key::kReturn},
    {"Tab", key::kTab},
    {"Space", key::kSpace},
    {"Escape", key::kEscape},
    {"Esc", key::kEscape},
    {"Backspace", key::kBackspace},
    {"Delete", key::kForwardDelete},
    {"Home", key::kHome},
    {"End", key::kEnd},
});
// Characters that mean something else where a profile is written.
constexpr auto kCharacters = std::to_array<Name<char32_t>>({{"Plus", U'+'}, {"Comma", U','}});

template <class Names>
auto named(const Names& names, std::string_view text) -> std::optional<decltype(names[0].second)> {
  const auto found =
      std::ranges::find_if(names, [&](const auto& each) { return equalIgnoringCase(each.first, text); });
  if (found == names.end()) return std::nullopt;
  return found->second;
}

template <class Names, class Value>
std::string_view nameOf(const Names& names, Value value) {
  const auto found = std::ranges::find_if(names, [&](const auto& each) { return each.second == value; });
  return found == names.end() ? std::string_view() : found->first;
}

std::string_view nextPart(std::string_view& rest, std::string_view separators) {
  const auto end = std::min(rest.find_first_of(separators), rest.size());
  const auto part = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return part;
}

std::optional<std::variant<KeyCode, char32_t>> parseKey(std::string_view text) {
  if (const auto code = named(kKeys, text)) return *code;
  if (const auto character = named(kCharacters, text)) return *character;
  const auto characters = toUtf32(toUtf16(lowerCase(text)));
  if (characters.size() != 1 || characters[0] <= U' ') return std::nullopt;
  return characters[0];
}

std::optional<KeyChord> parseChord(std::string_view text) {
  KeyChord chord;
  for (auto plus = text.find('+'); plus != std::string_view::npos; plus = text.find('+')) {
    const auto flag = named(kModifiers, text.substr(0, plus));
    if (!flag) return std::nullopt;
    chord.modifiers |= *flag;
    text.remove_prefix(plus + 1);
  }
  const auto key = parseKey(text);
  if (!key) return std::nullopt;
  chord.key = *key;
  return chord;
}

std::string toText(const KeyChord& chord) {
  std::string text;
  for (const auto& [name, flag] : kModifiers) {
    if ((chord.modifiers & flag) != 0 && name != "Control") text += std::string(name) + "+";
  }
  if (const auto* const code = std::get_if<KeyCode>(&chord.key)) return text.append(nameOf(kKeys, *code));
  const auto character = std::get<char32_t>(chord.key);
  const auto name = nameOf(kCharacters, character);
  return text + (name.empty() ? toUtf8(toUtf16(std::u32string_view(&character, 1))) : std::string(name));
}

Status readChords(std::string_view words, InsertionProfile& profile) {
  while (!(words = trimmed(words)).empty()) {
    const auto word = nextPart(words, " \t");
    const auto chord = parseChord(word);
    if (!chord) {
      return Error{fmt::format(
          "\"{}\" is no key combination. Write it like Shift+Insert, Ctrl+Shift+V or Plus.", word)};
    }
    profile.pasteChords.push_back(*chord);
  }
  if (profile.pasteChords.empty())
    return Error{"After \"paste\" comes a key combination, like Shift+Insert."};
  return {};
}

Status readPause(std::string_view words, InsertionProfile& profile) {
  double seconds = 0;
  const auto [end, error] = std::from_chars(words.data(), words.data() + words.size(), seconds);
  if (error != std::errc() || end != words.data() + words.size() || !(seconds >= 0) ||
      Seconds(seconds) > kLongestPause) {
    return Error{fmt::format("\"{}\" is no pause. Write seconds from 0 to {}, like 0.2.", words,
                             kLongestPause.count())};
  }
  profile.pauseAfterCaretMoves = Seconds(seconds);
  return {};
}

}  // namespace

InsertionProfile terminalProfile() {
  return {.pasteChords = {{modifier::kShift, key::kHelp}}, .pastesSelection = true};
}

Result<InsertionProfile> parseInsertionProfile(std::string_view text) {
  InsertionProfile profile;
  int methods = 0;
  while (!(text = trimmed(text)).empty()) {
    auto words = trimmed(nextPart(text, ","));
    const auto part = words;
    const auto first = nextPart(words, " \t");
    words = trimmed(words);
    Status status;
    if (equalIgnoringCase(first, "pause")) {
      status = readPause(words, profile);
    } else if (equalIgnoringCase(first, "paste")) {
      ++methods;
      status = readChords(words, profile);
    } else if (equalIgnoringCase(part, "terminal")) {
      ++methods;
      const auto terminal = terminalProfile();
      profile.pasteChords = terminal.pasteChords;
      profile.pastesSelection = terminal.pastesSelection;
    } else if (equalIgnoringCase(part, "type") || equalIgnoringCase(part, "off")) {
      ++methods;
      profile.method = equalIgnoringCase(part, "type") ? InsertionMethod::type : InsertionMethod::none;
    } else {
      return Error{
          fmt::format("\"{}\" is not known. Write \"paste\" with key combinations, \"terminal\", "
                      "\"type\", \"off\" or \"pause\" with seconds.",
                      part)};
    }
    if (!status) return status.error();
  }
  if (methods > 1)
    return Error{"There are several ways; leave one of \"paste\", \"terminal\", \"type\" and \"off\"."};
  if (profile == InsertionProfile{} && methods == 0) {
    return Error{"The way is missing. Write for instance: paste Shift+Insert"};
  }
  return profile;
}

std::string toText(const InsertionProfile& profile) {
  std::string text;
  switch (profile.method) {
    case InsertionMethod::type:
      text = "type";
      break;
    case InsertionMethod::none:
      text = "off";
      break;
    case InsertionMethod::paste:
      if (profile.pastesSelection) {
        text = "terminal";
      } else if (!profile.pasteChords.empty()) {
        text = "paste";
        for (const auto& chord : profile.pasteChords) text += " " + toText(chord);
      }
  }
  if (profile.pauseAfterCaretMoves > Seconds(0)) {
    text += fmt::format("{}pause {}", text.empty() ? "" : ", ", profile.pauseAfterCaretMoves.count());
  }
  return text;
}

}  // namespace quorlo
