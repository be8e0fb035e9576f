// The picture that a control draws while nobody tells it what to draw: a coloured triangle that turns.
#pragma once

namespace oct {

// Draws with the fixed-function pipeline of the current context.
void draw_test_image(double degrees);

}  // namespace oct
