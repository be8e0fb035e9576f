// Counts OpenGL calls of the library, keeps a census of OpenGL objects, and makes calls fail.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>

#include "gl/gl.h"

namespace oct::test {

// While it lives, the entry points it knows are replaced. One at a time, made with OpenGL loaded and no other
// thread in it; calls may come from several threads.
class GlSpy {
 public:
  GlSpy();
  ~GlSpy();
  GlSpy(const GlSpy&) = delete;
  GlSpy& operator=(const GlSpy&) = delete;

  // Calls of a function, by its OpenGL name.
  int calls(const std::string& function) const;

  // Calls of all functions that a frame calls, queries too.
  int total() const;

  // Makes the next calls of a function fail: functions that create or map give 0, compile and link report
  // failure, unmapping says that what was written is lost, the others do nothing and leave the given error
  // for glGetError. The first calls may be let through.
  void fail_next(const std::string& function, int times = 1, GLenum error = GL_OUT_OF_MEMORY, int after = 0);

  // Runs the action in the next call of a function, before OpenGL does.
  void in_next(const std::string& function, std::function<void()> action);

  // Functions that were called since the spy was made or forgot, and how often.
  std::map<std::string, int> all_calls() const;
  void forget_calls();

  // What queries of these values answer from now on.
  void answer(GLenum integer_query, GLint value);
  void answer(GLenum string_query, const std::string& text);

  // Errors that glGetError will report, in this order, before OpenGL's own.
  void queue_error(GLenum error);

  // Objects made and not deleted since the spy was made.
  std::size_t live_objects() const;

  struct State;

 private:
  State* const state_;
};

}  // namespace oct::test
