// What the program needs to know from the system it runs on.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace oct::app {

// The arguments behind the program's name, in UTF-8.
std::vector<std::string> command_line_arguments(int argc, char** argv);

bool error_stream_is_terminal();

// Bytes; 0 where the system does not tell.
std::uint64_t physical_memory();

// Words quoted for the shell that people of this system use.
std::string native_shell_words(const std::vector<std::string>& words);

}  // namespace oct::app
