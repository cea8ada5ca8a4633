// Values as text and as stored images. Texts are checked strictly here, because the
// library's own conversions take what they can and never complain.

#include "data/value.h"

#include <cerrno>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>

#include "data/failure.h"
#include "nxlang.h"

namespace nxtm {

namespace {

enum : char {
  kChar = 0,
  kShort,
  kLong,
  kDouble,
  kFloat,
  kWord,
  kDWord,
  kInt,
  kUnsigned,
  kEnum,
  kByte,
  kString = 11,
  kDate,
  kTime,
  kBlockId,
  kIString = 20,
  kCaseIString,
  kInt64 = 26,
  kBoolean,
  kSeal = 39
};

/// A value in memory, made and released by the type manager.
class Box {
 public:
  explicit Box(char type) : type_(type), value_(Manager().DefaultValue(type, 1, 0)) {}
  Box(const Box&) = delete;
  Box& operator=(const Box&) = delete;
  ~Box() { Manager().Delete(type_, value_, 1); }

  void* Get() const { return value_; }
  template <class T>
  T& As() const {
    return *static_cast<T*>(value_);
  }
  Image Store(unsigned char format) const {
    Image image(static_cast<unsigned>(Manager().DiskLenGet(type_, value_, format, 1, kFormatMemory)), '\0');
    Manager().Store(type_, image.data(), value_, format, 1);
    return image;
  }

