#include "hosting/loop/render_trace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace oct {

const char* fixed_render_trace_file() {
  return "/tmp/render_calls.txt";
}

TraceFile open_render_trace(const std::filesystem::path& path) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0644);
  if (file < 0) return nullptr;
  // Emptied only now: another name of the file, or another user's file, may be what was opened.
  struct stat status {};
  const bool ours = fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
                    status.st_nlink == 1;
  std::FILE* const stream = ours && ftruncate(file, 0) == 0 ? fdopen(file, "w") : nullptr;
  if (!stream) close(file);
  return TraceFile(stream);
}

}  // namespace oct
