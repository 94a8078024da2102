#pragma once

namespace quorlo {

// `quorlo --abbreviations on|off`: changes the stored setting, which a running Quorlo sees at once, and says
// what it is now. The exit status.
int switchAbbreviations(bool on);

}  // namespace quorlo
