// What the library does with texts, held to references that are written from the definitions:
// the building of strings, the editing of alphabetic ones, UTF-8, the steps of an iterator,
// the levels of a comparison, sort keys and their bounds, keys compared in place, and searching.

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "collation/nxstrcmp.h"
#include "collation/nxtextkey.h"
#include "input.h"
#include "nx_utf_8.h"
#include "nxbase.h"
#include "nxchar.h"
#include "nxcistr.h"
#include "nxistr.h"
#include "nxstring.h"
#include "nxstritr.h"
#include "nxtypcmp.h"
#include "strwild.h"
#include "support/strings.h"
#include "support/terms.h"
#include "support/utf8.h"

namespace {

unsigned Below(Input& in, unsigned n) { return (n <= 256 ? in.Byte() : in.Word()) % n; }
template <class List>
auto Pick(Input& in, const List& list) {
  return list[Below(in, static_cast<unsigned>(std::size(list)))];
}
std::string Bytes(const Block& block) {
  return std::string(reinterpret_cast<const char*>(block.Data()), block.Size());
}

// ---------------------------------------------------------------------------
// The routine that builds strings, told on byte strings

struct Build {
  unsigned short destPos, start, length, repeat, mode;
  unsigned char byteOrder;
};

std::string Swapped(std::string bytes, bool swap) {
  for (std::size_t i = 0; swap && i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
  return bytes;
}

/// What becomes of a buffer with characters of w bytes; `src` has the same width.
std::string Built(const std::string& old, std::size_t w, const Build& b, const std::string& src) {
  const bool swap = w == 2 && b.byteOrder == 2;
  const std::size_t d = b.destPos * w, e = d + b.length * w;
  std::string middle;
  if (b.repeat == 1)
    middle = Swapped(src.substr(b.start * w, b.length * w), swap);
  else
    for (int i = 0; i < b.repeat; ++i) middle += src.substr(0, w);
  const std::string head = Swapped(old.substr(0, d), swap);
  if (b.mode == 3) return head + middle + std::string(w, '\0');
  if (old.empty()) return b.mode == 2 ? middle + std::string(w, '\0') : old;
  return head + middle + Swapped(old.substr(b.mode == 2 ? d : e), swap);
}

void BuildStrings(Input& in) {
  const std::size_t w = 1 + Below(in, 2), srcW = 1 + Below(in, 2);
  const unsigned char codeSet = w == 1 ? static_cast<unsigned char>(Below(in, 5)) : kCodeSetUnicode;
  const auto text = [&](char first, unsigned n) {
    Units units(n, u'\0');
    for (char16_t& unit : units) unit = static_cast<char16_t>(first + Below(in, 26));
    return units;
  };
  NxString s(codeSet, 3);
  const Units before = text('a', Below(in, 6));
  std::string old;
  if (Below(in, 4)) {
    old = Encoded(before, codeSet);
    s.BuildString(old.c_str(), codeSet, 0, 0, static_cast<unsigned short>(before.size()), 1, 3, 1);
    old += std::string(w, '\0');
    Require(Buffer(s) == old);
  }
  const auto below = [&](unsigned n) { return static_cast<unsigned short>(Below(in, n)); };
  const Units source = text('A', below(6));
  const auto available = static_cast<unsigned short>(source.size());
  const unsigned char srcCodeSet = srcW == 1 ? static_cast<unsigned char>(below(5)) : kCodeSetUnicode;
  Build b = {};
  b.mode = 1 + below(3);
  b.destPos = below(s.Len() + 1U);
  b.repeat = b.mode == 3 && available > 0 && below(3) == 0 ? below(5) : 1;
  b.start = b.repeat == 1 ? below(available + 1U) : 0;
  b.length = b.repeat == 1 ? below(available - b.start + 1U) : 1;
  if (b.mode == 1) b.length = std::min<unsigned short>(b.length, s.Len() - b.destPos);
  b.byteOrder = below(3) == 0 ? 2 : 255;
  const bool nothing = b.mode != 3 && available == 0;
  const std::string expected = nothing ? old : Built(old, w, b, Encoded(source, codeSet));
  s.BuildString((Encoded(source, srcCodeSet) + std::string(2, '\0')).c_str(), srcCodeSet, b.destPos, b.start,
                b.length, b.repeat, b.mode, b.byteOrder);
  Require(Buffer(s) == expected && s._nLanguage == 3);
}

// ---------------------------------------------------------------------------
// Alphabetic strings

/// An edit against the same one on std::string.
template <class Text>
void EditAlphabetic(Input& in) {
  std::string model(Below(in, 6), 'x'), other(Below(in, 4), 'x');
  for (char& c : model) c = static_cast<char>('a' + Below(in, 2));
  for (char& c : other) c = static_cast<char>('a' + Below(in, 2));
  Text text(model.c_str());
  const Text argument(other.c_str());
  const std::size_t length = model.size();
  const auto size = [&] { return static_cast<unsigned short>(Below(in, 8) ? Below(in, 9) : 65535); };
  const unsigned short pos = size(), n = size();
  switch (Below(in, 7)) {
    case 0:
      text.Insert(argument, pos);
      model.insert(std::min<std::size_t>(pos, length), other);
      break;
    case 1:
      text.Replace(argument, pos);
      if (pos <= length) model.replace(pos, std::min(other.size(), length - pos), other, 0, length - pos);
      break;
    case 2:
      text.Cut(pos, n);
      if (pos <= length) model.erase(pos, n);
      break;
    case 3:
      text.Fill(n, 'z');
      model = n > length ? std::string(n, 'z') : std::string(n, 'z') + model.substr(n);
      break;
    case 4:
      text.Expand(n, 'z');
      if (n > length) model.resize(n, 'z');
      break;
    case 5:
      text = text.Copy(pos, n);
      model = pos <= length ? model.substr(pos, n) : "";
      break;
    default: {
      if (other.empty()) break;  // an empty text is found where both end
      const std::size_t found = model.find(other);
      Require(text.SubStringPos(argument) == (found == std::string::npos ? -1 : static_cast<int>(found)));
    }
  }
  Require((text._pStr ? text._pStr : "") == model && (text._pStr == nullptr) == model.empty());
}

// ---------------------------------------------------------------------------
// UTF-8

/// NxMBS2NxString by strings that grow by `+=`.
long DecodeByPieces(const std::string& text, NxString& out) {
  const unsigned char language = out._nLanguage;
  out.Destroy();
  out._nLanguage = language;
  out._nCodeSet = kCodeSetUnicode;
  std::vector<unsigned short> piece;
  const auto append = [&] {
    if (!piece.empty()) out += NxString(piece.data(), static_cast<unsigned short>(piece.size()));
    piece.clear();
  };
  unsigned long consumed = 0;
  long result = 0;
  while (consumed < text.size() && result >= 0) {
    unsigned value;
    const int length = DecodeUtf8(reinterpret_cast<const unsigned char*>(text.data()) + consumed,
                                  text.size() - consumed, value);
    if (length < 0 || (value & 0xFFFF) == 0) {
      result = length < 0 ? -1 : static_cast<long>(consumed);
      break;
    }
    piece.push_back(static_cast<unsigned short>(value));
    if (piece.size() == 256) append();
    consumed += static_cast<unsigned long>(length);
    result = consumed > 32767 ? -2 : static_cast<long>(consumed);
  }
  append();
  return result;
}

/// Bytes, or with bit 0 of the first one UTF-8 in which some characters are not ASCII.
void DecodeText(Input& in) {
  static const char* const kOthers[] = {
      "\xC3\xA4",     "\xC3\x9F",     "\xE2\x82\xAC",     "\xD0\x96",
      "\xEF\xBF\xBF", "\xED\xA0\x80", "\xF0\x9F\x98\x80", "\xFC\x84\x80\x80\x80\x81"};
  const bool wellFormed = in.Byte() & 1;
  std::string text;
  for (const char c : Bytes(in.TakeBlock()))
    text += !wellFormed ? std::string(1, c) : c & 0x80 ? kOthers[c & 7] : std::string(1, c ? c : 'x');
  const Block exact = Exactly(text);
  Reports reports;
  NxString expected(kCodeSetLatin1, kLanguageFrench), actual("old");
  actual._nLanguage = kLanguageFrench;
  const long result = DecodeByPieces(text, expected);
  const auto expectedReports = reports.Take();
  Require(NxMBS2NxString(reinterpret_cast<char*>(exact.Data()), actual, static_cast<long>(exact.Size())) ==
          result);
  Require(reports.Take() == expectedReports && Buffer(actual) == Buffer(expected) &&
          actual._nCodeSet == kCodeSetUnicode && actual._nLanguage == kLanguageFrench);
}

/// The UTF-8 of a string's first characters, one after another.
std::vector<std::string> EncodeEach(const NxString& s) {
  std::vector<std::string> sequences;
  for (NxStringIterator it(s); !it.IsEOS(); ++it) {
    char bytes[3];
    const int length = nx_wctomb(bytes, (*it).MapTo(kCodeSetUnicode));
    sequences.emplace_back(bytes, static_cast<std::size_t>(length));
  }
  return sequences;
}

/// What NxString2NxMBS answers and leaves in a buffer that was all 0x55. Text of 7 bits in a
/// buffer is copied with all the zeros that fit.
long EncodeInto(const NxString& s, std::string& buffer) {
  const std::string seen = std::string(s._nCodeSet < 6 ? s.StrGet() : "\xFF").substr(0, buffer.size());
  if (std::all_of(seen.begin(), seen.end(), [](char c) { return c > 0; })) {
    buffer = seen + std::string(buffer.size() - seen.size(), '\0');
    return static_cast<long>(seen.size());
  }
  std::size_t written = 0;
  for (const std::string& next : EncodeEach(s)) {
    if (written + next.size() > buffer.size()) return -static_cast<long>(written);
    buffer.replace(written, next.size(), next);
    written += next.size();
  }
  if (written < buffer.size()) buffer[written] = 0;
  return static_cast<long>(written);
}

void EncodeText(Input& in) {
  const unsigned char codeSets[] = {0, 1, 2, 3, 4, 5, 6, 9, 240, 253};
  const unsigned char codeSet = Pick(in, codeSets);
  const unsigned others = in.Byte() % 8;
  Units units(Below(in, 80), u'\0');
  for (char16_t& unit : units) {
    const bool other = Below(in, 8) < others;
    unit = static_cast<char16_t>(!other ? 1 + Below(in, 127)
                                 : NxCharWidth(codeSet) == 2
                                     ? 1 + Below(in, 65535)
                                     : static_cast<unsigned char>("\x80\xC4\xE9\xA4\xB1"[Below(in, 5)]));
  }
  const NxString s = String(units, codeSet, 1);
  std::vector<std::string> sequences = EncodeEach(s);
  const auto total = [&] {
    std::size_t n = 0;
    for (const std::string& sequence : sequences) n += sequence.size();
    return n;
  };
  Require(NxMBSLength(s, 65535) == static_cast<long>(total()));
  std::string expected(Below(in, static_cast<unsigned>(total()) + 40), 0x55);
  const Block actual = Exactly(expected);
  Require(NxString2NxMBS(s, reinterpret_cast<char*>(actual.Data()), static_cast<long>(actual.Size())) ==
          EncodeInto(s, expected));
  Require(Bytes(actual) == expected);
  const auto part = static_cast<unsigned short>(Below(in, 90));
  sequences.resize(std::min<std::size_t>(sequences.size(), part));
  Require(NxMBSLength(s, part) == static_cast<long>(total()));
}

// ---------------------------------------------------------------------------
// Steps and levels

const unsigned short kNothing[] = {0};
const NxWCharList kFinished(kNothing, 0);

/// An iterator that takes the general steps: a finished list is attached, which they drop
/// and the short way does not know.
unsigned short NextByTheSteps(NxStringIterator& it, unsigned short update) {
  if (!it._pOverflow) it.SetOverflow(&kFinished, 254);
  const unsigned short order = it.GetNextOrder(update);
  if (it._pOverflow == &kFinished) it.SetOverflow(nullptr, 0), it._nOverflowCodeSet = 0;
  return order;
}

/// Letters that expand, contract, have accents or orders of their own in some language, symbols,
/// spaces and wildcards; other scripts, a symbol in an expansion, the largest unit and the last one
/// that changes the selector. 8-bit code sets take the low bytes of these.
Units HostileText(Input& in, unsigned most) {
  static const Units pieces[] = {
      u"a",      u"A",      u"\u00E1", u"b",      u"c",      u"h",      u"ch",     u"ll",     u"aa",
      u"n",      u"s",      u"\u00DF", u"\u00E6", u"\u00E4", u"\u00F8", u"1",      u"-",      u" ",
      u"'",      u".",      u"*",      u"?",      u"\u00A4", u"\u00BD", u"i",      u"I",      u"\u00F1",
      u"L",      u"H",      u"N",      u"C",      u"\u00C5", u"\u00E5", u"\x01",   u"\u00B2", u"x",
      u"\u0149", u"\u0430", u"\u3042", u"\uFFFF", u"\uFFEF", u"\u20AC", u"\uD55C", u"\u017F"};
  Units text;
  for (unsigned n = Below(in, most + 1); n > 0; --n) text += Pick(in, pieces);
  return text;
}

void StepOver(Input& in) {
  const unsigned char codeSets[] = {0, 1, 2, 3, 4, 253}, languages[] = {0, 1, 2, 3, 4, 5, 6, 7, 99, 254};
  const unsigned char codeSet = Pick(in, codeSets), language = Pick(in, languages);
  const auto update = static_cast<unsigned short>(in.Byte() & 1);
  std::string bytes = Encoded(HostileText(in, 12), codeSet);
  if (in.Byte() & 1) bytes += Bytes(in.TakeBlock()).substr(0, 24);
  const Block text = Exactly(bytes + std::string(2 + bytes.size() % 2, '\0'));
  NxStringIterator quick(reinterpret_cast<const char*>(text.Data()), codeSet, language, 1), general(quick);
  for (unsigned short order = 1; order != 0;) {
    order = quick.GetNextOrder(update);
    Require(order == NextByTheSteps(general, update));
    Require(quick._pPos == general._pPos && quick._nCollation == general._nCollation &&
            quick._pOverflow == general._pOverflow);
    Require(!quick._pOverflow || quick._nOverflowIndex == general._nOverflowIndex);
  }
}

/// Two texts that often differ in little, in code sets and languages of their own.
void CompareLevels(Input& in) {
  const unsigned char codeSets[] = {1, 1, 1, 1, 253, 253, 2, 3, 4, 77};
  const unsigned char languages[] = {1, 2, 3, 4, 5, 6, 7, 0, 33, 255};
  const Units a = Units(Below(in, 4) ? 0 : Below(in, 20), u'x') + HostileText(in, 12);
  Units b = Below(in, 4) ? a : HostileText(in, 12);
  for (unsigned n = Below(in, 3); n > 0 && !b.empty(); --n)
    b.replace(Below(in, static_cast<unsigned>(b.size())), Below(in, 3), HostileText(in, 1));
  const unsigned char codeSetA = Pick(in, codeSets), codeSetB = Below(in, 3) ? codeSetA : Pick(in, codeSets);
  const unsigned char languageA = Pick(in, languages),
                      languageB = Below(in, 3) ? languageA : Pick(in, languages);
  const short length = Below(in, 3) ? -1 : static_cast<short>(Below(in, 10));
  constexpr unsigned kAll =
      kWildcardsOff | kIgnoreCase | kIgnoreAccents | kSkipSpaces | kSkipSymbols | kOrderValuesOnly;
  const auto op = static_cast<unsigned short>(Below(in, 3) ? kWildcardsOff : in.Word() & kAll);
  const Block x = Exactly(Encoded(a, codeSetA) + std::string(NxCharWidth(codeSetA), '\0'));
  const Block y = Exactly(Encoded(b, codeSetB) + std::string(NxCharWidth(codeSetB), '\0'));
  const auto text = [](const Block& block) { return reinterpret_cast<const char*>(block.Data()); };
  int out = 77, generalOut = 77;
  const int order = NxStrCmp(codeSetA, languageA, text(x), codeSetB, languageB, text(y), op, length, 1, &out);
  Require(order == NxStrCmpGeneral(codeSetA, languageA, text(x), codeSetB, languageB, text(y), op, length, 1,
                                   &generalOut));
  Require(out == generalOut);
  if (length >= 0) return;
  const Block imageA = Exactly(StringImage(a, codeSetA, languageA)),
              imageB = Exactly(StringImage(b, codeSetB, languageB));
  int error;
  Require(StringCompare(1, imageA.Size(), imageA.Data(), imageB.Size(), imageB.Data(), op, 1, error) ==
          order);
  // What has a common order has sort keys: bytes that order so, of which none begins another.
  if (op != kWildcardsOff || codeSetA == 77 || codeSetB == 77) return;
  const std::string keyA = KeyOf(kStringTypeId, imageA.Data(), 1, imageA.Size());
  const std::string keyB = KeyOf(kStringTypeId, imageB.Data(), 1, imageB.Size());
  Require(Sign(keyA.compare(keyB)) == Sign(order));
  Require(order == 0 || (keyA.compare(0, keyB.size(), keyB) != 0 && keyB.compare(0, keyA.size(), keyA) != 0));
}

/// A text has one sort key in every form; a cut image has none, and a cut key is a start.
void MakeSortKeys(Input& in) {
  const unsigned char codeSets[] = {1, 2, 4, 253, 0};
  const unsigned char codeSet = Pick(in, codeSets), language = static_cast<unsigned char>(1 + Below(in, 7));
  const Units text =
      HostileText(in, 12) + Units(Below(in, 3) ? 0 : in.Byte() * 2U, u'z') + HostileText(in, 2);
  const NxString s = String(text, codeSet, language);
  const std::string key = KeyOf(kStringTypeId, &s, 8);
  if (codeSet != 0) {
    std::string levels(key.size(), '\0');
    NxKeyWriter writer(levels.data(), levels.size());
    Require(NxWriteTextKeyByLevels({codeSet, language, s.StrGet(), 1}, writer) && levels == key);
  }
  for (const unsigned char format : {1, 2}) {
    const std::string image = StringImage(text, codeSet, language, format);
    Require(KeyOf(kStringTypeId, image.data(), format, image.size()) == key);
    const Block cut = Exactly(image.substr(0, Below(in, static_cast<unsigned>(image.size()))));
    Require(cut.Size() == 0 || NxSortKey(kStringTypeId, cut.Data(), format, cut.Size(), 0, nullptr, 0) == 0);
  }
  const Block cut(Below(in, static_cast<unsigned>(key.size())));
  Require(NxSortKey(kStringTypeId, &s, 8, 0, 0, cut.Data(), cut.Size()) == key.size());
  Require(key.compare(0, cut.Size(), Bytes(cut)) == 0);
}

/// Between the bounds of a term lie the keys of all texts that it selects.
void BoundSortKeys(Input& in) {
  const unsigned char language = Below(in, 3) ? 4 : 6;
  const NxString term = String(HostileText(in, 4), 1, language);
  const auto relation = static_cast<unsigned short>(1 + Below(in, 6));
  const unsigned short ignored[] = {
      0, kIgnoreCase, kIgnoreAccents, kSkipSpaces, kSkipSymbols, kOrderValuesOnly, kWildcardsOff};
  const unsigned short op = Pick(in, ignored) | Pick(in, ignored) | Pick(in, ignored);
  NxSortKeyRange range;
  Require(NxSortKeyBounds(kStringTypeId, &term, 8, 0, relation | op, range) == 1);
  for (int i = 0; i < 12; ++i) {
    NxString text = i == 0 ? term : String(HostileText(in, 4), 1, language);
    if (i == 1) text.SetNullValue();
    Require(!Selects(text.Compare(term, -1, op), relation) ||
            LiesWithin(range, KeyOf(kStringTypeId, &text, 8)));
  }
  std::free(range.lower);
  std::free(range.upper);
}

/// A search is a comparison at every position.
void FindAtEveryPosition(Input& in) {
  const auto make = [&](unsigned most) {
    const Units text = HostileText(in, most);
    const unsigned char codeSet = Below(in, 3) ? kCodeSetLatin1 : kCodeSetUnicode;
    return String(text, codeSet, static_cast<unsigned char>(Below(in, 5)));
  };
  const NxString s = make(9), pattern = make(3);
  constexpr unsigned short kOptions[] = {0, 0x10, 0x20, 0x60, 0x80, 0x280, 0x290, 0x100, 0x110, 0xFFFF};
  const unsigned short op = Pick(in, kOptions);
  const bool open = !(op & kWildcardsOff);
  const NxString used = open ? pattern + NxString('*') : pattern;
  int found = -1;
  for (int at = s.Len(); pattern._nSize && s._nSize && at >= 0; --at)
    if ((s.Len() - at) * s.NullLen() >= pattern.Len() * pattern.NullLen() &&
        NxStrCmp(s._nCodeSet, s._nLanguage, s._pBuffer + at * s.NullLen(), used._nCodeSet, used._nLanguage,
                 used.StrGet(), op == 0xFFFF ? 0 : op, open ? -1 : static_cast<short>(pattern.Len()), 1,
                 nullptr) == 0)
      found = at;
  const Block exact(s._pBuffer, s._nSize);  // behind which nothing may be read
  NxString within(s._nCodeSet, s._nLanguage);
  within._pBuffer = reinterpret_cast<char*>(exact.Data());
  within._nSize = s._nSize;
  const short position = within.Find(pattern, 0, op);
  within._pBuffer = nullptr;
  Require(position == found);
}

// ---------------------------------------------------------------------------
// Keys in place

/// Units that meet often: letters that differ in one level only, digits, symbols, spaces,
/// wildcards and the ends of each class.
Units KeyText(Input& in) {
  static const char16_t alphabet[] = {1,
                                      32,
                                      0x4F,
                                      0x50,
                                      0x60,
                                      0x3EFF,
                                      0x3F00,
                                      0x3F01,
                                      0x4000,
                                      5020,
                                      5021,
                                      5148,
                                      5276,
                                      0x7FFF,
                                      0x8000,
                                      0xFFFE,
                                      0x400C,
                                      0x500C,
                                      400,
                                      401,
                                      402,
                                      403,
                                      0x508C,
                                      0x510C,
                                      NxString::GetAsterisk(),
                                      NxString::GetQuestion()};
  const bool letters = Below(in, 3) == 0;  // that share their bases often
  Units units(Below(in, 10), u' ');
  for (char16_t& unit : units)
    unit =
        letters ? static_cast<char16_t>(0x500C + Below(in, 2) * 4 + Below(in, 3) * 0x80) : Pick(in, alphabet);
  return units;
}

void CompareKeys(Input& in) {
  const unsigned char languages[] = {1, 1, 1, 1, 4, 0x81, 0, 0x80, 19, 20, 127, 254};
  const Units textA = KeyText(in);
  Units textB = Below(in, 3) ? textA : KeyText(in);
  for (unsigned n = Below(in, 3); n > 0 && !textB.empty(); --n)
    textB.replace(Below(in, static_cast<unsigned>(textB.size())), Below(in, 3), KeyText(in).substr(0, 2));
  const auto format = static_cast<unsigned char>((Below(in, 2) ? 1 : 2) | (Below(in, 4) ? kFormatKey : 0));
  const auto options = static_cast<unsigned short>(Below(in, 2) ? kWildcardsOff : in.Word() & 0x3F0);
  const unsigned char languageA = Pick(in, languages);
  std::string a = StringImage(textA, 254, languageA, format);
  std::string b = StringImage(textB, 254, Below(in, 4) ? languageA : Pick(in, languages), format);
  if (Below(in, 20) == 0) a[Below(in, 4)] = static_cast<char>(in.Byte());
  if (Below(in, 20) == 0) b[b.size() - 1 - Below(in, 2)] = static_cast<char>(in.Byte());
  if (Below(in, 10) == 0) b.resize(1 + Below(in, static_cast<unsigned>(b.size())));
  const Block x = Exactly(a), y = Exactly(b);
  int error = 77, expectedError;
  const long order = StringCompare(format, x.Size(), x.Data(), y.Size(), y.Data(), options, 1, error);
  Require(order ==
          StringCompareCommon(format, x.Size(), x.Data(), y.Size(), y.Data(), options, 1, expectedError, 0));
  Require(error == expectedError);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr void (*kRuns[])(Input&) = {BuildStrings,
                                       EditAlphabetic<NxIString>,
                                       EditAlphabetic<NxCaseIString>,
                                       DecodeText,
                                       EncodeText,
                                       StepOver,
                                       CompareLevels,
                                       CompareLevels,
                                       MakeSortKeys,
                                       BoundSortKeys,
                                       FindAtEveryPosition,
                                       CompareKeys,
                                       CompareKeys};
  const Reports quiet;
  Input in(data, size);
  while (!in.IsUsedUp()) kRuns[Below(in, std::size(kRuns))](in);
  return 0;
}
