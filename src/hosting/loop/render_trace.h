// Trace of the frames that clients ask for, one id per line, in a text file at a fixed place.
#pragma once

#include <cstdint>

namespace oct {

// Writes the line and flushes it, on the calling client's thread. The first call of the process opens the
// file; where that fails there is no trace.
void traceRenderCall(std::int32_t request);

const char* renderTraceFile();  // one source per platform

}  // namespace oct
