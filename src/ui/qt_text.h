#pragma once

#include "base/localized.h"

#include <QString>

#include <string_view>

namespace quorlo {

inline QString toQString(std::u16string_view text) {
  return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

// The program's text in the user's language.
inline QString localizedText(std::u16string_view base) {
  return QString::fromStdU16String(localized(base));
}

}  // namespace quorlo
