// Command lines as text.
#pragma once

#include <string>
#include <vector>

namespace oct::app {

// The words with blanks between them, quoted where a POSIX shell would take them for something else.
std::string shell_words(const std::vector<std::string>& words);

}  // namespace oct::app
