#include "desktop/compositing.h"

#include <QtCore/QLibrary>
#include <QtGui/QGuiApplication>

namespace desktop {

bool isScreenComposited() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 == nullptr || x11->display() == nullptr) return true;

  // Qt has this library loaded, and two of its calls are all that is needed.
  using Atom = unsigned long;
  using Window = unsigned long;
  using InternAtom = Atom (*)(Display*, const char*, int);
  using GetSelectionOwner = Window (*)(Display*, Atom);
  QLibrary library("X11", 6);
  const auto internAtom = reinterpret_cast<InternAtom>(library.resolve("XInternAtom"));
  const auto getSelectionOwner =
      reinterpret_cast<GetSelectionOwner>(library.resolve("XGetSelectionOwner"));
  if (internAtom == nullptr || getSelectionOwner == nullptr) return true;
  return getSelectionOwner(x11->display(), internAtom(x11->display(), "_NET_WM_CM_S0", 0)) != 0;
}

}  // namespace desktop
