// Command lines as text.
#pragma once

#include <string>
#include <vector>

namespace oct::app {

// The words with blanks between them, quoted where a POSIX shell would take them for something else.
std::string shell_words(const std::vector<std::string>& words);

// The same as cmd.exe hands them to a program of the C runtime. Within %...% it puts variables that exist in any case.
std::string windows_shell_words(const std::vector<std::string>& words);

}  // namespace oct::app
