// Long work beside the interface, which shows how far it is and can stop it.
#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "data/progress_function.h"

namespace oct::app {

// What a progress function throws when the work is to end.
class Cancelled : public std::exception {
 public:
  const char* what() const noexcept override { return "stopped"; }
};

template <class Result>
class BackgroundTask {
 public:
  using Work = std::function<Result(const ProgressFunction&)>;
  struct Outcome {
    std::optional<Result> result;  // none: it failed or was stopped
    std::string error;             // why it failed; empty when it was stopped
  };

  // Work that is under way is stopped first, and waited for.
  void start(std::string activity, Work work) {
    thread_ = {};
    activity_ = std::move(activity);
    shared_ = std::make_shared<Shared>();
    thread_ = std::jthread([shared = shared_, work = std::move(work)](const std::stop_token& stop) {
      try {
        shared->outcome.result = work([&](std::size_t done, std::size_t total) {
          if (stop.stop_requested()) throw Cancelled();
          shared->share = total ? static_cast<double>(done) / static_cast<double>(total) : 0.0;
        });
      } catch (const Cancelled&) {
      } catch (const std::bad_alloc&) {
        shared->outcome.error = "There is not enough memory";
      } catch (const std::exception& error) {
        shared->outcome.error = error.what();
      }
      shared->finished = true;
    });
  }

  // It ends when its work next reports.
  void cancel() { thread_.request_stop(); }
  bool is_running() const { return shared_ != nullptr; }
  const std::string& activity() const { return activity_; }
  double share() const { return shared_ ? shared_->share.load() : 0.0; }

  // Once, after the work has ended.
  std::optional<Outcome> take() {
    if (!shared_ || !shared_->finished) return {};
    thread_ = {};
    return std::move(std::exchange(shared_, nullptr)->outcome);
  }

 private:
  struct Shared {
    std::atomic<double> share{0};
    std::atomic<bool> finished{false};  // the outcome is not touched any more
    Outcome outcome;
  };

  std::string activity_;
  std::shared_ptr<Shared> shared_;
  std::jthread thread_;  // the last member: its end waits for the work
};

}  // namespace oct::app
