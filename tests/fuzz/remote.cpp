#include <array>

#include "desktop/remote/service.h"
#include "desktop/remote/template.h"
#include "platform/platform.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/variants.h"

namespace {

struct NoPlayer final : desktop::PlayerControls {
  std::optional<desktop::PlayerReport> report() override { return std::nullopt; }
  std::optional<desktop::PlayerGlance> glance() override { return std::nullopt; }
  double position() override { return 0; }
  bool can(desktop::PlayerCommand) override { return false; }
  bool command(desktop::PlayerCommand) override { return false; }
  bool seek(double) override { return false; }
  bool setVolume(double) override { return false; }
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  constexpr std::array keys{"address", "artist", "album",       "albumArtist", "title",
                            "length",  "rating", "albumRating", "loved",       "albumLoved"};
  static platform::Platform platform;
  static const platform::PlatformScope scope(platform);
  FuzzedDataProvider provider(bytes, length);
  QObject object;
  NoPlayer player;
  const desktop::Actions actions;
  desktop::Service service(&object, {.actions = actions, .player = player});
  const QDBusMessage message;
  service.SetMarks(fuzz::map(provider, keys, 1), fuzz::map(provider, keys, 1), message);
  fuzz::require(service.Marks(fuzz::map(provider, keys, 1), message).isEmpty());
  service.Act(fuzz::text(provider), fuzz::text(provider), message);
  const QVariantMap status = fuzz::map(provider, keys, 1);
  static_cast<void>(desktop::waybarLine(status));
  const auto line = desktop::filledTemplate(
      QString::fromStdString(provider.ConsumeRemainingBytesAsString()), status);
  fuzz::require(line || !line.problem().text.empty());
  return 0;
}
