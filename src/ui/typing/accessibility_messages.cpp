#include "ui/typing/accessibility_messages.h"

#include <QDBusMetaType>
#include <QMap>
#include <QStringList>

namespace quorlo {
namespace {

constexpr int kFocusedState = 12;
constexpr int kMatchAll = 1;
constexpr int kMatchAny = 2;
constexpr int kBitsOfAWord = 32;

}  // namespace

void registerAccessibilityMessages() {
  qDBusRegisterMetaType<AccessibleReference>();
  qDBusRegisterMetaType<QList<AccessibleReference>>();
  qDBusRegisterMetaType<FocusedPasswordRule>();
  qDBusRegisterMetaType<QMap<QString, QString>>();
}

QDBusArgument& operator<<(QDBusArgument& out, const AccessibleReference& reference) {
  out.beginStructure();
  out << reference.program << reference.path;
  out.endStructure();
  return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, AccessibleReference& reference) {
  in.beginStructure();
  in >> reference.program >> reference.path;
  in.endStructure();
  return in;
}

// States and roles are sets of bits, in words of 32; attributes and interfaces are of no matter.
QDBusArgument& operator<<(QDBusArgument& out, const FocusedPasswordRule&) {
  const QList<int> states{1 << kFocusedState, 0};
  QList<int> roles{0, 0, 0, 0};
  roles[kPasswordRole / kBitsOfAWord] = 1 << (kPasswordRole % kBitsOfAWord);
  out.beginStructure();
  out << states << kMatchAll << QMap<QString, QString>() << kMatchAll << roles << kMatchAny << QStringList()
      << kMatchAll << false;
  out.endStructure();
  return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, FocusedPasswordRule&) {
  return in;
}

}  // namespace quorlo
