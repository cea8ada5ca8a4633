// The strings themselves on any bytes: editing, conversion to and from UTF-8, and the
// comparison and matching of texts. Every string stays terminated and within its
// buffer, whatever is done to it, also with itself, and the short ways of comparing
// texts answer as the level comparison does.

#include <iterator>

#include "collation/nxstrcmp.h"
#include "collation/nxtextkey.h"
#include "input.h"
#include "nx_utf_8.h"
#include "nxbase.h"
#include "nxchar.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "strwild.h"

namespace {

/// A buffer has its terminator in it. Its size may be odd under 16-bit characters: a
/// buffer that CopyMapped reuses keeps its size.
void CheckText(const NxString& s) {
  Require((s._pBuffer == nullptr) == (s._nSize == 0) && s._nSize <= kMaxStringBytes);
  if (s._pBuffer) Require((s.Len() + 1U) * s.NullLen() <= s._nSize);
}

void SetText(Input& in, NxString& s) {
  const unsigned char codeSet = in.Byte();
  s = NxString(codeSet, in.Byte());
  const Block text = in.TakeBlock();
  const unsigned long length = std::min(text.Size() / s.NullLen(), kMaxStringBytes);
  if (length != 0)
    s.MakeString(reinterpret_cast<const char*>(text.Data()), codeSet, static_cast<short>(length), in.Byte());
}

/// A text that ends with a zero at either width.
Block TakeText(Input& in) {
  const Block bytes = in.TakeBlock();
  Block text(bytes.Size() + 2 + bytes.Size() % 2);
  std::memset(text.Data(), 0, text.Size());
  CopyBytes(text.Data(), bytes.Data(), bytes.Size());
  return text;
}

const char* Text(const Block& block) { return reinterpret_cast<const char*>(block.Data()); }

// ---------------------------------------------------------------------------
// Editing

constexpr unsigned kStrings = 3;

/// Searching compares at every position, blanks count for all positions before them,
/// and a replacement moves the rest of the text: the time grows with the square of it.
constexpr unsigned kMostSearched = 1000;  // bytes

/// Strings on which operations run, one after another.
class Editor {
 public:
  explicit Editor(Input& in) : in_(in) {}

  void Run() {
    constexpr unsigned kMostOperations = 32;
    for (unsigned i = 0; i < kMostOperations && !in_.IsUsedUp(); ++i) {
      const unsigned char which = in_.Byte();
      Apply(in_.Byte(), strings_[which % kStrings], strings_[which / kStrings % kStrings]);
      for (const NxString& s : strings_) CheckText(s);
    }
  }

 private:
  void Apply(unsigned char operation, NxString& s, NxString& other);
  void Take(const NxString& s, NxString& from);
  void Search(NxString& s, NxString& other);

