#include "data/file.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "data/failure.h"

namespace nxtm {

namespace {

[[noreturn]] void FailBySystem(const std::string& path) { throw Failure(path + ": " + std::strerror(errno)); }

[[noreturn]] void FailBySize(const std::string& path, const std::string& size, unsigned long most) {
  throw Failure(path + " has " + size + " bytes; at most " + std::to_string(most) + " can be kept");
}

}  // namespace

std::string ReadFile(const std::string& path, unsigned long most) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file) FailBySystem(path);
  struct stat status {};
  if (fstat(fileno(file.get()), &status) != 0) FailBySystem(path);
  const auto size = static_cast<unsigned long long>(status.st_size);
  if (size > most) FailBySize(path, std::to_string(size), most);
  std::string text;
  text.reserve(size);
  char piece[65536];
  while (const unsigned long n = std::fread(piece, 1, sizeof piece, file.get())) {
    // A pipe or device has no size, and a file may grow.
    if (text.size() + n > most) FailBySize(path, "more than " + std::to_string(most), most);
    text.append(piece, n);
  }
  if (std::ferror(file.get())) FailBySystem(path);
  return text;
}

void WriteNewFile(const std::string& path, std::string_view bytes) {
  FILE* const file = std::fopen(path.c_str(), "wbx");
  if (!file) FailBySystem(path);
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  if (std::fclose(file) != 0 || !written) FailBySystem(path);
}

std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

}  // namespace nxtm
