// Why a frame shows nothing, in plain words, as far as its settings tell. No OpenGL.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "volume/frame/frame_record.h"

namespace oct {

// The lowest value of what is filled of the volume, looked for only when a text needs it; nothing where it cannot be told.
// Empty: the texts tell the greatest value alone.
using LowestValue = std::function<std::optional<float>()>;

// What by itself suffices to leave nothing of volume and surface in the picture, or an even colour and nothing else;
// empty where that cannot be told from here.
std::string certain_cause(const FrameRecord& record, const LowestValue& lowest);

// The likeliest cause where it has been seen that nothing shows; never empty.
std::string likely_cause(const FrameRecord& record, const LowestValue& lowest);

}  // namespace oct
