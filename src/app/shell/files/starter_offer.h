#pragma once

#include "base/result.h"

#include <filesystem>

namespace quorlo {

class PersistenceController;
class UserDefaults;

// The snippets to begin with, which are offered once to a user who has none. Main thread.
class StarterOffer {
 public:
  // All outlive the offer; the file is a library document.
  StarterOffer(UserDefaults& defaults, PersistenceController& persistence,
               std::filesystem::path starterLibrary);

  // The library has no snippet, not even in the trash, and the user has never answered.
  bool isDue() const;

  // Takes the snippets into the library and saves. After an error the offer stands.
  Status accept();
  void decline();

 private:
  void markAsAnswered();

  UserDefaults& defaults_;
  PersistenceController& persistence_;
  std::filesystem::path starterLibrary_;
};

}  // namespace quorlo
