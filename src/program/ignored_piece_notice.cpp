#include "program/ignored_piece_notice.h"

#include "base/ascii.h"
#include "base/localized.h"
#include "platform/user_defaults.h"
#include "platform/user_notifications.h"
#include "text/utf.h"

#include <string_view>
#include <utility>
#include <variant>

namespace quorlo {
namespace {

constexpr std::string_view kToldKey = "ApplicationsThatDidNotPaste";  // one a line
constexpr std::string_view kCategory = "WayOfPasting:";

}  // namespace

IgnoredPieceNotice::IgnoredPieceNotice(UserDefaults& defaults, UserNotifications& notifications,
                                       std::function<void(const std::string&)> chooseWay)
    : defaults_(defaults), notifications_(notifications) {
  notifications_.addActionHandler([chooseWay = std::move(chooseWay)](const std::string& category) {
    if (category.starts_with(kCategory)) chooseWay(category.substr(kCategory.size()));
  });
}

void IgnoredPieceNotice::tell(const std::string& application, const std::string& name) {
  if (application.empty() || !isNew(lowerCase(application))) return;
  auto title = localized(u"Text does not arrive in %@");
  if (const auto place = title.find(u"%@"); place != std::u16string::npos)
    title.replace(place, 2, toUtf16(name));
  notifications_.post(
      {.title = std::move(title),
       .body = localized(u"The abbreviation was erased, but the application did not take the text."),
       .categoryIdentifier = std::string(kCategory) + application,
       .actionTitle = localized(u"Choose Another Way")});
}

bool IgnoredPieceNotice::isNew(const std::string& application) {
  const auto* const stored = defaults_.value(DefaultsDomain::standard, kToldKey);
  const auto* const text = stored != nullptr ? std::get_if<std::string>(stored) : nullptr;
  auto told = text != nullptr ? *text : std::string("\n");
  if (told.find("\n" + application + "\n") != std::string::npos) return false;
  defaults_.setValue(DefaultsDomain::standard, kToldKey, told += application + "\n");
  return true;
}

}  // namespace quorlo