  Input& in_;
  NxString strings_[kStrings];
};

void Editor::Apply(unsigned char operation, NxString& s, NxString& other) {
  switch (operation % 32) {
    case 0:
      return SetText(in_, s);
    case 1:
      s += other;
      return;
    case 2:
      s = other;
      return;
    case 3:
      s = s + other;
      return;
    case 4:
      s.Insert(other, in_.Size());
      return;
    case 5:
      s.Replace(other, in_.Size());
      return;
    case 6:
      s.Fill(in_.Size(), static_cast<char>(in_.Byte()));
      return;
    case 7:
      s.Fill(in_.Size(), in_.Word());
      return;
    case 8:
      s.Expand(in_.Size(), static_cast<char>(in_.Byte()));
      return;
    case 9:
      s.Expand(in_.Size(), in_.Word());
      return;
    case 10:
      s.Cut(in_.Size(), static_cast<short>(in_.Word()));
      return;
    case 11:
      s = other.Copy(in_.Size(), static_cast<short>(in_.Word()));
      return;
    case 12:
      s = other.Left(in_.Size());
      return;
    case 13:
      s = other.Right(in_.Size());
      return;
    case 14:
      s.LeftTrim();
      return;
    case 15:
      s.RightTrim();
      return;
    case 16:
      s.Trim();
      return;
    case 17:
      s.ToUpper();
      return;
    case 18:
      s.ToLower();
      return;
    case 19:
      s.SetCodeSetCode(in_.Byte());
      return;
    case 20:
      s.SetCodeSet(in_.Byte());
      return;
    case 21:
      s.MapToCodeSet(in_.Byte());
      return;
    case 22:
      s.CopyMapped(other, in_.Byte(), static_cast<short>(in_.Word()));
      return;
    case 23:
      if (s._nSize <= kMostSearched) s.ReplaceAll(other, strings_[in_.Byte() % kStrings], in_.Size());
      return;
    case 24:
      s.SetNullValue();
      return;
    case 25:
      s.Destruct(other);
      return;
    case 26:
      s << static_cast<double>(in_.Word()) / 7 << static_cast<long>(in_.Word()) << in_.Word();
      return;
    case 27:
      s[static_cast<short>(in_.Word())] = other[static_cast<short>(in_.Word())];
      return;
    case 28:
      return Take(other, s);
    default:
      return Search(s, other);
  }
}

/// A part of one string into another by the routine on which the others are built.
void Editor::Take(const NxString& from, NxString& s) {
  const unsigned short length = from.Len();
  const auto start = static_cast<unsigned short>(in_.Word() % (length + 1U));
  const auto count = static_cast<unsigned short>(in_.Word() % (length - start + 1U));
  const unsigned char mode = in_.Byte();
  const unsigned short repeat = mode % 3 == 2 ? in_.Size() : 1;
  s.BuildString(from.StrGet(), from._nCodeSet, in_.Size(), repeat == 1 ? start : 0, repeat == 1 ? count : 1,
                repeat, static_cast<unsigned short>(mode % 3 + 1), in_.Byte());
}

void Editor::Search(NxString& s, NxString& other) {
  if (s._nSize > kMostSearched) return;
  const unsigned short start = in_.Size();
  const auto found = static_cast<unsigned short>(s.Find(other, start, in_.Word()));
  Require(found == 65535 || (found >= start && found * s.NullLen() < s._nSize));
  unsigned short at = start;
  NxString item;
  if (NxSplitList(s, item, other, at) == 0) Require(at != start);
  CheckText(item);
  long number;
  s.Atol(number);
  s.Strtol(number);
  static_cast<void>(static_cast<int>(s));
  static_cast<void>(static_cast<double>(s));
  static_cast<void>(s == other);
  static_cast<void>(s.EqualsIgnoreLanguage(other));
  HashNxString(s);
}

// ---------------------------------------------------------------------------
// UTF-8

/// The whole text of a string, in a block of the size that is told for it.
Block Encode(const NxString& s) {
  Block text(static_cast<unsigned long>(NxMBSLength(s, s.Len())));
  char* out = reinterpret_cast<char*>(text.Data());
  if (text.Size() != 0)
    Require(NxString2NxMBS(s, out, static_cast<long>(text.Size())) == static_cast<long>(text.Size()));
  return text;
}

void EncodeCut(const NxString& s, long size) {
  const Block cut(static_cast<unsigned long>(size));
  const long written = NxString2NxMBS(s, reinterpret_cast<char*>(cut.Data()), size);
  Require(written <= size && -written <= size);
  char* out = reinterpret_cast<char*>(cut.Data());
  long room = size;
  const long total = NxString2MultiByteString(s, out, room);
  Require(total == kUtf8Error ? room > size : total <= size || size == 0);
  if (size == 0) delete[] out;
}

void ConvertUtf8(Input& in) {
  NxString language(in.Byte(), in.Byte());
  const unsigned short units = in.Size();
  const unsigned short cut = in.Size();
  const Block text = in.Rest();
  const Block wide(units * 2UL);
  const long count = NxMultiByteStr2WCharStr(reinterpret_cast<unsigned short*>(wide.Data()), units,
                                             Text(text), static_cast<int>(text.Size()));
  NxString s = language;
  const long decoded = NxMBS2NxString(Text(text), s, static_cast<long>(text.Size()));
  CheckText(s);
  if (count == kUtf8Error) Require(decoded != static_cast<long>(text.Size()) || text.Size() == 0);
  if (decoded == static_cast<long>(text.Size())) {
    const unsigned long shown = std::min<unsigned long>(units, s.Len());
    Require(s.Len() == count && (shown == 0 || std::memcmp(wide.Data(), s._pBuffer, shown * 2) == 0));
  }

  // What came from UTF-8 goes back and forth; in other code sets what they can hold.
  const Block encoded = Encode(s);
  NxString again = language;
  Require(NxMBS2NxString(Text(encoded), again, static_cast<long>(encoded.Size())) ==
          static_cast<long>(encoded.Size()));
  Require(again.Len() == s.Len() && (s.Len() == 0 || std::memcmp(s._pBuffer, again._pBuffer, s._nSize) == 0));
  EncodeCut(s, cut);
  s.SetCodeSet(language._nCodeSet);
  Encode(s);
  EncodeCut(s, cut);
}

// ---------------------------------------------------------------------------
// Texts

int Sign(long order) { return order < 0 ? -1 : order > 0; }

/// Whether texts have a common order with wildcards off: texts without code set have none
/// with others, and order values alone come without the selectors of the others.
bool HaveKeys(unsigned char cs1, unsigned char cs2) {
  return (cs1 == kCodeSetNone) == (cs2 == kCodeSetNone) && cs1 != kCodeSetOrderValues &&
         cs2 != kCodeSetOrderValues;
}

/// The bytes of two sort keys order as the texts do, and no key begins another one.
void CompareKeys(const NxKeyText& a, const NxKeyText& b) {
  const auto write = [](const NxKeyText& text, void* key, unsigned long room) {
    NxKeyWriter writer(key, room);
    Require(NxWriteTextKey(text, writer));
    return writer.Length();
  };
  const Block first(write(a, nullptr, 0)), second(write(b, nullptr, 0));
  Require(write(a, first.Data(), first.Size()) == first.Size());
  Require(write(b, second.Data(), second.Size()) == second.Size());
  const unsigned long n = std::min(first.Size(), second.Size());
  const int bytes = std::memcmp(first.Data(), second.Data(), n);
  Require(bytes != 0 || first.Size() == second.Size());
  Require(Sign(bytes) == Sign(NxStrCmp(a.codeSet, a.language, a.text, b.codeSet, b.language, b.text,
                                       kWildcardsOff, -1, a.byteOrder, nullptr)));
}

void CompareTexts(Input& in) {
  const unsigned char cs1 = in.Byte(), lang1 = in.Byte(), cs2 = in.Byte(), lang2 = in.Byte();
  const unsigned short options = in.Word();
  const auto length = static_cast<short>(in.Word());
  const unsigned char byteOrder = in.Byte();
  const Block a = TakeText(in);
  const Block b = TakeText(in);
  int partial = 0;
  int truth = 0;
  const int order = NxStrCmp(cs1, lang1, Text(a), cs2, lang2, Text(b), options, length, byteOrder, &partial);
  Require(NxStrCmpGeneral(cs1, lang1, Text(a), cs2, lang2, Text(b), options, length, byteOrder, &truth) ==
          order);
  Require(partial == truth);
  if (options & kWildcardsOff) {
    const int reverse =
        NxStrCmp(cs2, lang2, Text(b), cs1, lang1, Text(a), options, length, byteOrder, nullptr);
    Require(Sign(order) == -Sign(reverse));
    Require(NxStrCmp(cs1, lang1, Text(a), cs1, lang1, Text(a), options, length, byteOrder, nullptr) == 0);
  }
  if (HaveKeys(cs1, cs2)) CompareKeys({cs1, lang1, Text(a), byteOrder}, {cs2, lang2, Text(b), byteOrder});
  short bytePosition = 0;
  const int wildcard = NxStrWild(cs2, lang2, Text(b), options & 1, length, &bytePosition, byteOrder);
  Require(wildcard >= -1 && (wildcard >= 0 || bytePosition == -1));
  HashString(cs1, lang1, Text(a), length, byteOrder);
}

void MatchTexts(Input& in) {
  const unsigned char formP = in.Byte(), formT = in.Byte();
  const int n = in.Byte();
  const Block pattern = TakeText(in);
  const Block text = TakeText(in);
  nxstrcmp(Text(pattern), Text(text), n);
  nxstrwild(Text(pattern), Text(text), n);
  strwild(Text(pattern), Text(text));
  Require(strwc(Text(pattern)) < static_cast<int>(pattern.Size()));
  istrwild(Text(pattern), Text(text), formP, formT);
  caseistrwild(Text(pattern), Text(text), formP, formT);
  mappedwild(Text(pattern), Text(text), formP, formT);
}

void IgnoreReport(const char*, const char*, int) {}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  NxSetAssertHandler(IgnoreReport);
  Input in(data, size);
  switch (in.Byte() % 4) {
    case 0:
      Editor(in).Run();
      break;
    case 1:
      ConvertUtf8(in);
      break;
    case 2:
      CompareTexts(in);
      break;
    default:
      MatchTexts(in);
      break;
  }
  return 0;
}
