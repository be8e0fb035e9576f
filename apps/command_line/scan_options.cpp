#include "command_line/scan_options.h"

#include <CLI/CLI.hpp>

namespace oct::app {

void add_scan_options(CLI::App& command, ScanSettings& settings) {
  command
      .add_option("--spectrum", settings.spectrum_length,
                  "Camera pixels per spectrum; half of it is the depth samples")
      ->check(within(64, 4096))
      ->capture_default_str();
  command.add_option("--ascans", settings.a_scans, "A-scans per B-scan")
      ->check(within(1, 8192))
      ->capture_default_str();
  command.add_option("--bscans", settings.b_scans, "B-scans; more than one give a volume")
      ->check(within(1, 4096))
      ->capture_default_str();
  command.add_option("--width", settings.width, "Width of a B-scan in millimetres")
      ->check(within(1e-6, 1e6))
      ->capture_default_str();
  command.add_option("--length", settings.length, "Extent over all B-scans in millimetres")
      ->check(within(1e-6, 1e6))
      ->capture_default_str();
  command.add_option("--seed", settings.seed, "Chooses the individual and its noise")->capture_default_str();
}

CLI::Validator one_of(const std::map<std::string, int>& names) {
  return CLI::CheckedTransformer(names, CLI::ignore_case).description("");
}

CLI::Validator within(double lowest, double highest) {
  return CLI::Range(lowest, highest).description("");
}

}  // namespace oct::app
