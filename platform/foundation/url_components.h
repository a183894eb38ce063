// The components of an address, to be changed one by one.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/url.h"

namespace platform {

/// One "name=value" of a query, percent-encoded; no value when there is no "=".
struct NSURLQueryItem {
  std::string name;
  std::optional<std::string> value;
  bool operator==(const NSURLQueryItem&) const = default;
};

/// An address taken apart (RFC 3986, appendix B). Components that nobody changes stay as they
/// were written.
class NSURLComponents {
 public:
  /// None when the text is not an address; one without a scheme is taken.
  static std::optional<NSURLComponents> componentsWithString(std::string_view text);

  /// None without a query.
  std::optional<std::vector<NSURLQueryItem>> percentEncodedQueryItems() const;
  void setPercentEncodedQueryItems(const std::vector<NSURLQueryItem>& items);
  void setScheme(std::string scheme) { scheme_ = std::move(scheme); }

  /// The address of the components; none when they do not form one.
  std::optional<URL> url() const;

 private:
  NSURLComponents() = default;

  std::string scheme_;
  std::string hierarchy_;  // authority and path
  std::optional<std::string> query_;
  std::optional<std::string> fragment_;
};

}  // namespace platform
