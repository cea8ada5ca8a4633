// The print and scan slots: values to text and back under format strings. Scalars and
// strings go through the C library under checked formats (nxformat.h); NxInt64 has
// directives of its own.
#include "nxtypfmt.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "base/nxalloc.h"
#include "base/nxformat.h"
#include "nxbool.h"
#include "nxcistr.h"
#include "nxint64.h"
#include "nxistr.h"
#include "nxlang.h"
#include "nxseal.h"
#include "nxstring.h"
#include "nxstritr.h"
#include "nxtypmgr.h"
#include "ord2str.h"

const char* pSpecialDoubleFmt = "ldexp(";

namespace {

constexpr unsigned long kWorkBytes = 512;  // area of a printed number, terminator included
constexpr unsigned short kDefaultCompare = 65535;

/// out becomes the values printed under fmt; it stays as it is under a format that
/// does not fit them.
template <class... Values>
NxString& PrintNumber(NxString& out, const char* fmt, std::initializer_list<NxFormatArg> kinds,
                      Values... values) {
  char work[kWorkBytes];
  if (NxPrintFormatFits(fmt, kinds) && std::snprintf(work, sizeof work, fmt, values...) >= 0) out = work;
  return out;
}

/// The input of a scan as 8-bit text.
class ScanText {
 public:
  explicit ScanText(NxString& in) : in_(in) {
    if (NxCharWidth(in._nCodeSet) == 2) copy_ += in;
  }
  const NxString& String() const { return NxCharWidth(in_._nCodeSet) == 2 ? copy_ : in_; }
  const char* Chars() const { return String().StrGet(); }

 private:
  const NxString& in_;
  NxString copy_;
};

template <class T>
void* ScanNumber(void* value, NxString& in, const char* fmt) {
  if (value) MySscanf(ScanText(in).Chars(), 0, fmt, 1, static_cast<T*>(value));
  return value;
}

bool BeginsWithNullText(const NxString& in) {
  const NxString& nullText = NxTypeMgr::GetNullPrintString();
  return in.Compare(nullText, static_cast<short>(nullText.Len()), kDefaultCompare) == 0;
}

/// Appends pieces of 8-bit text to a string, many at a time: each append to an
/// NxString allocates it anew.
class PieceWriter {
 public:
  explicit PieceWriter(NxString& out) : out_(out) {}
  ~PieceWriter() { Flush(); }

  void Add(const char* text) { Add(text, std::strlen(text)); }
  void Add(const char* text, unsigned long length) {
    while (length > 0) {
      if (used_ == sizeof buffer_) Flush();
      const unsigned long room = sizeof buffer_ - used_;
      const unsigned long part = length < room ? length : room;
      std::memcpy(buffer_ + used_, text, part);
      used_ += part;
      text += part;
      length -= part;
    }
  }

 private:
  void Flush() {
    if (used_ > 0) out_ += NxString(buffer_, static_cast<unsigned short>(used_));
    used_ = 0;
  }

  NxString& out_;
  unsigned long used_ = 0;
  char buffer_[2048];
};

/// An area for texts printed under a text format, as long as format and text call for;
/// longer texts (by a width in the format) are cut.
class TextArea {
 public:
  TextArea(const char* fmt, unsigned long textBytes)
      : fmt_(fmt), size_(std::strlen(fmt) + textBytes + kWorkBytes), text_(NxNewZeroArray<char>(size_)) {}
  TextArea(const TextArea&) = delete;
  TextArea& operator=(const TextArea&) = delete;
  ~TextArea() { delete[] text_; }

  const char* Print(const char* text) {
    if (!text_ || std::snprintf(text_, size_, fmt_, text) < 0) return "";
    return text_;
  }

 private:
  const char* fmt_;
  unsigned long size_;
  char* text_;
};

/// The code set of the text that a 16-bit string is printed as.
unsigned char PrintCodeSet(const NxString& out) {
  if (out._nCodeSet != kCodeSetNone) return out._nCodeSet;
  const unsigned char codeSet = NxString::GetDefaultCodeSet();
  return codeSet != kCodeSetNone ? codeSet : NxLanguageContext::GetNativeCodeSet();
}

/// Prints a string of collation order values, for people who look into index keys. The
/// format's "%1M" to "%4M", which stands for "%s", says how:
///
///   %s %2M  the characters that the values stand for   %3M  a description of each value
///   %1M     the same without accents                   %4M  accented letters as ASCII pairs
class OrderTextPrinter {
 public:
  OrderTextPrinter(NxString& out, NxString& value, const char* fmt)
      : out_(out), value_(value), codeSet_(PrintCodeSet(out)), format_(CopyFormat(fmt)) {}
  OrderTextPrinter(const OrderTextPrinter&) = delete;
  OrderTextPrinter& operator=(const OrderTextPrinter&) = delete;
  ~OrderTextPrinter() { delete[] format_; }

