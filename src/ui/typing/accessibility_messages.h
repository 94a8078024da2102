#pragma once

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QList>
#include <QMetaType>
#include <QString>

namespace quorlo {

// A part of a program's windows, as the accessibility bus names it.
struct AccessibleReference {
  QString program;
  QDBusObjectPath path;
};

// What Collection.GetMatches of the accessibility bus takes to find the password field with the focus.
struct FocusedPasswordRule {};

inline constexpr uint kPasswordRole = 40;

// Once, before these are sent or received.
void registerAccessibilityMessages();

QDBusArgument& operator<<(QDBusArgument& out, const AccessibleReference& reference);
const QDBusArgument& operator>>(const QDBusArgument& in, AccessibleReference& reference);
QDBusArgument& operator<<(QDBusArgument& out, const FocusedPasswordRule& rule);
const QDBusArgument& operator>>(const QDBusArgument& in, FocusedPasswordRule& rule);  // never received

}  // namespace quorlo

Q_DECLARE_METATYPE(quorlo::AccessibleReference)
Q_DECLARE_METATYPE(quorlo::FocusedPasswordRule)
