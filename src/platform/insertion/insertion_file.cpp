#include "platform/insertion/insertion_file.h"

#include "base/ascii.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

namespace quorlo {
namespace {

template <class Visitor>
void forEachLine(std::string_view text, Visitor visit) {
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    visit(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

bool isEmptyLine(std::string_view line) {
  line = trimmed(line);
  return line.empty() || line.starts_with('#');
}

std::string_view applicationOf(std::string_view line) {
  return isEmptyLine(line) ? std::string_view() : trimmed(line.substr(0, line.find('=')));
}

Result<InsertionEntry> readLine(std::string_view line) {
  const auto equals = line.find('=');
  const auto application = applicationOf(line);
  if (equals == std::string_view::npos || application.empty()) {
    return Error{"Write the application, \"=\" and the way, for instance: emacs = paste Shift+Insert"};
  }
  auto profile = parseInsertionProfile(line.substr(equals + 1));
  if (!profile) return profile.error();
  return InsertionEntry{std::string(application), std::move(profile).value()};
}

// `line` takes the place of the first line of the application; the others of it go.
std::string withLineOf(std::string_view text, std::string_view application, std::optional<std::string> line) {
  std::string result;
  forEachLine(text, [&](std::string_view each) {
    if (!equalIgnoringCase(applicationOf(each), application)) {
      result.append(each).append("\n");
    } else if (line) {
      result.append(*line).append("\n");
      line.reset();
    }
  });
  if (line) result.append(*line).append("\n");
  return result;
}

}  // namespace

InsertionFile readInsertionFile(std::string_view text) {
  InsertionFile file;
  int number = 0;
  forEachLine(text, [&](std::string_view line) {
    ++number;
    if (isEmptyLine(line)) return;
    auto entry = readLine(line);
    if (entry) {
      file.entries.push_back(std::move(entry).value());
    } else {
      file.problems.push_back({fmt::format("Line {}: {}", number, entry.error().message)});
    }
  });
  return file;
}

std::vector<InsertionEntry> readTerminalsFile(std::string_view text) {
  std::vector<InsertionEntry> entries;
  forEachLine(text, [&](std::string_view line) {
    if (!isEmptyLine(line)) entries.push_back({std::string(trimmed(line)), terminalProfile()});
  });
  return entries;
}

std::string withEntry(std::string_view text, const InsertionEntry& entry) {
  return withLineOf(text, entry.application, entry.application + " = " + toText(entry.profile));
}

std::string withoutEntry(std::string_view text, std::string_view application) {
  return withLineOf(text, application, std::nullopt);
}

}  // namespace quorlo
