#include "demo/demo_cover.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <numbers>
#include <span>
#include <string_view>
#include <vector>

namespace demo {

namespace {

constexpr std::uint32_t side = 300;  // pixels

struct Color {
  double red, green, blue;
};

constexpr Color rgb(std::uint32_t value) {
  return {static_cast<double>(value >> 16 & 255), static_cast<double>(value >> 8 & 255),
          static_cast<double>(value & 255)};
}

Color mix(Color from, Color to, double part) {
  const double amount = std::clamp(part, 0.0, 1.0);
  return {std::lerp(from.red, to.red, amount), std::lerp(from.green, to.green, amount),
          std::lerp(from.blue, to.blue, amount)};
}

/// How much of a pixel lies inside a shape, by its distance outside the edge (in sides).
double inside(double distance) { return std::clamp(0.5 - distance * side, 0.0, 1.0); }

// Every design answers the colour at (x, y), both from 0 to 1, y downwards.

Color sunrise(double x, double y) {
  const Color sky = y < 0.45 ? mix(rgb(0x1b1446), rgb(0x8a2f7c), y / 0.45)
                             : mix(rgb(0x8a2f7c), rgb(0xff9152), (y - 0.45) / 0.27);
  const double sun = std::hypot(x - 0.5, y - 0.56) - 0.27;
  const double gap = std::abs(std::remainder(y - 0.5, 0.055)) - (y - 0.44) * 0.055;
  const double cut = y > 0.48 ? inside(gap) : 0;
  const Color disc = mix(rgb(0xfff0a0), rgb(0xff4f7b), (y - 0.29) / 0.45);
  const Color lit = mix(sky, disc, inside(sun) * (1 - cut));
  const double glint = std::abs(x - 0.5) - 0.05 - 0.12 * std::abs(std::sin(y * 160));
  const Color sea = mix(mix(rgb(0x5b2a86), rgb(0x0e0a2e), (y - 0.74) / 0.26), rgb(0xff9a76),
                        inside(glint) * (1.0 - (y - 0.74) * 3.2));
  return mix(lit, sea, inside(0.74 - y));
}

Color rings(double x, double y) {
  const std::array<Color, 4> palette = {rgb(0xf6efe0), rgb(0xf2684a), rgb(0xf6b24a), rgb(0x1f8a86)};
  Color color = mix(rgb(0x0d3b45), rgb(0x0a2530), y);
  for (int ring = 9; ring >= 0; --ring) {
    const double radius = 0.06 + 0.075 * ring;
    const double edge = std::hypot(x - 0.36 - 0.012 * ring, y - 0.62 + 0.016 * ring) - radius;
    color = mix(color, palette[static_cast<std::size_t>(ring) % palette.size()], inside(edge));
  }
  return color;
}

Color mountains(double x, double y) {
  Color color = mix(rgb(0x2b5d8a), rgb(0xf7d9b0), y / 0.7);
  color = mix(color, rgb(0xfff6e3), inside(std::hypot(x - 0.7, y - 0.26) - 0.085));
  const std::array<Color, 4> ranges = {rgb(0x9fb4c2), rgb(0x6a8aa3), rgb(0x3b5f7d), rgb(0x18324a)};
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    const auto step = static_cast<double>(i);
    const double height = 0.46 + 0.135 * step;
    if (y < height - 0.15) break;  // above the highest peak of this range and those before it
    const double ridge = height - 0.09 * std::sin(x * (5.2 + step) + step * 2.1) -
                         0.035 * std::sin(x * (17 + 3 * step) + step) -
                         0.012 * std::abs(std::sin(x * (41 + 7 * step)));
    color = mix(color, mix(ranges[i], rgb(0xf7e3c8), (y - ridge) * 0.9), inside(ridge - y));
  }
  return color;
}

Color petals(double x, double y) {
  const std::array<Color, 4> palette = {rgb(0xe8507a), rgb(0xf58aa0), rgb(0xfbb9bd), rgb(0xfff1dc)};
  const double radius = std::hypot(x - 0.5, y - 0.5);
  const double angle = std::atan2(y - 0.5, x - 0.5);
  Color color = mix(rgb(0x6fb7a8), rgb(0x2f6f73), radius * 1.4);
  for (std::size_t i = 0; i < palette.size(); ++i) {
    const auto step = static_cast<double>(i);
    const double turn = angle * 2.5 + step * std::numbers::pi / 2;
    const double edge = (0.44 - 0.095 * step) * (0.62 + 0.38 * std::abs(std::cos(turn)));
    color = mix(color, palette[i], inside((radius - edge) * 0.8));
  }
  return mix(color, rgb(0xf3b63f), inside(radius - 0.055));
}

Color stripes(double x, double y) {
  const std::array<Color, 5> palette = {rgb(0x22223b), rgb(0x4a4e69), rgb(0xc9705f), rgb(0xf2b880),
                                        rgb(0xf4e9cd)};
  const double along = (x + y) * 3.5;
  const auto band = static_cast<std::size_t>(along);
  const double start = along - std::floor(along);
  const Color here = palette[band % palette.size()];
  const Color before = palette[(band + palette.size() - 1) % palette.size()];
  const Color color =
      mix(mix(before, here, inside(-start / 4.95)), rgb(0x000000), 0.16 * (1 - start / 0.22));
  const double circle = std::hypot(x - 0.68, y - 0.34) - 0.2;
  const Color inverse = palette[(band + 3) % palette.size()];
  return mix(color, inverse, inside(circle));
}

Color waves(double x, double y) {
  Color color = mix(rgb(0xfdf3dc), rgb(0xf9c99a), y * 2.2);
  color = mix(color, rgb(0xf0684c), inside(std::hypot(x - 0.3, y - 0.27) - 0.12));
  for (int i = 0; i < 7; ++i) {
    const double level = 0.36 + 0.095 * i;
    if (y < level - 0.04) break;  // above this wave and those before it
    const double crest = level + 0.028 * std::sin(x * (7 + i % 3) + i * 1.9);
    const Color water = mix(rgb(0x8fd3d1), rgb(0x0c2f55), i / 6.0);
    color = mix(color, mix(mix(water, rgb(0xffffff), 0.35), water, (y - crest) * 22),
                inside(crest - y));
  }
  return color;
}

Color colorAt(CoverDesign design, double x, double y) {
  switch (design) {
    case CoverDesign::sunrise:
      return sunrise(x, y);
    case CoverDesign::rings:
      return rings(x, y);
    case CoverDesign::mountains:
      return mountains(x, y);
    case CoverDesign::petals:
      return petals(x, y);
    case CoverDesign::stripes:
      return stripes(x, y);
    case CoverDesign::waves:
      return waves(x, y);
  }
  return {};
}

using Bytes = std::vector<std::uint8_t>;

void append32(Bytes& bytes, std::uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) {
    bytes.push_back(static_cast<std::uint8_t>(value >> shift & 255));
  }
}

