#include "app/settings/settings_controller.h"
#include "app/settings/sound_manager.h"
#include "ui/settings/settings_page.h"
#include "ui/settings/settings_pages.h"
#include "ui/symbols.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include <utility>
#include <vector>

namespace quorlo {
namespace {

// The file name of a custom sound; none for a built-in one, whose text is its raw value.
constexpr int kFileRole = Qt::UserRole;

class SoundsPage : public SettingsPage {
 public:
  explicit SoundsPage(const SettingsServices& services)
      : SettingsPage(services.settings, u"Sounds"), settings_(services.settings), sound_(services.sound) {
    beginGroup(u"After an expansion");
    addSwitch(u"Play a sound", &SettingsController::playSound, &SettingsController::setPlaySound);
    list_->setAccessibleName(localizedText(u"Sounds"));
    list_->setMinimumHeight(8 * fontMetrics().lineSpacing());
    addWidget(list_);
    connect(list_, &QListWidget::currentItemChanged, this,
            [this](const QListWidgetItem* item) { take(item); });

    auto* const buttons = new QWidget;
    auto* const row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    auto* const play = new QPushButton(symbol(u"play"), localizedText(u"Play"));
    auto* const add = new QPushButton(localizedText(u"Add Sound…"));
    for (auto* const button : {play, add, remove_}) row->addWidget(button);
    row->addStretch();
    addWidget(buttons);
    notice_ = addHint(u"That file holds no sound that Quorlo can play.");
    notice_->hide();
    connect(play, &QPushButton::clicked, this, [this] { sound_.play(); });
    connect(add, &QPushButton::clicked, this, [this] { choose(); });
    connect(remove_, &QPushButton::clicked, this, [this] { removeCurrent(); });
    follow([this] { fill(); });
  }

 private:
  void fill() {
    std::vector<std::pair<QString, QString>> sounds;  // text, file
    for (const auto each : kSnippetExpansionSounds) {
      if (each != SnippetExpansionSound::custom) sounds.emplace_back(toQString(displayString(each)), "");
    }
    for (const auto& file : sound_.customSounds()) {
      const auto name = QString::fromStdString(file);
      sounds.emplace_back(name, name);
    }
    const QSignalBlocker quiet(list_);
    if (sounds != shown_) {
      shown_ = sounds;
      list_->clear();
      for (const auto& [text, file] : sounds) {
        auto* const item = new QListWidgetItem(symbol(u"speaker.wave.2"), text, list_);
        item->setData(kFileRole, file);
      }
    }
    list_->setCurrentItem(chosenItem());
    remove_->setEnabled(list_->currentItem() && !list_->currentItem()->data(kFileRole).toString().isEmpty());
  }

  // Null where a custom sound is chosen whose file is gone.
  QListWidgetItem* chosenItem() const {
    const auto sound = settings_.snippetExpansionSound();
    const bool isCustom = sound == SnippetExpansionSound::custom;
    const auto text =
        isCustom ? QString::fromStdString(settings_.customSnippetSound()) : toQString(displayString(sound));
    for (const auto* const item : list_->findItems(text, Qt::MatchExactly)) {
      if (item->data(kFileRole).toString().isEmpty() != isCustom) return list_->item(list_->row(item));
    }
    return nullptr;
  }

  void take(const QListWidgetItem* item) {
    if (!item) return;
    const auto file = item->data(kFileRole).toString().toStdString();
    if (file.empty()) {
      const auto sound = snippetExpansionSound(item->text().toStdString());
      settings_.setSnippetExpansionSound(sound.value_or(SnippetExpansionSound::magnet));
    } else {
      settings_.setCustomSnippetSound(file);
      settings_.setSnippetExpansionSound(SnippetExpansionSound::custom);
    }
    notice_->hide();
    sound_.play();
  }

  void choose() {
    auto* const dialog = new QFileDialog(this, localizedText(u"Add Sound"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters(
        {localizedText(u"Sounds") + QStringLiteral(" (*.wav *.flac *.ogg *.oga *.opus *.aiff *.aif *.mp3)"),
         localizedText(u"All files") + QStringLiteral(" (*)")});
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) { add(file); });
    dialog->open();
  }

  void add(const QString& file) {
    const std::filesystem::path path = file.toStdString();
    const auto addition = sound_.addCustomSound(path);
    if (addition == SoundManager::Addition::added) {
      settings_.setCustomSnippetSound(path.filename().string());
      settings_.setSnippetExpansionSound(SnippetExpansionSound::custom);
      sound_.play();
    }
    notice_->setText(addition == SoundManager::Addition::tooLong
                         ? localizedText(u"That sound is longer than 4 seconds, so it was not added.")
                         : localizedText(u"That file holds no sound that Quorlo can play."));
    notice_->setVisible(addition != SoundManager::Addition::added);
  }

  void removeCurrent() {
    if (const auto* const item = list_->currentItem()) {
      sound_.removeCustomSound(item->data(kFileRole).toString().toStdString());
    }
  }

  SettingsController& settings_;
  SoundManager& sound_;
  QListWidget* list_ = new QListWidget;
  QPushButton* remove_ = new QPushButton(localizedText(u"Remove"));
  QLabel* notice_ = nullptr;
  std::vector<std::pair<QString, QString>> shown_;
};

}  // namespace

SettingsPage* makeSoundsPage(const SettingsServices& services) {
  return new SoundsPage(services);
}

}  // namespace quorlo
