// Heads of audio segments, as tests make them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tests {

/// An ID3v2 text frame; the content begins with its encoding byte.
inline std::string frame(std::string_view identifier, std::string_view content) {
  std::string bytes(identifier);
  const auto size = static_cast<std::uint32_t>(content.size());
  for (const unsigned shift : {24U, 16U, 8U, 0U}) bytes += static_cast<char>(size >> shift & 0xFFU);
  return bytes.append(2, '\0').append(content);
}

/// The tag of a segment with all that the station sends.
inline std::string segmentHead(std::string_view title, std::string_view artist,
                               std::string_view album, std::string_view artwork) {
  const auto text = [](std::string_view words) { return "\3" + std::string(words) + '\0'; };
  return std::string("ID3\4\0\0\0\0\x02\x01", 10) + frame("TIT2", text(title)) +
         frame("TPE1", text(artist)) + frame("TALB", text(album)) +
         frame("WXXX", "\3artworkURL_640x" + std::string(1, '\0') + std::string(artwork)) +
         std::string(64, '\xFF');
}

}  // namespace tests
