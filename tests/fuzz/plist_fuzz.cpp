// Reads a property list, and whatever snippets it may hold.

#include "fuzz/fuzz_target.h"
#include "import/formats/clipping.h"
#include "import/formats/property_lists/read_property_list.h"
#include "import/formats/text_expander.h"
#include "import/formats/type_it_4_me.h"

#include <string_view>

namespace quorlo {
namespace {

void checkLevels(const PropertyList& list, std::size_t depth, std::size_t& values) {
  require(depth <= kDeepestPropertyList && ++values <= kMostPropertyListValues);
  if (const auto* array = list.as<PropertyList::Array>()) {
    for (const auto& value : *array) checkLevels(value, depth + 1, values);
  }
  if (const auto* dictionary = list.as<PropertyList::Dictionary>()) {
    for (const auto& [key, value] : *dictionary) checkLevels(value, depth + 1, values);
  }
}

void checkSnippets(const Result<ImportData>& data) {
  if (!data) return require(!data.error().message.empty());
  for (const auto& snippet : data.value().snippets) {
    require(!snippet.text.empty());
    require(!snippet.folder || *snippet.folder < data.value().folders.size());
  }
  for (const auto& notice : data.value().notices) require(!notice.message.empty());
}

}  // namespace
}  // namespace quorlo

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorlo;
  static const auto quiet = redirectLog([](LogLevel, std::string_view) {});
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (const auto list = readPropertyList(bytes)) {
    std::size_t values = 0;
    checkLevels(list.value(), 0, values);
  } else {
    // What passes the checks the library can read.
    require(!list.error().message.starts_with("The property list cannot be read"));
  }
  checkSnippets(readTextExpander(bytes, "file.textexpander"));
  checkSnippets(readTypeIt4Me(bytes, "file.typeit4me"));
  checkSnippets(readClipping(bytes, "file.textClipping"));
  return 0;
}
