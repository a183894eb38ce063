#include "desktop/program/daily_backup.h"

#include <malloc.h>

#include <chrono>
#include <iostream>

#include "desktop/ratings/backups.h"

namespace desktop {

DailyBackup::DailyBackup(std::filesystem::path store) : store_(std::move(store)) {
  // The start has better things to do.
  timer_.setInterval(std::chrono::minutes(1));
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
    timer_.setInterval(std::chrono::hours(1));
    begin();
  });
  timer_.start();
}

void DailyBackup::begin() {
  worker_.async([this] {
    const auto made = backUpRatings(store_, today());
    ::malloc_trim(0);  // what many entries took is not needed again until tomorrow
    if (made || made.problem().text == told_) return;
    told_ = made.problem().text;
    std::cerr << "virelune-widget: the ratings cannot be backed up: " << told_ << std::endl;
  });
}

}  // namespace desktop
