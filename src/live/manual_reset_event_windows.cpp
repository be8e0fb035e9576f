#include "live/manual_reset_event.h"

#include <windows.h>

namespace oct {
namespace {

class SystemEvent : public ManualResetEvent {
 public:
  explicit SystemEvent(HANDLE handle) : handle_(handle) {}
  ~SystemEvent() override { CloseHandle(handle_); }
  SystemEvent(const SystemEvent&) = delete;
  SystemEvent& operator=(const SystemEvent&) = delete;

  bool set() override { return SetEvent(handle_) != 0; }
  bool reset() override { return ResetEvent(handle_) != 0; }
  bool wait(std::chrono::milliseconds timeout) override {
    return WaitForSingleObject(handle_, static_cast<DWORD>(timeout.count())) == WAIT_OBJECT_0;
  }

 private:
  const HANDLE handle_;
};

}  // namespace

std::unique_ptr<ManualResetEvent> ManualResetEvent::create() {
  const HANDLE handle = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  if (!handle) return nullptr;
  return std::make_unique<SystemEvent>(handle);
}

}  // namespace oct
