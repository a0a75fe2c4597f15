// The widgets that show a dialog's controls.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_CONTROL_WIDGETS_H
#define NVSUPPORT_PLATFORM_LINUX_QT_CONTROL_WIDGETS_H

#include <QDialog>
#include <QRect>
#include <string>
#include <vector>

#include "windowing/display.h"

namespace windowing {

inline QRect ToQRect(const RECT& r) {
  return {r.left, r.top, r.right - r.left, r.bottom - r.top};
}

// Makes a widget for each control, in their order, owned by the dialog. A label becomes the name of the edit behind it.
std::vector<QWidget*> MakeControlWidgets(const std::vector<ControlView>& controls, QDialog& dialog);

void PlaceControl(QWidget& widget, const RECT& rectangle);
// On a black window, gives the frames of the control a light colour.
void KeepFrameVisible(QWidget& widget);

// Text with '&' marks. If it does not fit it becomes the tool tip, too, since no control is resized.
void ShowControlText(QWidget& widget, const std::string& text);
void ShowCheckState(QWidget& widget, int state);

}  // namespace windowing

#endif
