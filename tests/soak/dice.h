// Random choices of a client.
#pragma once

#include <initializer_list>
#include <random>

namespace oct::test {

class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}
  int below(int count) { return std::uniform_int_distribution<int>(0, count - 1)(engine_); }
  bool flip() { return below(2) == 1; }
  int of(std::initializer_list<int> values) { return values.begin()[below(static_cast<int>(values.size()))]; }
  int size() { return of({-1, 0, 1, 2, 9, 33}); }
  double real() { return std::uniform_real_distribution<double>(-2.0, 2.0)(engine_); }

 private:
  std::mt19937 engine_;
};

}  // namespace oct::test
