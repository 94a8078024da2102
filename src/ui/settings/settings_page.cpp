#include "ui/settings/settings_page.h"

#include <QApplication>
#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

#include <functional>
#include <utility>

namespace quorlo {
namespace {

QFont scaledFont(double factor) {
  auto font = QApplication::font();
  font.setPointSizeF(font.pointSizeF() * factor);
  return font;
}

}  // namespace

SettingsPage::SettingsPage(SettingsController& settings, std::u16string_view title)
    : settings_(settings), title_(localizedText(title)), column_(new QVBoxLayout(this)) {
  auto* const heading = new QLabel(title_);
  auto font = scaledFont(1.4);
  font.setBold(true);
  heading->setFont(font);
  column_->addWidget(heading);
  column_->addStretch();
  changes_ = settings_.observe([this](Setting) { refresh(); });
}

void SettingsPage::beginGroup(std::u16string_view title) {
  auto* const box = new QGroupBox(localizedText(title));
  group_ = new QFormLayout(box);
  group_->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
  group_->setFormAlignment(Qt::AlignLeading | Qt::AlignTop);
  group_->setLabelAlignment(Qt::AlignLeading);
  column_->insertWidget(column_->count() - 1, box);
}

QCheckBox* SettingsPage::addSwitch(std::u16string_view label, BoolGetter get, BoolSetter set,
                                   std::u16string_view hint) {
  return addSwitch(
      label, [this, get] { return std::invoke(get, settings_); },
      [this, set](bool on) { std::invoke(set, settings_, on); }, hint);
}

QCheckBox* SettingsPage::addSwitch(std::u16string_view label, const std::function<bool()>& get,
                                   std::function<void(bool)> set, std::u16string_view hint) {
  auto* const box = new QCheckBox(localizedText(label));
  group_->addRow(box);
  if (!hint.empty()) box->setAccessibleDescription(addHint(hint)->text());
  // A setting may refuse: the box shows what holds.
  connect(box, &QCheckBox::clicked, this, [box, get, set = std::move(set)](bool on) {
    set(on);
    box->setChecked(get());
  });
  follow([box, get] { box->setChecked(get()); });
  return box;
}

QLabel* SettingsPage::addField(std::u16string_view text, QWidget* field) {
  auto* const label = new QLabel(localizedText(text));
  label->setBuddy(field);
  field->setAccessibleName(label->text());
  group_->addRow(label, field);
  return label;
}

void SettingsPage::addWidget(QWidget* widget) {
  group_->addRow(widget);
}

QLabel* SettingsPage::addHint(std::u16string_view text) {
  auto* const hint = new QLabel(localizedText(text));
  hint->setWordWrap(true);
  hint->setFont(scaledFont(0.9));
  const int indent = hint->fontMetrics().horizontalAdvance(QLatin1Char('m')) * 2;
  hint->setContentsMargins(isRightToLeft() ? 0 : indent, 0, isRightToLeft() ? indent : 0, 0);
  group_->addRow(hint);
  return hint;
}

void SettingsPage::refresh() {
  for (const auto& each : refreshes_) each();
}

void SettingsPage::follow(std::function<void()> refresh) {
  refresh();
  refreshes_.push_back(std::move(refresh));
}

}  // namespace quorlo
