// Round numbers for bars and axes, and how they are written.
#pragma once

#include <string>
#include <vector>

namespace oct::app {

// The largest of 1, 2, 5, 10, 20, 50, ... (and tenths, ...) that is not larger; the number is above 0.
double round_below(double number);

// Three to eight round numbers from the lower to the upper end.
std::vector<double> round_numbers(double lower, double upper);

// As many digits behind the point as the step between the numbers has.
std::string number_text(double number, double step);

// In millimetres from 1 on, below in micrometres.
std::string length_text(double mm);

}  // namespace oct::app
