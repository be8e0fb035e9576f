// Where a live renderer and its sources meet: who feeds it, what the rendering thread shall do next, and the
// one buffer that goes to and fro.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "core/extent.h"
#include "live/live_statistics.h"
#include "volume/skipping/brick_maxima.h"

namespace oct {

class VolumeRenderer;

enum class LiveState : std::uint32_t {
  initialize = 0,
  running = 1,
  deinitialize_requested = 2,
  stopped = 3,
  invalidated = 4
};

// A source's hold on a live renderer, from its start on. It ends with a stop, with the start of another
// source and with the live renderer; from then on the source gets no buffer, and nothing that it calls
// changes anything.
using LiveClaim = std::uint64_t;
inline constexpr LiveClaim no_claim = 0;

struct LiveFormat {
  VolumeExtent extent;
  std::int32_t secondary_width = 0;  // values for every A-scan; 0: none
};

// What comes with the samples of a volume.
struct LiveDelivery {
  std::vector<float> secondary;         // none: the volume came without
  std::unique_ptr<BrickMaxima> maxima;  // null: unknown
  LiveTime processed;
};

// Any thread, unless it says otherwise. Outlives its live renderer for as long as a source holds it. The lock
// is held for a few instructions only, never across OpenGL, calls of the device library or whatever may
// throw.
class LiveFeed {
 public:
  // ---- For a source

  // Takes the live renderer over and requests initialisation. Throws std::invalid_argument for negative sizes
  // and for more voxels than a 32-bit number counts, and an Exception once the live renderer is gone.
  LiveClaim start(const LiveFormat& format);
  void invalidate(LiveClaim claim);  // requests initialisation anew

  // Until a frame has initialised the live renderer (true) or the claim has ended (false). Throws what the
  // frame failed with.
  bool wait_for_transition(LiveClaim claim);

  void stop(LiveClaim claim);  // requests de-initialisation, wakes whoever waits
  bool is_gone() const;        // the live renderer

  // The buffer for the next volume: lent until fill or give_back. Null if none is free within 100 ms.
  float* take(LiveClaim claim);
  void give_back();  // without a volume
  // What came with the volume is swapped for others to write to.
  void fill(LiveDelivery& delivery);

  // One more, before which the device has lost some.
  void count_acquired(LiveClaim claim, std::uint64_t lost = 0);

  // Does something with the volume renderer, which stays set meanwhile. False, and nothing is done, if the
  // claim has ended or no volume renderer is set.
  template <class Action>
  bool with_renderer(LiveClaim claim, Action action) {
    const std::lock_guard lock(renderer_mutex_);
    if (!renderer_ || !is_current(claim)) return false;
    action(*renderer_);
    return true;
  }
  bool has_renderer() const;

  // ---- For the live renderer

  void set_renderer(VolumeRenderer* renderer);            // not owned; waits for whoever uses the one before
  VolumeRenderer* renderer() const { return renderer_; }  // where no other thread sets it

  struct Request {
    LiveState state;
    std::uint64_t number;
    LiveClaim claim;
    LiveFormat format;
  };
  Request observe() const;
  LiveState state() const;
  VolumeExtent extent() const;  // of the latest start

  // What was requested has been done, or failed. A request that came in between is not overwritten: the next
  // frame finds it.
  void complete_start(const Request& request);
  void fail_start(const Request& request, const std::string& error);
  void complete_stop(const Request& request);

  void offer(LiveClaim claim, float* data);  // a mapped buffer becomes free
  bool is_mapped() const;
  // The filled buffer, to be unmapped, and what came with it; false: there is none.
  bool collect(LiveDelivery& delivery);
  // Takes the buffer back, after the source has finished with it. Returns whether it was mapped.
  bool withdraw();

  void count_shown(LiveTime processed);
  void count_lost_by_driver();
  LiveCounts counts() const;
  LiveStatistics statistics() const;

  void close();  // the live renderer is gone

 private:
  // Lent becomes recalled where the rendering thread waits for it.
  enum class BufferState { unmapped, free, lent, recalled, filled };

  bool is_current(LiveClaim claim) const;
  bool holds(LiveClaim claim) const { return claim != no_claim && claim == claim_; }  // under mutex_
  void request(LiveState state);

  mutable std::mutex renderer_mutex_;  // before mutex_
  VolumeRenderer* renderer_ = nullptr;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  bool gone_ = false;
  LiveClaim last_claim_ = no_claim;
  LiveClaim claim_ = no_claim;
  LiveFormat format_;
  LiveState state_ = LiveState::stopped;
  std::uint64_t number_ = 0;  // of the latest request
  bool completed_ = false;    // the latest start
  std::string failure_;       // of the latest start
  BufferState buffer_ = BufferState::unmapped;
  LiveClaim buffer_claim_ = no_claim;  // who may take it
  float* data_ = nullptr;
  LiveDelivery delivery_;
  LiveStatistics statistics_;
};

}  // namespace oct
