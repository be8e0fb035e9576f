#include "command_line/shell_words.h"

#include <algorithm>
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

}  // namespace

std::string shell_words(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += ' ';
    text += quoted(word);
  }
  return text;
}

}  // namespace oct::app
