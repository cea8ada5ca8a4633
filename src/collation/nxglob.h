// The glob with escapes: "*", "?" and "\\" over bytes that a policy reads and compares.
// What the policy must offer shows NxPlainBytes.
#ifndef NXGLOB_H
#define NXGLOB_H

/// What a character of the pattern says of the text at a place.
enum NxLiteral {
  kDiffers,     // no match from here
  kMatches,     // one byte of the text
  kMatchesAll,  // the whole pattern counts as matched
  kFails        // no match from here or from further on
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

/// What the pattern at p, which is not at a star, says of the text at t. Moves p behind
/// what it has read.
template <class Bytes>
NxLiteral NxTakeLiteral(const char*& p, const char* t, const Bytes& bytes) {
  unsigned char c = bytes.OfPattern(NxByteAt(p));
  if (c == 0) return *t == 0 ? kMatchesAll : kDiffers;
  ++p;
  if (c == '?') return bytes.QuestionEndsMatch() ? kMatchesAll : *t == 0 ? kFails : kMatches;
  if (c == '\\') {
    c = NxEscaped(bytes.OfPattern(NxByteAt(p)));
    if (c == 0) return kFails;
    ++p;
  }
  return *t == 0 ? kFails : bytes.Match(c, NxByteAt(t));
}

/// Whether the text matches the pattern. A star takes as little as it can; where what
/// follows differs, the pattern's end before the text's included, the last star takes a
/// byte more. The stars before it never need to: what stands between two stars leaves
/// the most text where it occurs first. So no more bytes are compared than those of the
/// pattern times those of the text.
template <class Bytes>
int NxGlob(const char* p, const char* t, const Bytes& bytes) {
  const char* afterStar = nullptr;
  const char* retry = nullptr;
  if (!p) p = "";
  if (!t) t = "";
  for (;;) {
    if (bytes.OfPattern(NxByteAt(p)) == '*') {
      if (*++p == 0) return 1;
      afterStar = p;
      retry = t;
      continue;
    }
    switch (NxTakeLiteral(p, t, bytes)) {
      case kMatches:
        ++t;
        break;
      case kMatchesAll:
        return 1;
      case kFails:
        return 0;
      case kDiffers:
        if (!afterStar) return 0;
        p = afterStar;
        t = ++retry;
    }
  }
}

#endif
