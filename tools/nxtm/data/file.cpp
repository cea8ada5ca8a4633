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

/// A file has more bytes than can be kept: all of them where the system knows.
[[noreturn]] void FailBySize(const std::string& path, FILE& file, unsigned long most) {
  struct stat status {};
  const bool known = fstat(fileno(&file), &status) == 0 && S_ISREG(status.st_mode);
  const std::string size = known ? std::to_string(status.st_size) : "more than " + std::to_string(most);
  throw Failure(path + " has " + size + " bytes; at most " + std::to_string(most) + " can be kept");
}

}  // namespace

std::string ReadFile(const std::string& path, unsigned long most) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file) FailBySystem(path);
  std::string text;
  char piece[65536];
  while (const unsigned long n = std::fread(piece, 1, sizeof piece, file.get())) {
    if (text.size() + n > most) FailBySize(path, *file, most);
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
