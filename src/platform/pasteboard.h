#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace quorlo {

// The type of one representation: a media type, or another system name as the owner offered it.
using PasteboardType = std::string;

namespace pasteboard_type {
inline constexpr std::string_view kPlainText = "text/plain;charset=utf-8";
inline constexpr std::string_view kHtml = "text/html";
inline constexpr std::string_view kPng = "image/png";
}  // namespace pasteboard_type

using PasteboardData = std::vector<std::uint8_t>;

// One thing on the pasteboard in one or more representations, the richest first.
class PasteboardItem {
 public:
  // Asked on the main thread, at most once, when a reader wants the data.
  using Provider = std::function<PasteboardData()>;
  struct Representation {
    PasteboardType type;
    std::variant<PasteboardData, Provider> data;
  };

  void setData(PasteboardType type, PasteboardData data);
  void setText(std::string_view utf8);  // as kPlainText
  void setProvider(PasteboardType type, Provider provider);

  const std::vector<Representation>& representations() const { return representations_; }
  std::vector<PasteboardType> types() const;
  // Absent when the item lacks the type. Runs a provider.
  std::optional<PasteboardData> data(std::string_view type) const;
  std::optional<std::string> text() const;  // kPlainText, UTF-8

 private:
  std::vector<Representation> representations_;
};

struct PasteboardContents {
  std::vector<PasteboardItem> items;
  // Types without data that tell clipboard managers how to treat the contents.
  std::vector<PasteboardType> markers;
  // Not offered to the user's other devices.
  bool currentHostOnly = false;
};

// The general pasteboard, shared by all applications. Main thread.
class Pasteboard {
 public:
  using ReadCompletion = std::function<void(std::vector<PasteboardItem>)>;

  virtual ~Pasteboard() = default;

  // Replaces the contents at once: no reader sees them half written. Providers must stay callable until
  // the contents are replaced by anybody.
  virtual void setContents(PasteboardContents contents) = 0;

  // Hands over a copy of everything that is on the pasteboard now, markers left out, within 64 MB and
  // 1 s; what does not fit the budget, or what its owner refuses, is left out and logged. Later changes
  // do not affect the copy. The completion is called exactly once, on the main thread, never inside the
  // call; an empty pasteboard gives no items.
  virtual void read(ReadCompletion completion) = 0;

  // Changes whenever anybody replaces the contents.
  virtual std::int64_t changeCount() const = 0;
};

}  // namespace quorlo
