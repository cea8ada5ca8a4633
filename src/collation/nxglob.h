// The glob with escapes: "*", "?" and "\\" over bytes that a policy reads and compares.
// What the policy must offer shows NxPlainBytes.
#ifndef NXGLOB_H
#define NXGLOB_H

/// What a literal byte of the pattern says of a byte of the text.
enum NxLiteral {
  kDiffers,    //
  kMatches,    // one byte of the text
  kMatchesAll  // the whole pattern counts as matched
};

inline unsigned char NxByteAt(const char* p) { return static_cast<unsigned char>(*p); }

/// Bytes as they are.
struct NxPlainBytes {
  unsigned char OfPattern(unsigned char c) const { return c; }
  NxLiteral Match(unsigned char p, unsigned char t) const { return p == t ? kMatches : kDiffers; }
  bool QuestionEndsMatch() const { return false; }
};

/// What the byte after a "\" stands for.
inline unsigned char NxEscaped(unsigned char c) {
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
int NxGlob(const char* p, const char* t, const Bytes& bytes) {
  const char* afterStar = nullptr;
  const char* retry = nullptr;
  if (!p) p = "";
  if (!t) t = "";
  for (;;) {
    unsigned char c = bytes.OfPattern(NxByteAt(p));
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
      c = NxEscaped(bytes.OfPattern(NxByteAt(p)));
      if (c == 0) return 0;
      ++p;
    }
    if (*t == 0) return 0;  // the part behind a star finds even less text further on
    const NxLiteral literal = bytes.Match(c, NxByteAt(t));
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

#endif
