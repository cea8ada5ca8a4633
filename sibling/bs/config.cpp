// The process's configuration: the file that NX21_CONFIG names, or what the
// process itself installs. A line of the file is `key=value` or
// `section.key=value`; blank lines and lines that start with # count for nothing.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "nxbase.h"

namespace {

class FileConfig final : public NxConfig {
 public:
  void Set(const char* key, unsigned short value) override { values_[key] = value; }

  int Query(const char* key, unsigned short* value, const NxConfigScope* scope) override {
    if (scope && scope->section && Find(std::string(scope->section) + '.' + key, value)) return 1;
    return Find(key, value) ? 1 : 0;
  }

  /// Takes over the lines of `file`; reports those that are neither settings nor
  /// comments under `path`.
  void Read(std::FILE* file, const char* path) {
    std::string line;
    for (int number = 1; ReadLine(file, &line); ++number) {
      if (!TakeLine(line)) std::fprintf(stderr, "%s:%d: not a line of the form key=number\n", path, number);
    }
  }

 private:
  bool Find(const std::string& key, unsigned short* value) const {
    const auto found = values_.find(key);
    if (found == values_.end()) return false;
    *value = found->second;
    return true;
  }

  static bool ReadLine(std::FILE* file, std::string* line) {
    line->clear();
    int c;
    while ((c = std::getc(file)) != EOF && c != '\n') line->push_back(static_cast<char>(c));
    return c != EOF || !line->empty();
  }

  static std::string Trimmed(const std::string& text) {
    constexpr const char* kBlanks = " \t\r";
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
  }

  bool TakeLine(const std::string& line) {
    const std::string setting = Trimmed(line);
    if (setting.empty() || setting[0] == '#') return true;
    const auto equals = setting.find('=');
    if (equals == std::string::npos || equals == 0) return false;
    const std::string number = Trimmed(setting.substr(equals + 1));
    if (number.empty() || std::strspn(number.c_str(), "0123456789") != number.size()) return false;
    const unsigned long value = std::strtoul(number.c_str(), nullptr, 10);
    if (value > 0xFFFF) return false;
    Set(Trimmed(setting.substr(0, equals)).c_str(), static_cast<unsigned short>(value));
    return true;
  }

  std::map<std::string, unsigned short> values_;
};

NxConfig* ConfigOfFile() {
  const char* path = std::getenv("NX21_CONFIG");
  if (!path || !*path) return nullptr;
  std::FILE* file = std::fopen(path, "r");
  if (!file) {
    std::fprintf(stderr, "%s: the configuration cannot be read\n", path);
    return nullptr;
  }
  auto* config = new FileConfig;  // lives as long as the process
  config->Read(file, path);
  std::fclose(file);
  return config;
}

}  // namespace

NxConfig* DefaultConfig(NxConfig* config) {
  static NxConfig* current = ConfigOfFile();
  if (config != NxAskConfig()) current = config;
  return current;
}
