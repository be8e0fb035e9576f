#include "api/api_frame.h"

#include <string>

#include "core/console.h"
#include "core/error_store.h"

namespace oct::api {

void reportError(const char* function, const std::exception& error) noexcept {
  errorStore().postError(error, function, false);
  try {
    writeError(std::string("An error occured: ") + error.what());
  } catch (const std::exception&) {
    // Out of memory: the posted error remains.
  }
}

}  // namespace oct::api
