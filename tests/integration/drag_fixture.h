// The artwork dragged out of the program with a pointer, on an X display of the test's own.
#pragma once

#include <gmock/gmock.h>

#include <QtDBus/QDBusConnectionInterface>
#include <QtGui/QImageReader>

#include "tests/integration/processes.h"
#include "tests/support/temporary_folder.h"

namespace tests {

constexpr const char* droppedName = "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}-[0-9]{2}-[0-9]{2}\\.jpg";

/// The names of a folder's files; none when there is no folder.
inline std::vector<std::string> filesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    names.push_back(entry.path().filename());
  }
  return names;
}

class DragOut : public testing::Test {
 protected:
  DragOut() : environment_(display_.environment()) {
    for (const auto& path : {home, runtime, target}) std::filesystem::create_directory(path);
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
    for (const auto& [name, value] : {std::pair("GDK_BACKEND", "x11"),
                                      {"NO_AT_BRIDGE", "1"},
                                      {"GIO_USE_VFS", "local"},
                                      {"HOME", home.c_str()},
                                      {"XDG_RUNTIME_DIR", runtime.c_str()}}) {
      environment_[name] = value;
    }
    for (const char* kind : {"DATA", "CONFIG", "STATE"}) {
      environment_[QString("XDG_%1_HOME").arg(kind)] = QString((home / kind).c_str());
    }
    // What the bus starts is to find its settings there, too.
    outputOf("dbus-update-activation-environment", {"--all"}, environment_);
    widget_ = start("virelune-widget", VIRELUNE_PROGRAM, {"--demo", "--scale=1"});
  }

  ~DragOut() override {
    // The settings service would save the file manager's into the folder that goes now.
    const auto service = bus.connection().interface()->servicePid("org.xfce.Xfconf");
    if (service.isValid()) ::kill(static_cast<pid_t>(service.value()), SIGKILL);
  }

  /// Starts a program and waits for its window of that class.
  std::unique_ptr<Program> start(const char* windowClass, const char* name,
                                 const QStringList& arguments) {
    auto program = std::make_unique<Program>(QString::fromUtf8(name), arguments, environment_);
    display_.window(windowClass);
    return program;
  }

  /// Drags the artwork to the middle of the other program's window until something comes of it.
  bool drop(const std::function<bool()>& isDone) const {
    // A program that is not ready yet refuses the drop, which then leaves no trace.
    constexpr int attempts = 5;
    const QString card = display_.window("virelune-widget");
    for (int attempt = 0; attempt < attempts; ++attempt) {
      display_.xdotool(QString("mousemove --window %1 30 60 mousedown 1 mousemove_relative 2 2 "
                               "sleep 0.2 mousemove 600 300 sleep 0.1 mousemove 450 330 sleep 0.3 "
                               "mousemove 400 300 sleep 0.3 mousemove 401 301 sleep 0.5 mouseup 1")
                           .arg(card));
      if (waitUntil(isDone, std::chrono::seconds(4))) return true;
    }
    return false;
  }

  /// Whether there is a file in the target that is written to its end.
  bool isSaved() const {
    const auto files = filesIn(target);
    return !files.empty() && !files.front().starts_with('.');
  }
  /// Expects the cover in a folder, alone.
  static void expectCoverIn(const std::filesystem::path& folder) {
    ASSERT_THAT(filesIn(folder), testing::ElementsAre(testing::MatchesRegex(droppedName)));
    QImageReader file(QString::fromStdString(folder / filesIn(folder).front()));
    EXPECT_EQ(file.format(), "jpeg");
    EXPECT_EQ(file.size(), QImageReader(VIRELUNE_TEST_BUNDLE "/covers/sunrise.png").size());
  }

  const PrivateBus bus;
  const TemporaryFolder folder;
  const std::filesystem::path home = folder.path() / "home";
  const std::filesystem::path runtime = folder.path() / "runtime";
  const std::filesystem::path target = folder.path() / "target";
  const std::filesystem::path waiting = runtime / "virelune-widget-drops";

 private:
  const Display display_{bus};
  Environment environment_;
  std::unique_ptr<Program> widget_;
};

}  // namespace tests
