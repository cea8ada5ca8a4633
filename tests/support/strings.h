// What the tests of texts share: strings as bytes and units, stored images written from
// their definition, and the reports and settings of the process.
#ifndef STRINGS_H
#define STRINGS_H

#include <initializer_list>
#include <string>
#include <vector>

#include "nxbase.h"
#include "nxlang.h"
#include "nxstring.h"

using Bytes = std::vector<unsigned char>;
using Units = std::u16string;

inline int Sign(long v) { return (v > 0) - (v < 0); }

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
/// The bytes of a text in a code set of either width, without a terminator.
inline std::string Encoded(const Units& units, unsigned char codeSet, unsigned char format = 1) {
  std::string bytes;
  for (const char16_t unit : units) {
    const char low = static_cast<char>(unit), high = static_cast<char>(unit >> 8);
    if (NxCharWidth(codeSet) == 1)
      bytes += low;
    else
      bytes += format == kFormatBigEndian ? std::string{high, low} : std::string{low, high};
  }
  return bytes;
}
inline Units Widened(const std::string& text) {
  Units units;
  for (const char c : text) units += static_cast<char16_t>(static_cast<unsigned char>(c));
  return units;
}

inline NxString String(const Units& units, unsigned char codeSet, unsigned char language) {
  NxString s(codeSet, language);
  s.BuildString((Encoded(units, codeSet) + std::string(2, '\0')).c_str(), codeSet, 0, 0,
                static_cast<unsigned short>(units.size()), 1, 3, 1);
  return s;
}
/// A 16-bit string of code set 253, language 2.
inline NxString Wide(const Units& units) { return String(units, kCodeSetUnicode, kLanguageGerman); }
/// An 8-bit string with a language.
inline NxString Narrow(const std::string& text, unsigned char codeSet = 1, unsigned char language = 2) {
  return String(Widened(text), codeSet, language);
}

// ---------------------------------------------------------------------------
// Stored images

/// A 16-bit number as the format has it.
inline std::string Stored16(unsigned long n, unsigned char format) {
  return Encoded({static_cast<char16_t>(n)}, kCodeSetUnicode, format & kFormatCodeMask);
}
inline std::string StringImage(const Units& text, unsigned char codeSet = 1, unsigned char language = 1,
                               unsigned char format = 1) {
  const std::string content = std::string{static_cast<char>(codeSet), static_cast<char>(language)} +
                              Encoded(text, codeSet, format & kFormatCodeMask) + std::string("\0\xFF", 2);
  return Stored16(content.size(), format) + content;
}
inline std::string StringImage(const std::string& text, unsigned char codeSet = 1, unsigned char language = 1,
                               unsigned char format = 1) {
  return StringImage(Widened(text), codeSet, language, format);
}
/// An early image of several texts.
inline std::string EarlyImage(const std::vector<std::string>& texts, unsigned char format = 1) {
  std::string content;
  for (const std::string& text : texts) content += text + '\0';
  return Stored16(content.size(), format) + content;
}
/// An image of an alphabetic type; it says to hold all its texts unless `total` is given.
inline std::string AlphaImage(int header, const std::vector<std::string>& texts, unsigned char format = 1,
                              int total = -1) {
  const std::string content = EarlyImage(texts, format).substr(2);
  return static_cast<char>(header) +
         Stored16(total < 0 ? content.size() : static_cast<unsigned long>(total), format) + content;
}

// ---------------------------------------------------------------------------
// The process

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

/// The configuration while it lives: one value under every key, or none.
class OneSetting final : public NxConfig {
 public:
  OneSetting() : before_(DefaultConfig(NxAskConfig())) { DefaultConfig(this); }
  ~OneSetting() { DefaultConfig(before_); }
  void Set(const char*, unsigned short value) override { value_ = value, present_ = true; }
  int Query(const char* key, unsigned short* value, const NxConfigScope* scope) override {
    asked = (scope ? std::string(scope->section) + "." : std::string()) + key;
    if (present_) *value = value_;
    return present_;
  }
  std::string asked;

 private:
  NxConfig* before_;
  unsigned short value_ = 0;
  bool present_ = false;
};

// ---------------------------------------------------------------------------
// Texts in numbers

/// Every text over an alphabet up to a length.
inline std::vector<std::string> TextsUpTo(const std::string& alphabet, unsigned length) {
  std::vector<std::string> texts{""};
  for (std::size_t begin = 0; length-- > 0;) {
    const std::size_t end = texts.size();
    for (; begin < end; ++begin)
      for (const char c : alphabet) texts.push_back(texts[begin] + c);
  }
  return texts;
}

/// Whether a text matches a pattern of "*" and "?", tried one character after another:
/// `same` tells which characters are one, `skipped` are not there.
template <class Same>
bool Matches(const char* text, const char* pattern, Same same, char skipped = '\0') {
  if (skipped && *text == skipped) return Matches(text + 1, pattern, same, skipped);
  if (skipped && *pattern == skipped) return Matches(text, pattern + 1, same, skipped);
  if (*pattern == 0) return *text == 0;
  if (*pattern == '*')
    return Matches(text, pattern + 1, same, skipped) || (*text && Matches(text + 1, pattern, same, skipped));
  return *text && (*pattern == '?' || same(*text, *pattern)) && Matches(text + 1, pattern + 1, same, skipped);
}

/// Whether the six operators of two values answer as their order does.
template <class A, class B>
bool OperatorsAgree(const A& a, const B& b, int sign) {
  return !!(a == b) == (sign == 0) && !!(a != b) == (sign != 0) && !!(a < b) == (sign < 0) &&
         !!(a > b) == (sign > 0) && !!(a <= b) == (sign <= 0) && !!(a >= b) == (sign >= 0);
}

#endif
