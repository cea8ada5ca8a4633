// The members of the alphabetic string classes, for their explicit instantiations.
//
// A text longer than 65535 bytes can be held; positions and counts then apply to
// its length modulo 65536, while buffers are always sized by the whole text.
#ifndef NXALPHATEXT_H
#define NXALPHATEXT_H

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "alpha/nxalpha.h"
#include "base/nxalloc.h"
#include "strwild.h"

inline unsigned long NxAlphaLength(const char* s) { return s ? std::strlen(s) : 0; }

/// A new buffer with three pieces of text one after another, or null when they are
/// empty or memory is short.
inline char* NxJoinTexts(const char* a, unsigned long lengthA, const char* b, unsigned long lengthB,
                         const char* c, unsigned long lengthC) {
  const unsigned long length = lengthA + lengthB + lengthC;
  char* text = length ? NxNewArray<char>(length + 1) : nullptr;
  if (!text) return nullptr;
  char* end = std::copy_n(c, lengthC, std::copy_n(b, lengthB, std::copy_n(a, lengthA, text)));
  *end = 0;
  return text;
}

// ---------------------------------------------------------------------------
// Construction and assignment

template <class Text>
void NxAlphaText<Text>::Adopt(char* text) {
  delete[] _pStr;
  _pStr = text;
}

template <class Text>
void NxAlphaText<Text>::Assign(const char* s) {
  const unsigned long length = NxAlphaLength(s);
  char* text = NxJoinTexts(s, length, nullptr, 0, nullptr, 0);
  if (!text && length != 0) return;
  Adopt(text);
  _nForm = 0;
}

template <class Text>
NxAlphaText<Text>::NxAlphaText(const NxAlphaText& s) : NxAlphaText(s._pStr) {}

template <class Text>
NxAlphaText<Text>::NxAlphaText(char c) : NxAlphaText() {
  const char text[] = {c, 0};
  Assign(text);
}

template <class Text>
NxAlphaText<Text>::NxAlphaText(const char* s) : NxAlphaText() {
  Assign(s);
}

template <class Text>
NxAlphaText<Text>::NxAlphaText(const char* s, unsigned short n) : NxAlphaText() {
  if (!s || n == 0) return;
  _pStr = NxNewZeroArray<char>(n + 1UL);
  if (_pStr) std::strncpy(_pStr, s, n);
}

template <class Text>
NxAlphaText<Text>::NxAlphaText(int v) : NxAlphaText(static_cast<long>(v)) {}

template <class Text>
NxAlphaText<Text>::NxAlphaText(short v) : NxAlphaText(static_cast<long>(v)) {}

template <class Text>
NxAlphaText<Text>::NxAlphaText(long v) : NxAlphaText() {
  char text[24];
  std::snprintf(text, sizeof text, "%ld", v);
  Assign(text);
}

template <class Text>
NxAlphaText<Text>::NxAlphaText(unsigned long v) : NxAlphaText() {
  char text[24];
  std::snprintf(text, sizeof text, "%lu", v);
  Assign(text);
}

template <class Text>
NxAlphaText<Text>::NxAlphaText(double v) : NxAlphaText() {
  char text[400];  // the largest double has 309 digits before its point
  std::snprintf(text, sizeof text, "%f", v);
  Assign(text);
}

template <class Text>
NxAlphaText<Text>::~NxAlphaText() {
  delete[] _pStr;
}

template <class Text>
NxAlphaText<Text>& NxAlphaText<Text>::operator=(const NxAlphaText& s) {
  if (this == &s) return *this;
  const NxShortageWatch shortage;
  Assign(s._pStr);
  if (!shortage.Happened()) _nForm = s._nForm;
  return *this;
}

template <class Text>
Text& NxAlphaText<Text>::operator+=(const Text& s) {
  const unsigned long added = NxAlphaLength(s._pStr);
  if (added == 0) return Self();
  char* text = NxJoinTexts(_pStr, NxAlphaLength(_pStr), s._pStr, added, nullptr, 0);
  if (text) Adopt(text);
  return Self();
}

template <class Text>
int NxAlphaText<Text>::Order(const NxAlphaText& a, const NxAlphaText& b) {
  return NxCompareAlpha<Text>(a._pStr, b._pStr, 0, a._nForm, b._nForm);
}

// ---------------------------------------------------------------------------
// Editing

template <class Text>
unsigned short NxAlphaText<Text>::Len() const {
  return static_cast<unsigned short>(NxAlphaLength(_pStr));
}

template <class Text>
Text& NxAlphaText<Text>::Insert(const Text& s, unsigned short pos) {
  const unsigned long added = NxAlphaLength(s._pStr);
  if (added == 0) return Self();
  if (!_pStr) return Self() = s;
  pos = std::min(pos, Len());
  char* text = NxJoinTexts(_pStr, pos, s._pStr, added, _pStr + pos, NxAlphaLength(_pStr + pos));
  if (text) Adopt(text);
  return Self();
}

