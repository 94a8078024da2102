#include "ui/fill_in_fields.h"

#include "base/localized.h"
#include "engine/fill_in/fill_in_session.h"
#include "macros/macro_arguments.h"
#include "ui/qt_text.h"
#include "ui/text_answer_edit.h"

#include <QCalendarWidget>
#include <QDateTime>
#include <QDateTimeEdit>
#include <QListWidget>
#include <QLocale>
#include <QString>

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

constexpr int kMostRows = 7;

QWidget* makeTextInput(FillInSession& session, std::size_t field, const FillInFieldEvents& events) {
  auto* const edit = new TextAnswerEdit(toQString(session.text(field)), events.submitted);
  QObject::connect(edit, &QPlainTextEdit::textChanged, edit,
                   [&session, field, edit, changed = events.changed] {
                     session.setText(field, edit->toPlainText().toStdU16String());
                     changed();
                   });
  return edit;
}

std::vector<std::size_t> chosenRows(const QListWidget& list, bool multiple) {
  std::vector<std::size_t> rows;
  for (int row = 0; row < list.count(); ++row) {
    const bool chosen = multiple ? list.item(row)->checkState() == Qt::Checked : row == list.currentRow();
    if (chosen) rows.push_back(static_cast<std::size_t>(row));
  }
  return rows;
}

// One entry of the list is the current one, or any number of them are checked.
QWidget* makeOptionsInput(FillInSession& session, std::size_t field, const FillInFieldEvents& events) {
  const auto& options = session.fields()[field].options;
  const auto chosen = session.chosen(field);
  auto* const list = new QListWidget;
  // The check marks alone show what is chosen.
  if (options.multiple) list->setSelectionMode(QAbstractItemView::NoSelection);
  for (std::size_t i = 0; i < options.entries.size(); ++i) {
    // A list shows one line for each entry.
    auto* const item = new QListWidgetItem(toQString(options.entries[i]).simplified(), list);
    const bool isChosen = std::ranges::find(chosen, i) != chosen.end();
    if (options.multiple) item->setCheckState(isChosen ? Qt::Checked : Qt::Unchecked);
    if (isChosen) list->setCurrentItem(item);
  }
  const int rows = std::clamp(list->count(), 1, kMostRows);
  const int rowHeight = list->count() > 0 ? list->sizeHintForRow(0) : list->fontMetrics().lineSpacing();
  list->setFixedHeight(rows * rowHeight + 2 * list->frameWidth());
  list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  list->setTabKeyNavigation(false);

  const auto tell = [&session, field, list, multiple = options.multiple, changed = events.changed] {
    session.choose(field, chosenRows(*list, multiple));
    changed();
  };
  if (options.multiple) {
    QObject::connect(list, &QListWidget::itemChanged, list, tell);
  } else {
    QObject::connect(list, &QListWidget::currentRowChanged, list, tell);
    QObject::connect(list, &QListWidget::itemDoubleClicked, list, events.submitted);
  }
  return list;
}

// Years are written in full: two figures would leave the century open.
QString withFullYear(QString format) {
  if (!format.contains(QStringLiteral("yyyy"))) {
    format.replace(QStringLiteral("yy"), QStringLiteral("yyyy"));
  }
  return format;
}

bool asksFor(std::u16string_view length, std::u16string_view macroString) {
  return valueForArgument(length, macroString).value_or(u"none") != u"none";
}

QWidget* makeDateInput(FillInSession& session, std::size_t field, const FillInFieldEvents& events) {
  const auto& macroString = session.fields()[field].macroString;
  const QLocale locale;
  const auto dateFormat = withFullYear(locale.dateFormat(QLocale::ShortFormat));
  const auto timeFormat = locale.timeFormat(QLocale::ShortFormat);
  const bool onlyTime = asksFor(u"timeLength", macroString) && !asksFor(u"dateLength", macroString);
  const bool onlyDate = asksFor(u"dateLength", macroString) && !asksFor(u"timeLength", macroString);

  auto* const edit = new QDateTimeEdit;
  // Before the Gregorian calendar the picker and the text would name different days.
  edit->setDateRange(QDate(1582, 10, 15), QDate(9999, 12, 31));
  edit->setDisplayFormat(onlyTime ? timeFormat : onlyDate ? dateFormat : dateFormat + u' ' + timeFormat);
  edit->setCalendarPopup(!onlyTime);
  edit->setDateTime(QDateTime::fromMSecsSinceEpoch(session.date(field).time_since_epoch().count()));
  QObject::connect(edit, &QDateTimeEdit::dateTimeChanged, edit,
                   [&session, field, changed = events.changed](const QDateTime& picked) {
                     session.pick(field, Moment(std::chrono::milliseconds(picked.toMSecsSinceEpoch())));
                     changed();
                   });
  return edit;
}

}  // namespace

QString labelOfField(const FillInSession& session, std::size_t field) {
  const auto& [type, name, macroString, defaultText, options] = session.fields()[field];
  if (!name.empty()) return toQString(name);
  if (type == MacroType::options) return toQString(localized(u"Options"));
  return toQString(type == MacroType::date ? localized(u"Date") : localized(u"Text"));
}

QWidget* makeFieldInput(FillInSession& session, std::size_t field, const FillInFieldEvents& events) {
  const auto type = session.fields()[field].type;
  auto* const input = type == MacroType::textField ? makeTextInput(session, field, events)
                      : type == MacroType::options ? makeOptionsInput(session, field, events)
                                                   : makeDateInput(session, field, events);
  input->setAccessibleName(labelOfField(session, field));
  input->setAccessibleDescription(toQString(helperText(type)));
  return input;
}

void focusFieldInput(QWidget& input) {
  input.setFocus(Qt::TabFocusReason);
}

}  // namespace quorlo
