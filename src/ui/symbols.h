#pragma once

#include "platform/status_item.h"

#include <QIcon>
#include <QStringView>

namespace quorlo {

// A small line drawing, for example symbol(u"folder"): resources/icons/symbols has the names, and those of
// the status images can be had in this way too. Drawn in the colours of the palette that holds while it is
// painted, sharp at any size; an unknown name gives an empty icon and is logged. GUI thread.
QIcon symbol(QStringView name);

QIcon programIcon();

// For a panel whose colour nobody tells: cut out of, or drawn in, a colour that is seen on light and dark.
QIcon statusImage(StatusImage image);

}  // namespace quorlo
