#include "api/api_frame.h"

#include <string>

#include "core/console.h"
#include "core/error_store.h"

namespace oct::api {

void reportError(const char* function, const std::exception& error) noexcept {
  errorStore().postError(error, function, false);
  reportUnposted(error);
}

void reportUnposted(const std::exception& error) noexcept {
  try {
    writeError(std::string("An error occured: ") + error.what());
  } catch (const std::exception&) {
    // Out of memory: what was posted remains.
  }
}

}  // namespace oct::api
