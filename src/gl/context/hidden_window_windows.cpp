#include "gl/context/hidden_window_windows.h"

#include <map>
#include <mutex>

#include "core/console.h"
#include "core/exception.h"
#include "core/immortal.h"
#include "core/log.h"
#include "core/platform.h"
#include "gl/context/own_module_windows.h"

namespace oct::gl {
namespace {

struct ClassTable {
  std::mutex mutex;
  std::map<std::string, int> users;
};

ClassTable& class_table() {
  return immortal<ClassTable>();
}

void register_class(const std::string& name) {
  WNDCLASSEXA record{};
  record.cbSize = sizeof record;
  record.style = CS_HREDRAW | CS_VREDRAW;
  record.lpfnWndProc = DefWindowProcA;
  record.lpszClassName = name.c_str();
  record.hInstance = own_module(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
  // One that is still there is ours: a window of it could not be destroyed.
  if (!RegisterClassExA(&record) && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) {
    write_error_and_throw(SystemError("An error occured. Could not register window class (" + name +
                                      ") for graphics output: " + std::to_string(GetLastError())));
  }
}

HWND create_window(const std::string& class_name) {
  const HWND window =
      CreateWindowExA(0, class_name.c_str(), "", WS_OVERLAPPEDWINDOW, 0, 0, 300, 300, nullptr, nullptr,
                      own_module(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT), nullptr);
  if (!window)
    write_error_and_throw(SystemError("An error occured. Could not create hidden window for OpenGL output: " +
                                      system_error_text()));
  return window;
}

}  // namespace

HiddenWindow::ClassUse::ClassUse(const std::string& name) : name_(name) {
  log() << "Creating hidden Window";
  const std::lock_guard lock(class_table().mutex);
  if (class_table().users[name] == 0) register_class(name);
  ++class_table().users[name];
}

HiddenWindow::ClassUse::~ClassUse() {
  const std::lock_guard lock(class_table().mutex);
  if (--class_table().users[name_] == 0)
    UnregisterClassA(name_.c_str(), own_module(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT));
}

HiddenWindow::HiddenWindow(std::string class_name)
    : class_name_(std::move(class_name)), class_use_(class_name_), window_(create_window(class_name_)) {}

HiddenWindow::~HiddenWindow() {
  if (!DestroyWindow(window_)) write_error("Failed to destroy window." + std::to_string(GetLastError()));
}

}  // namespace oct::gl
