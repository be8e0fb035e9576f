// The guard of every exported function: its catch handlers.
#pragma once

#include <exception>

#include "gl/context/context_identity.h"

namespace oct::api {

// Posts the error to the error store and writes it to the standard error stream, then to the log with the
// name of the export that failed: the other two texts are what clients match on.
void report(const char* function, const std::exception& error) noexcept;

// Writes the error to the standard error stream only.
void report_unposted(const std::exception& error) noexcept;

// What was thrown when it was no exception.
class UnknownError : public std::exception {
 public:
  const char* what() const noexcept override { return "Something that is no exception was thrown. "; }
};

// Runs the body of the named export. Whatever it throws is reported and the export's neutral result returned:
// null, 0, false or nothing.
template <class Body>
auto guarded(const char* function, Body&& body) noexcept -> decltype(body()) {
  const gl::FreshIdentity fresh;
  try {
    return body();
  } catch (const std::exception& error) {
    report(function, error);
  } catch (...) {
    report(function, UnknownError());
  }
  return decltype(body())();
}

// The same for exports whose errors stay out of the error store and of the log: those that are called for
// every frame, and those that read the store.
template <class Body>
auto guarded_unposted(Body&& body) noexcept -> decltype(body()) {
  const gl::FreshIdentity fresh;
  try {
    return body();
  } catch (const std::exception& error) {
    report_unposted(error);
  } catch (...) {
    report_unposted(UnknownError());
  }
  return decltype(body())();
}

}  // namespace oct::api