  void Print() {
    if (!NxPrintFormatFits(format_, {NxFormatArg::kText})) return;
    TextArea area(format_, 2UL * value_.Len());
    if (mode_ == 3)
      PrintDescriptions(area);
    else if (mode_ == 4)
      PrintSubstitutes(area);
    else
      PrintCharacters(area);
  }

 private:
  /// Finds the mode and returns the format with "%s" in its place.
  char* CopyFormat(const char* fmt) {
    if (!fmt) return nullptr;
    char* copy = NxNewArray<char>(std::strlen(fmt) + 1);
    if (!copy) return nullptr;
    std::strcpy(copy, fmt);
    for (const char* directive : {"%1M", "%2M", "%3M", "%4M"}) {
      char* place = std::strstr(copy, directive);
      if (!place) continue;
      mode_ = directive[1] - '0';
      place[1] = 's';
      std::memmove(place + 2, place + 3, std::strlen(place + 3) + 1);
      break;
    }
    return copy;
  }

  template <class Operation>
  void ForEachOrder(Operation operation) {
    for (NxStringIterator it(value_); !it.IsEOS(); ++it) operation(static_cast<unsigned short>(*it));
  }

  char Character(unsigned short order, int withAccent, const char** substitute) const {
    unsigned char c = 0;
    NxConvertOrderToChar(order, value_._nLanguage, c, withAccent, substitute);
    return static_cast<char>(c);
  }

  void PrintCharacters(TextArea& area) {
    char* text = NxNewZeroArray<char>(value_.Len() + 1UL);
    if (!text) return;
    char* end = text;
    ForEachOrder([&](unsigned short order) { *end++ = Character(order, mode_ != 1, nullptr); });
    const char* printed = area.Print(text);
    if (mode_ == 1 || codeSet_ == kCodeSetLatin1) {
      out_ = printed;
    } else {
      out_ = "";
      out_.SetCodeSet(codeSet_);
      out_.MakeString(printed, kCodeSetLatin1, -1, 255);
    }
    delete[] text;
  }

  void PrintDescriptions(TextArea& area) {
    out_ = "";
    PieceWriter pieces(out_);
    ForEachOrder([&](unsigned short order) {
      NxString description;
      NxConvertOrderToString(order, value_._nLanguage, description);
      pieces.Add(area.Print(description.StrGet()));
    });
    if (value_._nLanguage & 0x80) pieces.Add(area.Print("[MIX]"));
  }

  void PrintSubstitutes(TextArea& area) {
    out_ = "";
    PieceWriter pieces(out_);
    ForEachOrder([&](unsigned short order) {
      const char* substitute = nullptr;
      const char single[2] = {Character(order, 1, &substitute), 0};
      pieces.Add(area.Print(substitute ? substitute : single));
    });
  }

  NxString& out_;
  NxString& value_;
  unsigned char codeSet_;
  int mode_ = 0;
  char* format_;
};

/// out becomes text printed under fmt, or stays when the format does not fit a text.
/// Returns whether it was printed.
bool PrintText(NxString& out, const char* text, const char* fmt) {
  if (!NxPrintFormatFits(fmt, {NxFormatArg::kText})) return false;
  out = TextArea(fmt, std::strlen(text)).Print(text);
  return true;
}

/// An alphabetic string: empty ones print nothing, whatever the format; none is null.
template <class Alpha>
NxString& PrintAlpha(NxString& out, const Alpha& value, const char* fmt) {
  if (!value._pStr || !*value._pStr) return out = "";
  PrintText(out, value._pStr, fmt);
  return out;
}

template <class Alpha>
void* ScanAlpha(void* value, NxString& in) {
  if (value) *static_cast<Alpha*>(value) = ScanText(in).Chars();
  return value;
}

}  // namespace

// ---------------------------------------------------------------------------
// Characters

NxString& CharPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long n) {
  if (!NxPrintFormatFits(fmt, {NxFormatArg::kByte})) return out;
  out = "";
  PieceWriter pieces(out);
  const char* chars = static_cast<const char*>(value);
  for (unsigned long i = 0; i < n; ++i) {
    char work[kWorkBytes];
    const int byte = static_cast<unsigned char>(chars[i]);
    const int length = std::isprint(byte) ? std::snprintf(work, sizeof work, fmt, chars[i])
                                          : std::snprintf(work, sizeof work, "0x%02x", byte);
    if (length > 0) pieces.Add(work);
  }
  return out;
}

void* CharScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long n) {
  if (!value) return nullptr;
  const ScanText text(in);
  const char* input = text.Chars();
  char* chars = static_cast<char*>(value);
  for (unsigned long i = 0; i < n && *input; ++i) MySscanf(input++, 0, fmt, 1, chars + i);
  return value;
}

// ---------------------------------------------------------------------------
// Numbers

NxString& ShortPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return PrintNumber(out, fmt, {NxFormatArg::kShort}, static_cast<int>(*static_cast<short*>(value)));
}

void* ShortScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  return ScanNumber<short>(value, in, fmt);
}

NxString& IntPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return PrintNumber(out, fmt, {NxFormatArg::kWord}, *static_cast<int*>(value));
}

void* IntScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  return ScanNumber<int>(value, in, fmt);
}

NxString& LongPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return PrintNumber(out, fmt, {NxFormatArg::kWord}, *static_cast<long*>(value));
}

void* LongScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  return ScanNumber<long>(value, in, fmt);
}

NxString& FloatPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return PrintNumber(out, fmt, {NxFormatArg::kFloat}, static_cast<double>(*static_cast<float*>(value)));
}

void* FloatScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  return ScanNumber<float>(value, in, fmt);
}

NxString& DoublePrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  const double number = *static_cast<double*>(value);
  if (!NxIsMantissaFormat(fmt)) return PrintNumber(out, fmt, {NxFormatArg::kDouble}, number);
  int exponent = 0;
  const double mantissa = std::frexp(number, &exponent);
  return PrintNumber(out, fmt, {NxFormatArg::kDouble, NxFormatArg::kWord}, mantissa, exponent);
}

void* DoubleScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  return ScanNumber<double>(value, in, fmt);
}

// ---------------------------------------------------------------------------
// Strings

NxString& NxStringPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long n) {
  NxString& string = *static_cast<NxString*>(value);
  if (&out == &string) {
    NxString copy(string);
    return NxStringPrintToNxString(out, &copy, fmt, n);
  }
  if (string.IsNullValue()) return out = NxTypeMgr::GetNullPrintString();
  if (string.IsEmpty()) return out = string;
  if (string._nCodeSet == kCodeSetOrderValues) {
    OrderTextPrinter(out, string, fmt).Print();
  } else if (string._nCodeSet == kCodeSetUnicode) {
    NxString narrow(PrintCodeSet(out), string._nLanguage);
    narrow += string;
    PrintText(out, narrow.StrGet(), fmt);
  } else if (PrintText(out, string.StrGet(), fmt)) {
    out.SetCodeSet(string._nCodeSet);
  }
  return out;
}

void* NxStringScanFromNxString(void* value, NxString& in, const char* /*fmt*/, unsigned long /*n*/) {
  if (!value) return nullptr;
  NxString& string = *static_cast<NxString*>(value);
  if (BeginsWithNullText(in))
    string.SetNullValue();
  else
    string = in;
  return value;
}

NxString& NxIStringPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return PrintAlpha(out, *static_cast<NxIString*>(value), fmt);
}

void* NxIStringScanFromNxString(void* value, NxString& in, const char* /*fmt*/, unsigned long /*n*/) {
  return ScanAlpha<NxIString>(value, in);
}

NxString& NxCaseIStringPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return PrintAlpha(out, *static_cast<NxCaseIString*>(value), fmt);
}

void* NxCaseIStringScanFromNxString(void* value, NxString& in, const char* /*fmt*/, unsigned long /*n*/) {
  return ScanAlpha<NxCaseIString>(value, in);
}

// ---------------------------------------------------------------------------
// NxInt64

namespace {

constexpr unsigned long long kLowest = 1ULL << 63;

/// What a directive says of a number's text.
struct Radix {
  unsigned base;
  const char* prefix;
  const char* digits;
};

/// Null for a character that is no directive.
const Radix* RadixOf(char directive) {
  static constexpr Radix kDecimal = {10, "", "0123456789"};
  static constexpr Radix kOctal = {8, "0", "01234567"};
  static constexpr Radix kHexadecimal = {16, "0x", "0123456789abcdef"};
  static constexpr Radix kUpperHexadecimal = {16, "0X", "0123456789ABCDEF"};
  switch (directive) {
    case 'S':
    case 'd':
    case 'i':
      return &kDecimal;
    case 'o':
      return &kOctal;
    case 'x':
      return &kHexadecimal;
    case 'X':
      return &kUpperHexadecimal;
    default:
      return nullptr;
  }
}

void AddInt64(PieceWriter& pieces, const NxInt64& value, const Radix& radix) {
  unsigned long long magnitude = static_cast<unsigned long long>(value.Abs().Wide());
  // The lowest value is its own magnitude; only its decimal text has a sign.
  if (value.high < 0 && (radix.base == 10 || magnitude != kLowest)) pieces.Add("-");
  pieces.Add(radix.prefix);
  char text[24];  // 22 octal digits
  char* p = text + sizeof text;
  do {
    *--p = radix.digits[magnitude % radix.base];
    magnitude /= radix.base;
  } while (magnitude);
  pieces.Add(p, static_cast<unsigned long>(text + sizeof text - p));
}

/// Reads an NxInt64 from a text, walking format and text together.
class Int64Scanner {
 public:
  Int64Scanner(const char* text, const char* fmt, NxInt64& value) : in_(text), fmt_(fmt), value_(value) {}

