// Web and file addresses (RFC 3986).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// A well-formed address, kept as it was written.
class URL {
 public:
  /// None unless the text is a URI with a scheme: allowed characters only, percent signs
  /// followed by two hexadecimal digits, a sound host and port.
  static std::optional<URL> fromText(std::string_view text);

  /// The address of a file: its absolute path, percent-encoded.
  static std::optional<URL> fileURLWithPath(std::string_view absolutePath);

  const std::string& absoluteString() const { return text_; }
  std::string scheme() const;                   ///< in lower case
  std::string host() const;                     ///< without user and port; may be empty
  std::string path() const;                     ///< percent-decoded
  std::optional<std::string> filePath() const;  ///< local path of a file address
  bool operator==(const URL&) const = default;

 private:
  explicit URL(std::string text) : text_(std::move(text)) {}
  std::string text_;
};

/// Decodes %XX; a malformed escape stands as it is.
std::string percentDecoded(std::string_view text);

/// Encodes every byte that may not stand in a query (RFC 3986, 3.4) as %XX. What may stand there
/// stays, also "&", "=" and "+".
std::string percentEncodedForQuery(std::string_view text);

/// The address of an item in the folder at an address without query and fragment. The address of
/// a folder ends in "/".
std::optional<URL> URLByAppendingPathComponent(const URL& url, std::string_view name,
                                               bool isDirectory);

/// The address of a file with ".extension" after its name.
std::optional<URL> URLByAppendingPathExtension(const URL& url, std::string_view extension);

}  // namespace platform
