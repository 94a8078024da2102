#include "import/export/exported_text.h"

#include "base/localized.h"
#include "import/export/export_run.h"
#include "store/records/ql_snippet.h"

#include <utility>

namespace quorlo {

AttributedString exportedText(const QLSnippet& snippet, ExportRun& run) {
  auto text = snippet.readText();
  if (text) return std::move(text).value();
  run.warn(snippet,
           localized(u"Its formatting and pictures cannot be read; only its characters were exported."));
  return AttributedString(snippet.plainText());
}

}  // namespace quorlo
