#include "data/formats/standard_input.h"

namespace oct::app {

void prepare_standard_input() {}

}  // namespace oct::app
