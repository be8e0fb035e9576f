// The pictures that a verb writes.
#pragma once

#include <filesystem>
#include <initializer_list>
#include <string>

#include <CLI/CLI.hpp>

namespace oct::app {

CLI::Option* add_output_option(CLI::App& verb, std::string& output);

// Throws a CommandLineError when the name is that of an input.
std::filesystem::path checked_output(const std::string& output, std::initializer_list<std::string> inputs);

// Throws a CommandLineError unless the name ends in .png and is that of none of the
// inputs, some of which may be empty.
std::filesystem::path picture_file(const std::string& output, std::initializer_list<std::string> inputs);

// Throws a CommandLineError where the output is one of these files.
void refuse_inputs(const std::filesystem::path& output, std::initializer_list<std::string> inputs);

// The same for a series, which may be an animation.
std::filesystem::path series_file(const std::string& output, std::initializer_list<std::string> inputs);

// Ends in .apng, .mp4, .webm or .gif.
bool is_animation(const std::filesystem::path& output);

// "OUT-007.png" for "OUT.png" and 7.
std::filesystem::path numbered(const std::filesystem::path& output, unsigned number);

}  // namespace oct::app
