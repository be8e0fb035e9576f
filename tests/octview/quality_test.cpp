// When a volume is drawn coarsely, by a clock and a computer of the test's own.
#include "octview/model/quality.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace oct::app {
namespace {

struct Computer {
  explicit Computer(double full_seconds = 0.4, double seconds_of_all = 0.004)
      : full(full_seconds), overhead(seconds_of_all) {}

  double full;      // seconds of a full picture
  double overhead;  // of every picture
  double now = 10;
  double slowest = 0;  // of the coarse pictures
  int full_pictures = 0;
  Quality last;
  QualityControl control;

  void frame() {
    if (const auto quality = control.wanted(now)) {
      const double seconds = overhead + full * quality->steps / quality->pixels / quality->pixels;
      now += seconds;
      control.drawn(*quality, seconds);
      last = *quality;
      if (last.is_full())
        ++full_pictures;
      else
        slowest = std::max(slowest, seconds);
    }
    now += 1.0 / 120;
  }
  void move(int frames) {
    for (int i = 0; i < frames; ++i) {
      control.moved(now);
      frame();
    }
  }
  void rest(double seconds) {
    for (const double end = now + seconds; now < end;) frame();
  }
};

TEST(Quality, MovingPicturesKeepToTheirTimeAndAreAsFineAsItAllows) {
  for (const double full : {0.03, 0.1, 0.4, 1.5}) {
    Computer computer(full);
    computer.move(30);
    EXPECT_LE(computer.full_pictures, 1) << full;  // the first one, as nothing was known
    computer.slowest = 0;
    computer.move(60);
    EXPECT_LT(computer.slowest, 0.03) << full;
    EXPECT_GT(computer.slowest, full < 1 ? 0.006 : 0) << full;
    EXPECT_FALSE(computer.last.is_full());
    EXPECT_TRUE(computer.control.is_owed());
  }
}

TEST(Quality, FullQualityIsThereWithin300MillisecondsOnce) {
  for (const double full : {0.02, 0.1, 0.22}) {
    Computer computer(full, 0.001);
    computer.move(40);
    computer.rest(1);
    computer.move(40);
    computer.full_pictures = 0;
    computer.rest(0.3);
    EXPECT_TRUE(computer.last.is_full());
    EXPECT_FALSE(computer.control.is_owed());
    computer.rest(2);
    EXPECT_LE(computer.full_pictures, 1);
    EXPECT_FALSE(computer.control.wanted(computer.now));
  }
}

TEST(Quality, AFastComputerDrawsEverythingInFullAndNothingTwice) {
  Computer computer(0.005);
  computer.move(20);
  EXPECT_EQ(computer.full_pictures, 20);
  computer.rest(1);
  EXPECT_EQ(computer.full_pictures, 20);
}

TEST(Quality, ASlowPictureIsForgottenWhenTheNextAreFast) {
  Computer computer(0.005);
  computer.control.moved(computer.now);
  computer.control.drawn({}, 0.5);  // programs were built
  computer.move(10);
  EXPECT_EQ(computer.last.pixels, 1);
  EXPECT_FALSE(computer.last.is_full());
  computer.rest(1);
  computer.move(1);
  EXPECT_TRUE(computer.last.is_full());
}

TEST(Quality, WhatIsReplacedIsDrawnInFullAtOnceThoughSomethingMovedBefore) {
  Computer computer;
  computer.move(10);
  computer.control.replaced();
  EXPECT_EQ(computer.control.wanted(computer.now), Quality{});
}

}  // namespace
}  // namespace oct::app
