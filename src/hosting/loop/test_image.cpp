#include "hosting/loop/test_image.h"

#include "gl/context/client_state.h"

namespace oct {

void draw_test_image(double degrees) {
  const gl::ClientState state(gl::ClientState::Use::drawing);
  glClearColor(1.0F, 1.0F, 0.0F, 1.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  glPushMatrix();
  glRotated(degrees, 0.0, 0.0, 1.0);
  glBegin(GL_TRIANGLES);
  glColor3f(1.0F, 0.0F, 0.0F);
  glVertex2f(0.0F, 1.0F);
  glColor3f(0.0F, 1.0F, 0.0F);
  glVertex2f(0.87F, -0.5F);
  glColor3f(0.0F, 0.0F, 1.0F);
  glVertex2f(-0.87F, -0.5F);
  glEnd();
  glPopMatrix();
}

}  // namespace oct
