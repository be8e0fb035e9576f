// The program's window with its OpenGL context, and the interface's frames in it. One per program.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "data/picture.h"
#include "octview/window/gl_functions.h"
#include "octview/window/input_queue.h"

struct GLFWwindow;

namespace oct::app {

struct WindowSettings {
  std::string title = "octview";
  int width = 1280;  // in points
  int height = 800;
  double scale = 0;  // pixels of the display per point; 0: what the display says
  bool dark = true;
};

class Window {
 public:
  // Throws std::runtime_error with the system's reason. The context is current from then on.
  explicit Window(const WindowSettings& settings);
  ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  const GlFunctions& gl() const { return gl_; }
  float scale() const { return scale_; }
  bool wants_to_close() const;
  void close();
  void set_title(const std::string& title);
  void set_dark(bool dark);

  // Files that were dropped on the window since the last call.
  std::vector<std::filesystem::path> take_dropped();

  // Events since the last frame. Without something to do it sleeps until one comes, for as many seconds at most.
  void wait_for_events(double seconds);

  // A frame of the interface: between these two ImGui's functions build it. The function feeds input of a script, after that of the
  // system.
  void begin_frame(const std::function<void()>& feed_input);
  void end_frame();
  // What the last frame shows. Only between end_frame and show.
  Picture capture() const;
  void show();

 private:
  struct Glfw {
    Glfw();
    ~Glfw();
  };
  struct Interface {
    explicit Interface(GLFWwindow* window);
    ~Interface();
  };

  static InputQueue& input_of(GLFWwindow* window);
  void listen();
  void load_font();

  Glfw glfw_;
  float scale_ = 1;  // found with the window, and so before it
  std::unique_ptr<GLFWwindow, void (*)(GLFWwindow*)> window_;
  GlFunctions gl_{};
  std::unique_ptr<Interface> interface_;
  std::vector<std::filesystem::path> dropped_;
  InputQueue input_;
};

}  // namespace oct::app
