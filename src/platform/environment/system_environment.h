#pragma once

#include "platform/environment/environment.h"

namespace quorlo {

// The environment variables, the clock and the folders of this session.
class SystemEnvironment final : public Environment {
 public:
  // `programDirectory` is where the running program lies.
  explicit SystemEnvironment(std::filesystem::path programDirectory);

  Date now() const override;

  // From LC_ALL, LC_TIME and LANG.
  std::vector<std::string> preferredLanguages() const override;
  TimeZone timeZone() const override;
  std::filesystem::path dataDirectory() const override;
  std::filesystem::path resourcesDirectory() const override;

  // The languages of the program's own texts: from LANGUAGE, LC_ALL, LC_MESSAGES and LANG; English in the
  // locale C, whatever LANGUAGE says.
  std::vector<std::string> textLanguages() const;

  // Where the settings lie; may not exist yet.
  std::filesystem::path configDirectory() const;

 private:
  std::filesystem::path programDirectory_;
};

}  // namespace quorlo
