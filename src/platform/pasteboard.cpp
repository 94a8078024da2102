#include "platform/pasteboard.h"

#include <algorithm>

namespace quorlo {

void PasteboardItem::setData(PasteboardType type, PasteboardData data) {
  representations_.push_back({std::move(type), std::move(data)});
}

void PasteboardItem::setText(std::string_view utf8) {
  setData(PasteboardType(pasteboard_type::kPlainText), PasteboardData(utf8.begin(), utf8.end()));
}

void PasteboardItem::setProvider(PasteboardType type, Provider provider) {
  representations_.push_back({std::move(type), std::move(provider)});
}

std::vector<PasteboardType> PasteboardItem::types() const {
  std::vector<PasteboardType> result;
  for (const auto& representation : representations_) result.push_back(representation.type);
  return result;
}

std::optional<PasteboardData> PasteboardItem::data(std::string_view type) const {
  const auto found = std::ranges::find(representations_, type, &Representation::type);
  if (found == representations_.end()) return std::nullopt;
  if (const auto* provider = std::get_if<Provider>(&found->data)) return (*provider)();
  return std::get<PasteboardData>(found->data);
}

bool PasteboardCopy::isWhole() const {
  if (items.empty()) return losses.empty();
  return std::ranges::all_of(
      losses, [](const PasteboardLoss& loss) { return loss.reason == PasteboardLoss::Reason::refused; });
}

std::optional<std::string> PasteboardItem::text() const {
  const auto bytes = data(pasteboard_type::kPlainText);
  if (!bytes) return std::nullopt;
  return std::string(bytes->begin(), bytes->end());
}

}  // namespace quorlo