template <class Text>
Text& NxAlphaText<Text>::Replace(const Text& s, unsigned short pos) {
  const unsigned short length = Len();
  if (pos > length) return Self();
  const unsigned long n = std::min<unsigned long>(s.Len(), length - pos);
  if (n) std::memmove(_pStr + pos, s._pStr, n);  // s may be this text
  return Self();
}

template <class Text>
Text& NxAlphaText<Text>::Fill(unsigned short n, char c) {
  if (n > Len()) {
    char* text = NxNewZeroArray<char>(n + 1UL);
    if (!text) return Self();
    Adopt(text);
  }
  if (n) std::memset(_pStr, c, n);
  return Self();
}

template <class Text>
Text& NxAlphaText<Text>::Expand(unsigned short n, char c) {
  const unsigned long length = NxAlphaLength(_pStr);
  if (n <= length) return Self();
  char* text = NxNewZeroArray<char>(n + 1UL);
  if (!text) return Self();
  std::fill_n(std::copy_n(_pStr, length, text), n - length, c);
  Adopt(text);
  return Self();
}

template <class Text>
Text& NxAlphaText<Text>::Cut(unsigned short pos, unsigned short count) {
  const unsigned short length = Len();
  if (pos > length) return Self();
  const unsigned long n = std::min<unsigned long>(count, length - pos);
  if (n == 0) return Self();
  const char* tail = _pStr + pos + n;
  const unsigned long tailLength = NxAlphaLength(tail);
  char* text = NxJoinTexts(_pStr, pos, tail, tailLength, nullptr, 0);
  if (text || pos + tailLength == 0) Adopt(text);
  return Self();
}

template <class Text>
Text NxAlphaText<Text>::Copy(unsigned short pos, unsigned short count) const {
  const unsigned short length = Len();
  if (pos > length) return Text();
  return Text(_pStr + pos, std::min<unsigned short>(count, static_cast<unsigned short>(length - pos)));
}

template <class Text>
int NxAlphaText<Text>::SubStringPos(const Text& s) const {
  const int length = Len();
  const int sought = s.Len();
  for (int i = 0; i + sought <= length; ++i)
    if (nxstrcmp(_pStr + i, s._pStr, sought) == 0) return i;
  return -1;
}

// ---------------------------------------------------------------------------
// Letters and numbers

/// Case mapping in the disk code set.
inline unsigned char NxDiskToUpper(unsigned char c) {
  if ((c >= 0x61 && c <= 0x7A) || (c >= 0xE0 && c <= 0xFE && c != 0xF7)) return c - 0x20;
  if (c == 0x9F) return 0xFF;
  return c == 0x9C ? 0x8C : c;
}

inline unsigned char NxDiskToLower(unsigned char c) {
  if ((c >= 0x41 && c <= 0x5A) || (c >= 0xC0 && c <= 0xDE && c != 0xD7)) return c + 0x20;
  if (c == 0xFF) return 0x9F;
  return c == 0x8C ? 0x9C : c;
}

/// Maps every byte of a text through the disk code set.
inline void NxMapInDiskCodeSet(char* text, unsigned char (*map)(unsigned char)) {
  for (; text && *text; ++text) {
    const unsigned char c = _NxConvertToDiskFormat(static_cast<unsigned char>(*text));
    *text = static_cast<char>(_NxConvertFromDiskFormat(map(c)));
  }
}

template <class Text>
Text& NxAlphaText<Text>::ToUpper() {
  NxMapInDiskCodeSet(_pStr, NxDiskToUpper);
  return Self();
}

template <class Text>
Text& NxAlphaText<Text>::ToLower() {
  NxMapInDiskCodeSet(_pStr, NxDiskToLower);
  return Self();
}

template <class Text>
Text& NxAlphaText<Text>::SpaceToZero() {
  std::replace(_pStr, _pStr + NxAlphaLength(_pStr), ' ', '0');
  return Self();
}

template <class Text>
Text& NxAlphaText<Text>::ZeroToSpace() {
  std::replace(_pStr, _pStr + NxAlphaLength(_pStr), '0', ' ');
  return Self();
}

template <class Text>
NxAlphaText<Text>::operator long() const {
  return _pStr ? std::strtol(_pStr, nullptr, 10) : 0;
}

template <class Text>
NxAlphaText<Text>::operator int() const {
  return static_cast<int>(operator long());
}

template <class Text>
NxAlphaText<Text>::operator short() const {
  return static_cast<short>(operator long());
}

template <class Text>
NxAlphaText<Text>::operator double() const {
  return _pStr ? std::strtod(_pStr, nullptr) : 0.0;
}

#endif
