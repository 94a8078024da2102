#include "app/shell/quorlo_app.h"

#include "text/case_folding.h"
#include "text/utf.h"

namespace quorlo {

QuorloApp::QuorloApp(std::string_view shortVersion) {
  const auto version = toUtf16(shortVersion);
  if (!containsFolded(version, u"beta")) return;
  badge_ = u"BETA";
  versionText_ = u"Version " + version;
}

std::u16string QuorloApp::toolTip() const {
  return badge_.empty() ? u"Quorlo" : u"Quorlo " + badge_ + u" (" + versionText_ + u")";
}

}  // namespace quorlo
