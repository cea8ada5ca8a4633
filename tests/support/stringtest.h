// What the tests of strings share: strings as bytes and units, and the reports that
// an overflow makes.
#ifndef STRINGTEST_H
#define STRINGTEST_H

#include <string>
#include <vector>

#include "nxbase.h"
#include "nxstring.h"

using Bytes = std::vector<unsigned char>;
using Units = std::u16string;

/// The whole buffer, terminator included.
inline std::string Buffer(const NxString& s) {
  return s._pBuffer ? std::string(s._pBuffer, s._nSize) : std::string();
}
/// The text up to its first zero character.
inline std::string Text(const NxString& s) { return s.StrGet(); }
inline Units Text16(const NxString& s) {
  Units units;
  for (const char* p = s.StrGet(); p[0] || p[1]; p += 2)
    units += static_cast<char16_t>(static_cast<unsigned char>(p[0]) | static_cast<unsigned char>(p[1]) << 8);
  return units;
}
/// A 16-bit string of code set 253, language 2.
inline NxString Wide(const Units& units) {
  NxString s(253, 2);
  s.BuildString(reinterpret_cast<const char*>(units.c_str()), 253, 0, 0,
                static_cast<unsigned short>(units.size()), 1, 3, 1);
  return s;
}
/// An 8-bit string with a language.
inline NxString Narrow(const std::string& text, unsigned char codeSet = 1, unsigned char language = 2) {
  NxString s(codeSet, language);
  s.BuildString(text.c_str(), codeSet, 0, 0, static_cast<unsigned short>(text.size()), 1, 3, 1);
  return s;
}

/// Collects what NEXO_assert reports while it lives, as "expression path:line".
class Reports {
 public:
  Reports() {
    Lines().clear();
    before_ = NxSetAssertHandler([](const char* expression, const char* path, int line) {
      Lines().push_back(std::string(expression) + " " + path + ":" + std::to_string(line));
    });
  }
  ~Reports() { NxSetAssertHandler(before_); }
  /// The reports since the last call.
  std::vector<std::string> Take() {
    std::vector<std::string> lines;
    lines.swap(Lines());
    return lines;
  }

 private:
  static std::vector<std::string>& Lines() {
    static std::vector<std::string> lines;
    return lines;
  }
  NxAssertHandler before_;
};

inline const std::vector<std::string> kBuildOverflow = {"\"String overflow\" && 0 src/nxstring:1361"};
inline const std::vector<std::string> kMapOverflow = {"\"String overflow\" && 0 src/nxstring:1150"};

#endif
