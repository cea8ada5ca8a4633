// The byte matchers: plain comparison, wildcards over bytes, and the glob with escapes
// over bytes as they are, bytes of the disk code set, and sort keys.

#include "strwild.h"

#include <cstring>

#include "nxcistr.h"
#include "nxcodset.h"
#include "nxistr.h"

namespace {

unsigned char ByteAt(const char* p) { return static_cast<unsigned char>(*p); }

}  // namespace

int nxstrcmp(const char* a, const char* b, int n) {
  if (!a) return b && *b ? -1 : 0;
  if (!b) return *a ? 1 : 0;
  for (;; ++a, ++b) {
    if (*a != *b) return ByteAt(a) - ByteAt(b);
    if (*a == 0 || --n == 0) return 0;
  }
}

// ---------------------------------------------------------------------------
// nxstrwild

namespace {

/// One match of a text against a pattern of "*" and "?".
class ByteMatch {
 public:
  ByteMatch(const char* pattern, const char* text, int n) : p_(pattern), t_(text), left_(n) {}
  int Run();

 private:
  bool PassStars();
  bool Retry();

  const char* p_;
  const char* t_;
  int left_;                         // bytes still to be matched; 0 or less: no limit
  const char* afterStar_ = nullptr;  // the pattern behind the last star
  const char* retry_ = nullptr;      // where the text is to be tried next
};

int ByteMatch::Run() {
  for (;;) {
    if (*p_ == '*') {
      if (PassStars()) return 0;
      if (!Retry()) return -ByteAt(p_);
    } else if (*p_ == '?' && *t_ == 0) {
      return -1;
    } else if (*p_ == '?' || *p_ == *t_) {
      if (*p_ == 0) return 0;
      ++p_, ++t_;
      if (--left_ == 0) return 0;
    } else {
      if (!afterStar_) return ByteAt(t_) - ByteAt(p_);
      p_ = afterStar_;
      if (!Retry()) return -ByteAt(p_);
    }
  }
}

/// True when the pattern ends with its stars.
bool ByteMatch::PassStars() {
  while (*++p_ == '*') {
  }
  afterStar_ = p_;
  retry_ = t_;
  return *p_ == 0;
}

/// Takes the text to the next place where the part behind the star can begin.
bool ByteMatch::Retry() {
  t_ = retry_;
  while (*t_ != *p_ && *p_ != '?') {
    if (*t_ == 0) return false;
    ++t_;
  }
  if (*t_ != 0) retry_ = t_ + 1;
  return true;
}

}  // namespace

int nxstrwild(const char* pattern, const char* text, int n) {
  if (!pattern) return text && *text ? 1 : 0;
  if (!text) return *pattern ? -1 : 0;
  return ByteMatch(pattern, text, n).Run();
}

// ---------------------------------------------------------------------------
// Glob with escapes

namespace {

enum Literal {
  kDiffers,    //
  kMatches,    // one byte of the text
  kMatchesAll  // the whole pattern counts as matched
};

/// Bytes as they are.
struct PlainBytes {
  unsigned char OfPattern(unsigned char c) const { return c; }
  Literal Match(unsigned char p, unsigned char t) const { return p == t ? kMatches : kDiffers; }
  bool QuestionEndsMatch() const { return false; }
};

/// Bytes of the disk code set, to which texts in memory are converted.
class DiskBytes {
 public:
  DiskBytes(unsigned char formP, unsigned char formT)
      : convertPattern_(!(formP & kAlphaDisk)), convertText_(!(formT & kAlphaDisk)) {}
  unsigned char OfPattern(unsigned char c) const { return convertPattern_ ? _NxConvertToDiskFormat(c) : c; }
  unsigned char OfText(unsigned char c) const { return convertText_ ? _NxConvertToDiskFormat(c) : c; }
  Literal Match(unsigned char p, unsigned char t) const { return p == OfText(t) ? kMatches : kDiffers; }
  bool QuestionEndsMatch() const { return false; }

