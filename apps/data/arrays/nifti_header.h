// Headers of NIfTI-1 files: .nii with the samples behind them, .hdr with the samples in an .img file.
#pragma once

#include <string_view>

#include "data/arrays/array_reader.h"

namespace oct::app {

constexpr std::size_t nifti_header_bytes = 348;

bool is_nifti_header(std::string_view start);

// start: the decompressed header; compression: of the file that it came from.
ArrayDescription read_nifti_header(std::string_view start, const std::filesystem::path& path,
                                   Compression compression);

}  // namespace oct::app
