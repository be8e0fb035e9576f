// A machine without any font, as long as the object lives.
#pragma once

namespace oct::test {

class MissingFonts {
 public:
  MissingFonts();
  ~MissingFonts();
  MissingFonts(const MissingFonts&) = delete;
  MissingFonts& operator=(const MissingFonts&) = delete;
};

}  // namespace oct::test
