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
#include "nxblob.h"
#include "nxbool.h"
#include "nxcistr.h"
#include "nxint64.h"
#include "nxistr.h"
#include "nxlang.h"
#include "nxnulltext.h"
#include "nxoption.h"
#include "nxseal.h"
#include "nxstring.h"
#include "nxstritr.h"
#include "ord2str.h"
#include "slots/nxmantissa.h"
#include "text/nxtextio.h"
#include "values/nxint64text.h"

const char* pSpecialDoubleFmt = "ldexp(";

namespace {

constexpr unsigned long kWorkBytes = 512;  // area of a printed number, terminator included

/// A format that does not fit its value shows itself; null leaves out as it is.
NxString& RefuseFormat(NxString& out, const char* fmt) { return fmt ? out = fmt : out; }

/// out becomes the values printed under fmt.
template <class... Values>
NxString& PrintNumber(NxString& out, const char* fmt, std::initializer_list<NxFormatArg> kinds,
                      Values... values) {
  char work[kWorkBytes];
  if (!NxPrintFormatFits(fmt, kinds)) return RefuseFormat(out, fmt);
  if (std::snprintf(work, sizeof work, fmt, values...) >= 0) out = work;
  return out;
}

/// out becomes a number, written where it stays.
NxString& AssignInteger(NxString& out, const NxIntegerText& number) {
  char* const buffer = NxBufferFor(out, number.Length() + 1);
  if (!buffer) return out;
  *number.Put(buffer) = 0;
  out._nCodeSet = NxString::GetDefault8CodeSet();
  out._nLanguage = NxLanguageContext::GetDefaultLanguage();
  return out;
}

/// The same of an integer, its usual formats without the C library.
NxString& PrintInteger(NxString& out, const char* fmt, NxFormatArg kind, int value) {
  NxPlainInteger plain;
  if (!NxReadPlainInteger(fmt, plain)) return PrintNumber(out, fmt, {kind}, value);
  if (plain.IsAlone()) return AssignInteger(out, NxTextOfPlainInteger(plain, value));
  char work[kWorkBytes];
  const unsigned long length = NxPrintPlainInteger(plain, value, work, sizeof work - 1);
  if (length == 0) return PrintNumber(out, fmt, {kind}, value);
  NxAssignText(out, work, NxString::GetDefault8CodeSet(), length);
  return out;
}

template <class T>
void* ScanNumber(void* value, NxString& in, const char* fmt) {
  const NxScanText text(in);
  if (value && !text.IsMissing()) MySscanf(text.Chars(), 0, fmt, 1, static_cast<T*>(value));
  return value;
}

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

/// A format of strings with "%s" in the place of the first of "%1M" to "%4M".
class TextFormat {
 public:
  explicit TextFormat(const char* fmt) : text_(fmt) {
    if (!fmt || !std::strchr(fmt, 'M')) return;
    for (const char* directive : {"%1M", "%2M", "%3M", "%4M"}) {
      if (const char* place = std::strstr(fmt, directive)) {
        Replace(fmt, static_cast<unsigned long>(place - fmt));
        return;
      }
    }
  }
  TextFormat(const TextFormat&) = delete;
  TextFormat& operator=(const TextFormat&) = delete;
  ~TextFormat() { delete[] copy_; }

  bool Fits() const { return NxPrintFormatFits(text_, {NxFormatArg::kText}); }
  const char* Text() const { return text_; }
  /// The digit of the directive, 0 without one.
  int Mode() const { return mode_; }

 private:
  void Replace(const char* fmt, unsigned long at) {
    text_ = copy_ = NxNewArray<char>(std::strlen(fmt));  // one character goes
    if (!copy_) return;
    mode_ = fmt[at + 1] - '0';
    std::memcpy(copy_, fmt, at);
    copy_[at] = '%';
    copy_[at + 1] = 's';
    std::strcpy(copy_ + at + 2, fmt + at + 3);
  }

