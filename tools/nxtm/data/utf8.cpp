// Texts of the workbench are UTF-8; the library has code sets of its own.

#include "data/utf8.h"

#include <algorithm>
#include <cstring>

#include "data/failure.h"
#include "nxlang.h"

namespace nxtm {

namespace {

/// Length of the well-formed sequence at p, or 0. What UCS-2 cannot hold counts as
/// broken: characters from U+10000 on and surrogates.
unsigned long SequenceLength(const unsigned char* p, unsigned long rest) {
  if (p[0] < 0x80) return 1;
  unsigned short unit;
  int n = nx_mbtowc(&unit, const_cast<char*>(reinterpret_cast<const char*>(p)), static_cast<unsigned>(rest));
  if (n < 1 || n > 3 || (unit >= 0xD800 && unit < 0xE000)) return 0;
  return static_cast<unsigned long>(n);
}

/// The number of characters; a Failure for a text that is not UTF-8.
unsigned long CheckUtf8(const std::string& text) {
  auto* p = reinterpret_cast<const unsigned char*>(text.data());
  unsigned long characters = 0;
  for (unsigned long i = 0; i < text.size(); ++characters) {
    unsigned long n = SequenceLength(p + i, text.size() - i);
    if (n == 0)
      throw Failure("byte " + std::to_string(i + 1) +
                    " of the text begins no UTF-8 sequence of a character up to U+FFFF");
    if (p[i] == 0) throw Failure("byte " + std::to_string(i + 1) + " of the text is 0");
    i += n;
  }
  return characters;
}

/// Well-formed UTF-8 in a byte a character: ASCII, which is the same in every code set
/// of such, and for code set 0 or 1 all of Latin-1. False for a text with others.
bool ToLatin1(const std::string& text, unsigned char codeSet, std::string& bytes) {
  constexpr unsigned char kFirstOfLatin1 = 0xC2, kLastOfLatin1 = 0xC3;
  bool latin1 = codeSet <= kCodeSetLatin1;
  bytes.reserve(text.size());
  for (unsigned long i = 0; i < text.size(); ++i) {
    auto lead = static_cast<unsigned char>(text[i]);
    if (lead < 0x80) {
      bytes += text[i];
    } else {
      if (!latin1 || lead < kFirstOfLatin1 || lead > kLastOfLatin1) return false;
      bytes += static_cast<char>(lead << 6 | (text[++i] & 0x3F));
    }
  }
  return true;
}

/// Whether every character has a place in an 8-bit code set.
bool FitsCodeSet(const NxString& unicode, unsigned char codeSet) {
  NxString narrow(unicode);
  narrow.MapToCodeSet(codeSet);
  NxString back(narrow);
  back.MapToCodeSet(kCodeSetUnicode);
  return back._nSize == unicode._nSize && std::memcmp(back.StrGet(), unicode.StrGet(), back._nSize) == 0;
}

/// Converts well-formed UTF-8 by the library, which takes pieces of limited size; a
/// piece ends where a sequence does.
NxString ConvertPieces(const std::string& text, unsigned char codeSet, unsigned char language) {
  constexpr unsigned long kPiece = 16384;
  NxString s(codeSet, language);
  for (unsigned long at = 0, end; at < text.size(); at = end) {
    end = std::min<unsigned long>(text.size(), at + kPiece);
    while (end < text.size() && (text[end] & 0xC0) == 0x80) --end;
    NxString piece(kCodeSetUnicode, language);
    NxMBS2NxString(text.data() + at, piece, static_cast<long>(end - at));
    if (NxCharWidth(codeSet) == 1 && !FitsCodeSet(piece, codeSet))
      throw Failure("a character of the text is not in code set " + std::to_string(codeSet));
    s += piece;
  }
  return s;
}

}  // namespace

NxString StringOfUtf8(const std::string& text, unsigned char codeSet, unsigned char language) {
  unsigned long characters = CheckUtf8(text);
  std::string bytes;
  const bool narrow = NxCharWidth(codeSet) == 1 && ToLatin1(text, codeSet, bytes);
  if (codeSet == 0) codeSet = narrow ? kCodeSetLatin1 : kCodeSetUnicode;
  if (characters * NxCharWidth(codeSet) > kMaxTextBytes)
    throw Failure("the text is longer than " + std::to_string(kMaxTextBytes) + " bytes");
  if (narrow) {
    NxString s(bytes.c_str());
    s._nCodeSet = codeSet;
    s._nLanguage = language;
    return s;
  }
  return ConvertPieces(text, codeSet, language);
}

std::string Utf8OfString(const NxString& s) {
  char* text = nullptr;
  long size = 0;
  long n = NxString2MultiByteString(s, text, size);
  std::string result(text ? text : "", text && n > 0 ? static_cast<unsigned long>(n) : 0);
  delete[] text;
  return result;
}

}  // namespace nxtm
