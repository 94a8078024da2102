#include "import/csv/quoted_names.h"

#include "store/localized_format.h"
#include "text/quotation.h"

#include <algorithm>
#include <cstddef>

namespace quorlo {

std::u16string quotedNames(const std::vector<std::u16string>& names) {
  constexpr std::size_t kMost = 10;
  std::u16string list;
  for (std::size_t i = 0; i < std::min(names.size(), kMost); ++i) {
    // Translators: a name in quotation marks.
    list += (i == 0 ? u"" : u", ") + localizedFormat(u"“%@”", quotation(names[i]));
  }
  return names.size() > kMost ? list + u", …" : list;
}

}  // namespace quorlo
