// Every variant of the array routines against the plain loop, and the copies against memcpy, measured in turn
// in the same run. "speed" is the result: how many times as fast as the plain loop, or as memcpy.
#include <chrono>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "median.h"
#include "vec/routines.h"

namespace {

using oct::benchmark_scene::Median;
using oct::vec::InstructionSet;
using oct::vec::Routines;
using oct::vec::routines_of;

// A-scans as the simulated device has them: in the first-level cache.
constexpr std::size_t array_length = 1024;
constexpr int repetitions = 200;

template <class Work>
double seconds(Work&& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  benchmark::ClobberMemory();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Arrays {
  std::vector<float> from = std::vector<float>(2 * array_length);
  std::vector<float> to = std::vector<float>(array_length);
  std::vector<std::uint16_t> counts = std::vector<std::uint16_t>(array_length);

  Arrays() {
    for (std::size_t i = 0; i < from.size(); ++i)
      from[i] = static_cast<float>(i * 2654435761U % 1000U) / 1000.0F;
    for (std::size_t i = 0; i < counts.size(); ++i) counts[i] = static_cast<std::uint16_t>(i * 40503U);
  }
};

using ArrayWork = void (*)(const Routines&, Arrays&);

void extremes(const Routines& routines, Arrays& arrays) {
  benchmark::DoNotOptimize(routines.extremes(arrays.from.data(), array_length));
}
void count_not_above(const Routines& routines, Arrays& arrays) {
  benchmark::DoNotOptimize(routines.count_not_above(arrays.from.data(), array_length, 0.3F));
}
void subtract(const Routines& routines, Arrays& arrays) {
  routines.subtract(arrays.to.data(), arrays.counts.data(), arrays.from.data(), array_length);
}
void powers(const Routines& routines, Arrays& arrays) {
  routines.powers(arrays.to.data(), arrays.from.data(), array_length);
}
void decibels(const Routines& routines, Arrays& arrays) {
  routines.decibels(arrays.to.data(), arrays.from.data(), array_length, 1e-6F);
}
void to_uint16(const Routines& routines, Arrays& arrays) {
  routines.to_uint16(arrays.counts.data(), arrays.from.data(), array_length, 38400.0F, 1280.0F);
}

void to_half(const Routines& routines, Arrays& arrays) {
  routines.to_half(arrays.counts.data(), arrays.from.data(), array_length);
}

void against_plain_loop(benchmark::State& state, ArrayWork work, InstructionSet set) {
  if (!is_supported(set)) return state.SkipWithError("not supported by this processor");
  Arrays arrays;
  const Routines plain = routines_of(InstructionSet::scalar);
  const Routines variant = routines_of(set);
  const auto repeated = [&](const Routines& routines) {
    return seconds([&] {
      for (int i = 0; i < repetitions; ++i) work(routines, arrays);
    });
  };
  Median plain_time, variant_time;
  for (auto _ : state) {
    plain_time.add(repeated(plain));
    variant_time.add(repeated(variant));
  }
  state.counters["speed"] = plain_time.value() / variant_time.value();
  state.counters["ns_per_value"] = variant_time.value() / repetitions / array_length * 1e9;
}

// 1024 samples per A-scan; the destination is not aligned to a cache line.
void against_memcpy(benchmark::State& state, InstructionSet set, std::size_t kept) {
  if (!is_supported(set)) return state.SkipWithError("not supported by this processor");
  constexpr std::size_t samples = 1024;
  const std::size_t a_scans = (static_cast<std::size_t>(state.range(0)) << 20U) / (kept * sizeof(float));
  std::vector<float> from(a_scans * samples, 1.0F);
  std::vector<float> to(a_scans * kept + 16);
  float* const destination = to.data() + 4;
  const Routines routines = routines_of(set);
  const auto variant = [&] {
    if (kept == samples) {
      routines.copy(destination, from.data(), a_scans * samples);
    } else {
      routines.crop_copy(destination, from.data(), a_scans, samples, kept, a_scans * kept);
    }
  };
  const auto plain = [&] {
    if (kept == samples) {
      std::memcpy(destination, from.data(), a_scans * samples * sizeof(float));
    } else {
      for (std::size_t a_scan = 0; a_scan < a_scans; ++a_scan) {
        std::memcpy(destination + a_scan * kept, from.data() + a_scan * samples, kept * sizeof(float));
      }
    }
  };
  Median plain_time, variant_time;
  for (auto _ : state) {
    plain_time.add(seconds(plain));
    variant_time.add(seconds(variant));
  }
  const double gigabytes = static_cast<double>(a_scans * kept * sizeof(float)) * 1e-9;
  state.counters["speed"] = plain_time.value() / variant_time.value();
  state.counters["GB_per_s"] = gigabytes / variant_time.value();
  state.counters["memcpy_GB_per_s"] = gigabytes / plain_time.value();
}

struct Named {
  const char* name;
  InstructionSet set;
};

void register_all() {
  const Named sse{"sse", InstructionSet::sse};
  const Named sse2{"sse2", InstructionSet::sse2};
  const Named sse41{"sse41", InstructionSet::sse41};
  const Named avx{"avx", InstructionSet::avx};
  const Named f16c{"f16c", InstructionSet::f16c};
  const auto arrays = [](const char* name, ArrayWork work, const std::vector<Named>& sets) {
    for (const Named& set : sets) {
      const std::string title = std::string(name) + "/" + set.name;
      benchmark::RegisterBenchmark(title.c_str(), against_plain_loop, work, set.set)
          ->Unit(benchmark::kMicrosecond)
          ->UseRealTime();
    }
  };
  arrays("extremes", extremes, {sse, avx});
  arrays("count_not_above", count_not_above, {sse, avx});
  arrays("subtract", subtract, {sse2});
  arrays("powers", powers, {sse, avx});
  arrays("decibels", decibels, {sse2, avx});
  arrays("to_uint16", to_uint16, {sse2, sse41, avx});
  arrays("to_half", to_half, {f16c});
  const auto copies = [](const char* name, std::size_t kept, const std::vector<Named>& sets) {
    for (const Named& set : sets) {
      const std::string title = std::string(name) + "/" + set.name;
      benchmark::RegisterBenchmark(title.c_str(), against_memcpy, set.set, kept)
          ->ArgName("MiB")
          ->Arg(4)
          ->Arg(16)
          ->Arg(64)
          ->Arg(128)
          ->Unit(benchmark::kMillisecond)
          ->UseRealTime();
    }
  };
  copies("copy", 1024, {sse, avx});
  copies("crop", 700, {avx});
}

}  // namespace

int main(int argc, char** argv) {
  register_all();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
