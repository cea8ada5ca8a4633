// The globs of the alphabetic strings: over bytes of the disk code set, and over sort
// keys.
#include "collation/nxglob.h"
#include "nxcistr.h"
#include "nxcodset.h"
#include "nxistr.h"
#include "strwild.h"

namespace {

/// Bytes of the disk code set, to which texts in memory are converted.
class DiskBytes {
 public:
  DiskBytes(unsigned char formP, unsigned char formT)
      : convertPattern_(!(formP & kAlphaDisk)), convertText_(!(formT & kAlphaDisk)) {}
  unsigned char OfPattern(unsigned char c) const { return convertPattern_ ? _NxConvertToDiskFormat(c) : c; }
  unsigned char OfText(unsigned char c) const { return convertText_ ? _NxConvertToDiskFormat(c) : c; }
  NxLiteral Match(unsigned char p, unsigned char t) const { return p == OfText(t) ? kMatches : kDiffers; }
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
  NxLiteral Match(unsigned char p, unsigned char t) const {
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

}  // namespace

int istrwild(const char* pattern, const char* text, unsigned char formP, unsigned char formT) {
  return NxGlob(pattern, text, DiskBytes(formP, formT));
}

// The disk code set keeps every byte below 0x80, and so each wildcard in its place.
int istrwc(const char* pattern, unsigned char /*form*/) { return strwc(pattern); }

int caseistrwild(const char* pattern, const char* text, unsigned char formP, unsigned char formT) {
  return NxGlob(pattern, text, KeyBytes(formP, formT));
}

int caseistrwc(const char* pattern, unsigned char form) { return istrwc(pattern, form); }

int mappedwild(const char* pattern, const char* text, unsigned char formP, unsigned char formT) {
  return caseistrwild(pattern, text, formP | kAlphaDisk, formT | kAlphaDisk);
}
