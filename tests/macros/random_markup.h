#pragma once

#include "text/random_text.h"

#include <string>

namespace quorlo {

// Markup whole, cut off, nested and joined in any way.
inline std::u16string randomMarkup(Random& random, std::size_t pieces) {
  static constexpr std::u16string_view kPieces[] = {u"%",
                                                    u":",
                                                    u"=",
                                                    u"(!(colon)!)",
                                                    u"(!(",
                                                    u"%cursor%",
                                                    u"%clipboard%",
                                                    u"%clipboard:pasteText=1:clipboard%",
                                                    u"%textfield:name=A:default=B:textfield%",
                                                    u"%options:name=:default=9:name0=x:name1=y:options%",
                                                    u"%snippet:abbreviation=",
                                                    u"a:snippet%",
                                                    u"%date:dateFormat=%dd",
                                                    u"date%",
                                                    u"textfield",
                                                    u"%options",
                                                    u"%specialKey:value=tab:specialKey%",
                                                    u"%specialKey:code=-4:specialKey%",
                                                    u"name",
                                                    u"default=",
                                                    u"\n",
                                                    u" ",
                                                    u"\uFFFC",
                                                    u"\xD83D",
                                                    u"ü"};
  std::u16string text;
  for (auto count = pick(random, pieces + 1); count > 0; --count)
    text += kPieces[pick(random, std::size(kPieces))];
  return text;
}

}  // namespace quorlo
