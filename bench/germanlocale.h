// A German locale of the C library as a peer. It is made in a temporary directory; where
// that cannot be done, C.UTF-8 stands in, whose order is that of the bytes.
#ifndef GERMANLOCALE_H
#define GERMANLOCALE_H

#include <locale.h>
#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

/// A directory that lives as long as the process.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "nxlocaleXXXXXX").string();
    if (mkdtemp(name.data())) path_ = name;
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

/// A German locale of the C library, which is set for the calling thread while the
/// object lives.
class Locale {
 public:
  explicit Locale(const char* charset) : locale_(newlocale(LC_ALL_MASK, Made(charset).c_str(), nullptr)) {
    if (!locale_) locale_ = newlocale(LC_ALL_MASK, "C.UTF-8", nullptr);
    before_ = uselocale(locale_);
  }
  Locale(const Locale&) = delete;
  Locale& operator=(const Locale&) = delete;
  ~Locale() {
    uselocale(before_);
    freelocale(locale_);
  }
  static bool IsGerman() { return newlocale(LC_ALL_MASK, Made("UTF-8").c_str(), nullptr) != nullptr; }

 private:
  static std::string Made(const std::string& charset);
  locale_t locale_;
  locale_t before_;
};

/// Makes the locale the first time that it is asked for; its name for newlocale.
inline std::string Locale::Made(const std::string& charset) {
  static const TemporaryDirectory directory;
  const std::string name = "de_DE." + charset;
  if (!std::filesystem::exists(directory.Path() + "/" + name)) {
    const std::string command = "localedef -i de_DE -f " + charset + " --no-archive '" + directory.Path() +
                                "/" + name + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0) std::filesystem::remove_all(directory.Path() + "/" + name);
    setenv("LOCPATH", directory.Path().c_str(), 1);
  }
  return name;
}

#endif
