// Headers of MetaImage files: .mha with the samples behind them, .mhd with the samples in another file.
#pragma once

#include "data/arrays/array_reader.h"

namespace oct::app {

ArrayDescription read_meta_image_header(InputFile& file);

}  // namespace oct::app
