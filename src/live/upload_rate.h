// How often volumes are uploaded in this process.
#pragma once

namespace oct {

// Volumes per second by the wall clock, from the time since the last call of any renderer, in whole
// milliseconds: infinite for less than one.
double measure_upload_rate();

}  // namespace oct
