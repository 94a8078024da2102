#include "import/csv/column_names.h"

#include "text/case_folding.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <span>

namespace quorlo {
namespace {

using Names = std::span<const std::u16string_view>;

constexpr std::size_t kMostWords = 3;  // more are a sentence

// Lower case without accents, words of one name joined; the most telling first. A word that other roles use
// too ("snippet name") stands last.
constexpr std::u16string_view kTitles[]{
    u"title",       u"name",        u"label",     u"titel",        u"bezeichnung",  u"uberschrift",
    u"titulo",      u"nombre",      u"titre",     u"nom",          u"titolo",       u"nome",
    u"naam",        u"tytul",       u"nazwa",     u"etiqueta",     u"libelle",      u"intitule",
    u"etichetta",   u"rotulo",      u"etykieta",  u"betreff",      u"subject",      u"asunto",
    u"objet",       u"oggetto",     u"assunto",   u"onderwerp",    u"temat",        u"description",
    u"descripcion", u"descrizione", u"descricao", u"beschreibung", u"omschrijving", u"beschrijving",
    u"opis"};
constexpr std::u16string_view kAbbreviations[]{
    u"abbreviation", u"abbr",        u"abbrev",     u"shortcut",      u"trigger",       u"keyword",
    u"hotstring",    u"alias",       u"abkurzung",  u"kurzel",        u"tastenkurzel",  u"textkurzel",
    u"kurzform",     u"kurzbefehl",  u"ausloser",   u"stichwort",     u"schlusselwort", u"abreviatura",
    u"abreviacion",  u"atajo",       u"disparador", u"palabraclave",  u"abreviation",   u"raccourci",
    u"abrege",       u"declencheur", u"motcle",     u"abbreviazione", u"scorciatoia",   u"parolachiave",
    u"abreviacao",   u"atalho",      u"gatilho",    u"palavrachave",  u"afkorting",     u"sneltoets",
    u"snelcode",     u"trefwoord",   u"skrot",      u"wyzwalacz",     u"slowokluczowe"};
constexpr std::u16string_view kTexts[]{
    u"plaintext", u"text",         u"texto",       u"texte",        u"testo",        u"tekst",
    u"content",   u"contents",     u"expansion",   u"replacement",  u"body",         u"inhalt",
    u"ersetzung", u"ersatztext",   u"langtext",    u"langform",     u"textbaustein", u"snippettext",
    u"contenido", u"contenu",      u"contenuto",   u"conteudo",     u"inhoud",       u"tresc",
    u"zawartosc", u"sustitucion",  u"reemplazo",   u"remplacement", u"espansione",   u"sostituzione",
    u"expansao",  u"substituicao", u"uitbreiding", u"vervanging",   u"rozwiniecie",  u"zamiana",
    u"cuerpo",    u"corps",        u"corpo",       u"phrase",       u"frase",        u"fraza",
    u"message",   u"nachricht",    u"mensaje",     u"messaggio",    u"mensagem",     u"bericht",
    u"wiadomosc", u"template",     u"vorlage",     u"plantilla",    u"modele",       u"modello",
    u"modelo",    u"sjabloon",     u"szablon",     u"fragment",     u"schnipsel",    u"snippet",
    u"baustein"};

Names namesOf(ColumnRole role) {
  switch (role) {
    case ColumnRole::title:
      return kTitles;
    case ColumnRole::abbreviation:
      return kAbbreviations;
    case ColumnRole::text:
      return kTexts;
  }
  return {};
}

std::size_t placeAmong(Names names, std::u16string_view name) {
  const auto found = std::ranges::find(names, name);
  return found == names.end() ? ColumnName::kUnknown : static_cast<std::size_t>(found - names.begin());
}

// Polish "ł" is no "l" with an accent to Unicode.
std::u16string plain(std::u16string_view word) {
  UErrorCode error = U_ZERO_ERROR;
  const auto* const normalizer = icu::Normalizer2::getNFDInstance(error);
  const auto folded = foldCase(word);
  const auto decomposed = normalizer->normalize(
      icu::UnicodeString(folded.data(), static_cast<std::int32_t>(folded.size())), error);
  std::u16string letters;
  for (std::int32_t i = 0; i < decomposed.length(); ++i) {
    const auto unit = decomposed.charAt(i);
    if (u_charType(unit) != U_NON_SPACING_MARK) letters += unit == u'ł' ? u'l' : unit;
  }
  return letters;
}

// "plainText" has two words; "URL" has one.
std::vector<std::u16string> wordsOf(std::u16string_view header) {
  std::vector<std::u16string> words;
  std::u16string word;
  const auto end = [&] {
    if (!word.empty()) words.push_back(plain(word));
    word.clear();
  };
  char16_t last = 0;
  for (const auto unit : header) {
    const bool isLetter = u_isalnum(unit) != 0 || u_charType(unit) == U_NON_SPACING_MARK;
    if (!isLetter || (u_isupper(unit) != 0 && u_islower(last) != 0)) end();
    if (isLetter) word += unit;
    last = unit;
  }
  end();
  return words;
}

}  // namespace

ColumnName::ColumnName(std::u16string_view header) : words_(wordsOf(header)) {
  for (const auto& each : words_) whole_ += each;
}

std::size_t ColumnName::rank(ColumnRole role) const {
  return placeAmong(namesOf(role), whole_);
}

std::size_t ColumnName::rankOfWord(ColumnRole role) const {
  auto best = kUnknown;
  if (words_.size() > kMostWords) return best;
  for (const auto& each : words_) best = std::min(best, placeAmong(namesOf(role), each));
  return best;
}

}  // namespace quorlo
