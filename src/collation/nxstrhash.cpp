// What is computed of a text's order values beside comparison: the place of its first
// wildcard, its hashes, and its place on a numeric scale.

#include <limits>

#include "collation/nxordertable.h"
#include "collation/nxplainhash.h"
#include "nxstring.h"
#include "ord2str.h"
#include "strwild.h"
#include "text/nxchartext.h"

namespace {

NxOrderReader ReaderOf(unsigned char cs, unsigned char lang, const char* text, unsigned char byteOrder) {
  return NxOrderReader(text ? text : zeroString, cs, lang, byteOrder, NxOrderTable::Find(cs, lang));
}

// ---------------------------------------------------------------------------
// Wildcards

int FirstWildcardByte(const char* text, bool asteriskOnly, unsigned limit) {
  for (unsigned i = 0; text && i < limit && text[i]; ++i)
    if (text[i] == '*' || (!asteriskOnly && text[i] == '?')) return static_cast<int>(i);
  return -1;
}

}  // namespace

int NxStrWild(unsigned char cs, unsigned char lang, const char* text, unsigned short asteriskOnly, short len,
              short* bytePos, unsigned char byteOrder) {
  constexpr unsigned kNoLimit = std::numeric_limits<unsigned>::max();
  const unsigned limit = len == -1 ? kNoLimit : static_cast<unsigned short>(len);
  if (cs == kCodeSetNone) {
    const int position = FirstWildcardByte(text, asteriskOnly != 0, limit);
    if (bytePos) *bytePos = static_cast<short>(position);
    return position;
  }
  const unsigned short asterisk = NxString::GetAsterisk();
  const unsigned short question = NxString::GetQuestion();
  NxOrderReader reader = ReaderOf(cs, lang, text, byteOrder);
  const char* const start = reader.it._pPos;
  if (bytePos) *bytePos = 0;
  for (unsigned n = 0; n < limit; ++n) {
    reader.Next(1);
    if (reader.order == 0) break;
    if (reader.order == asterisk || (!asteriskOnly && reader.order == question)) return static_cast<int>(n);
    if (bytePos) *bytePos = static_cast<short>(reader.it._pPos - start);
  }
  if (bytePos) *bytePos = -1;
  return -1;
}

// ---------------------------------------------------------------------------
// Hashes

namespace {

constexpr unsigned kNullHash = 0xFEFE7575;

/// The units of a text, masked, up to its zero.
template <class Unit>
unsigned HashUnits(const char* text, int mask) {
  unsigned hash = 0;
  for (; const Unit unit = NxUnitAt<Unit>(text); text += sizeof unit)
    hash = NxMixHash(hash, static_cast<unsigned>(unit & mask));
  return hash;
}

unsigned HashUnitsOf(const NxString& s, int mask) {
  const char* text = s.StrGet();
  return s._nCodeSet == kCodeSetUnicode ? HashUnits<unsigned short>(text, mask)
                                        : HashUnits<signed char>(text, mask);
}

}  // namespace

namespace {

/// Takes in an 8-bit text while its table alone can tell the keys, and takes `text` to
/// where it cannot, or to the end.
unsigned HashPlainBytes(const NxOrderTable& table, const char*& text) {
  unsigned hash = 0;
  for (;; ++text) {
    const unsigned key = table.EntryOf(*text).key;
    if (key == 0 || (key & NxOrderTable::kNeedsIterator)) return hash;
    hash = NxMixHash(hash, key & ~NxOrderTable::kNotPlain);
  }
}

unsigned HashWholeText(unsigned char cs, unsigned char lang, const char* text, unsigned char byteOrder) {
  unsigned hash = 0;
  if (cs == kCodeSetNone) {
    for (; *text; ++text) hash = NxMixHash(hash, static_cast<unsigned char>(*text));
    return hash;
  }
  const NxOrderTable* const table = NxOrderTable::FindBuilt(cs, lang);
  if (table) hash = HashPlainBytes(*table, text);
  if (table && *text == 0) return hash;
  NxOrderReader reader = ReaderOf(cs, lang, text, byteOrder);
  while (reader.Next(1), reader.order != 0) hash = NxMixHash(hash, reader.key);
  return hash;
}

}  // namespace

unsigned long HashString(unsigned char cs, unsigned char lang, const char* text, short len,
                         unsigned char byteOrder) {
  if (NxIsNullText(cs, lang)) return kNullHash;
  if (!text) text = zeroString;
  if (len == -1) return HashWholeText(cs, lang, text, byteOrder);
  unsigned hash = 0;
  if (cs == kCodeSetNone) {
    for (; len > 0 && *text; --len) hash = NxMixHash(hash, static_cast<unsigned char>(*text++));
  } else if (len > 0) {
    NxOrderReader reader = ReaderOf(cs, lang, text, byteOrder);
    for (; len > 0 && (reader.Next(1), reader.order != 0); --len) hash = NxMixHash(hash, reader.key);
  }
  // A text that ends before its stated length goes on with order values of 0.
  for (; len > 0; --len) hash = NxMixHash(hash, 0);
  return hash;
}

unsigned long HashNxString(const NxString& s) { return HashUnitsOf(s, -1); }

unsigned long HashNxString7(const NxString& s) { return HashUnitsOf(s, 127); }

// ---------------------------------------------------------------------------
// Estimate

double EvalString(NxStringIterator& it, unsigned short n) {
  constexpr double kTwoTo32 = 4294967296.0;
  if (it._nCodeSet == kCodeSetNone) {
    unsigned value = 0;
    const char* p = it._pPos;
    for (unsigned i = 0; i < 4; ++i) {
      const unsigned char byte = p && i < n ? static_cast<unsigned char>(*p) : 0;
      if (byte != 0) ++p;
      value = value << 7 | (byte < 0x80 ? byte : 127);
    }
    return value;
  }
  unsigned q[3] = {0, 0, 0};
  for (unsigned i = 0; i < 3 && n != 0; --n) {
    const unsigned short order = it.GetNextOrder(1);
    if (order == 0) break;
    if (order >= kFirstDigitOrder) q[i++] = NxCompareKey(order, it._nCollation) >> 8 & 0xFFFF;
  }
  const unsigned selector = it._nCollation & 127;
  return (selector << 16 | q[0]) * kTwoTo32 + (q[1] << 16 | q[2]);
}
