#include "platform/application/bundle.h"

#include <algorithm>
#include <filesystem>

#include "platform/foundation/property_list.h"
#include "platform/graphics/graphics.h"
#include "platform/platform.h"

namespace platform {

namespace {

/// The languages whose tables may serve a wish, best first: "pt-BR" is served by "pt-BR", then
/// "pt"; Chinese as written on the mainland is the simplified script.
std::vector<std::string> candidates(std::string language) {
  std::replace(language.begin(), language.end(), '_', '-');
  std::vector<std::string> names{language};
  if (language == "zh" || language == "zh-CN" || language == "zh-SG") names.emplace_back("zh-Hans");
  if (language == "pt") names.emplace_back("pt-BR");
  while (language.find('-') != std::string::npos) {
    language.resize(language.rfind('-'));
    names.push_back(language);
  }
  return names;
}

}  // namespace

NSBundle::NSBundle(std::string path, std::vector<std::string> languages)
    : path_(std::move(path)),
      info_(dictionaryWithContentsOfFile(path_ + "/Info.plist").value_or(Dictionary())) {
  languages.emplace_back("en");
  for (const std::string& language : languages) {
    for (std::string& name : candidates(language)) {
      if (std::find(languages_.begin(), languages_.end(), name) != languages_.end()) continue;
      std::error_code error;
      if (std::filesystem::is_directory(path_ + "/" + name + ".lproj", error)) {
        languages_.push_back(std::move(name));
      }
    }
  }
}

std::unique_ptr<NSBundle> NSBundle::bundleWithPath(const std::string& path,
                                                   std::vector<std::string> languages) {
  std::error_code error;
  if (!std::filesystem::is_directory(path, error)) return nullptr;
  return std::make_unique<NSBundle>(path, std::move(languages));
}

NSBundle* NSBundle::mainBundle() { return current().mainBundle; }

void NSBundle::setInfoDictionaryEntry(const std::string& key, Value value) {
  info_.insert_or_assign(key, std::move(value));
}

std::optional<std::string> NSBundle::bundleIdentifier() const {
  const auto entry = info_.find("CFBundleIdentifier");
  if (entry == info_.end()) return std::nullopt;
  const auto identifier = entry->second.as<std::string>();
  return identifier && !identifier->empty() ? identifier : std::nullopt;
}

const Dictionary& NSBundle::table(const std::string& name) {
  const auto known = tables_.find(name);
  if (known != tables_.end()) return known->second;
  Dictionary texts;
  for (const std::string& language : languages_) {
    auto table =
        dictionaryWithContentsOfFile(path_ + "/" + language + ".lproj/" + name + ".strings");
    if (table) texts.merge(*table);  // a better language's entries stay
  }
  return tables_.emplace(name, std::move(texts)).first->second;
}

std::string NSBundle::localizedStringForKey_table(const std::string& key,
                                                  const std::optional<std::string>& tableName) {
  const Dictionary& texts = table(tableName.value_or("Localizable"));
  const auto entry = texts.find(key);
  const auto* text = entry != texts.end() ? entry->second.get<std::string>() : nullptr;
  return text != nullptr ? *text : key;
}

std::shared_ptr<NSImage> NSBundle::imageForResource(const std::string& name) {
  const auto known = images_.find(name);
  if (known != images_.end()) return known->second;
  Graphics* graphics = current().graphics;
  if (graphics == nullptr || name.empty()) return nullptr;
  std::shared_ptr<NSImage> image = graphics->imageAtPath(path_ + "/images/" + name + ".svg");
  if (!image) image = graphics->imageAtPath(path_ + "/images/" + name + ".png");
  images_.emplace(name, image);
  return image;
}

std::shared_ptr<NSImage> imageNamed(const std::string& name) {
  NSBundle* bundle = NSBundle::mainBundle();
  return bundle != nullptr ? bundle->imageForResource(name) : nullptr;
}

}  // namespace platform
