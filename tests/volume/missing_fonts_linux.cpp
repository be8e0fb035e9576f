#include "volume/missing_fonts.h"

#include <fontconfig/fontconfig.h>

namespace oct::test {

MissingFonts::MissingFonts() {
  FcConfig* const empty = FcConfigCreate();
  FcConfigSetCurrent(empty);
  FcConfigDestroy(empty);  // the library holds it now
}

MissingFonts::~MissingFonts() {
  FcInitReinitialize();
}

}  // namespace oct::test
