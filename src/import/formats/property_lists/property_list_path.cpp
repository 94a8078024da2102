#include "import/formats/property_lists/property_list_path.h"

#include "base/localized.h"
#include "store/localized_format.h"
#include "text/utf.h"

namespace quorlo {
namespace {

constexpr std::size_t kLongestKey = 60;  // that is quoted whole

}  // namespace

std::string PropertyListPath::text() const {
  if (!container_) return {};
  auto text = container_->text();
  if (index_) return text + '[' + std::to_string(*index_) + ']';
  if (!text.empty()) text += '.';
  return text.append(key_.substr(0, kLongestKey));
}

Error wrongKind(const PropertyList& value, const PropertyListPath& path, std::u16string_view expected) {
  const auto place = path.text();
  const auto is = localizedFormat(u"“%@” is %@", toUtf16(place.empty() ? "plist" : place), kindName(value));
  return {toUtf8(
      localizedFormat(u"%@, but should be %@. Correct the file there, or export it again.", is, expected))};
}

Result<const std::u16string*> textAt(const PropertyList& dictionary, std::string_view key,
                                     const PropertyListPath& path) {
  const auto* const value = dictionary.find(key);
  if (!value) return nullptr;
  if (const auto* text = value->as<std::u16string>()) return text;
  return wrongKind(*value, {path, key}, localized(u"a text"));
}

Result<std::optional<std::int64_t>> integerAt(const PropertyList& dictionary, std::string_view key,
                                              const PropertyListPath& path) {
  const auto* const value = dictionary.find(key);
  if (!value) return std::optional<std::int64_t>();
  if (const auto* number = value->as<std::int64_t>()) return std::optional(*number);
  return wrongKind(*value, {path, key}, localized(u"a whole number"));
}

}  // namespace quorlo
