// Measures a phantom with the simulated OCT device and writes the result as a .npy array.
#include <array>
#include <cstddef>
#include <iostream>
#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>

#include "client/handle_owner.h"
#include "command_line/scan_options.h"
#include "data/formats/npy_writer.h"
#include "oct_device/oct_device.h"
#include "oct_simulator/oct_simulator.h"

namespace oct::app {
namespace {

struct Scan : ScanSettings {
  std::string output;
  int phantom = OCT_PHANTOM_FINGER_PAD;
};

// Throws the device's pending error, if there is one.
void check_device() {
  std::array<char, 512> text{};
  if (getError(text.data(), static_cast<int>(text.size())) != 0) throw std::runtime_error(text.data());
}

struct Measurement {
  VolumeData volume;
  std::array<double, 3> millimetres{};  // depth, width, length
};

Measurement measure(const Scan& scan) {
  const HandleOwner<OCTDeviceHandle> device(
      createSimulatedDevice(scan.phantom, scan.spectrum_length, scan.seed), clearSimulatedDevice);
  check_device();
  const HandleOwner<ProcessingHandle> processing(createSimulatedProcessing(device.get()),
                                                 clearSimulatedProcessing);
  const HandleOwner<ScanPatternHandle> pattern(
      createSimulatedScanPattern(device.get(), scan.a_scans, scan.b_scans, scan.width, scan.length),
      clearSimulatedScanPattern);
  const HandleOwner<RawDataHandle> raw(createRawData(), clearRawData);
  const HandleOwner<DataHandle> data(createData(), clearData);
  check_device();
  startMeasurement(device.get(), pattern.get(), 0);
  setProcessedDataOutput(processing.get(), data.get());
  getRawDataEx(device.get(), raw.get(), 0);
  executeProcessing(processing.get(), raw.get());
  stopMeasurement(device.get());
  check_device();

  const auto size = [&](int axis) { return static_cast<std::size_t>(getDataPropertyInt(data.get(), axis)); };
  Measurement result{{size(OCT_DATA_SIZE_1), size(OCT_DATA_SIZE_2), size(OCT_DATA_SIZE_3), {}}, {}};
  for (const int axis : {0, 1, 2}) {
    result.millimetres[static_cast<std::size_t>(axis)] =
        getDataPropertyFloat(data.get(), OCT_DATA_RANGE_1 + axis);
  }
  const float* const samples = getDataPtr(data.get());
  check_device();
  result.volume.voxels.assign(samples,
                              samples + result.volume.depth * result.volume.ascans * result.volume.bscans);
  return result;
}

void add_options(CLI::App& program, Scan& scan) {
  program.add_option("-o,--output", scan.output, "Array to write")->required()->type_name("OUT.npy");
  program.add_option("--phantom", scan.phantom, "What the device looks at (default: finger)")
      ->type_name("finger|retina|mirror")
      ->transform(one_of({{"finger", OCT_PHANTOM_FINGER_PAD},
                          {"retina", OCT_PHANTOM_RETINA},
                          {"mirror", OCT_PHANTOM_MIRROR}}));
  add_scan_options(program, scan);
}

}  // namespace
}  // namespace oct::app

int main(int argc, char** argv) {
  using namespace oct::app;
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
  add_options(program, scan);
  CLI11_PARSE(program, argc, argv);
  try {
    const auto& [volume, millimetres] = measure(scan);
    write_npy(scan.output, volume);
    std::cout << scan.output << ": " << volume.depth << " x " << volume.ascans << " x " << volume.bscans
              << " samples (depth, A-scans, B-scans), " << millimetres[0] << " x " << millimetres[1] << " x "
              << millimetres[2] << " mm\n";
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "octsimulate: " << error.what() << '\n';
    return 1;
  }
}
