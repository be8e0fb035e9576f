// A source of live volumes with an acquisition thread of its own.
#pragma once

#include "core/error_callback.h"

namespace oct {

class AbstractDataSource {
 public:
  virtual ~AbstractDataSource() = default;
  virtual void set_error_callback(const ErrorCallback& callback) = 0;  // keeps a copy; an empty one removes it
};

}  // namespace oct
