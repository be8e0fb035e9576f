// Why a run ends, for scripts.
#pragma once

namespace oct::app {

enum class ExitCode {
  ok = 0,
  rendering_failed = 1,
  bad_command_line = 2,
  input_failed = 3,
  output_failed = 4,
  device_failed = 5
};

}  // namespace oct::app
