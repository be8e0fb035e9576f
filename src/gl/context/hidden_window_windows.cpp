#include <map>
#include <mutex>

#include "core/console.h"
#include "core/exception.h"
#include "core/log.h"
#include "core/platform.h"
#include "gl/context/hidden_window_windows.h"

namespace oct::gl {
namespace {

struct ClassTable {
  std::mutex mutex;
  std::map<std::string, int> users;
};

ClassTable& classTable() {
  static ClassTable table;
  return table;
}

void registerClass(const std::string& name) {
  WNDCLASSEXA record{};
  record.cbSize = sizeof record;
  record.style = CS_HREDRAW | CS_VREDRAW;
  record.lpfnWndProc = DefWindowProcA;
  record.lpszClassName = name.c_str();
  if (!RegisterClassExA(&record)) {
    writeErrorAndThrow("An error occured. Could not register window class (" + name +
                       ") for graphics output: " + std::to_string(GetLastError()));
  }
}

HWND createWindow(const std::string& className) {
  const HWND window = CreateWindowExA(0, className.c_str(), "", WS_OVERLAPPEDWINDOW, 0, 0, 300, 300, nullptr,
                                      nullptr, nullptr, nullptr);
  if (!window)
    writeErrorAndThrow("An error occured. Could not create hidden window for OpenGL output: " +
                       systemErrorText());
  return window;
}

}  // namespace

HiddenWindow::ClassUse::ClassUse(const std::string& name) : name_(name) {
  log() << "Creating hidden Window";
  const std::lock_guard lock(classTable().mutex);
  if (classTable().users[name] == 0) registerClass(name);
  ++classTable().users[name];
}

HiddenWindow::ClassUse::~ClassUse() {
  const std::lock_guard lock(classTable().mutex);
  if (--classTable().users[name_] == 0) UnregisterClassA(name_.c_str(), nullptr);
}

HiddenWindow::HiddenWindow(std::string className)
    : className_(std::move(className)), classUse_(className_), window_(createWindow(className_)) {}

HiddenWindow::~HiddenWindow() {
  if (!DestroyWindow(window_)) writeError("Failed to destroy window." + std::to_string(GetLastError()));
}

}  // namespace oct::gl
