/// @file
/// The frame around the device functions.
#pragma once

#include "library.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <type_traits>

namespace oct::simulator {

/// A value as it stands in the record of calls: a handle as its number behind a '#', or null.
template <typename Value>
std::string recordText(Value value) {
  if constexpr (std::is_pointer_v<Value>) {
    if (!value) return "null";
    char text[32];
    std::snprintf(text, sizeof text, "#%llu",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(value)));
    return text;
  } else if constexpr (std::is_floating_point_v<Value>) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", static_cast<double>(value));
    return text;
  } else {
    return std::to_string(value);
  }
}

/// Runs the body of a device function, unless a script says that this call shall fail, and records the call.
/// Calls stand in the record in the order in which they began; creations, which take no time, show the
/// handle.
template <typename Body, typename... Arguments>
auto deviceCall(const char* function, Body&& body, Arguments... arguments) noexcept {
  using Result = std::invoke_result_t<Body, HandleTable&>;
  constexpr bool kCreates = sizeof...(Arguments) == 0 && std::is_pointer_v<Result>;
  return framed(function, [&](HandleTable& handles) -> Result {
    auto& library = Library::instance();
    const bool recorded = library.record.isEnabled();
    const auto record = [&](const std::string& result) {
      if (!recorded) return;
      std::string list;
      ((list.append(list.empty() ? "" : ", ").append(recordText(arguments))), ...);
      library.record.add(std::string(function).append("(").append(list).append(")").append(result));
    };
    if constexpr (kCreates) {
      Result result = nullptr;
      try {
        library.failures.onCall(function);
        result = body(handles);
      } catch (...) {
        record(" = null");
        throw;
      }
      record(std::string(" = ").append(recordText(result)));
      return result;
    } else {
      record("");
      library.failures.onCall(function);
      return body(handles);
    }
  });
}

}  // namespace oct::simulator
