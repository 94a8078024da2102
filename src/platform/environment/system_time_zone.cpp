#include "platform/environment/system_time_zone.h"

#include "text/utf.h"

#include <unicode/ucal.h>
#include <unicode/utypes.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

// The C library's functions lock its rules, so other threads may call them too.
std::chrono::seconds offsetOfSystem(std::chrono::sys_seconds moment) {
  const auto time = static_cast<std::time_t>(moment.time_since_epoch().count());
  std::tm local{};
  return std::chrono::seconds(::localtime_r(&time, &local) == nullptr ? 0 : local.tm_gmtoff);
}

fs::path rulesFolder() {
  const auto* const folder = std::getenv("TZDIR");
  return folder != nullptr && *folder != '\0' ? folder : "/usr/share/zoneinfo";
}

// "Europe/Berlin" of "/usr/share/zoneinfo/posix/Europe/Berlin".
std::string nameInPath(const std::string& path) {
  constexpr std::string_view kFolder = "/zoneinfo/";
  const auto place = path.find(kFolder);
  if (place == std::string::npos) return {};
  auto name = path.substr(place + kFolder.size());
  for (const std::string_view variant : {"posix/", "right/"}) {
    if (name.starts_with(variant)) name.erase(0, variant.size());
  }
  return name;
}

// Of the file of rules, or the first link on the way to it that lies among the system's.
std::string nameOfFile(fs::path file) {
  constexpr int kMostLinks = 8;
  for (int links = 0; links < kMostLinks; ++links) {
    if (auto name = nameInPath(file.string()); !name.empty()) return name;
    std::error_code failure;
    const auto target = fs::read_symlink(file, failure);
    if (failure) return {};
    file = (file.parent_path() / target).lexically_normal();
  }
  return {};
}

// For a /etc/localtime that is a copy, ICU looks for a file with the same content.
std::string nameByContent() {
  std::array<char16_t, 128> name;
  UErrorCode failure = U_ZERO_ERROR;
  const auto length = ucal_getHostTimeZone(name.data(), static_cast<std::int32_t>(name.size()), &failure);
  if (U_FAILURE(failure)) return {};
  auto found = toUtf8({name.data(), static_cast<std::size_t>(length)});
  return found == "Etc/Unknown" ? std::string() : found;
}

std::string nameOfSystem() {
  const auto* const variable = std::getenv("TZ");
  if (variable == nullptr) {
    auto name = nameOfFile("/etc/localtime");
    return name.empty() ? nameByContent() : name;
  }
  std::string value = variable;
  if (value.starts_with(':')) value.erase(0, 1);
  if (value.empty()) return "UTC";
  if (value.starts_with('/')) return nameOfFile(value);
  std::error_code failure;
  return fs::is_regular_file(rulesFolder() / value, failure) ? value : std::string();
}

}  // namespace

TimeZone systemTimeZone() {
  ::tzset();
  return {nameOfSystem(), offsetOfSystem};
}

}  // namespace quorlo
