// Options that say how files of samples are to be read.
#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "data/data_file.h"

namespace oct::app {

struct DataOptions {
  std::string raw;
  std::string axes;
  bool transpose = false;
};

void add_data_options(CLI::App& verb, DataOptions& options);

// The file of this name with the options. Throws a CommandLineError where a value makes no sense.
DataFile data_file(const std::string& name, const DataOptions& options);

// What is known about files and their axes, for the help of verbs.
extern const char data_help[];

}  // namespace oct::app
