// Where a client's thread leaves a snapshot to be drawn and waits for the render thread, which takes it.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

#include "core/exception.h"
#include "gl/target/read_back.h"

namespace oct {

// Holds one order at a time. Only what has been taken may be written to, and an order is taken before its
// frame begins; therefore no older frame can get into the memory.
class SnapshotDesk {
 public:
  struct Order {
    std::uint32_t width;
    std::uint32_t height;
    gl::PixelFormat format;
    void* data;  // of the client, who waits as long as somebody may write to it
  };

  // Of a client's thread: false, and nothing is done, while another order is here. Throws a StateError with the
  // reason once the desk is closed. Whoever has placed an order calls wait.
  bool place(const Order& order);

  // Blocks until the order is drawn; throws the reason, of its own kind, when it was not.
  void wait();

  // Of the render thread: it finishes or fails each order that it takes.
  bool has_order() const;
  std::optional<Order> take();
  void finish() noexcept;
  // Whether it was taken yet or not; does nothing without an order.
  void fail(ErrorKind kind, const char* reason) noexcept;

  bool busy() const;  // from the placing of an order until it is finished or has failed

  void close(const char* reason) noexcept;  // a literal; orders that are here already may be drawn yet
  void drain();                             // blocks until no client is here any more

 private:
  enum class State { free, placed, taken, done };

  void set_done(ErrorKind kind, const char* reason) noexcept;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  State state_ = State::free;
  Order order_{};
  ErrorKind failed_ = ErrorKind::none;
  std::string failure_;  // empty when there was no memory for the reason
  const char* closed_ = nullptr;
};

}  // namespace oct
