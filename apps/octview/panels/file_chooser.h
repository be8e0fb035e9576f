// Asks for a file by a list of what is in a folder.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace oct::app {

class FileChooser {
 public:
  enum class Purpose { open, save };

  // start: a folder, or a file that is proposed.
  void ask(std::string title, Purpose purpose, const std::filesystem::path& start);

  // Builds the window while it asks. The file that was chosen, once.
  std::optional<std::filesystem::path> show();

 private:
  struct Entry {
    std::string name;
    bool folder = false;
  };

  void enter(std::filesystem::path folder);
  void show_entries();
  std::optional<std::filesystem::path> finish();

  std::string title_;
  Purpose purpose_ = Purpose::open;
  bool wanted_ = false;  // to be opened in the next frame
  std::filesystem::path folder_;
  std::vector<Entry> entries_;
  std::array<char, 1024> name_{};
  std::string problem_;
  std::optional<std::filesystem::path> chosen_;
  std::filesystem::path to_replace_;  // a file that is there, for which it was asked
};

}  // namespace oct::app
