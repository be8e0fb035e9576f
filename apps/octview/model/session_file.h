// Sessions as files: which data is open, and how it is shown.
#pragma once

#include <filesystem>

#include "octview/model/view_state.h"

namespace oct::app {

struct Session {
  SessionFiles files;
  ViewState state;
};

// Names of files are written relative to the session where they lie in its folder or below, so that both can be moved. Throws
// a WriteError, and leaves what was there before.
void write_session(const std::filesystem::path& path, const Session& session);

// True when the file is one, whatever is wrong with it; false also where there is no such file.
bool is_session(const std::filesystem::path& path);

// Fields that are not known are passed over, and what is missing has its default. Throws a ReadError that names the field where
// a value is of another kind or out of bounds.
Session read_session(const std::filesystem::path& path);

}  // namespace oct::app
