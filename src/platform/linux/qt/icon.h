// The icon of dialogs when the host has none.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_ICON_H
#define NVSUPPORT_PLATFORM_LINUX_QT_ICON_H

#include <QIcon>

namespace windowing {

QIcon OwnIcon();

}  // namespace windowing

#endif
