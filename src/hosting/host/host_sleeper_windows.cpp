#include "hosting/host/host_sleeper.h"

#include <windows.h>

#include "core/exception.h"
#include "core/platform.h"

namespace oct {

struct HostSleeper::State {
  HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);

  State() {
    if (!event) throw SystemError("Could not create an event. " + system_error_text());
  }
  ~State() { CloseHandle(event); }
};

HostSleeper::HostSleeper() : state_(std::make_unique<State>()) {}
HostSleeper::~HostSleeper() = default;

void HostSleeper::sleep() {
  for (;;) {
    const DWORD result = MsgWaitForMultipleObjects(1, &state_->event, FALSE, INFINITE, QS_ALLINPUT);
    if (result == WAIT_OBJECT_0) return;
    if (result != WAIT_OBJECT_0 + 1) throw SystemError("Could not wait for messages. " + system_error_text());
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageA(&message);
    }
  }
}

void HostSleeper::wake() {
  SetEvent(state_->event);
}

}  // namespace oct
