#include "octview/window/window.h"

#include <cmath>
#include <stdexcept>
#include <utility>

#include <GLFW/glfw3.h>
#include <backends/imgui_impl_glfw.h>
#include <backends/imgui_impl_opengl3.h>
#include <imgui.h>
#include <oct_font.h>

#include "data/file_errors.h"
#include "octview/window/theme.h"

namespace oct::app {
namespace {

constexpr float font_points = 14;

[[noreturn]] void fail(const std::string& what) {
  const char* reason = nullptr;
  glfwGetError(&reason);
  throw std::runtime_error(what + (reason ? std::string(": ") + reason : std::string()));
}

GLFWwindow* open(const WindowSettings& settings, float& scale) {
  glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 3);
  glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 3);
  glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
  glfwWindowHint(GLFW_OPENGL_FORWARD_COMPAT, GLFW_TRUE);
  scale = static_cast<float>(settings.scale);
  if (!(scale > 0)) {
    scale = 1;
    float vertical = 1;
    if (GLFWmonitor* monitor = glfwGetPrimaryMonitor())
      glfwGetMonitorContentScale(monitor, &scale, &vertical);
    if (!(scale >= 0.5F && scale <= 8)) scale = 1;
  }
  GLFWwindow* window = glfwCreateWindow(static_cast<int>(std::lround(settings.width * scale)),
                                        static_cast<int>(std::lround(settings.height * scale)),
                                        settings.title.c_str(), nullptr, nullptr);
  if (!window) fail("No window with OpenGL 3.3 can be made");
  return window;
}

}  // namespace

Window::Glfw::Glfw() {
  if (!glfwInit()) fail("There is no window system");
}

Window::Glfw::~Glfw() {
  glfwTerminate();
}

Window::Interface::Interface(GLFWwindow* window) {
  IMGUI_CHECKVERSION();
  ImGui::CreateContext();
  ImGui::GetIO().IniFilename = nullptr;  // sessions keep what is worth keeping
  if (!ImGui_ImplGlfw_InitForOpenGL(window, false) || !ImGui_ImplOpenGL3_Init("#version 330 core")) {
    ImGui::DestroyContext();
    throw std::runtime_error("The interface cannot be drawn with this OpenGL");
  }
}

Window::Interface::~Interface() {
  ImGui_ImplOpenGL3_Shutdown();
  ImGui_ImplGlfw_Shutdown();
  ImGui::DestroyContext();
}

Window::Window(const WindowSettings& settings) : window_(open(settings, scale_), glfwDestroyWindow) {
  glfwMakeContextCurrent(window_.get());
  glfwSwapInterval(1);
  glfwSetWindowSizeLimits(window_.get(), static_cast<int>(640 * scale_), static_cast<int>(480 * scale_),
                          GLFW_DONT_CARE, GLFW_DONT_CARE);
  gl_ = load_gl_functions();
  glfwSetWindowUserPointer(window_.get(), this);
  glfwSetDropCallback(window_.get(), [](GLFWwindow* window, int count, const char** paths) {
    auto& self = *static_cast<Window*>(glfwGetWindowUserPointer(window));
    for (int i = 0; i < count; ++i) self.dropped_.push_back(from_utf8(paths[i]));
  });
  listen();
  interface_ = std::make_unique<Interface>(window_.get());
  load_font();
  set_dark(settings.dark);
}

Window::~Window() = default;

