// A window of the system that is never shown, for Windows services that need one.
#pragma once

#include <string>

#include <windows.h>

namespace oct::gl {

// The class is registered while at least one window of its name exists. Failures are written to the standard
// error stream and thrown. Create and destroy on one thread, and pump that thread's messages if it lives on.
class HiddenWindow {
 public:
  explicit HiddenWindow(std::string class_name);
  ~HiddenWindow();
  HiddenWindow(const HiddenWindow&) = delete;
  HiddenWindow& operator=(const HiddenWindow&) = delete;

  HWND handle() const { return window_; }

 private:
  // Holds the registration of a window class.
  class ClassUse {
   public:
    explicit ClassUse(const std::string& name);
    ~ClassUse();
    ClassUse(const ClassUse&) = delete;
    ClassUse& operator=(const ClassUse&) = delete;

   private:
    const std::string& name_;
  };

  const std::string class_name_;
  const ClassUse class_use_;
  HWND window_;
};

}  // namespace oct::gl
