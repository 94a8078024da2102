#pragma once

#include "app/settings/settings_controller.h"
#include "base/subscription.h"
#include "ui/qt_text.h"

#include <QComboBox>
#include <QSignalBlocker>
#include <QWidget>

#include <array>
#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

class QCheckBox;
class QFormLayout;
class QLabel;
class QVBoxLayout;

namespace quorlo {

// A page of the settings window: controls in groups, each kept the same as its setting in both directions.
// Texts are base texts, which the page localizes. The settings must outlive the page.
class SettingsPage : public QWidget {
 public:
  SettingsPage(SettingsController& settings, std::u16string_view title);

  const QString& title() const { return title_; }

  // What is added next stands under this heading.
  void beginGroup(std::u16string_view title);

  using BoolGetter = bool (SettingsController::*)() const;
  using BoolSetter = void (SettingsController::*)(bool);
  QCheckBox* addSwitch(std::u16string_view label, BoolGetter get, BoolSetter set,
                       std::u16string_view hint = {});
  QCheckBox* addSwitch(std::u16string_view label, const std::function<bool()>& get,
                       std::function<void(bool)> set, std::u16string_view hint = {});

  // A list of the cases.
  template <class Enum, std::size_t count>
  QComboBox* addChoice(std::u16string_view label, const std::array<Enum, count>& cases,
                       std::u16string (*textOf)(Enum), Enum (SettingsController::*get)() const,
                       void (SettingsController::*set)(Enum)) {
    auto* const box = new QComboBox;
    for (const auto each : cases) box->addItem(toQString(textOf(each)), static_cast<int>(each));
    addField(label, box);
    QObject::connect(box, &QComboBox::activated, this, [this, box, set](int index) {
      std::invoke(set, settings_, static_cast<Enum>(box->itemData(index).toInt()));
    });
    follow([this, box, get] {
      box->setCurrentIndex(box->findData(static_cast<int>(std::invoke(get, settings_))));
    });
    return box;
  }

  // A field with its label in front, which names it to screen readers too.
  QLabel* addField(std::u16string_view label, QWidget* field);
  void addWidget(QWidget* widget);
  // A remark in small print.
  QLabel* addHint(std::u16string_view text);

  // Calls it now and after every change of a setting.
  void follow(std::function<void()> refresh);

 protected:
  // Shows what is stored now.
  void refresh();

 private:
  SettingsController& settings_;
  QString title_;
  QVBoxLayout* column_;
  QFormLayout* group_ = nullptr;
  std::vector<std::function<void()>> refreshes_;
  Subscription changes_;
};

}  // namespace quorlo
