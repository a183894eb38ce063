// Backs the ratings up while a card runs.
#pragma once

#include <QtCore/QTimer>
#include <filesystem>
#include <string>

#include "desktop/program/worker_pool.h"

namespace desktop {

/// Looks every hour, on a thread of its own, whether the day's backup is due. Why one cannot be
/// made is told once.
class DailyBackup {
 public:
  explicit DailyBackup(std::filesystem::path store);

 private:
  void begin();

  const std::filesystem::path store_;
  std::string told_;  // used by the one worker only
  WorkerPool worker_{1};
  QTimer timer_;
};

}  // namespace desktop
