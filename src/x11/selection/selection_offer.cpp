#include "x11/selection/selection_offer.h"

#include "text/utf.h"

#include <algorithm>
#include <array>

namespace quorlo {

namespace {

constexpr std::string_view kMarkerPrefix = "org.nspasteboard.";
constexpr std::string_view kTransientMarker = "org.nspasteboard.TransientType";
// What clipboard histories of Linux desktops heed, as the marker is heeded elsewhere.
constexpr std::string_view kPasswordHint = "x-kde-passwordManagerHint";
constexpr std::string_view kSecret = "secret";

template <class Range>
bool contains(const Range& range, std::string_view name) {
  return std::ranges::find(range, name) != std::ranges::end(range);
}

bool isStandardType(std::string_view type) {
  return type == pasteboard_type::kPlainText || type == pasteboard_type::kHtml ||
         type == pasteboard_type::kPng;
}

void addTextNames(std::vector<OfferedTarget>& targets, std::size_t text) {
  using enum OfferedTarget::Encoding;
  const std::array<OfferedTarget, 4> names{{
      {"UTF8_STRING", {"UTF8_STRING"}, text, {}, asGiven},
      {"text/plain", {"text/plain"}, text, {}, asGiven},
      {"STRING", {"STRING"}, text, {}, latin1},
      {"TEXT", {"UTF8_STRING"}, text, {}, asGiven},
  }};
  for (const auto& name : names) {
    if (std::ranges::find(targets, name.name, &OfferedTarget::name) == targets.end()) targets.push_back(name);
  }
}

}  // namespace

std::vector<OfferedTarget> offeredTargets(const PasteboardContents& contents,
                                          const PropertyForms& remembered) {
  std::vector<OfferedTarget> targets;
  const auto has = [&](std::string_view name) {
    return std::ranges::find(targets, name, &OfferedTarget::name) != targets.end();
  };
  const auto addMarker = [&](std::string_view name, std::string_view data) {
    if (has(name)) return;
    targets.push_back({std::string(name), {std::string(name)}, std::nullopt, {data.begin(), data.end()}});
  };

  std::size_t representation = 0;
  std::optional<std::size_t> text;
  for (const auto& item : contents.items) {
    for (const auto& type : item.types()) {
      if (!has(type)) {
        const auto form = remembered.find(type);
        const bool known = form != remembered.end() && !isStandardType(type);
        targets.push_back({type, known ? form->second : PropertyForm{type}, representation, {}});
        if (type == pasteboard_type::kPlainText) text = representation;
      }
      ++representation;
    }
  }
  if (text) addTextNames(targets, *text);
  for (const auto& marker : contents.markers) {
    addMarker(marker, {});
    if (marker == kTransientMarker) addMarker(kPasswordHint, kSecret);
  }
  return targets;
}

PasteboardData encoded(const PasteboardData& data, OfferedTarget::Encoding encoding) {
  if (encoding == OfferedTarget::Encoding::asGiven) return data;
  PasteboardData result;
  for (const char16_t unit :
       toUtf16(std::string_view(reinterpret_cast<const char*>(data.data()), data.size()))) {
    if (unit >= 0xDC00 && unit <= 0xDFFF) continue;  // the other half has given its question mark
    result.push_back(unit <= 0xFF ? static_cast<std::uint8_t>(unit) : std::uint8_t{'?'});
  }
  return result;
}

bool isProtocolTarget(std::string_view target) {
  static constexpr std::array<std::string_view, 7> kTargets{
      "TARGETS", "TIMESTAMP", "MULTIPLE", "SAVE_TARGETS", "DELETE", "INSERT_SELECTION", "INSERT_PROPERTY"};
  return contains(kTargets, target);
}

bool isMarkerTarget(std::string_view target) {
  return target.starts_with(kMarkerPrefix) || target == kPasswordHint;
}

bool isTextName(std::string_view target) {
  static constexpr std::array<std::string_view, 6> kNames{
      "UTF8_STRING", "STRING", "TEXT", "COMPOUND_TEXT", "text/plain", pasteboard_type::kPlainText};
  return contains(kNames, target);
}

bool isPicture(std::string_view target) {
  return target.starts_with("image/") && target.find("svg") == std::string_view::npos;
}

std::vector<std::string> targetsToSave(const std::vector<std::string>& offered) {
  static constexpr std::array<std::string_view, 4> kServerObjects{"PIXMAP", "BITMAP", "COLORMAP", "DRAWABLE"};
  static constexpr std::array<std::string_view, 2> kPicturesOnceMore{"application/x-qt-image",
                                                                     "application/x-openoffice-bitmap"};
  const bool hasPng = contains(offered, pasteboard_type::kPng);
  const bool hasPicture = std::ranges::any_of(offered, isPicture);
  const auto isPictureOnceMore = [&](std::string_view target) {
    return hasPicture && contains(kPicturesOnceMore, target.substr(0, target.find(';')));
  };
  bool savesPicture = false;
  std::vector<std::string> result;
  for (const auto& target : offered) {
    // The password hint is kept: without it the restored password would enter clipboard histories.
    if (target.empty() || isProtocolTarget(target) || target.starts_with(kMarkerPrefix)) continue;
    if (contains(kServerObjects, target) || isPictureOnceMore(target) || contains(result, target)) continue;
    if (isPicture(target)) {
      if (hasPng ? target != pasteboard_type::kPng : savesPicture) continue;
      savesPicture = true;
    }
    result.push_back(target);
  }
  return result;
}

const OfferedTarget* SelectionOffer::target(std::string_view name) const {
  const auto found = std::ranges::find(targets_, name, &OfferedTarget::name);
  return found != targets_.end() ? &*found : nullptr;
}

bool SelectionOffer::hasSameTargetsAs(const SelectionOffer& other) const {
  return std::ranges::equal(targets_, other.targets_, {}, &OfferedTarget::name, &OfferedTarget::name);
}

bool SelectionOffer::isTransient() const {
  return target(kTransientMarker) != nullptr;
}

}  // namespace quorlo
