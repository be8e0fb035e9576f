#include "api/guard.h"

#include <string>

#include "core/console.h"
#include "core/error_store.h"
#include "core/log.h"

namespace oct::api {

void report(const char* function, const std::exception& error) noexcept {
  error_store().postError(error, false);
  report_unposted(error);
  try {
    log() << function << ": " << error.what();
  } catch (...) {
    // Out of memory: what was posted remains.
  }
}

void report_unposted(const std::exception& error) noexcept {
  try {
    write_error(std::string("An error occured: ") + error.what());
  } catch (...) {
    // As above.
  }
}

}  // namespace oct::api
