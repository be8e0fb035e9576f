#include "api/library.h"

namespace oct::simulator {

Library& Library::instance() {
  static Library library;
  return library;
}

}  // namespace oct::simulator
