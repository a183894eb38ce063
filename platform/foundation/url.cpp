#include "platform/foundation/url.h"

#include <algorithm>
#include <charconv>

#include "platform/foundation/text.h"

namespace platform {

namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isUnreserved(char c) {
  return isLetter(c) || isDigit(c) || std::string_view("-._~").find(c) != std::string_view::npos;
}

int hexadecimalValue(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool isEscape(std::string_view text, std::size_t at) {
  return text[at] == '%' && at + 2 < text.size() && hexadecimalValue(text[at + 1]) >= 0 &&
         hexadecimalValue(text[at + 2]) >= 0;
}

/// True when all characters are allowed somewhere in an address and all escapes are whole.
bool hasOnlyAllowedCharacters(std::string_view text) {
  bool inFragment = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    if (isUnreserved(c) || isEscape(text, at)) continue;
    if (c == '#') {
      if (inFragment) return false;
      inFragment = true;
      continue;
    }
    if (std::string_view(":/?@!$&'()*+,;=[]").find(c) == std::string_view::npos) return false;
  }
  return true;
}

std::size_t schemeLength(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos || colon == 0 || !isLetter(text[0])) return 0;
  const auto allowed = [](char c) {
    return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
  };
  const std::string_view scheme = text.substr(0, colon);
  return std::all_of(scheme.begin(), scheme.end(), allowed) ? colon : 0;
}

constexpr std::string_view allowedInPath = "/!$&'()*+,;=:@";
constexpr std::string_view allowedInQuery = "!$&'()*+,;=:@/?";

/// Encodes every byte that is neither unreserved nor one of the allowed characters.
std::string percentEncoded(std::string_view text, std::string_view allowed) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    if (isUnreserved(c) || allowed.find(c) != std::string_view::npos) {
      encoded += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    encoded += '%';
    encoded += digits[byte >> 4U];
    encoded += digits[byte & 15U];
  }
  return encoded;
}

struct Pieces {
  bool hasAuthority = false;
  std::string_view host;
  std::string_view port;
  std::string_view path;
};

/// The pieces behind the scheme (RFC 3986, appendix B).
Pieces pieces(std::string_view text) {
  Pieces result;
  std::string_view rest = text.substr(schemeLength(text) + 1);
  rest = rest.substr(0, rest.find_first_of("?#"));
  if (rest.starts_with("//")) {
    result.hasAuthority = true;
    rest.remove_prefix(2);
    std::string_view authority = rest.substr(0, rest.find('/'));
    rest.remove_prefix(authority.size());
    if (const auto at = authority.rfind('@'); at != std::string_view::npos) {
      authority.remove_prefix(at + 1);
    }
    const std::size_t bracket = authority.rfind(']');
    const std::size_t colon = authority.find(':', bracket == std::string_view::npos ? 0 : bracket);
    result.host = authority.substr(0, colon);
    if (colon != std::string_view::npos) result.port = authority.substr(colon + 1);
  }
  result.path = rest;
  return result;
}

bool hasSoundAuthority(const Pieces& pieces) {
  if (!pieces.hasAuthority) return true;
  const bool literal = pieces.host.starts_with('[') && pieces.host.ends_with(']');
  if (!literal && pieces.host.find_first_of("[]:") != std::string_view::npos) return false;
  if (pieces.port.empty()) return true;
  unsigned port = 0;
  const char* end = pieces.port.data() + pieces.port.size();
  const auto parsed = std::from_chars(pieces.port.data(), end, port);
  return parsed.ec == std::errc() && parsed.ptr == end && port <= 65535;
}

}  // namespace

std::string percentDecoded(std::string_view text) {
  std::string decoded;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!isEscape(text, at)) {
      decoded += text[at];
      continue;
    }
    decoded +=
        static_cast<char>(hexadecimalValue(text[at + 1]) * 16 + hexadecimalValue(text[at + 2]));
    at += 2;
  }
  return decoded;
}

std::string percentEncodedForQuery(std::string_view text) {
  return percentEncoded(text, allowedInQuery);
}

std::optional<URL> URLByAppendingPathComponent(const URL& url, std::string_view name,
                                               bool isDirectory) {
  std::string text = url.absoluteString();
  if (!text.ends_with('/')) text += '/';
  text += percentEncoded(name, allowedInPath);
  if (isDirectory && !text.ends_with('/')) text += '/';
  return URL::fromText(text);
}

std::optional<URL> URLByAppendingPathExtension(const URL& url, std::string_view extension) {
  return URL::fromText(url.absoluteString() + '.' + percentEncoded(extension, allowedInPath));
}

std::optional<URL> URL::fromText(std::string_view text) {
  if (schemeLength(text) == 0 || !hasOnlyAllowedCharacters(text)) return std::nullopt;
  const Pieces found = pieces(text);
  if (!hasSoundAuthority(found)) return std::nullopt;
  if (found.path.find_first_of("[]") != std::string_view::npos) return std::nullopt;
  return URL(std::string(text));
}

std::optional<URL> URL::fileURLWithPath(std::string_view absolutePath) {
  if (!absolutePath.starts_with('/')) return std::nullopt;
  return URL("file://" + percentEncoded(absolutePath, allowedInPath));
}

std::string URL::scheme() const {
  return lowerCaseASCII(std::string_view(text_).substr(0, schemeLength(text_)));
}

std::string URL::host() const { return std::string(pieces(text_).host); }

std::string URL::path() const { return percentDecoded(pieces(text_).path); }

std::optional<std::string> URL::filePath() const {
  const std::string where = host();
  if (scheme() != "file" || (!where.empty() && where != "localhost")) return std::nullopt;
  std::string decoded = path();
  if (decoded.empty() || decoded.find('\0') != std::string::npos) return std::nullopt;
  return decoded;
}

}  // namespace platform
