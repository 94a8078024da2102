#include "base/localized.h"

#include "base/log.h"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <locale>
#include <map>
#include <optional>
#include <utility>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

using Catalogue = std::map<std::u16string, std::u16string, std::less<>>;

constexpr std::uint32_t kCatalogueMagic = 0x950412de;  // of a file in this machine's byte order

// The catalogues in use, the preferred one first. Written at start-up only.
std::vector<Catalogue>& catalogues() {
  static std::vector<Catalogue> loaded;
  return loaded;
}

std::optional<std::u16string> toUtf16(std::string_view utf8) {
  std::u16string text(utf8.size(), u'\0');
  const auto* const from = reinterpret_cast<const char8_t*>(utf8.data());
  const auto* fromNext = from;
  auto* toNext = text.data();
  std::mbstate_t state{};
  const auto& codec = std::use_facet<std::codecvt<char16_t, char8_t, std::mbstate_t>>(std::locale::classic());
  const auto outcome =
      codec.in(state, from, from + utf8.size(), fromNext, text.data(), text.data() + text.size(), toNext);
  if (outcome != std::codecvt_base::ok) return std::nullopt;
  text.resize(static_cast<std::size_t>(toNext - text.data()));
  return text;
}

// The layout is that of "The Format of GNU MO Files" in the manual of GNU gettext.
class CatalogueReader {
 public:
  explicit CatalogueReader(std::string_view file) : file_(file) {}

  std::optional<Catalogue> read() const {
    if (number(0) != kCatalogueMagic) return std::nullopt;
    const auto count = number(8);
    const auto originals = number(12);
    const auto translations = number(16);
    if (!count || !originals || !translations || *count > file_.size()) return std::nullopt;
    Catalogue catalogue;
    for (std::uint64_t index = 0; index < *count; ++index) {
      const auto original = text(*originals + 8 * index);
      auto translation = text(*translations + 8 * index);
      if (!original || !translation) return std::nullopt;
      // The empty original stands for the header of the file.
      if (!original->empty() && !translation->empty()) catalogue.emplace(*original, std::move(*translation));
    }
    return catalogue;
  }

 private:
  std::optional<std::uint64_t> number(std::uint64_t offset) const {
    std::uint32_t value = 0;
    if (offset + sizeof value > file_.size()) return std::nullopt;
    std::memcpy(&value, file_.data() + offset, sizeof value);
    return value;
  }

  // The text that a pair of length and offset stands for.
  std::optional<std::u16string> text(std::uint64_t pair) const {
    const auto length = number(pair);
    const auto offset = number(pair + 4);
    if (!length || !offset || *offset + *length > file_.size()) return std::nullopt;
    return toUtf16(file_.substr(*offset, *length));
  }

  std::string_view file_;
};

// False when there is no such file.
bool load(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return false;
  const std::string bytes(std::istreambuf_iterator<char>(stream), {});
  if (auto catalogue = CatalogueReader(bytes).read()) {
    catalogues().push_back(std::move(*catalogue));
  } else {
    logWarning("WARNING: " + file.string() + " is no catalogue of translations; it is left out.");
  }
  return true;
}

}  // namespace

std::u16string localized(std::u16string_view baseText) {
  for (const auto& catalogue : catalogues()) {
    if (const auto found = catalogue.find(baseText); found != catalogue.end()) return found->second;
  }
  return std::u16string(baseText);
}

Subscription loadCatalogues(const fs::path& directory, const std::vector<std::string>& languages) {
  catalogues().clear();
  std::string chosen;
  for (const auto& locale : languages) {
    const auto language = locale.substr(0, locale.find('_'));
    for (const auto& name : {locale, language}) {
      if (chosen.empty() && load(directory / (name + ".mo"))) chosen = name;
    }
  }
  if (chosen != "en") load(directory / "en.mo");
  return Subscription([] { catalogues().clear(); });
}

}  // namespace quorlo
