// Writes an image's values: as integers of 16 bits, or as they are.
#pragma once

#include <filesystem>

#include "data/formats/png_writer.h"
#include "data/image.h"
#include "data/samples.h"

namespace oct::app {

// Ends in .tif, .tiff or .npy.
bool is_value_file(const std::filesystem::path& path);

// .npy: floats. Else integers, of a gray .png or of a .tif, which also tells the spacing and how integers become values again:
// the range's lower end as 0, its upper as 65535, rounded; what lies beyond as its ends, NaN as 0. When this fails, what was
// there before stays as it was.
void write_values(const std::filesystem::path& path, const Image& image, const ValueRange& range,
                  const PngTexts& texts);

}  // namespace oct::app
