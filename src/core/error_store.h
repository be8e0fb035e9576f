// The process-wide record of pending errors, at most one per thread.
#pragma once

#include <cstdint>
#include <exception>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "core/exception.h"

namespace oct {

class ErrorStore {
 public:
  // Posts a sticky error at once when the processor lacks SSE 4.2.
  explicit ErrorStore(bool processor_has_sse42);

  // Records the exception's text and kind for the calling thread, unless that thread has a record already. When there is
  // no memory, a record kept in reserve takes the error, cut to its length.
  void postError(const std::exception& error, bool sticky) noexcept;

  bool hasError() const;

  // Of the calling thread's record, else of what the thread took last.
  ErrorKind kind() const;

  // The calling thread's message, else that of the thread with the lowest identifier; nothing when no error
  // is pending (a message may be empty). Removes the record unless it is sticky.
  std::optional<std::string> takeError();
  // The calling thread's message alone.
  std::optional<std::string> take_own_error();

  void close() noexcept;  // gives back the memory of pending errors

 private:
  struct ErrorRecord {
    bool sticky = false;
    ErrorKind kind = ErrorKind::none;
    std::string message;
  };
  using Records = std::map<std::uint32_t, ErrorRecord>;

  std::string take(Records::iterator record);
  void keep_in_reserve(Records::node_type record) noexcept;
  void post_in_reserve(std::uint32_t thread, const std::exception& error) noexcept;

  mutable std::mutex mutex_;
  Records records_;
  Records::node_type reserve_;  // with room for a text
};

// The store of this process, there from the moment the library is loaded.
ErrorStore& error_store();

}  // namespace oct
