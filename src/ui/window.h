// An object tied to one window, with a virtual operation for each message that it handles.
#ifndef NVSUPPORT_UI_WINDOW_H
#define NVSUPPORT_UI_WINDOW_H

#include "platform/platform.h"

namespace nvsupport {

class Window {
 public:
  // If a window is given, the object is tied to it at once.
  explicit Window(HWND window = nullptr);
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  virtual void onPaint() {}
  virtual void onDestroy() {}
  virtual void onCommand(int /*id*/, HWND /*control*/, int /*code*/) {}
  virtual LRESULT onNotify(WPARAM wParam, LPARAM lParam);
  virtual void onLeftButton(bool /*doubleClick*/, int /*x*/, int /*y*/, WPARAM /*keys*/) {}
  virtual void onTimer(WPARAM /*id*/) {}
  virtual void onSize(int /*width*/, int /*height*/) {}
  // Destroys the window if it still lives.
  virtual ~Window();
  virtual LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam);

  static LRESULT CALLBACK wndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

 protected:
  HWND hwnd = nullptr;  // null until tied, null again once the window has processed WM_DESTROY
};

}  // namespace nvsupport

#endif
