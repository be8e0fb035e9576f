// The standard input as bytes.
#pragma once

namespace oct::app {

// Before the first byte is read: Windows would change line ends and stop at the byte 26.
void prepare_standard_input();

}  // namespace oct::app
