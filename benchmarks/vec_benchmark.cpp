// Every variant of the array routines against the plain loop, and the copies against memcpy, measured in turn
// in the same run. "speed" is the result: how many times as fast as the plain loop, or as memcpy.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "median.h"
#include "vec/routines.h"

namespace {

using oct::benchmark_scene::Median;
using oct::vec::InstructionSet;
using oct::vec::Routines;
using oct::vec::routinesOf;

// A-scans as the simulated device has them: in the first-level cache.
constexpr std::size_t arrayLength = 1024;
constexpr int repetitions = 200;

template <class Work>
double seconds(Work&& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  benchmark::ClobberMemory();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Arrays {
  std::vector<float> from = std::vector<float>(2 * arrayLength);
  std::vector<float> to = std::vector<float>(arrayLength);
  std::vector<std::uint16_t> counts = std::vector<std::uint16_t>(arrayLength);

  Arrays() {
    for (std::size_t i = 0; i < from.size(); ++i)
      from[i] = static_cast<float>(i * 2654435761U % 1000U) / 1000.0F;
    for (std::size_t i = 0; i < counts.size(); ++i) counts[i] = static_cast<std::uint16_t>(i * 40503U);
  }
};

using ArrayWork = void (*)(const Routines&, Arrays&);

void extremes(const Routines& routines, Arrays& arrays) {
  benchmark::DoNotOptimize(routines.extremes(arrays.from.data(), arrayLength));
}
void countNotAbove(const Routines& routines, Arrays& arrays) {
  benchmark::DoNotOptimize(routines.countNotAbove(arrays.from.data(), arrayLength, 0.3F));
}
void subtract(const Routines& routines, Arrays& arrays) {
  routines.subtract(arrays.to.data(), arrays.counts.data(), arrays.from.data(), arrayLength);
}
void powers(const Routines& routines, Arrays& arrays) {
  routines.powers(arrays.to.data(), arrays.from.data(), arrayLength);
}
void decibels(const Routines& routines, Arrays& arrays) {
  routines.decibels(arrays.to.data(), arrays.from.data(), arrayLength, 1e-6F);
}
void toUint16(const Routines& routines, Arrays& arrays) {
  routines.toUint16(arrays.counts.data(), arrays.from.data(), arrayLength, 38400.0F, 1280.0F);
}

void againstPlainLoop(benchmark::State& state, ArrayWork work, InstructionSet set) {
  if (!isSupported(set)) return state.SkipWithError("not supported by this processor");
  Arrays arrays;
  const Routines plain = routinesOf(InstructionSet::scalar);
  const Routines variant = routinesOf(set);
  const auto repeated = [&](const Routines& routines) {
    return seconds([&] {
      for (int i = 0; i < repetitions; ++i) work(routines, arrays);
    });
  };
  Median plainTime, variantTime;
  for (auto _ : state) {
    plainTime.add(repeated(plain));
    variantTime.add(repeated(variant));
  }
  state.counters["speed"] = plainTime.value() / variantTime.value();
  state.counters["ns_per_value"] = variantTime.value() / repetitions / arrayLength * 1e9;
}

// 1024 samples per A-scan; the destination is not aligned to a cache line.
void againstMemcpy(benchmark::State& state, InstructionSet set, std::size_t kept) {
  if (!isSupported(set)) return state.SkipWithError("not supported by this processor");
  constexpr std::size_t samples = 1024;
  const std::size_t aScans = (static_cast<std::size_t>(state.range(0)) << 20U) / (kept * sizeof(float));
  std::vector<float> from(aScans * samples, 1.0F);
  std::vector<float> to(aScans * kept + 16);
  float* const destination = to.data() + 4;
  const Routines routines = routinesOf(set);
  const auto variant = [&] {
    if (kept == samples) {
      routines.copy(destination, from.data(), aScans * samples);
    } else {
      routines.cropCopy(destination, from.data(), aScans, samples, kept);
    }
  };
  const auto plain = [&] {
    if (kept == samples) {
      std::memcpy(destination, from.data(), aScans * samples * sizeof(float));
    } else {
      for (std::size_t aScan = 0; aScan < aScans; ++aScan) {
        std::memcpy(destination + aScan * kept, from.data() + aScan * samples, kept * sizeof(float));
      }
    }
  };
  Median plainTime, variantTime;
  for (auto _ : state) {
    plainTime.add(seconds(plain));
    variantTime.add(seconds(variant));
  }
  const double gigabytes = static_cast<double>(aScans * kept * sizeof(float)) * 1e-9;
  state.counters["speed"] = plainTime.value() / variantTime.value();
  state.counters["GB_per_s"] = gigabytes / variantTime.value();
  state.counters["memcpy_GB_per_s"] = gigabytes / plainTime.value();
}

struct Named {
  const char* name;
  InstructionSet set;
};

void registerAll() {
  const Named sse{"sse", InstructionSet::sse};
  const Named sse2{"sse2", InstructionSet::sse2};
  const Named sse41{"sse41", InstructionSet::sse41};
  const Named avx{"avx", InstructionSet::avx};
  const auto arrays = [](const char* name, ArrayWork work, const std::vector<Named>& sets) {
    for (const Named& set : sets) {
      const std::string title = std::string(name) + "/" + set.name;
      benchmark::RegisterBenchmark(title.c_str(), againstPlainLoop, work, set.set)
          ->Unit(benchmark::kMicrosecond)
          ->UseRealTime();
    }
  };
  arrays("extremes", extremes, {sse, avx});
  arrays("countNotAbove", countNotAbove, {sse, avx});
  arrays("subtract", subtract, {sse2});
  arrays("powers", powers, {sse, avx});
  arrays("decibels", decibels, {sse2, avx});
  arrays("toUint16", toUint16, {sse2, sse41, avx});
  const auto copies = [](const char* name, std::size_t kept, const std::vector<Named>& sets) {
    for (const Named& set : sets) {
      const std::string title = std::string(name) + "/" + set.name;
      benchmark::RegisterBenchmark(title.c_str(), againstMemcpy, set.set, kept)
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
  registerAll();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
