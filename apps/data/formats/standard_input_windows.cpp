#include "data/formats/standard_input.h"

#include <cstdio>

#include <fcntl.h>
#include <io.h>

namespace oct::app {

void prepare_standard_input() {
  _setmode(_fileno(stdin), _O_BINARY);
}

}  // namespace oct::app
