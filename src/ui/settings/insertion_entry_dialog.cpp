#include "ui/settings/insertion_entry_dialog.h"

#include "platform/workspace.h"
#include "ui/mnemonics.h"
#include "ui/qt_text.h"
#include "ui/settings/application_chooser.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <string_view>

namespace quorlo {
namespace {

constexpr std::string_view kOwnKeys = "keys";

// What the list of methods holds for the profile: its text form, or that of the field for the keys.
QString methodOf(InsertionProfile profile) {
  profile.pauseAfterCaretMoves = Seconds(0);
  const auto text = QString::fromStdString(toText(profile));
  return text.startsWith(QLatin1String("paste")) && text != QLatin1String("paste Shift+Insert")
             ? QString::fromUtf8(kOwnKeys.data())
             : text;
}

}  // namespace

InsertionEntryDialog::InsertionEntryDialog(const InsertionEntry& entry, const Workspace& workspace,
                                           QWidget* parent)
    : QDialog(parent),
      application_(new QLineEdit(QString::fromStdString(entry.application))),
      method_(new QComboBox),
      keys_(new QLineEdit),
      pause_(new QDoubleSpinBox),
      problem_(new QLabel) {
  setWindowTitle(localizedText(u"Way of Pasting"));
  method_->addItem(localizedText(u"Paste with Shift+Insert"), QStringLiteral("paste Shift+Insert"));
  method_->addItem(localizedText(u"Paste as in a terminal"), QStringLiteral("terminal"));
  method_->addItem(localizedText(u"Paste with other keys"), QString::fromUtf8(kOwnKeys.data()));
  method_->addItem(localizedText(u"Type the text"), QStringLiteral("type"));
  method_->addItem(localizedText(u"Paste as usual"), QString());
  method_->addItem(localizedText(u"Expand no abbreviation"), QStringLiteral("off"));
  const bool isNew = entry.application.empty() || entry.profile == InsertionProfile();
  method_->setCurrentIndex(isNew ? 0 : method_->findData(methodOf(entry.profile)));
  keys_->setPlaceholderText(QStringLiteral("Ctrl+Shift+V"));
  keys_->setToolTip(
      localizedText(u"Several combinations, separated by spaces, are pressed one after the other."));
  if (method_->currentData().toString() == QLatin1String(kOwnKeys.data())) {
    InsertionProfile chords;
    chords.pasteChords = entry.profile.pasteChords;
    keys_->setText(QString::fromStdString(toText(chords)).section(QLatin1Char(' '), 1));
  }
  pause_->setRange(0, 5);
  pause_->setSingleStep(0.1);
  pause_->setSuffix(localizedText(u" s"));
  pause_->setValue(entry.profile.pauseAfterCaretMoves.count());

  auto* const choose = new QPushButton(localizedText(u"Choose…"));
  choose->setAutoDefault(false);
  auto* const row = new QHBoxLayout;
  row->addWidget(application_, 1);
  row->addWidget(choose);
  auto* const form = new QFormLayout(this);
  form->addRow(localizedText(u"Application:"), row);
  form->addRow(localizedText(u"Way:"), method_);
  form->addRow(localizedText(u"Keys:"), keys_);
  form->addRow(localizedText(u"Pause after moving the caret:"), pause_);
  problem_->setWordWrap(true);
  form->addRow(problem_);
  auto* const buttons = new QDialogButtonBox;
  accept_ = buttons->addButton(localizedText(u"Save"), QDialogButtonBox::AcceptRole);
  buttons->addButton(localizedText(u"Cancel"), QDialogButtonBox::RejectRole);
  accept_->setDefault(true);
  form->addRow(buttons);
  application_->setAccessibleName(localizedText(u"Application"));
  application_->setPlaceholderText(localizedText(u"Desktop-file identifier or window class"));
  method_->setAccessibleName(localizedText(u"Way"));
  keys_->setAccessibleName(localizedText(u"Keys"));
  pause_->setAccessibleName(localizedText(u"Pause after moving the caret"));

  connect(choose, &QPushButton::clicked, this, [this, &workspace] { this->choose(workspace); });
  connect(application_, &QLineEdit::textChanged, this, [this] { check(); });
  connect(method_, &QComboBox::currentIndexChanged, this, [this] { check(); });
  connect(keys_, &QLineEdit::textChanged, this, [this] { check(); });
  connect(pause_, &QDoubleSpinBox::valueChanged, this, [this] { check(); });
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  check();
  assignMnemonics(*this);
  resize(sizeHint().expandedTo({38 * fontMetrics().lineSpacing(), 0}));
}

InsertionEntry InsertionEntryDialog::entry() const {
  const auto checked = profile();
  return {application_->text().trimmed().toStdString(), checked ? checked.value() : InsertionProfile()};
}

void InsertionEntryDialog::choose(const Workspace& workspace) {
  auto* const chooser = new ApplicationChooser(workspace, this);
  chooser->setAttribute(Qt::WA_DeleteOnClose);
  connect(chooser, &QDialog::accepted, this,
          [this, chooser] { application_->setText(QString::fromStdString(chooser->bundleIdentifier())); });
  chooser->open();
}

Result<InsertionProfile> InsertionEntryDialog::profile() const {
  auto text = method_->currentData().toString();
  if (text == QLatin1String(kOwnKeys.data())) text = QStringLiteral("paste ") + keys_->text();
  if (pause_->value() > 0 || text.isEmpty()) {
    text += QStringLiteral("%1pause %2")
                .arg(text.isEmpty() ? QString() : QStringLiteral(", "))
                .arg(pause_->value());
  }
  return parseInsertionProfile(text.toStdString());
}

// The first thing that keeps the entry from being saved stands below the fields.
void InsertionEntryDialog::check() {
  const bool usesKeys = method_->currentData().toString() == QLatin1String(kOwnKeys.data());
  keys_->setEnabled(usesKeys);
  const auto name = application_->text().trimmed();
  QString problem;
  if (name.isEmpty()) {
    problem = localizedText(u"Choose an application, or write the window class that xprop WM_CLASS prints.");
  } else if (name.contains(QLatin1Char('=')) || name.startsWith(QLatin1Char('#'))) {
    problem = localizedText(u"The name of an application has no = and does not begin with #.");
  } else if (const auto read = profile(); !read) {
    problem = QString::fromStdString(read.error().message);
  }
  problem_->setText(problem);
  accept_->setEnabled(problem.isEmpty());
}

}  // namespace quorlo
