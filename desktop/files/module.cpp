#include "desktop/files/module.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLibrary>
#include <iostream>

namespace desktop {

void* functionOfModule(const char* module, const char* function) {
  QLibrary library(QCoreApplication::applicationDirPath() +
                   QStringLiteral("/" VIRELUNE_MODULES "/") + QLatin1String(module));
  const auto found = library.resolve(function);
  if (found == nullptr) {
    std::cerr << "virelune-widget: " << library.errorString().toStdString() << std::endl;
  }
  return reinterpret_cast<void*>(found);
}

}  // namespace desktop
