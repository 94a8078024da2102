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

// A type that a copy lacks. The type is empty when the owner did not tell what it had.
struct PasteboardLoss {
  enum class Reason {
    refused,      // the owner offers the type without handing it over
    notAnswered,  // the owner hangs or is too slow
    ownerEnded,
    tooLarge,
  };
  PasteboardType type;
  Reason reason = Reason::refused;
};

// What was on the pasteboard, without markers.
struct PasteboardCopy {
  std::vector<PasteboardItem> items;
  std::vector<PasteboardLoss> losses;
  std::int64_t changeCount = 0;  // of the contents that were copied

  // The user misses nothing once the copy is given back. Owners offer types that they always refuse, so a
  // refusal counts only when nothing else was handed over.
  bool isWhole() const;
};

// The general pasteboard, shared by all applications. Main thread.
class Pasteboard {
 public:
  // The two steps of reading. Each is called once, in this order, on the main thread, never inside `read`.
  struct Reading {
    // From here on this program may set contents of its own without harm to the copy: the owner has been
    // asked for everything, or 0.2 s have passed. Optional.
    std::function<void()> contentsMayBeReplaced;
    std::function<void(PasteboardCopy)> completed;
  };

  virtual ~Pasteboard() = default;

  // Replaces the contents at once: no reader sees them half written. Providers must stay callable until
  // the contents are replaced by anybody.
  virtual void setContents(PasteboardContents contents) = 0;

  // The same, but only while the contents are those of `changeCount`. False when another program has
  // replaced them: then its contents stay.
  [[nodiscard]] virtual bool setContentsIfUnchanged(PasteboardContents contents,
                                                    std::int64_t changeCount) = 0;

  // Copies everything that is on the pasteboard now. Later changes do not affect the copy, except that it
  // starts over when another program replaces the contents before this program may. What the owner does
  // not hand over within the adapter's budget is a loss, which is also logged. An empty pasteboard gives
  // no items and no losses.
  virtual void read(Reading reading) = 0;

  // Changes whenever anybody replaces the contents.
  virtual std::int64_t changeCount() const = 0;
};

}  // namespace quorlo
