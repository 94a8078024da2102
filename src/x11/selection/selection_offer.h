#pragma once

#include "platform/pasteboard.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// How the owner of a selection answers for one target, where that differs from the usual (the type named
// as the target, in elements of 8 bits).
struct PropertyForm {
  std::string type;
  std::uint8_t format = 8;  // bits per element: 8, 16 or 32
};
using PropertyForms = std::map<std::string, PropertyForm, std::less<>>;

// One target under which contents are offered to other programs.
struct OfferedTarget {
  enum class Encoding { asGiven, latin1 };

  std::string name;
  PropertyForm form;
  // Index of the representation that has the data; absent for a marker, whose data stands here.
  std::optional<std::size_t> representation;
  PasteboardData markerData;
  Encoding encoding = Encoding::asGiven;
};

// The targets for the contents, in the order of their representations. Plain text goes by all its X11
// names (UTF8_STRING, STRING, TEXT, text/plain) unless the contents bring those themselves. Of a type
// that several items have, the first item's data is offered: a selection has no items.
// `remembered` are the forms that other owners used for types which are now restored.
std::vector<OfferedTarget> offeredTargets(const PasteboardContents& contents,
                                          const PropertyForms& remembered);

// What a target answers with, made of its representation's data.
PasteboardData encoded(const PasteboardData& data, OfferedTarget::Encoding encoding);

// Targets of the selection protocol itself, which hold no contents.
bool isProtocolTarget(std::string_view target);
bool isMarkerTarget(std::string_view target);

// One of the names of plain text, which are all offered when one of them has been saved.
bool isTextName(std::string_view target);
// A picture of pixels, which its owner encodes when it is asked for.
bool isPicture(std::string_view target);

// Those of an owner's targets that are worth saving, in the order given: no protocol targets, no
// markers, no server-side bitmaps, and of several encodings of a picture only one, PNG where it is offered:
// toolkits offer dozens, and take seconds for each.
std::vector<std::string> targetsToSave(const std::vector<std::string>& offered);

// Contents set by this program, as other programs see them. The data belongs to the pasteboard's thread.
class SelectionOffer {
 public:
  using Data = std::shared_ptr<const PasteboardData>;

  // One datum for each representation of the contents, in their order; null where a provider has it.
  SelectionOffer(std::vector<OfferedTarget> targets, std::vector<Data> data)
      : targets_(std::move(targets)), data_(std::move(data)) {}

  const std::vector<OfferedTarget>& targets() const { return targets_; }
  const OfferedTarget* target(std::string_view name) const;
  bool hasSameTargetsAs(const SelectionOffer& other) const;
  // Meant for one paste only: clipboard histories and managers are to pass it over.
  bool isTransient() const;

  // Null until a provider has given it. Pasteboard's thread.
  const Data& data(std::size_t representation) const { return data_[representation]; }
  void setData(std::size_t representation, Data data) { data_[representation] = std::move(data); }

 private:
  std::vector<OfferedTarget> targets_;
  std::vector<Data> data_;
};

}  // namespace quorlo
