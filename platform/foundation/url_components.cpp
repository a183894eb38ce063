#include "platform/foundation/url_components.h"

namespace platform {

std::optional<NSURLComponents> NSURLComponents::componentsWithString(std::string_view text) {
  NSURLComponents components;
  const std::size_t colon = text.find_first_of(":/?#");
  if (colon == 0 && text[colon] == ':') return std::nullopt;
  if (colon != std::string_view::npos && text[colon] == ':') {
    components.scheme_ = text.substr(0, colon);
    text.remove_prefix(colon + 1);
  }
  if (const std::size_t hash = text.find('#'); hash != std::string_view::npos) {
    components.fragment_ = text.substr(hash + 1);
    text = text.substr(0, hash);
  }
  if (const std::size_t mark = text.find('?'); mark != std::string_view::npos) {
    components.query_ = text.substr(mark + 1);
    text = text.substr(0, mark);
  }
  components.hierarchy_ = text;

  NSURLComponents complete = components;
  if (complete.scheme_.empty()) complete.scheme_ = "https";
  return complete.url() ? std::optional(components) : std::nullopt;
}

std::optional<std::vector<NSURLQueryItem>> NSURLComponents::percentEncodedQueryItems() const {
  if (!query_) return std::nullopt;
  std::vector<NSURLQueryItem> items;
  if (query_->empty()) return items;
  const std::string_view query = *query_;
  for (std::size_t begin = 0, end = 0; end != query.npos; begin = end + 1) {
    end = query.find('&', begin);
    const std::string_view item = query.substr(begin, end - begin);
    const std::size_t equals = item.find('=');
    items.push_back({std::string(item.substr(0, equals)), std::nullopt});
    if (equals != std::string_view::npos) items.back().value = item.substr(equals + 1);
  }
  return items;
}

void NSURLComponents::setPercentEncodedQueryItems(const std::vector<NSURLQueryItem>& items) {
  query_.emplace();
  for (const NSURLQueryItem& item : items) {
    if (&item != &items.front()) *query_ += '&';
    *query_ += item.name;
    if (item.value) *query_ += '=' + *item.value;
  }
}

std::optional<URL> NSURLComponents::url() const {
  std::string text = scheme_ + ':' + hierarchy_;
  if (query_) text += '?' + *query_;
  if (fragment_) text += '#' + *fragment_;
  return URL::fromText(text);
}

}  // namespace platform
