// What a simulated device scans, as options of a command line.
#pragma once

#include <map>
#include <string>

namespace CLI {
class App;
class Validator;
}  // namespace CLI

namespace oct::app {

struct ScanSettings {
  int spectrumLength = 2048;  // camera pixels
  int aScans = 1024;          // per B-scan
  int bScans = 1;
  double width = 4.0;   // of a B-scan; millimetres
  double length = 4.0;  // over all B-scans; millimetres
  unsigned seed = 1;
};

// The defaults are what the settings hold.
void addScanOptions(CLI::App& command, ScanSettings& settings);

// Checks of an option, without the parser's own words in the help.
CLI::Validator oneOf(const std::map<std::string, int>& names);
CLI::Validator within(double lowest, double highest);

}  // namespace oct::app