  const char* text_;
  char* copy_ = nullptr;
  int mode_ = 0;
};

/// Prints a string of collation order values, for people who look into index keys. The
/// format's "%1M" to "%4M", which stands for "%s", says how:
///
///   %s %2M  the characters that the values stand for   %3M  a description of each value
///   %1M     the same without accents                   %4M  accented letters as ASCII pairs
class OrderTextPrinter {
 public:
  /// The format is one of the string's own (TextFormat).
  OrderTextPrinter(NxString& out, NxString& value, const char* fmt, int mode)
      : out_(out), value_(value), codeSet_(PrintCodeSet(out)), mode_(mode), format_(fmt) {}

  void Print() {
    TextArea area(format_, 2UL * value_.Len());
    if (mode_ == 3)
      PrintDescriptions(area);
    else if (mode_ == 4)
      PrintSubstitutes(area);
    else
      PrintCharacters(area);
  }

 private:
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
    NxPieceWriter pieces(out_);
    ForEachOrder([&](unsigned short order) {
      NxString description;
      NxConvertOrderToString(order, value_._nLanguage, description);
      pieces.Add(area.Print(description.StrGet()));
    });
    if (value_._nLanguage & 0x80) pieces.Add(area.Print("[MIX]"));
  }

  void PrintSubstitutes(TextArea& area) {
    out_ = "";
    NxPieceWriter pieces(out_);
    ForEachOrder([&](unsigned short order) {
      const char* substitute = nullptr;
      const char single[2] = {Character(order, 1, &substitute), 0};
      pieces.Add(area.Print(substitute ? substitute : single));
    });
  }

  NxString& out_;
  NxString& value_;
  unsigned char codeSet_;
  int mode_;
  const char* format_;
};

/// Lets print(string) fill an empty string that `out` then becomes. For want of memory it
/// stays as it was.
template <class Print>
NxString& PrintWhole(NxString& out, Print print) {
  const NxShortageWatch shortage;
  NxString printed(out._nCodeSet, out._nLanguage);
  print(printed);
  if (!shortage.Happened()) out.Destruct(printed);
  return out;
}

NxString& PrintText(NxString& out, const char* text, const char* fmt) {
  return out = TextArea(fmt, std::strlen(text)).Print(text);
}

/// An alphabetic string: empty ones print nothing, whatever the format; none is null.
template <class Alpha>
NxString& PrintAlpha(NxString& out, const Alpha& value, const char* fmt) {
  if (!value._pStr || !*value._pStr) return out = "";
  if (!NxPrintFormatFits(fmt, {NxFormatArg::kText})) return RefuseFormat(out, fmt);
  return PrintWhole(out, [&](NxString& printed) { PrintText(printed, value._pStr, fmt); });
}

template <class Alpha>
void* ScanAlpha(void* value, NxString& in) {
  const NxScanText text(in);
  if (value && !text.IsMissing()) *static_cast<Alpha*>(value) = text.Chars();
  return value;
}

}  // namespace

// ---------------------------------------------------------------------------
// Characters

namespace {

void PrintChars(NxString& out, const void* value, const char* fmt, unsigned long n) {
  out = "";
  NxPieceWriter pieces(out);
  const auto* chars = static_cast<const char*>(value);
  for (unsigned long i = 0; i < n; ++i) {
    char work[kWorkBytes];
    const int byte = static_cast<unsigned char>(chars[i]);
    // ASCII only, whatever the locale prints: scans take one byte for a character.
    const int length = byte < 0x80 && std::isprint(byte) ? std::snprintf(work, sizeof work, fmt, chars[i])
                                                         : std::snprintf(work, sizeof work, "0x%02x", byte);
    if (length > 0) pieces.Add(work);
  }
}

}  // namespace

NxString& CharPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long n) {
  if (!NxPrintFormatFits(fmt, {NxFormatArg::kByte})) return RefuseFormat(out, fmt);
  return PrintWhole(out, [&](NxString& printed) { PrintChars(printed, value, fmt, n); });
}

void* CharScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long n) {
  if (!value) return nullptr;
  const NxScanText text(in);
  const char* input = text.Chars();
  char* chars = static_cast<char*>(value);
  for (unsigned long i = 0; i < n && *input; ++i) MySscanf(input++, 0, fmt, 1, chars + i);
  return value;
}

// ---------------------------------------------------------------------------
// Numbers

NxString& ShortPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return PrintInteger(out, fmt, NxFormatArg::kShort, *static_cast<short*>(value));
}

void* ShortScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  return ScanNumber<short>(value, in, fmt);
}

NxString& IntPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return PrintInteger(out, fmt, NxFormatArg::kWord, *static_cast<int*>(value));
}

void* IntScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  return ScanNumber<int>(value, in, fmt);
}

NxString& LongPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  return PrintInteger(out, fmt, NxFormatArg::kWord, static_cast<int>(*static_cast<long*>(value)));
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

namespace {

void PrintCharacters(NxString& out, NxString& string, const TextFormat& format) {
  if (string._nCodeSet == kCodeSetOrderValues) {
    OrderTextPrinter(out, string, format.Text(), format.Mode()).Print();
  } else if (string._nCodeSet == kCodeSetUnicode) {
    const unsigned char codeSet = PrintCodeSet(out);
    // What is printed is 8-bit text, also for a 16-bit string to take.
    NxString narrow(NxCharWidth(codeSet) == 1 ? codeSet : NxString::GetDefault8CodeSet(), string._nLanguage);
    narrow += string;
    PrintText(out, narrow.StrGet(), format.Text());
  } else {
    PrintText(out, string.StrGet(), format.Text()).SetCodeSet(string._nCodeSet);
  }
}

}  // namespace

NxString& NxStringPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  NxString& string = *static_cast<NxString*>(value);
  if (string.IsNullValue()) return out = __NullPrintString;
  if (string.IsEmpty()) return out = string;
  const TextFormat format(fmt);
  if (!format.Fits()) return RefuseFormat(out, fmt);
  return PrintWhole(out, [&](NxString& printed) { PrintCharacters(printed, string, format); });
}

void* NxStringScanFromNxString(void* value, NxString& in, const char* /*fmt*/, unsigned long /*n*/) {
  if (!value) return nullptr;
  NxString& string = *static_cast<NxString*>(value);
  if (NxBeginsWithNullText(in))
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

NxString& Int64PrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  NxPrintInt64(out, *static_cast<NxInt64*>(value), fmt);
  return out;
}

void* Int64ScanFromNxString(void* value, NxString& in, const char* fmt, unsigned long /*n*/) {
  if (value) static_cast<NxInt64*>(value)->ScanFromNxString(in, fmt);
  return value;
}

// ---------------------------------------------------------------------------
// NxBoolean, NxSeal

NxString& BooleanPrintToNxString(NxString& out, void* value, const char* /*fmt*/, unsigned long /*n*/) {
  const NxBoolean& boolean = *static_cast<NxBoolean*>(value);
  if (boolean.IsNullValue()) return out = __NullPrintString;
  return out = boolean.value == 1 ? "TRUE" : "FALSE";
}

void* BooleanScanFromNxString(void* value, NxString& in, const char* /*fmt*/, unsigned long /*n*/) {
  if (!value) return nullptr;
  NxBoolean& boolean = *static_cast<NxBoolean*>(value);
  const NxScanText text(in);
  if (text.IsMissing()) return value;
  if (NxBeginsWithNullText(text.String())) {
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
  const NxScanText text(in);
  if (value && !text.IsMissing()) static_cast<NxSeal*>(value)->ScanFromNxString(text.String());
  return value;
}

// ---------------------------------------------------------------------------
// NxBlob

NxString& BlobPrintToNxString(NxString& out, void* value, const char* fmt, unsigned long /*n*/) {
  const NxBlob& blob = *static_cast<NxBlob*>(value);
  if (blob.IsNullValue()) return out = __NullPrintString;
  if (!fmt) return out;
  NxPieceWriter pieces(out);
  for (; *fmt; ++fmt) {
    const bool directive = *fmt == '%';
    if (directive && *++fmt == 0) break;
    char work[16] = {*fmt};
    if (directive && *fmt == 'L') std::snprintf(work, sizeof work, "%ld", blob.Length());
    pieces.Add(work);
  }
  return out;
}

void* BlobScanFromNxString(void* value, NxString& in, const char* /*fmt*/, unsigned long /*n*/) {
  if (value && NxBeginsWithNullText(in)) static_cast<NxBlob*>(value)->SetNullValue();
  return value;
}