 private:
  char type_;
  void* value_;
};

// ---------------------------------------------------------------------------
// UTF-8

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

// ---------------------------------------------------------------------------
// Numbers

long long ParseInteger(const std::string& text, long long low, long long high) {
  char* end = nullptr;
  errno = 0;
  long long v = std::strtoll(text.c_str(), &end, 10);
  bool whole = !text.empty() && *end == 0 && std::isspace(static_cast<unsigned char>(text[0])) == 0;
  if (!whole) throw Failure("'" + text + "' is not a whole number");
  if (errno == ERANGE || v < low || v > high)
    throw Failure("'" + text + "' is outside " + std::to_string(low) + " to " + std::to_string(high));
  return v;
}

template <class T>
T ParseInteger(const std::string& text) {
  return static_cast<T>(ParseInteger(text, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

double ParseReal(const std::string& text, double limit) {
  // Nothing of what strtod takes besides: hexadecimal, nan, inf, blanks.
  bool decimal = text.find_first_not_of("+-.0123456789eE") == std::string::npos;
  char* end = nullptr;
  double v = std::strtod(text.c_str(), &end);
  if (!decimal || text.empty() || *end != 0) throw Failure("'" + text + "' is not a number");
  if (std::fabs(v) > limit) throw Failure("'" + text + "' is too large");
  return v;
}

// ---------------------------------------------------------------------------
// Dates and times

/// One field of a date or time: digits up to the separator, or "*" for -1.
int ParseField(const char*& p, char separator, Pattern pattern, bool& ok) {
  if (pattern == Pattern::kFields && *p == '*') {
    ++p;
    ok = ok && *p == separator;
    if (*p) ++p;
    return -1;
  }
  char* end = nullptr;
  long v = std::strtol(p, &end, 10);
  ok = ok && end != p && *end == separator && !std::isspace(static_cast<unsigned char>(*p)) &&
       v >= SHRT_MIN && v <= SHRT_MAX;
  p = *end ? end + 1 : end;
  return static_cast<int>(v);
}

NxDate ParseDate(const std::string& text, Pattern pattern) {
  const char* p = text.c_str();
  bool negative = *p == '-';
  if (negative) ++p;
  bool ok = true;
  NxDate date(0L);
  int year = ParseField(p, '-', pattern, ok);
  int month = ParseField(p, '-', pattern, ok);
  int day = ParseField(p, '\0', pattern, ok);
  if (ok && month <= 12 && day <= 31) {
    date.year = static_cast<short>(negative ? -year : year);
    date.month = static_cast<signed char>(month);
    date.day = static_cast<signed char>(day);
    bool wild = year == -1 || month == -1 || day == -1;
    if (wild || date.IsDate()) return date;
  }
  throw Failure("'" + text + "' is not a date (year-month-day)");
}

NxTime ParseTime(const std::string& text) {
  const char* p = text.c_str();
  bool ok = true;
  NxTime time(0L);
  int hour = ParseField(p, ':', Pattern::kNone, ok);
  int minute = ParseField(p, ':', Pattern::kNone, ok);
  int second = ParseField(p, '\0', Pattern::kNone, ok);
  if (ok && hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60) {
    time.hour = static_cast<signed char>(hour);
    time.minute = static_cast<signed char>(minute);
    time.second = static_cast<signed char>(second);
    return time;
  }
  throw Failure("'" + text + "' is not a time of day (hour:minute:second)");
}

std::string TextOfDate(const NxDate& date) {
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", date.year, date.month, date.day);
  return text;
}

std::string TextOfTime(const NxTime& time) {
  char text[32];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d", time.hour, time.minute, time.second);
  return text;
}

// ---------------------------------------------------------------------------
// Strings

std::string TextOfAlphabetic(const char* text) { return Utf8OfString(NxString(text ? text : "")); }

/// The text of an alphabetic string, which knows Latin-1 only.
template <class T>
void AssignAlphabetic(Box& box, const std::string& text) {
  NxString s = StringOfUtf8(text, TextStyle{kCodeSetLatin1, 1});
  box.As<T>() = s.StrGet();
}

long long SignedValue(const NxInt64& v) {
  return static_cast<long long>(static_cast<unsigned long long>(static_cast<unsigned long>(v.high)) << 32 |
                                v.low);
}

/// The shortest decimal text that reads back as the same number.
template <class T>
std::string TextOfReal(T v) {
  char text[64];
  for (int digits = std::numeric_limits<T>::digits10; digits <= std::numeric_limits<T>::max_digits10;
       ++digits) {
    std::snprintf(text, sizeof text, "%.*g", digits, static_cast<double>(v));
    if (static_cast<T>(std::strtod(text, nullptr)) == v) break;
  }
  return text;
}

void Assign(Box& box, char type, const std::string& text, const TextStyle& style, Pattern pattern) {
  switch (type) {
    case kChar:
      box.As<signed char>() = ParseInteger<signed char>(text);
      break;
    case kByte:
      box.As<unsigned char>() = ParseInteger<unsigned char>(text);
      break;
    case kShort:
      box.As<short>() = ParseInteger<short>(text);
      break;
    case kWord:
      box.As<unsigned short>() = ParseInteger<unsigned short>(text);
      break;
    case kLong:
    case kInt:
    case kEnum:
      box.As<int>() = ParseInteger<int>(text);
      break;
    case kDWord:
    case kUnsigned:
    case kBlockId:
      box.As<unsigned>() = ParseInteger<unsigned>(text);
      break;
    case kFloat:
      box.As<float>() = static_cast<float>(ParseReal(text, FLT_MAX));
      break;
    case kDouble:
      box.As<double>() = ParseReal(text, DBL_MAX);
      break;
    case kString:
      box.As<NxString>() = StringOfUtf8(text, style);
      break;
    case kIString:
      AssignAlphabetic<NxIString>(box, text);
      break;
    case kCaseIString:
      AssignAlphabetic<NxCaseIString>(box, text);
      break;
    case kDate:
      box.As<NxDate>() = ParseDate(text, pattern);
      break;
    case kTime:
      box.As<NxTime>() = ParseTime(text);
      break;
    case kInt64: {
      auto v = static_cast<unsigned long long>(ParseInteger(text, LLONG_MIN, LLONG_MAX));
      box.As<NxInt64>() = NxInt64(static_cast<unsigned long>(v), static_cast<long>(v >> 32));
      break;
    }
    case kSeal: {
      auto v = static_cast<unsigned long long>(ParseInteger(text, 0, 0xFFFFFFFFFFFFLL));
      box.As<NxSeal>().ConvertFrom(NxInt64(static_cast<unsigned long>(v), static_cast<long>(v >> 32)));
      break;
    }
    case kBoolean:
      if (text != "true" && text != "false") throw Failure("'" + text + "' is neither true nor false");
      box.As<NxBoolean>() = text == "true" ? 1L : 0L;
      break;
    default:
      break;
  }
}

std::string TextOf(const Box& box, char type) {
  switch (type) {
    case kChar:
      return std::to_string(box.As<signed char>());
    case kByte:
      return std::to_string(box.As<unsigned char>());
    case kShort:
      return std::to_string(box.As<short>());
    case kWord:
      return std::to_string(box.As<unsigned short>());
    case kLong:
    case kInt:
    case kEnum:
      return std::to_string(box.As<int>());
    case kDWord:
    case kUnsigned:
    case kBlockId:
      return std::to_string(box.As<unsigned>());
    case kFloat:
      return TextOfReal(box.As<float>());
    case kDouble:
      return TextOfReal(box.As<double>());
    case kString:
      return Utf8OfString(box.As<NxString>());
    case kIString:
      return TextOfAlphabetic(box.As<NxIString>()._pStr);
    case kCaseIString:
      return TextOfAlphabetic(box.As<NxCaseIString>()._pStr);
    case kDate:
      return TextOfDate(box.As<NxDate>());
    case kTime:
      return TextOfTime(box.As<NxTime>());
    case kInt64:
      return std::to_string(SignedValue(box.As<NxInt64>()));
    case kSeal: {
      NxInt64 v;
      box.As<NxSeal>().ConvertTo(v);
      return std::to_string(SignedValue(v));
    }
    case kBoolean:
      return box.As<NxBoolean>() == 0L ? "false" : "true";
    default:
      return "";
  }
}

void RequireUsable(char type) {
  if (!IsUsable(type))
    throw Failure(std::string("type ") + Manager().NameGet(type, nullptr) + " has no text form here");
}

}  // namespace

NxTypeMgr& Manager() {
  static NxTypeMgr manager(5);
  return manager;
}

char FindType(const std::string& name) {
  char id = 0;
  if (Manager().Name2NxTypeId(name.c_str(), id) == 0) return id;
  throw Failure("there is no type '" + name + "'; `nxtm types` lists them");
}

bool IsUsable(char type) {
  switch (type) {
    case kChar:
    case kShort:
    case kLong:
    case kDouble:
    case kFloat:
    case kWord:
    case kDWord:
    case kInt:
    case kUnsigned:
    case kEnum:
    case kByte:
    case kString:
    case kDate:
    case kTime:
    case kBlockId:
    case kIString:
    case kCaseIString:
    case kInt64:
    case kBoolean:
    case kSeal:
      return true;
    default:
      return false;
  }
}

Image ImageOfText(char type, const std::string& text, const TextStyle& style, unsigned char format,
                  Pattern pattern) {
  RequireUsable(type);
  Box box(type);
  Assign(box, type, text, style, pattern);
  Image image = box.Store(format);
  bool alphabetic = type == kIString || type == kCaseIString;
  if (alphabetic && TextOfImage(type, image, format).text != text)
    throw Failure("the type has no place for a character of the text");
  return image;
}

Image NullImage(char type, unsigned char format) {
  Box box(type);
  Manager().SetNullValue(type, box.Get());
  return box.Store(format);
}

TextOfValue TextOfImage(char type, const Image& image, unsigned char format) {
  RequireUsable(type);
  unsigned long size = ImageSize(type, image, format);
  if (size == 0 || size != image.size())
    throw Failure("not the image of one " + std::string(Manager().NameGet(type, nullptr)) + " value");
  Box box(type);
  Manager().Load(type, box.Get(), const_cast<char*>(image.data()), format, 1);
  if (Manager().IsNullValue(type, box.Get())) return {"", true};
  return {TextOf(box, type), false};
}

unsigned long ImageSize(char type, std::string_view data, unsigned char format) {
  unsigned long head = type == kString ? 6 : type == kIString || type == kCaseIString ? 4 : 0;
  if (data.size() < head) return 0;
  unsigned long size;
  if (head == 0) {
    size =
        static_cast<unsigned long>(Manager().DiskLenGet(type, const_cast<char*>(data.data()), format, 1, 0));
  } else {
    unsigned short length;
    ShortStore(&length, data.data() + (type == kString ? 0 : 1), format, 1);
    size = length + (type == kString ? 2UL : 3UL);
  }
  if (size < head || size > data.size()) return 0;
  // A text that does not end in its own image would be read beyond it.
  if (type == kString && (data[size - 1] != '\xFF' || data[size - 2] != 0)) return 0;
  if (head == 4 && data[size - 1] != 0) return 0;
  return size;
}

std::string Hex(std::string_view bytes) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (unsigned char byte : bytes) {
    if (!text.empty()) text += ' ';
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

Image FromHex(const std::string& text) {
  Image bytes;
  int high = -1;
  for (unsigned long i = 0; i < text.size(); ++i) {
    if (text[i] == ' ') continue;
    int digit = std::isxdigit(static_cast<unsigned char>(text[i]))
                    ? std::stoi(text.substr(i, 1), nullptr, 16)
                    : throw Failure("character " + std::to_string(i + 1) + " of '" + text +
                                    "' is not a hexadecimal digit");
    if (high < 0) {
      high = digit;
    } else {
      bytes += static_cast<char>(high << 4 | digit);
      high = -1;
    }
  }
  if (high >= 0) throw Failure("'" + text + "' has an odd number of hexadecimal digits");
  return bytes;
}

unsigned char FindLanguage(const std::string& name) {
  for (unsigned char number = 0; number < kPlainOrderSelector; ++number) {
    const NxLanguage* language = NxLanguageContext::QueryLanguage(number);
    if (language->number == number &&
        (strcasecmp(language->name, name.c_str()) == 0 || std::to_string(number) == name))
      return number;
  }
  throw Failure("there is no language '" + name + "'");
}

unsigned char FindCodeSet(const std::string& number) {
  for (unsigned char codeSet : {0, 1, 2, 3, 4, 253})
    if (number == std::to_string(codeSet)) return codeSet;
  throw Failure("there is no code set '" + number + "' (0, 1, 2, 3, 4 or 253)");
}

NxString StringOfUtf8(const std::string& text, const TextStyle& style) {
  unsigned long characters = CheckUtf8(text);
  std::string bytes;
  bool narrow = NxCharWidth(style.codeSet) == 1 && ToLatin1(text, style.codeSet, bytes);
  unsigned char codeSet = style.codeSet ? style.codeSet : narrow ? kCodeSetLatin1 : kCodeSetUnicode;
  if (characters * NxCharWidth(codeSet) > kMaxTextBytes)
    throw Failure("the text is longer than " + std::to_string(kMaxTextBytes) + " bytes");
  if (narrow) {
    NxString s(bytes.c_str());
    s._nCodeSet = codeSet;
    s._nLanguage = style.language;
    return s;
  }
  return ConvertPieces(text, codeSet, style.language);
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