/// The rows of a truecolour PNG, each after its filter type (0, none).
Bytes rowsOf(CoverDesign design) {
  Bytes rows;
  rows.reserve(side * (3 * side + 1));
  for (std::uint32_t row = 0; row < side; ++row) {
    rows.push_back(0);
    for (std::uint32_t column = 0; column < side; ++column) {
      const Color color = colorAt(design, (column + 0.5) / side, (row + 0.5) / side);
      for (const double part : {color.red, color.green, color.blue}) {
        rows.push_back(static_cast<std::uint8_t>(std::clamp(part, 0.0, 255.0) + 0.5));
      }
    }
  }
  return rows;
}

/// The bytes as a zlib stream of stored blocks (RFC 1950 and 1951): larger than need be, but read
/// only by ourselves, once.
Bytes zlibStream(std::span<const std::uint8_t> bytes) {
  constexpr std::size_t largestBlock = 65535;
  Bytes stream = {0x78, 0x01};
  for (std::size_t start = 0; start < bytes.size(); start += largestBlock) {
    const auto block = bytes.subspan(start, std::min(largestBlock, bytes.size() - start));
    const bool last = start + block.size() == bytes.size();
    stream.push_back(last ? 1 : 0);
    for (const std::size_t length : {block.size(), ~block.size()}) {
      stream.push_back(static_cast<std::uint8_t>(length & 255));
      stream.push_back(static_cast<std::uint8_t>(length >> 8 & 255));
    }
    stream.insert(stream.end(), block.begin(), block.end());
  }
  std::uint32_t a = 1;
  std::uint32_t b = 0;
  constexpr std::size_t safeRun = 5552;  // so many bytes cannot overflow the sums
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    a += bytes[i];
    b += a;
    if ((i + 1) % safeRun == 0) {
      a %= 65521;
      b %= 65521;
    }
  }
  a %= 65521;
  b %= 65521;
  append32(stream, b << 16 | a);
  return stream;
}

constexpr std::array<std::uint32_t, 256> crcTable() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t i = 0; i < table.size(); ++i) {
    std::uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) value = value >> 1 ^ (value & 1 ? 0xedb88320u : 0u);
    table[i] = value;
  }
  return table;
}

void appendChunk(Bytes& image, std::string_view type, std::span<const std::uint8_t> content) {
  static constexpr auto crcValues = crcTable();
  append32(image, static_cast<std::uint32_t>(content.size()));
  const std::size_t start = image.size();
  image.insert(image.end(), type.begin(), type.end());
  image.insert(image.end(), content.begin(), content.end());
  std::uint32_t crc = 0xffffffffu;
  for (std::size_t i = start; i < image.size(); ++i) {
    crc = crcValues[(crc ^ image[i]) & 255] ^ crc >> 8;
  }
  append32(image, ~crc);
}

}  // namespace

platform::Data coverPNG(CoverDesign design) {
  Bytes header;
  append32(header, side);
  append32(header, side);
  header.insert(header.end(), {8, 2, 0, 0, 0});  // eight bits, truecolour, not interlaced
  Bytes image = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
  appendChunk(image, "IHDR", header);
  appendChunk(image, "IDAT", zlibStream(rowsOf(design)));
  appendChunk(image, "IEND", {});
  return platform::Data(std::move(image));
}

const platform::Data& Cover::bytes() const {
  if (const auto* bytes = std::get_if<platform::Data>(&content_)) return *bytes;
  static std::map<CoverDesign, platform::Data> drawn;
  platform::Data& image = drawn[std::get<CoverDesign>(content_)];
  if (image.isEmpty()) image = coverPNG(std::get<CoverDesign>(content_));
  return image;
}

}  // namespace demo
