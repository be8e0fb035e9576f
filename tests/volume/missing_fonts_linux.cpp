#include "volume/missing_fonts.h"

#include <fontconfig/fontconfig.h>

namespace oct::test {

void hide_fonts() {
  FcConfig* const empty = FcConfigCreate();
  FcConfigSetCurrent(empty);
  FcConfigDestroy(empty);  // the library holds it now
}

void show_fonts() {
  FcInitReinitialize();
}

}  // namespace oct::test
