#include "store/exchange/json_document.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

namespace quorlo {

using nlohmann::json;

namespace {

constexpr std::size_t kDeepestLevel = 32;
constexpr std::size_t kMostValues = 10'000'000;

Error unreadable(const std::filesystem::path& file, std::string_view why) {
  return {fmt::format("{} cannot be read: {}.", file.string(), why)};
}

// The parser's own words, without the text that it stumbled over.
std::string reason(const json::parse_error& error) {
  const std::string_view message = error.what();
  constexpr std::string_view kMark = "while parsing ";
  const auto start = message.find(kMark);
  if (start == std::string_view::npos) return "damaged";
  const auto words = message.substr(start + kMark.size());
  return std::string(words.substr(0, words.find("; last read")));
}

Error notJson(std::string_view text, const json::parse_error& error) {
  const auto before = text.substr(0, error.byte == 0 ? 0 : std::min(error.byte - 1, text.size()));
  const auto lineStart = before.rfind('\n') + 1;  // 0 when there is none
  const auto isCharacterStart = [](char each) { return (static_cast<unsigned char>(each) & 0xC0) != 0x80; };
  return {fmt::format("Line {}, column {} is not JSON ({}). Correct the document there.",
                      std::ranges::count(before, '\n') + 1,
                      std::ranges::count_if(before.substr(lineStart), isCharacterStart) + 1, reason(error))};
}

// What would cost far more memory than the text itself, found without building anything.
Status checkShape(std::string_view text) {
  std::size_t depth = 0;
  std::size_t values = 1;
  for (std::size_t i = 0; i < text.size(); ++i) {
    switch (text[i]) {
      case '"':
        for (++i; i < text.size() && text[i] != '"'; ++i) {
          if (text[i] == '\\') ++i;
        }
        break;
      case '[':
      case '{':
        ++values;
        if (++depth > kDeepestLevel) return Error{"The document is nested too deeply (more than 32 levels)."};
        break;
      case ']':
      case '}':
        if (depth > 0) --depth;
        break;
      case ',':
        if (++values > kMostValues)
          return Error{"The document holds too much (more than 10 million values)."};
        break;
      default:
        break;
    }
  }
  return {};
}

}  // namespace

Result<std::string> readDocumentFile(const std::filesystem::path& file) {
  std::error_code ignored;
  if (std::filesystem::is_directory(file, ignored)) return unreadable(file, "it is a folder");
  errno = 0;
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return unreadable(file, std::strerror(errno));

  std::string content;
  std::string block(std::size_t{1} << 20, '\0');
  while (stream.read(block.data(), static_cast<std::streamsize>(block.size())) || stream.gcount() > 0) {
    content.append(block, 0, static_cast<std::size_t>(stream.gcount()));
    if (content.size() > kLargestDocument) return unreadable(file, "it is larger than 256 MiB; divide it");
  }
  if (stream.bad()) return unreadable(file, std::strerror(errno));
  return content;
}

Result<json> parseJson(std::string_view text) {
  if (const auto status = checkShape(text); !status) return status.error();
  try {
    return json::parse(text);
  } catch (const json::parse_error& error) {
    return notJson(text, error);
  } catch (const json::out_of_range& error) {
    return Error{fmt::format("The document holds a number that is out of range ({}).", error.what())};
  }
}

}  // namespace quorlo
