#include "desktop/program/resources.h"

#include <QtCore/QLocale>
#include <utility>
#include <vector>

namespace desktop {

std::unique_ptr<platform::NSBundle> openBundle(const std::filesystem::path& path) {
  std::vector<std::string> languages;
  for (const QString& language : QLocale::system().uiLanguages()) {
    languages.push_back(language.toStdString());
  }
  return platform::NSBundle::bundleWithPath(path.string(), std::move(languages));
}

}  // namespace desktop
