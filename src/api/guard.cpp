#include "api/guard.h"

#include "core/console.h"
#include "core/error_store.h"
#include "core/log.h"

namespace oct::api {

void report(const char* function, const std::exception& error) noexcept {
  error_store().postError(error, false);
  report_unposted(error);
  log() << function << ": " << error.what();
}

void report_unposted(const std::exception& error) noexcept {
  write_error("An error occured: ", error.what());
}

}  // namespace oct::api
