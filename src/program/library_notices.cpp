#include "program/library_notices.h"

#include "base/localized.h"
#include "cli/error_text.h"
#include "platform/user_notifications.h"
#include "text/utf.h"

#include <string>
#include <utility>

namespace quorlo {
namespace {

using Kind = LibraryNotice::Kind;

std::u16string title(Kind kind) {
  switch (kind) {
    case Kind::logWasSetAside:
      return localized(u"A part of another library was set aside");
    case Kind::isDamaged:
      return localized(u"The library is damaged");
    case Kind::savesFail:
      return localized(u"Your changes are not saved");
    case Kind::fileWasReplaced:
      return localized(u"The library was replaced");
    case Kind::fileWasDeleted:
      return localized(u"The library was deleted and written back");
    case Kind::cannotBeOpened:
      return localized(u"The new library cannot be opened");
  }
  return {};
}

// "%@" is the detail.
std::u16string body(Kind kind) {
  switch (kind) {
    case Kind::logWasSetAside:
      return localized(
          u"The library's file was put in place of another one. What that one had not merged yet is kept as %@.");
    case Kind::isDamaged:
    case Kind::savesFail:
      return u"%@";
    case Kind::fileWasReplaced:
      return localized(u"Quorlo goes on with the new file. What it held before is kept as %@.");
    case Kind::fileWasDeleted:
      return localized(u"Quorlo had all of it in memory. It is again in %@.");
    case Kind::cannotBeOpened:
      return localized(u"Nothing is lost: Quorlo goes on with what it has in memory. %@");
  }
  return {};
}

}  // namespace

void post(const LibraryNotice& notice, UserNotifications& notifications) {
  auto text = body(notice.kind);
  if (const auto place = text.find(u"%@"); place != std::u16string::npos) {
    text.replace(place, 2, toUtf16(inWords(notice.detail)));
  }
  notifications.post({.title = title(notice.kind),
                      .body = std::move(text),
                      .categoryIdentifier = "library",
                      .actionTitle = {}});
}

}  // namespace quorlo
