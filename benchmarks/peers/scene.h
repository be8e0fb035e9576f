// What every program of the comparison draws, and how its frames are timed.
#pragma once

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/resource.h>

#include "../median.h"
#include "../raycast_phantom.h"

namespace oct::benchmark_scene {

constexpr int slices = 128;
constexpr int first_frames = 2;  // they compile, upload and fill caches; not counted
constexpr int frames = 5;

struct Mode {
  const char* name;
  double opacity;  // of the value t between the boundaries: opacity * t^power
  double power;
};
constexpr std::array<Mode, 4> modes = {
    {{"soft", 0.12, 2.0}, {"hard", 1.0, 1.0}, {"maximum", 1.0, 1.0}, {"mean", 1.0, 1.0}}};

// Only this changes from frame to frame.
inline double angle_y_of(int frame) {
  return angle_y + 4.0 * frame;
}

struct Volume {
  int depth = 0, a_scans = 0, b_scans = 0;
  double lower = lowerValue, upper = upperValue;
  std::vector<float> voxels;  // depth fastest, then A-scans
};

// Bytes in the order frame, depth, A-scan, as a NumPy array in C order. Boundaries as an automatic range chooses
// them for a volume that fills its box: 40 % of the voxels show.
inline Volume recorded(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  std::array<char, 10> start{};
  in.read(start.data(), start.size());
  std::string header(static_cast<unsigned char>(start[8]) | static_cast<unsigned char>(start[9]) << 8U, ' ');
  in.read(header.data(), static_cast<std::streamsize>(header.size()));
  Volume volume;
  const std::size_t shape = header.find("'shape': (");
  if (header.find("'|u1'") == std::string::npos || shape == std::string::npos ||
      std::sscanf(header.c_str() + shape, "'shape': (%d, %d, %d)", &volume.b_scans, &volume.depth,
                  &volume.a_scans) != 3) {
    throw std::runtime_error(file + " is not a NumPy array of bytes with three axes");
  }
  volume.lower = 0.1;
  volume.upper = 0.63;
  const auto depth = static_cast<std::size_t>(volume.depth);
  const auto a_scans = static_cast<std::size_t>(volume.a_scans);
  volume.voxels.resize(static_cast<std::size_t>(volume.b_scans) * a_scans * depth);
  std::string frame(depth * a_scans, '\0');
  for (std::size_t w = 0; w < static_cast<std::size_t>(volume.b_scans); ++w) {
    if (!in.read(frame.data(), static_cast<std::streamsize>(frame.size())))
      throw std::runtime_error(file + " ends early");
    for (std::size_t v = 0; v < a_scans; ++v) {
      for (std::size_t u = 0; u < depth; ++u)
        volume.voxels[(w * a_scans + v) * depth + u] =
            static_cast<float>(static_cast<unsigned char>(frame[u * a_scans + v])) / 255.0F;
    }
  }
  return volume;
}

// "phantom", "deep_phantom" or the file of a recorded volume.
inline Volume volume_of(const std::string& name) {
  if (name != "phantom" && name != "deep_phantom") return recorded(name);
  const int depth = name == "phantom" ? voxels : 2 * voxels;
  return {depth, voxels, voxels, lowerValue, upperValue, phantom(depth)};
}

// CPU time of all threads of the process, in milliseconds.
inline double cpu_milliseconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-3;
}

// Calls draw(frame) and returns the median time of those that count.
template <class Draw>
double time_frames(Draw draw) {
  Median median;
  for (int i = -first_frames; i < frames; ++i) {
    const double start = cpu_milliseconds();
    draw(i);
    if (i >= 0) median.add(cpu_milliseconds() - start);
  }
  return median.value();
}

// Rows bottom row first, three bytes red, green, blue each.
inline void write_picture(const std::string& file, int side, const std::vector<unsigned char>& rgb) {
  std::ofstream out(file, std::ios::binary);
  out << "P6 " << side << ' ' << side << " 255\n";
  const auto row = static_cast<std::size_t>(side) * 3;
  for (std::size_t y = static_cast<std::size_t>(side); y-- > 0;)
    out.write(reinterpret_cast<const char*>(&rgb[y * row]), static_cast<std::streamsize>(row));
}

// PROGRAM VOLUME PIXELS [PICTURES]: measure(volume, mode, side, file) for each mode, one line of its name and
// milliseconds. PICTURES is what the names of the last frames' pictures begin with.
template <class Measure>
int run(int argc, char** argv, Measure measure) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: %s phantom|deep_phantom|FILE.npy PIXELS [PICTURES]\n", argv[0]);
    return 2;
  }
  try {
    const Volume volume = volume_of(argv[1]);
    for (const Mode& mode : modes) {
      const std::string picture = argc > 3 ? std::string(argv[3]) + mode.name + ".ppm" : "";
      std::printf("%s %.2f\n", mode.name, measure(volume, mode, std::atoi(argv[2]), picture));
    }
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}

}  // namespace oct::benchmark_scene