// In place of the interface's backend, which keeps only the last state of what is down.
void Window::listen() {
  GLFWwindow* const window = window_.get();
  glfwSetCursorPosCallback(window, [](GLFWwindow* from, double x, double y) { input_of(from).move(x, y); });
  glfwSetCursorEnterCallback(window, [](GLFWwindow* from, int entered) {
    if (!entered) input_of(from).leave();
  });
  glfwSetMouseButtonCallback(window, [](GLFWwindow* from, int button, int action, int) {
    input_of(from).button(button, action == GLFW_PRESS);
  });
  glfwSetScrollCallback(window, [](GLFWwindow* from, double x, double y) { input_of(from).wheel(x, y); });
  glfwSetKeyCallback(window, [](GLFWwindow* from, int key, int, int action, int) {
    if (key >= 0 && action != GLFW_REPEAT) input_of(from).key(key, action == GLFW_PRESS);
  });
  glfwSetCharCallback(window, [](GLFWwindow* from, unsigned code) { input_of(from).character(code); });
}

InputQueue& Window::input_of(GLFWwindow* window) {
  return static_cast<Window*>(glfwGetWindowUserPointer(window))->input_;
}

void Window::load_font() {
  ImGuiIO& io = ImGui::GetIO();
  ImFontConfig config;
  config.FontDataOwnedByAtlas = false;
  config.OversampleH = 2;
  static const ImWchar letters[] = {0x20,   0xFF,   0x370,  0x3FF,  0x2010, 0x2027,
                                    0x2190, 0x2193, 0x2260, 0x2265, 0};
  io.Fonts->AddFontFromMemoryTTF(const_cast<unsigned char*>(oct_font_begin),
                                 static_cast<int>(oct_font_end - oct_font_begin),
                                 std::round(font_points * scale_), &config, letters);
}

void Window::set_dark(bool dark) {
  set_theme(dark, scale_);
}

bool Window::wants_to_close() const {
  return glfwWindowShouldClose(window_.get()) != 0;
}

void Window::close() {
  glfwSetWindowShouldClose(window_.get(), GLFW_TRUE);
}

void Window::set_title(const std::string& title) {
  glfwSetWindowTitle(window_.get(), title.c_str());
}

std::vector<std::filesystem::path> Window::take_dropped() {
  return std::exchange(dropped_, {});
}

void Window::wait_for_events(double seconds) {
  if (seconds > 0 && input_.is_empty()) {
    glfwWaitEventsTimeout(seconds);
  } else {
    glfwPollEvents();
  }
}

void Window::begin_frame(const std::function<void()>& feed_input) {
  ImGui_ImplOpenGL3_NewFrame();
  ImGui_ImplGlfw_NewFrame();
  input_.feed(ImGui::GetIO());
  if (feed_input) feed_input();
  ImGui::NewFrame();
}

void Window::end_frame() {
  ImGui::Render();
  int width = 0;
  int height = 0;
  glfwGetFramebufferSize(window_.get(), &width, &height);
  gl_.viewport(0, 0, width, height);
  // Software takes long to fill areas, so that nothing but this is behind the panes.
  const ImVec4& background = ImGui::GetStyle().Colors[ImGuiCol_ChildBg];
  gl_.clear_color(background.x, background.y, background.z, 1);
  gl_.clear(GL_COLOR_BUFFER_BIT);
  ImGui_ImplOpenGL3_RenderDrawData(ImGui::GetDrawData());
}

Picture Window::capture() const {
  int width = 0;
  int height = 0;
  glfwGetFramebufferSize(window_.get(), &width, &height);
  Picture picture;
  picture.size = {static_cast<unsigned>(width), static_cast<unsigned>(height)};
  const std::size_t row = std::size_t{picture.size.width} * 3;
  std::vector<std::uint8_t> pixels(row * picture.size.height);
  gl_.pixel_store_i(GL_PACK_ALIGNMENT, 1);
  gl_.read_pixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
  picture.pixels.reserve(pixels.size());
  for (std::size_t y = picture.size.height; y-- > 0;) {
    const auto begin = pixels.begin() + static_cast<std::ptrdiff_t>(y * row);
    picture.pixels.insert(picture.pixels.end(), begin, begin + static_cast<std::ptrdiff_t>(row));
  }
  return picture;
}

void Window::show() {
  glfwSwapBuffers(window_.get());
}

}  // namespace oct::app
