#include "text/line_breaks.h"

#include <string>
#include <vector>

namespace quorlo {

AttributedString withLineFeeds(AttributedString text) {
  const auto& string = text.string();
  std::vector<AttributedString::Replacement> replacements;
  for (auto at = string.find(u'\r'); at != std::u16string::npos; at = string.find(u'\r', at + 1)) {
    const bool isPair = at + 1 < string.size() && string[at + 1] == u'\n';
    AttributedString lineFeed;
    lineFeed.append(u"\n", text.attributesAt(at));
    replacements.push_back({{at, isPair ? 2U : 1U}, std::move(lineFeed)});
  }
  text.replaceAll(replacements);
  return text;
}

}  // namespace quorlo
