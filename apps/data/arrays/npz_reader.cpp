#include "data/arrays/npz_reader.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "data/arrays/npy_reader.h"
#include "data/file_errors.h"

namespace oct::app {
namespace {

constexpr std::size_t end_record_bytes = 22, entry_bytes = 46, local_header_bytes = 30;
constexpr std::size_t max_comment_bytes = 65535;
constexpr unsigned stored = 0, deflated = 8;

struct Entry {
  std::string name;
  unsigned flags = 0;
  unsigned method = 0;
  std::uint64_t packed_bytes = 0;
  std::uint64_t header = 0;  // where its local header lies
};

std::uint64_t number_at(const std::string& bytes, std::size_t place, std::size_t length) {
  std::uint64_t value = 0;
  for (std::size_t i = length; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[place + i]);
  return value;
}

class ZipDirectory {
 public:
  explicit ZipDirectory(InputFile& file) : file_(file) {
    const auto tail_bytes =
        static_cast<std::size_t>(std::min<std::uint64_t>(file.size(), end_record_bytes + max_comment_bytes));
    const std::string tail = bytes_at(file.size() - tail_bytes, tail_bytes);
    const std::size_t end = tail.rfind("PK\5\6");
    if (end == std::string::npos || end + end_record_bytes > tail.size()) {
      fail("the archive has no directory; it is damaged or truncated");
    }
    const std::uint64_t directory_bytes = number_at(tail, end + 12, 4), begin = number_at(tail, end + 16, 4);
    if (directory_bytes == UINT32_MAX || begin == UINT32_MAX) fail_large();
    if (begin + directory_bytes > file.size()) fail("the archive's directory is damaged");
    read_entries(bytes_at(begin, static_cast<std::size_t>(directory_bytes)));
  }

  const Entry& find(const std::string& name) const {
    if (name.empty() && entries_.size() == 1) return entries_.front();
    std::string names;
    for (const Entry& entry : entries_) {
      if (entry.name == name || entry.name == name + ".npy") return entry;
      names += (names.empty() ? "" : ", ") + entry.name.substr(0, entry.name.size() - 4);
    }
    if (entries_.empty()) fail("the archive holds no .npy array");
    if (name.empty()) fail("the archive holds several arrays: " + names + "; choose one with FILE.npz:NAME");
    fail("the archive holds no array '" + name + "'; there are " + names);
  }

  std::uint64_t data_begin(const Entry& entry) const {
    if (entry.header + local_header_bytes > file_.size()) fail("the archive's directory is damaged");
    const std::string header = bytes_at(entry.header, local_header_bytes);
    if (!header.starts_with("PK\3\4")) fail("the archive's directory is damaged");
    return entry.header + local_header_bytes + number_at(header, 26, 2) + number_at(header, 28, 2);
  }

  [[noreturn]] void fail(const std::string& reason) const { throw ReadError(file_.path(), reason); }

 private:
  [[noreturn]] void fail_large() const {
    fail("archives past 4 GiB are not supported; save the array as .npy");
  }

  std::string bytes_at(std::uint64_t place, std::size_t count) const {
    std::string bytes(count, '\0');
    file_.seek(place);
    file_.read(bytes.data(), count);
    return bytes;
  }

  void read_entries(const std::string& directory) {
    for (std::size_t place = 0; place + entry_bytes <= directory.size();) {
      if (directory.compare(place, 4, "PK\1\2") != 0) fail("the archive's directory is damaged");
      const auto name_bytes = static_cast<std::size_t>(number_at(directory, place + 28, 2));
      const auto other_bytes =
          static_cast<std::size_t>(number_at(directory, place + 30, 2) + number_at(directory, place + 32, 2));
      Entry entry;
      entry.flags = static_cast<unsigned>(number_at(directory, place + 8, 2));
      entry.method = static_cast<unsigned>(number_at(directory, place + 10, 2));
      entry.packed_bytes = number_at(directory, place + 20, 4);
      entry.header = number_at(directory, place + 42, 4);
      place += entry_bytes;
      if (name_bytes + other_bytes > directory.size() - place) fail("the archive's directory is damaged");
      entry.name = directory.substr(place, name_bytes);
      place += name_bytes + other_bytes;
      if (!entry.name.ends_with(".npy")) continue;
      if (entry.packed_bytes == UINT32_MAX || entry.header == UINT32_MAX) fail_large();
      entries_.push_back(std::move(entry));
    }
  }

  InputFile& file_;
  std::vector<Entry> entries_;
};

}  // namespace

std::unique_ptr<FrameReader> open_npz(std::shared_ptr<InputFile> file, const std::string& name) {
  const ZipDirectory directory(*file);
  const Entry& entry = directory.find(name);
  if (entry.flags & 1U) directory.fail("the array '" + entry.name + "' is encrypted");
  if (entry.method != stored && entry.method != deflated) {
    directory.fail("the array '" + entry.name + "' is compressed in a way that is not supported");
  }
  const std::uint64_t begin = directory.data_begin(entry);
  return open_npy(open_bytes(std::move(file),
                             entry.method == deflated ? Compression::deflate : Compression::none, begin,
                             begin + entry.packed_bytes));
}

}  // namespace oct::app
