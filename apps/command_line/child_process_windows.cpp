#include "command_line/child_process.h"

#include <algorithm>
#include <array>
#include <system_error>

#include <windows.h>

#include "command_line/last_line.h"
#include "data/file_errors.h"

namespace oct::app {
namespace {

[[noreturn]] void fail() {
  throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
}

class Handle {
 public:
  Handle() = default;
  explicit Handle(HANDLE handle) : handle_(handle) {
    if (handle == INVALID_HANDLE_VALUE || !handle) fail();
  }
  ~Handle() { close(); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  HANDLE get() const { return handle_; }
  HANDLE* place() { return &handle_; }
  void close() {
    if (handle_) CloseHandle(handle_);
    handle_ = nullptr;
  }

 private:
  HANDLE handle_ = nullptr;
};

// As programs take their command line apart: backslashes count before a quotation mark only.
std::wstring quoted(const std::wstring& word) {
  std::wstring text = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t letter : word) {
    if (letter == L'"') text.append(backslashes + 1, L'\\');
    backslashes = letter == L'\\' ? backslashes + 1 : 0;
    text += letter;
  }
  return text.append(backslashes, L'\\') + L"\"";
}

// A file that goes with its handle.
HANDLE make_temporary_file() {
  std::array<wchar_t, MAX_PATH + 1> folder{}, file{};
  if (GetTempPathW(MAX_PATH, folder.data()) == 0 ||
      GetTempFileNameW(folder.data(), L"oct", 0, file.data()) == 0) {
    fail();
  }
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileW(file.data(), GENERIC_READ | GENERIC_WRITE,
                     FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherited, CREATE_ALWAYS,
                     FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
}

HANDLE open_nowhere() {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0,
                     nullptr);
}

}  // namespace

std::optional<std::filesystem::path> find_program(const std::string& name) {
  // The current folder, which anybody may have filled, comes last.
  SetSearchPathMode(BASE_SEARCH_PATH_ENABLE_SAFE_SEARCHMODE);
  std::array<wchar_t, 32768> found{};
  const DWORD length = SearchPathW(nullptr, from_utf8(name).c_str(), L".exe",
                                   static_cast<DWORD>(found.size()), found.data(), nullptr);
  if (length == 0 || length >= found.size()) return std::nullopt;
  return std::filesystem::path(found.data());
}

struct ChildProcess::System {
  Handle process;
  Handle input;
  Handle errors{make_temporary_file()};
};

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments)
    : system_(std::make_unique<System>()) {
  Handle childs_end;
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  if (!CreatePipe(childs_end.place(), system_->input.place(), &inherited, 1 << 16)) fail();
  SetHandleInformation(system_->input.get(), HANDLE_FLAG_INHERIT, 0);
  const Handle nowhere(open_nowhere());
  std::wstring words = quoted(program.wstring());
  for (const std::string& argument : arguments) words += L" " + quoted(from_utf8(argument).wstring());
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = childs_end.get();
  start.hStdOutput = nowhere.get();
  start.hStdError = system_->errors.get();
  PROCESS_INFORMATION made{};
  if (!CreateProcessW(program.c_str(), words.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                      nullptr, &start, &made)) {
    fail();
  }
  CloseHandle(made.hThread);
  *system_->process.place() = made.hProcess;
}

ChildProcess::~ChildProcess() {
  if (!system_->process.get()) return;
  TerminateProcess(system_->process.get(), 1);
  WaitForSingleObject(system_->process.get(), INFINITE);
}

bool ChildProcess::write(const void* bytes, std::size_t count) {
  const char* next = static_cast<const char*>(bytes);
  while (count > 0) {
    DWORD taken = 0;
    const auto part = static_cast<DWORD>(std::min<std::size_t>(count, std::size_t{1} << 24));
    if (!WriteFile(system_->input.get(), next, part, &taken, nullptr) || taken == 0) return false;
    next += taken;
    count -= taken;
  }
  return true;
}

ChildProcess::Ending ChildProcess::finish() {
  system_->input.close();
  WaitForSingleObject(system_->process.get(), INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(system_->process.get(), &code);
  system_->process.close();
  Ending ending;
  ending.code = static_cast<int>(code);
  std::array<char, 4096> tail{};
  LARGE_INTEGER length{};
  GetFileSizeEx(system_->errors.get(), &length);
  LARGE_INTEGER start{};
  start.QuadPart = std::max<LONGLONG>(0, length.QuadPart - static_cast<LONGLONG>(tail.size()));
  SetFilePointerEx(system_->errors.get(), start, nullptr, FILE_BEGIN);
  DWORD read = 0;
  ReadFile(system_->errors.get(), tail.data(), static_cast<DWORD>(tail.size()), &read, nullptr);
  ending.last_words = last_line_of({tail.data(), read});
  return ending;
}

}  // namespace oct::app
