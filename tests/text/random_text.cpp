#include "text/random_text.h"

namespace quorlo {

std::size_t pick(Random& random, std::size_t bound) {
  return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
}

std::u16string randomText(Random& random, std::size_t pieces) {
  static const std::u16string kPieces[] = {
      u"a",          u"Z",      u" ",          u"\r",     u"\n",     u"\t",         u"\u0301",
      u"\u200D",     u"\uFE0F", u"\u0600",     u"\u0903", u"\u1100", u"\u1161",     u"\u11A8",
      u"\uAC00",     u"é",      u"ß",          u"\uFFFC", u"\u0E33", u"\U0001F1E9", u"\U0001F1EA",
      u"\U0001F468", u"❤",      u"\U0001F3FD", u"\xD83C", u"\xDFFD", u"\xDC00",     std::u16string(1, u'\0')};
  std::u16string text;
  for (auto left = pick(random, pieces + 1); left > 0; --left)
    text += kPieces[pick(random, std::size(kPieces))];
  return text;
}

TextAttributes randomAttributes(Random& random) {
  const auto sometimes = [&] { return pick(random, 4) == 0; };
  const auto byte = [&] { return static_cast<std::uint8_t>(pick(random, 256)); };
  TextAttributes attributes;
  if (sometimes()) attributes.fontFamily = "DejaVu Sans";
  if (sometimes()) attributes.fontSizePoints = 0.1 * static_cast<double>(1 + pick(random, 300));
  attributes.bold = sometimes();
  attributes.italic = sometimes();
  attributes.underline = sometimes();
  attributes.strikethrough = sometimes();
  if (sometimes()) attributes.foreground = Color{byte(), byte(), byte(), byte()};
  if (sometimes()) attributes.background = Color{byte(), byte(), byte()};
  if (sometimes()) attributes.link = "https://example.org/?q=ü&r=\"1\"";
  if (sometimes()) {
    std::vector<std::uint8_t> bytes(pick(random, 8));
    for (auto& b : bytes) b = byte();
    attributes.image = ImageAttachment{std::make_shared<const std::vector<std::uint8_t>>(bytes), "image/png"};
  }
  if (sometimes()) attributes.custom = {{"path", "a/b"}, {"", ""}};
  return attributes;
}

AttributedString randomAttributedString(Random& random) {
  AttributedString text;
  for (auto runs = pick(random, 6); runs > 0; --runs) {
    text.append(randomText(random, 5), pick(random, 3) == 0 ? TextAttributes() : randomAttributes(random));
  }
  return text;
}

}  // namespace quorlo
