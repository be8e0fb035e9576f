/* In place of GLFW's own joysticks, which nobody looks around with: asking for them makes the system's library for them start a
 * thread, which can be still running when that library is unloaded. */
#include "internal.h"

void _glfwInitJoysticksWin32(void) {}
void _glfwTerminateJoysticksWin32(void) {}
void _glfwDetectJoystickConnectionWin32(void) {}
void _glfwDetectJoystickDisconnectionWin32(void) {}

int _glfwPlatformPollJoystick(_GLFWjoystick* joystick, int mode) {
  (void)joystick;
  (void)mode;
  return GLFW_FALSE;
}

void _glfwPlatformUpdateGamepadGUID(char* guid) {
  (void)guid;
}
