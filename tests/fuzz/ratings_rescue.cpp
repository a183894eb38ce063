#include <algorithm>

#include "desktop/ratings/rescue.h"
#include "tests/fuzz/input.h"

using fuzz::require;

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const desktop::RescueSource source{static_cast<std::int64_t>(length),
                                     [=](std::int64_t offset, std::span<std::uint8_t> wanted) {
                                       const auto begin = static_cast<std::size_t>(offset);
                                       require(offset >= 0);
                                       if (begin > length || wanted.size() > length - begin)
                                         return false;
                                       std::copy_n(bytes + begin, wanted.size(), wanted.begin());
                                       return true;
                                     }};
  for (const desktop::RescueSource* log :
       {static_cast<const desktop::RescueSource*>(nullptr), &source}) {
    const auto pages = desktop::rescueRows(source, log, [](const desktop::RescuedRow& row) {
      require(row.digest.size() == 16);
      const desktop::RatingsRecord& record = row.record;
      require(!row.hasMarks || record.marks != desktop::Marks{});
      require(record.marks.rating.value_or(0) >= 0 && record.marks.rating.value_or(0) <= 100);
      require(record.ratingChanged >= 0 && record.lovedChanged >= 0);
      return true;
    });
    require(pages.unreadable >= 0 && pages.unreadable <= pages.all);
  }
  return 0;
}
