#pragma once

#include "base/date.h"
#include "platform/environment/time_zone.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quorlo {

// What the program is told about the user and the machine. Main thread.
class Environment {
 public:
  virtual ~Environment() = default;

  virtual Date now() const = 0;

  // Of dates: ICU locale names such as "de_DE", the most preferred first; never empty ("en" when nothing is
  // set).
  virtual std::vector<std::string> preferredLanguages() const = 0;
  virtual TimeZone timeZone() const = 0;

  // The user's folder for the library and custom sounds; may not exist yet.
  virtual std::filesystem::path dataDirectory() const = 0;
  // Where the program's own files (sounds, icons) are installed.
  virtual std::filesystem::path resourcesDirectory() const = 0;
};

}  // namespace quorlo
