#pragma once

#include "text/attributed_string.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

// What is worked out from one text of a snippet when it is first asked for.
class SnippetTextCache {
 public:
  const std::vector<std::u16string>& macroStrings(const std::function<std::vector<std::u16string>()>& find);
  const std::u16string& plainTextWithoutMacros(const std::u16string& text,
                                               const std::vector<std::u16string>& macroStrings);
  std::size_t numberOfCharacters(const std::u16string& text);
  const AttributedString& plainAttributedString(const std::u16string& text);
  const AttributedString& withoutAttachments(const AttributedString& text);

 private:
  std::optional<std::vector<std::u16string>> macroStrings_;
  std::optional<std::u16string> plainTextWithoutMacros_;
  std::optional<std::size_t> numberOfCharacters_;
  std::optional<AttributedString> plainAttributedString_;
  std::optional<AttributedString> withoutAttachments_;
};

}  // namespace quorlo
