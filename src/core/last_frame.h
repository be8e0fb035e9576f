// What is known of a renderer's last frame by those who ask why it shows nothing.
#pragma once

#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <utility>

namespace oct {

// A record that never changes, or why there is none. Any thread.
template <class Record>
class LastFrame {
 public:
  using Pointer = std::shared_ptr<const Record>;

  // Keeping is for records that are made before anything is drawn: they tell of a frame that failed as well.
  enum class AfterFailure { keep, forget };

  explicit LastFrame(AfterFailure after_failure) : after_failure_(after_failure) {}

  Pointer record() const {
    const std::lock_guard lock(mutex_);
    return record_;
  }

  // The record of the frame before goes after the lock.
  void remember(Pointer record) {
    const std::lock_guard lock(mutex_);
    record_.swap(record);
    error_.reset();
  }

  // Without memory for the text it is known all the same that the frame has failed.
  void note_failure(const char* text) noexcept {
    Pointer gone;
    const std::lock_guard lock(mutex_);
    if (after_failure_ == AfterFailure::forget) record_.swap(gone);
    try {
      error_ = text;
    } catch (const std::bad_alloc&) {
      error_.emplace();
    }
  }

  void forget() { remember(nullptr); }

  // Why the frame shows nothing, by cause(record) where only that can tell.
  template <class Cause>
  std::string explain(Cause&& cause) const {
    Pointer record;
    {
      const std::lock_guard lock(mutex_);
      if (error_) return "The last frame failed: " + *error_;
      record = record_;
    }
    return record ? cause(*record) : "No frame has been drawn yet. ";
  }

 private:
  const AfterFailure after_failure_;
  mutable std::mutex mutex_;  // held for assignments only
  Pointer record_;            // null: there was none
  std::optional<std::string> error_;
};

// The cause of a frame without pixels.
inline std::string no_area_text(int width, int height) {
  return "The viewport of the last frame has no area: " + std::to_string(width) + " x " +
         std::to_string(height) + " pixels. Give it a size (setViewportSize). ";
}

}  // namespace oct
