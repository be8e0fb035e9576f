// Notices of the library being loaded into and unloaded from a process.
#include "core/console.h"

namespace {

[[gnu::constructor]] void processAttach() {
  oct::writeOutput("Process attach... ");
}

[[gnu::destructor]] void processDetach() {
  oct::writeOutput("Process detach... ");
}

}  // namespace
