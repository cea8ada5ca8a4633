// Texts of the workbench are UTF-8; the library has code sets of its own.

#include "data/utf8.h"

#include <strings.h>

#include <algorithm>
#include <cstring>

#include "data/failure.h"
#include "nxlang.h"

namespace nxtm {

namespace {

bool IsContinuation(char byte) { return (byte & 0xC0) == 0x80; }

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
unsigned long CheckUtf8(std::string_view text) {
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
bool ToLatin1(std::string_view text, unsigned char codeSet, std::string& bytes) {
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
NxString ConvertPieces(std::string_view text, unsigned char codeSet, unsigned char language) {
  constexpr unsigned long kPiece = 16384;
  NxString s(codeSet, language);
  for (unsigned long at = 0, end; at < text.size(); at = end) {
    end = std::min<unsigned long>(text.size(), at + kPiece);
    while (end < text.size() && IsContinuation(text[end])) --end;
    NxString piece(kCodeSetUnicode, language);
    NxMBS2NxString(text.data() + at, piece, static_cast<long>(end - at));
    if (NxCharWidth(codeSet) == 1 && !FitsCodeSet(piece, codeSet))
      throw Failure("a character of the text is not in code set " + std::to_string(codeSet));
    s += piece;
  }
  return s;
}

/// The text's characters in a byte each, and the end of what was written; null for a text
/// that has others or is not well-formed.
char* PutNarrow(std::string_view text, bool latin1, char* to) {
  for (unsigned long i = 0; i < text.size(); ++i) {
    const auto lead = static_cast<unsigned char>(text[i]);
    if (lead < 0x80) {
      if (lead == 0) return nullptr;
      *to++ = text[i];
    } else {
      if (!latin1 || (lead & 0xFE) != 0xC2 || ++i == text.size() || !IsContinuation(text[i])) return nullptr;
      *to++ = static_cast<char>(lead << 6 | (text[i] & 0x3F));
    }
  }
  return to;
}

/// The same in UCS-2.
char* PutWide(std::string_view text, char* to) {
  for (unsigned long i = 0; i < text.size();) {
    const auto lead = static_cast<unsigned char>(text[i]);
    const unsigned long size = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : 3;
    if (lead == 0 || (lead >= 0x80 && lead < 0xC2) || lead > 0xEF || text.size() - i < size) return nullptr;
    unsigned unit = size == 1 ? lead : lead & (size == 2 ? 0x1F : 0x0F);
    for (unsigned long k = 1; k < size; ++k) {
      if (!IsContinuation(text[i + k])) return nullptr;
      unit = unit << 6 | (text[i + k] & 0x3F);
    }
    if (size == 3 && (unit < 0x800 || (unit >= 0xD800 && unit < 0xE000))) return nullptr;
    const auto stored = static_cast<unsigned short>(unit);
    std::memcpy(to, &stored, sizeof stored);
    to += sizeof stored;
    i += size;
  }
  return to;
}

}  // namespace

NxString StringOfUtf8(std::string_view text, unsigned char codeSet, unsigned char language) {
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

bool AppendStringImage(std::string& bytes, std::string_view text, unsigned char codeSet,
                       unsigned char language) {
  constexpr unsigned long kHead = 4, kEnd = 2;
  if (text.size() > kMaxTextBytes) return false;
  const unsigned long at = bytes.size();
  bytes.resize(at + kHead + 2 * text.size() + kEnd);
  char* const image = bytes.data() + at;
  char* end = nullptr;
  unsigned char kept = codeSet == 0 ? kCodeSetLatin1 : codeSet;
  if (NxCharWidth(codeSet) == 1) end = PutNarrow(text, kept == kCodeSetLatin1, image + kHead);
  if (!end && (codeSet == 0 || codeSet == kCodeSetUnicode)) {
    kept = kCodeSetUnicode;
    end = PutWide(text, image + kHead);
  }
  const long size = end ? end - image : 0;
  if (!end || static_cast<unsigned long>(size) > kHead + kMaxTextBytes) {
    bytes.resize(at);
    return false;
  }
  const auto following = static_cast<unsigned short>(size);  // code set, language, text, end
  std::memcpy(image, &following, sizeof following);
  image[2] = static_cast<char>(kept);
  image[3] = static_cast<char>(language);
  end[0] = 0;
  end[1] = '\xFF';
  bytes.resize(at + static_cast<unsigned long>(size) + kEnd);
  return true;
}

Decoder::Decoder(const std::string& encoding) {
  struct Name {
    const char* name;
    unsigned char codeSet;
    std::optional<Utf16Order> utf16 = {};
  };
  constexpr unsigned char kUtf8 = 0;
  static constexpr Name kNames[] = {{"utf-8", kUtf8},
                                    {"latin1", kCodeSetLatin1},
                                    {"iso-8859-1", kCodeSetLatin1},
                                    {"windows-1252", kCodeSetWindows1252},
                                    {"latin9", kCodeSetLatin9},
                                    {"iso-8859-15", kCodeSetLatin9},
                                    {"latin2", kCodeSetLatin2},
                                    {"iso-8859-2", kCodeSetLatin2},
                                    {"utf-16", kUtf8, Utf16Order::kByMark},
                                    {"utf-16le", kUtf8, Utf16Order::kLittle},
                                    {"utf-16be", kUtf8, Utf16Order::kBig}};
  std::string names;
  for (const Name& known : kNames) {
    names += (names.empty() ? "" : ", ") + std::string(known.name);
    if (strcasecmp(known.name, encoding.c_str()) != 0) continue;
    utf16_ = known.utf16;
    if (known.codeSet == kUtf8) return;
    for (unsigned byte = 0; byte < 256; ++byte) {
      const char text[] = {static_cast<char>(byte), 0};
      NxString s(text);
      s._nCodeSet = known.codeSet;
      sequences_.push_back(byte == 0 ? std::string(1, '\0') : Utf8OfString(s));
    }
    return;
  }
  throw Failure("there is no encoding " + Shown(encoding) + " (" + names + ")");
}

std::string_view Decoder::Decode(std::string_view text) {
  if (std::none_of(text.begin(), text.end(), [](char byte) { return (byte & 0x80) != 0; })) return text;
  text_.clear();
  for (const char byte : text) text_ += sequences_[static_cast<unsigned char>(byte)];
  return text_;
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
