#include "store/exchange/json_document.h"

#include "store/exchange/json_check.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

namespace quorlo {

using nlohmann::json;

namespace {

Error unreadable(const std::filesystem::path& file, std::string_view why) {
  return {fmt::format("{} cannot be read: {}.", file.string(), why)};
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

bool isUtf16(std::string_view text) {
  if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) return true;
  return text.size() > 1 && (text[0] == '\0') != (text[1] == '\0');
}

Result<json> parseJson(std::string_view text) {
  if (isUtf16(text)) return Error{"The document is in UTF-16. Save it in UTF-8."};
  if (const auto status = checkJson(text); !status) return status.error();
  auto value = json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (value.is_discarded()) return Error{"The document is not JSON."};
  return value;
}

}  // namespace quorlo
