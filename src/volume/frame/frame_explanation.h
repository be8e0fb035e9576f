// Why a frame shows nothing, in plain words, as far as its settings tell. No OpenGL.
#pragma once

#include <string>

#include "volume/frame/frame_record.h"

namespace oct {

// What by itself suffices to leave nothing of volume and surface in the picture, or an even colour and nothing else;
// empty where that cannot be told from here.
std::string certain_cause(const FrameRecord& record);

// The likeliest cause where it has been seen that nothing shows; never empty.
std::string likely_cause(const FrameRecord& record);

}  // namespace oct
