#pragma once

class QWidget;

namespace quorlo {

class SettingsPage;
class SettingsController;

// A check box for each key and symbol that can complete an abbreviation, following the settings with the
// page, which owns it.
QWidget* makeDelimiterKeysGrid(SettingsPage& page, SettingsController& settings);

}  // namespace quorlo
