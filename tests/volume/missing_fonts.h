// A machine without any font.
#pragma once

namespace oct::test {

void hide_fonts();
void show_fonts();  // again, after they were hidden

}  // namespace oct::test
