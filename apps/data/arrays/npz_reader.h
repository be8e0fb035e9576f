// .npz files: zip archives of .npy arrays.
#pragma once

#include <memory>
#include <string>

#include "data/formats/frames.h"
#include "data/formats/input_file.h"

namespace oct::app {

// name: of one of several arrays, as numpy.load lists them; empty: there is one.
std::unique_ptr<FrameReader> open_npz(std::shared_ptr<InputFile> file, const std::string& name);

}  // namespace oct::app
