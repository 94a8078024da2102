#include "platform/environment/preferred_languages.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

TEST(PreferredLanguages, AreTheLocalesThatTheEnvironmentNamesInItsOrder) {
  const std::string tooLong(150, 'a');
  const struct {
    std::vector<std::string_view> values;
    std::vector<std::string> languages;
  } cases[] = {
      {{"", "", ""}, {"en"}},
      {{"", "de_DE.UTF-8", "en_GB.UTF-8"}, {"de_DE", "en_GB"}},
      {{"pt_BR:pt::en", "", "pt_BR@euro"}, {"pt_BR", "pt", "en"}},
      {{"C", "POSIX", "C.UTF-8"}, {"en"}},
      {{"", "C.UTF-8", "de_DE.UTF-8"}, {"en", "de_DE"}},
      {{"sr_RS@latin", "sr_RS.UTF-8@latin", "sr@latin", "sr_RS"}, {"sr_Latn_RS", "sr_Latn", "sr_RS"}},
      {{tooLong, "../../etc", "de_", "\xFF", "ca_ES_VALENCIA", "fr"}, {"ca_ES_VALENCIA", "fr"}},
  };
  for (const auto& [values, languages] : cases) EXPECT_EQ(preferredLanguages(values), languages);
}

}  // namespace
}  // namespace quorlo
