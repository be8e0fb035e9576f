// Notices of the library being loaded into and unloaded from a process.
#include "core/console.h"

namespace {

[[gnu::constructor]] void process_attach() {
  oct::write_output("Process attach... ");
}

[[gnu::destructor]] void process_detach() {
  oct::write_output("Process detach... ");
}

}  // namespace
