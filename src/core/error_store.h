// The process-wide record of pending errors, at most one per thread.
#pragma once

#include <cstdint>
#include <exception>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace oct {

class ErrorStore {
 public:
  // Posts a sticky error at once when the processor lacks SSE 4.2.
  explicit ErrorStore(bool processor_has_sse42);

  // Records the exception's text for the calling thread, unless that thread has a record already.
  void postError(const std::exception& error, bool sticky) noexcept;

  bool hasError() const;

  // The calling thread's message, else that of the thread with the lowest identifier; nothing when no error
  // is pending (a message may be empty). Removes the record unless it is sticky.
  std::optional<std::string> takeError();

 private:
  struct ErrorRecord {
    bool sticky;
    std::string message;
  };

  mutable std::mutex mutex_;
  std::map<std::uint32_t, ErrorRecord> records_;
};

// The store of this process, there from the moment the library is loaded.
ErrorStore& error_store();

}  // namespace oct