  /// False when the text does not fit the format.
  bool Scan() {
    for (; *fmt_ && *in_; Step()) {
      if (*fmt_ == '%') {
        ++fmt_;
        if (!(RadixOf(*fmt_) ? Number() : *in_ == '%')) return false;
      } else if (*fmt_ != *in_) {
        return false;
      }
    }
    return true;
  }

 private:
  /// One character of both; the end of either stays where it is.
  void Step() {
    if (*fmt_) ++fmt_;
    if (*in_) ++in_;
  }

  bool Number() {
    const char directive = *fmt_++;
    const char terminator = *fmt_;
    const bool negative = *in_ == '-';
    if (*in_ == '-' || *in_ == '+') ++in_;
    const unsigned base = Base();
    if (directive != 'S' && base != RadixOf(directive)->base) return false;
    NxInt64 number;
    for (; *in_ && *in_ != terminator; ++in_) {
      const unsigned digit = Digit(*in_);
      if (digit >= base) return false;
      number =
          number * NxInt64(static_cast<unsigned long>(base)) + NxInt64(static_cast<unsigned long>(digit));
    }
    value_ = negative ? -number : number;
    return *in_ == terminator;
  }

  /// The base by the number's prefix. That of 16 is skipped, that of 8 is a digit.
  unsigned Base() {
    if (*in_ != '0') return 10;
    if (in_[1] != 'x' && in_[1] != 'X') return 8;
    in_ += 2;
    return 16;
  }

  static unsigned Digit(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'z') return static_cast<unsigned>(c - 'a') + 10;
    if (c >= 'A' && c <= 'Z') return static_cast<unsigned>(c - 'A') + 10;
    return 255;
  }

  const char* in_;
  const char* fmt_;
  NxInt64& value_;
};

const char* Int64Format(const char* fmt) { return fmt ? fmt : "%S"; }

}  // namespace

NxString& Int64PrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  PieceWriter pieces(out);
  for (const char* p = Int64Format(fmt); *p; ++p) {
    const Radix* radix = *p == '%' ? RadixOf(p[1]) : nullptr;
    if (radix) {
      AddInt64(pieces, *static_cast<NxInt64*>(value), *radix);
      ++p;
      continue;
    }
    pieces.Add(p, 1);
    if (*p == '%' && p[1]) pieces.Add(++p, 1);  // even a second "%" is then text
  }
  return out;
}

void* Int64ScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  if (!value) return nullptr;
  NxInt64& number = *static_cast<NxInt64*>(value);
  const ScanText text(in);
  if (!Int64Scanner(text.Chars(), Int64Format(fmt), number).Scan()) number = -1;
  return value;
}

// ---------------------------------------------------------------------------
// NxBoolean, NxSeal

NxString& BooleanPrintToNxString(NxString& out, void* value, const char* /*fmt*/, unsigned long /*n*/) {
  const NxBoolean& boolean = *static_cast<NxBoolean*>(value);
  if (boolean.IsNullValue()) return out = NxTypeMgr::GetNullPrintString();
  return out = boolean.value == 1 ? "TRUE" : "FALSE";
}

void* BooleanScanFromNxString(void* value, NxString& in, const char* /*fmt*/, unsigned long /*n*/) {
  if (!value) return nullptr;
  NxBoolean& boolean = *static_cast<NxBoolean*>(value);
  const ScanText text(in);
  if (BeginsWithNullText(text.String())) {
    boolean.SetNullValue();
    return value;
  }
  long truth = 0;
  for (const char* word : {"T", "t", "TRUE", "true", "1"})
    if (std::strcmp(text.Chars(), word) == 0) truth = 1;
  boolean = truth;
  return value;
}

NxString& SealPrintToNxString(NxString& out, void* value, const char* /*fmt*/, unsigned long /*n*/) {
  return static_cast<NxSeal*>(value)->PrintToNxString(out);
}

void* SealScanFromNxString(void* value, NxString& in, const char* /*fmt*/, unsigned long /*n*/) {
  if (value) static_cast<NxSeal*>(value)->ScanFromNxString(ScanText(in).String());
  return value;
}
