#pragma once

#include "platform/environment/environment.h"

namespace quorlo {

// What the test says.
class FakeEnvironment : public Environment {
 public:
  Date now() const override { return date; }
  std::vector<std::string> preferredLanguages() const override { return languages; }
  TimeZone timeZone() const override { return icuTimeZone(zone); }
  std::filesystem::path dataDirectory() const override { return data; }
  std::filesystem::path resourcesDirectory() const override { return resources; }

  Date date{std::chrono::seconds(1'700'000'000)};  // 2023-11-14 22:13:20 UTC
  std::vector<std::string> languages{"en_US"};
  std::string zone = "Europe/Berlin";
  std::filesystem::path data;
  std::filesystem::path resources;
};

}  // namespace quorlo
