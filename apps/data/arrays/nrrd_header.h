// Headers of NRRD files, with the samples behind them or in another file.
#pragma once

#include "data/arrays/array_reader.h"

namespace oct::app {

ArrayDescription read_nrrd_header(InputFile& file);

}  // namespace oct::app
