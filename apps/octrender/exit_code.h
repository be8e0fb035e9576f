// Why a run ends, for scripts.
#pragma once

namespace oct::app {

enum class ExitCode {
  Ok = 0,
  RenderingFailed = 1,
  BadCommandLine = 2,
  InputFailed = 3,
  OutputFailed = 4,
  DeviceFailed = 5
};

}  // namespace oct::app
