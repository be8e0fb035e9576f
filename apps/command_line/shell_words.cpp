#include "command_line/shell_words.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace oct::app {
namespace {

// What no shell looks at twice.
bool is_plain(char letter) {
  constexpr std::string_view signs = "_-./:=,+@%^";
  const bool is_digit = letter >= '0' && letter <= '9';
  const bool is_letter = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
  return is_digit || is_letter || signs.find(letter) != std::string_view::npos;
}

std::string quoted(const std::string& word) {
  if (!word.empty() && std::ranges::all_of(word, is_plain)) return word;
  std::string text = "'";
  for (const char letter : word) {
    if (letter == '\'') {
      text += "'\\''";
    } else {
      text += letter;
    }
  }
  return text + "'";
}

std::string joined(const std::vector<std::string>& words, std::string (*quote)(const std::string&)) {
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += ' ';
    text += quote(word);
  }
  return text;
}

// A backslash stands for itself, but before a quote.
std::string windows_quoted(const std::string& word) {
  const auto is_plain_there = [](char letter) {
    return letter == '\\' ||
           (is_plain(letter) && letter != '^' && letter != '%' && letter != '=' && letter != ',');
  };
  if (!word.empty() && std::ranges::all_of(word, is_plain_there)) return word;
  std::string text = "\"";
  std::size_t backslashes = 0;
  for (const char letter : word) {
    if (letter == '"') text.append(backslashes + 1, '\\');
    backslashes = letter == '\\' ? backslashes + 1 : 0;
    text += letter;
  }
  text.append(backslashes, '\\');
  text += '"';
  return text;
}

}  // namespace

std::string shell_words(const std::vector<std::string>& words) {
  return joined(words, quoted);
}

std::string windows_shell_words(const std::vector<std::string>& words) {
  return joined(words, windows_quoted);
}

}  // namespace oct::app