 private:
  const bool convertPattern_;
  const bool convertText_;
};

/// Sort keys of bytes of the disk code set. A text of keys has lost its accents and
/// shows ligatures as two keys: where that leaves a match open it counts as one.
class KeyBytes {
 public:
  KeyBytes(unsigned char formP, unsigned char formT)
      : bytes_(formP, formT), mapPattern_(!(formP & kAlphaKeys)), mapText_(!(formT & kAlphaKeys)) {}
  unsigned char OfPattern(unsigned char c) const { return bytes_.OfPattern(c); }
  Literal Match(unsigned char p, unsigned char t) const {
    unsigned char extraP = 0;
    unsigned char extraT = 0;
    if (mapPattern_) p = _NxCaseIMapByte(p, extraP);
    t = bytes_.OfText(t);
    if (mapText_) t = _NxCaseIMapByte(t, extraT);
    if (p != t) return kDiffers;
    if (extraP == extraT) return kMatches;
    if (mapText_ || !mapPattern_) return kDiffers;
    return extraP > kLastAccentWeight ? kMatchesAll : kMatches;
  }
  bool QuestionEndsMatch() const { return !mapText_; }

 private:
  static constexpr unsigned char kLastAccentWeight = 8;

  const DiskBytes bytes_;
  const bool mapPattern_;
  const bool mapText_;
};

/// What the byte after a "\" stands for.
unsigned char Escaped(unsigned char c) {
  switch (c) {
    case 'n':
      return 0x0A;
    case 'r':
      return 0x0D;
    case 't':
      return 0x09;
    default:
      return c;
  }
}

template <class Bytes>
int Glob(const char* p, const char* t, const Bytes& bytes) {
  const char* afterStar = nullptr;
  const char* retry = nullptr;
  if (!p) p = "";
  if (!t) t = "";
  for (;;) {
    unsigned char c = bytes.OfPattern(ByteAt(p));
    if (c == 0) return *t == 0;
    ++p;
    if (c == '*') {
      if (*p == 0) return 1;
      afterStar = p;
      retry = t;
      continue;
    }
    if (c == '?') {
      if (bytes.QuestionEndsMatch()) return 1;
      if (*t++ == 0) return 0;
      continue;
    }
    if (c == '\\') {
      c = Escaped(bytes.OfPattern(ByteAt(p)));
      if (c == 0) return 0;
      ++p;
    }
    if (*t == 0) return 0;  // the part behind a star finds even less text further on
    const Literal literal = bytes.Match(c, ByteAt(t));
    if (literal == kMatchesAll) return 1;
    if (literal == kMatches) {
      ++t;
      continue;
    }
    if (!afterStar) return 0;
    p = afterStar;
    t = ++retry;
  }
}

}  // namespace

int strwild(const char* pattern, const char* text) { return Glob(pattern, text, PlainBytes()); }

int strwc(const char* pattern) {
  if (!pattern) return -1;
  const std::size_t position = std::strcspn(pattern, "?*\\");
  return pattern[position] ? static_cast<int>(position) : -1;
}

int istrwild(const char* pattern, const char* text, unsigned char formP, unsigned char formT) {
  return Glob(pattern, text, DiskBytes(formP, formT));
}

// The disk code set keeps every byte below 0x80, and so each wildcard in its place.
int istrwc(const char* pattern, unsigned char /*form*/) { return strwc(pattern); }

int caseistrwild(const char* pattern, const char* text, unsigned char formP, unsigned char formT) {
  return Glob(pattern, text, KeyBytes(formP, formT));
}

int caseistrwc(const char* pattern, unsigned char form) { return istrwc(pattern, form); }

int mappedwild(const char* pattern, const char* text, unsigned char formP, unsigned char formT) {
  return caseistrwild(pattern, text, formP | kAlphaDisk, formT | kAlphaDisk);
}
