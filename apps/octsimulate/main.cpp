// Measures a phantom with the simulated OCT device and writes the result as a .npy array.
#include <oct_device/oct_device.h>
#include <oct_simulator/oct_simulator.h>

#include <CLI/CLI.hpp>
#include <array>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "scan_options.h"

namespace {

struct Scan : oct::app::ScanSettings {
  std::string output;
  int phantom = OCT_PHANTOM_FINGER_PAD;
};

template <class Handle>
using Owner = std::unique_ptr<std::remove_pointer_t<Handle>, void (*)(Handle)>;

// Throws the device's pending error, if there is one.
void checkDevice() {
  std::array<char, 512> text{};
  if (getError(text.data(), static_cast<int>(text.size())) != 0) throw std::runtime_error(text.data());
}

struct Volume {
  int depth = 0;
  int aScans = 0;
  int bScans = 0;
  std::array<double, 3> millimetres{};
  std::vector<float> samples;  // depth fastest, then A-scans, then B-scans
};

Volume measure(const Scan& scan) {
  const Owner<OCTDeviceHandle> device(createSimulatedDevice(scan.phantom, scan.spectrumLength, scan.seed),
                                      clearSimulatedDevice);
  checkDevice();
  const Owner<ProcessingHandle> processing(createSimulatedProcessing(device.get()), clearSimulatedProcessing);
  const Owner<ScanPatternHandle> pattern(
      createSimulatedScanPattern(device.get(), scan.aScans, scan.bScans, scan.width, scan.length),
      clearSimulatedScanPattern);
  const Owner<RawDataHandle> raw(createRawData(), clearRawData);
  const Owner<DataHandle> data(createData(), clearData);
  checkDevice();
  startMeasurement(device.get(), pattern.get(), 0);
  setProcessedDataOutput(processing.get(), data.get());
  getRawDataEx(device.get(), raw.get(), 0);
  executeProcessing(processing.get(), raw.get());
  stopMeasurement(device.get());
  checkDevice();

  Volume volume;
  volume.depth = getDataPropertyInt(data.get(), 1);
  volume.aScans = getDataPropertyInt(data.get(), 2);
  volume.bScans = getDataPropertyInt(data.get(), 3);
  for (int axis = 0; axis < 3; ++axis) {
    volume.millimetres[static_cast<std::size_t>(axis)] = getDataPropertyFloat(data.get(), 3 + axis);
  }
  const float* const samples = getDataPtr(data.get());
  checkDevice();
  volume.samples.assign(samples, samples + static_cast<std::size_t>(volume.depth) *
                                               static_cast<std::size_t>(volume.aScans) *
                                               static_cast<std::size_t>(volume.bScans));
  return volume;
}

// Version 1.0 of the format: the header is padded so that the samples start at a multiple of 64 bytes.
std::string npyHeader(const std::string& shape) {
  std::string text = "{'descr': '<f4', 'fortran_order': False, 'shape': (" + shape + "), }";
  constexpr std::size_t prefix = 10;
  text.append(63 - (prefix + text.size()) % 64, ' ');
  text += '\n';
  const auto size = static_cast<unsigned>(text.size());
  return std::string("\x93NUMPY\x01\x00", 8) + static_cast<char>(size & 0xFFU) +
         static_cast<char>(size >> 8U) + text;
}

// In the file depth runs along the rows of each B-scan, as in a picture.
void write(const Volume& volume, const std::string& file) {
  std::ofstream stream(file, std::ios::binary);
  const std::string frame = std::to_string(volume.depth) + ", " + std::to_string(volume.aScans);
  stream << npyHeader(volume.bScans > 1 ? std::to_string(volume.bScans) + ", " + frame : frame);
  std::vector<float> row(static_cast<std::size_t>(volume.aScans));
  for (int b = 0; b < volume.bScans; ++b) {
    for (int z = 0; z < volume.depth; ++z) {
      for (int a = 0; a < volume.aScans; ++a) {
        row[static_cast<std::size_t>(a)] =
            volume.samples[(static_cast<std::size_t>(b) * static_cast<std::size_t>(volume.aScans) +
                            static_cast<std::size_t>(a)) *
                               static_cast<std::size_t>(volume.depth) +
                           static_cast<std::size_t>(z)];
      }
      stream.write(reinterpret_cast<const char*>(row.data()),
                   static_cast<std::streamsize>(row.size() * sizeof(float)));
    }
  }
  stream.close();
  if (!stream) {
    std::remove(file.c_str());
    throw std::runtime_error(file + ": cannot be written");
  }
}

void addOptions(CLI::App& program, Scan& scan) {
  program.add_option("-o,--output", scan.output, "Array to write")->required()->type_name("OUT.npy");
  program.add_option("--phantom", scan.phantom, "What the device looks at (default: finger)")
      ->type_name("finger|retina|mirror")
      ->transform(oct::app::oneOf({{"finger", OCT_PHANTOM_FINGER_PAD},
                                   {"retina", OCT_PHANTOM_RETINA},
                                   {"mirror", OCT_PHANTOM_MIRROR}}));
  oct::app::addScanOptions(program, scan);
}

}  // namespace

int main(int argc, char** argv) {
  Scan scan;
  CLI::App program("Measures a phantom with the simulated OCT device: spectra, noise and processing.");
  program.name("octsimulate");
  program.footer(
      "The array holds decibels as 32-bit floats: rows are depth, columns A-scans; volumes have the\n"
      "B-scans first. A useful display range is 15 to 60.\n\n"
      "Exit codes: 0 written, 1 failed, otherwise the command line is wrong.\n\n"
      "Examples:\n"
      "  octsimulate -o finger.npy\n"
      "  octsimulate -o retina.npy --phantom retina --ascans 256 --bscans 256 --spectrum 1024");
  addOptions(program, scan);
  CLI11_PARSE(program, argc, argv);
  try {
    const Volume volume = measure(scan);
    write(volume, scan.output);
    std::cout << scan.output << ": " << volume.depth << " x " << volume.aScans << " x " << volume.bScans
              << " samples (depth, A-scans, B-scans), " << volume.millimetres[0] << " x "
              << volume.millimetres[1] << " x " << volume.millimetres[2] << " mm\n";
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "octsimulate: " << error.what() << '\n';
    return 1;
  }
}
