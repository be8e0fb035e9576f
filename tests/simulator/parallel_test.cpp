#include "base/parallel.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace oct::simulator {
namespace {

TEST(ParallelRanges, CoversEveryItemOnce) {
  for (const int workers : {0, 1, 3, 50})
    for (const int count : {0, 1, 7, 100}) {
      std::vector<int> visits(count);
      parallelRanges(count, workers, [&](int begin, int end) {
        for (int i = begin; i < end; ++i) ++visits[i];
      });
      EXPECT_EQ(visits, std::vector<int>(count, 1)) << workers << " workers, " << count << " items";
    }
}

TEST(ParallelRanges, PassesOnAnExceptionOfAnyWorker) {
  for (const int faulty : {0, 5, 9})
    EXPECT_THROW(parallelRanges(10, 4,
                                [&](int begin, int end) {
                                  if (begin <= faulty && faulty < end) throw std::runtime_error("fault");
                                }),
                 std::runtime_error);
}

}  // namespace
}  // namespace oct::simulator
