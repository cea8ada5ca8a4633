// The text form of every type. Texts are read strictly here, because the library's own
// conversions take what they can and never complain.

#include "data/textform.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <type_traits>

#include "data/failure.h"
#include "data/file.h"

#include "data/utf8.h"
#include "data/value.h"
#include "nxlang.h"

namespace nxtm {

namespace {

template <class T>
T& As(void* value) {
  return *static_cast<T*>(value);
}
template <class T>
const T& As(const void* value) {
  return *static_cast<const T*>(value);
}

// ---------------------------------------------------------------------------
// Numbers

/// The number that a whole text is, its sign included; nothing when it is none.
template <class T>
std::optional<std::from_chars_result> ReadWhole(std::string_view text, T& number) {
  const char* const end = text.data() + text.size();
  const bool signedByPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  const std::from_chars_result read = std::from_chars(text.data() + (signedByPlus ? 1 : 0), end, number);
  if (read.ptr != end || read.ec == std::errc::invalid_argument) return std::nullopt;
  return read;
}

long long ReadInteger(std::string_view text, long long low, long long high) {
  long long number = 0;
  const auto read = ReadWhole(text, number);
  if (!read) throw Failure(Shown(text) + " is not a whole number");
  if (read->ec == std::errc::result_out_of_range || number < low || number > high)
    throw Failure(Shown(text) + " is outside " + std::to_string(low) + " to " + std::to_string(high));
  return number;
}

template <class T>
void ParseInteger(void* value, std::string_view text, const TextStyle&, Pattern) {
  using Limits = std::numeric_limits<T>;
  const auto read = ReadWhole(text, As<T>(value));
  if (read && read->ec == std::errc()) return;
  // The type itself cannot read all that stands for its numbers, such as -0 without a sign.
  As<T>(value) = static_cast<T>(ReadInteger(text, Limits::min(), Limits::max()));
}
template <class T>
std::string PrintInteger(const void* value) {
  return std::to_string(As<T>(value));
}

template <class T>
void ParseReal(void* value, std::string_view text, const TextStyle&, Pattern) {
  T number = 0;
  const auto read = ReadWhole(text, number);
  if (!read || !std::isfinite(number)) throw Failure(Shown(text) + " is not a number");
  if (read->ec == std::errc::result_out_of_range) throw Failure(Shown(text) + " is out of range");
  As<T>(value) = number;
}
/// The shortest text that reads back as the same number.
template <class T>
std::string PrintReal(const void* value) {
  char text[64];
  for (int digits = std::numeric_limits<T>::digits10; digits <= std::numeric_limits<T>::max_digits10;
       ++digits) {
    std::snprintf(text, sizeof text, "%.*g", digits, static_cast<double>(As<T>(value)));
    if (static_cast<T>(std::strtod(text, nullptr)) == As<T>(value)) break;
  }
  return text;
}

NxInt64 ToInt64(long long number) {
  const auto bits = static_cast<unsigned long long>(number);
  return NxInt64(static_cast<unsigned long>(bits), static_cast<long>(bits >> 32));
}
std::string TextOf(const NxInt64& v) {
  return std::to_string(static_cast<long long>(
      static_cast<unsigned long long>(static_cast<unsigned long>(v.high)) << 32 | v.low));
}

void ParseInt64(void* value, std::string_view text, const TextStyle&, Pattern) {
  As<NxInt64>(value) = ToInt64(ReadInteger(text, LLONG_MIN, LLONG_MAX));
}
std::string PrintInt64(const void* value) { return TextOf(As<NxInt64>(value)); }

void ParseSeal(void* value, std::string_view text, const TextStyle&, Pattern) {
  constexpr long long kLargest = 0xFFFFFFFFFFFFLL;  // 48 bits
  As<NxSeal>(value).ConvertFrom(ToInt64(ReadInteger(text, 0, kLargest)));
}
std::string PrintSeal(const void* value) {
  NxInt64 number;
  As<NxSeal>(const_cast<void*>(value)).ConvertTo(number);
  return TextOf(number);
}

void ParseBoolean(void* value, std::string_view text, const TextStyle&, Pattern) {
  if (text != "true" && text != "false") throw Failure(Shown(text) + " is neither true nor false");
  As<NxBoolean>(value) = text == "true" ? 1L : 0L;
}
std::string PrintBoolean(const void* value) { return As<NxBoolean>(value) == 0L ? "false" : "true"; }

// ---------------------------------------------------------------------------
// Dates and times

/// Reads fields of digits from the front of a text.
class Fields {
 public:
  explicit Fields(std::string_view text) : at_(text.data()), end_(text.data() + text.size()) {}

  bool Next(char c) {
    if (at_ == end_ || *at_ != c) return false;
    ++at_;
    return true;
  }
  /// A number of one to `digits` digits, at most `most`; -1 where there is none.
  int Number(long digits, int most) {
    int number = -1;
    const char* const last = at_ + std::min<long>(digits, end_ - at_);
    if (at_ == end_ || *at_ < '0' || *at_ > '9') return -1;
    at_ = std::from_chars(at_, last, number).ptr;
    return number <= most ? number : -1;
  }
  bool AtEnd() const { return at_ == end_; }

 private:
  const char* at_;
  const char* end_;
};

constexpr int kAnyField = -1;

/// year-month-day; false for what is none. A field may be "*", for kAnyField.
template <class Date>
bool ReadDate(Fields& fields, Date& date, Pattern pattern) {
  const auto field = [&](long digits, int most, bool& ok) {
    if (pattern == Pattern::kFields && fields.Next('*')) return kAnyField;
    const int number = fields.Number(digits, most);
    ok = ok && number >= 0;
    return number;
  };
  bool ok = true;
  const bool negative = fields.Next('-');
  const int year = field(5, SHRT_MAX, ok);
  ok = ok && fields.Next('-');
  const int month = field(2, 12, ok);
  ok = ok && fields.Next('-');
  const int day = field(2, 31, ok);
  date.year = static_cast<short>(negative ? -year : year);
  date.month = static_cast<signed char>(month);
  date.day = static_cast<signed char>(day);
  return ok && !(negative && year == kAnyField);
}

/// hour:minute:second; false for what is none.
bool ReadTime(Fields& fields, NxTime& time) {
  const int hour = fields.Number(2, 23);
  bool ok = hour >= 0 && fields.Next(':');
  const int minute = fields.Number(2, 59);
  ok = ok && minute >= 0 && fields.Next(':');
  const int second = fields.Number(2, 59);
  time.hour = static_cast<signed char>(hour);
  time.minute = static_cast<signed char>(minute);
  time.second = static_cast<signed char>(second);
  return ok && second >= 0;
}

template <class Date>
std::string TextOfDate(const Date& date) {
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", date.year, date.month, date.day);
  return text;
}

std::string TextOfTime(int hour, int minute, int second) {
  char text[48];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d", hour, minute, second);
  return text;
}

void ParseDate(void* value, std::string_view text, const TextStyle&, Pattern pattern) {
  auto& date = As<NxDate>(value);
  Fields fields(text);
  const bool read = ReadDate(fields, date, pattern) && fields.AtEnd();
  const bool any = pattern == Pattern::kFields && text.find('*') != std::string_view::npos;
  if (!read || !(any || date.IsDate())) throw Failure(Shown(text) + " is not a date (year-month-day)");
}
std::string PrintDate(const void* value) { return TextOfDate(As<NxDate>(value)); }

void ParseTime(void* value, std::string_view text, const TextStyle&, Pattern) {
  Fields fields(text);
  if (!ReadTime(fields, As<NxTime>(value)) || !fields.AtEnd())
    throw Failure(Shown(text) + " is not a time of day (hour:minute:second)");
}
std::string PrintTime(const void* value) {
  const auto& time = As<NxTime>(value);
  return TextOfTime(time.hour, time.minute, time.second);
}

void ParseDateTime(void* value, std::string_view text, const TextStyle&, Pattern) {
  auto& point = As<NxDateTime>(value);
  Fields fields(text);
  if (!ReadDate(fields, point.date, Pattern::kNone) || !fields.Next('T') || !ReadTime(fields, point.time) ||
      !fields.AtEnd() || !point.IsDaTime())
    throw Failure(Shown(text) + " is not a point in time (year-month-dayThour:minute:second)");
}
std::string PrintDateTime(const void* value) {
  const auto& point = As<NxDateTime>(value);
  return TextOfDate(point.date) + "T" + PrintTime(&point.time);
}

/// Whether the calendar of the standard dates has a date.
bool Exists(const d_Date& date) {
  d_Date same = date;
  same.setAbsDate(date.getAbsDate());
  return same.year == date.year && same.month == date.month && same.day == date.day;
}

void ParseStandardDate(void* value, std::string_view text, const TextStyle&, Pattern pattern) {
  auto& date = As<d_Date>(value);
  Fields fields(text);
  const bool read = ReadDate(fields, date, pattern) && fields.AtEnd();
  const bool any = pattern == Pattern::kFields && text.find('*') != std::string_view::npos;
  if (!read || !(any || Exists(date))) throw Failure(Shown(text) + " is not a date (year-month-day)");
}
std::string PrintStandardDate(const void* value) { return TextOfDate(As<d_Date>(value)); }

/// hour:minute:second, then hundredths behind a point and a time zone where they are not 0;
/// false for what is none.
bool ReadZonedTime(Fields& fields, d_Time& time) {
  NxTime local(0L);
  if (!ReadTime(fields, local)) return false;
  int hundredths = 0, zoneHour = 0, zoneMinute = 0;
  if (fields.Next('.')) {
    const int tenths = fields.Number(1, 9), rest = fields.Number(1, 9);
    if (tenths < 0 || rest < 0) return false;
    hundredths = 10 * tenths + rest;
  }
  const bool west = fields.Next('-');
  if (west || fields.Next('+')) {
    zoneHour = fields.Number(2, 23);
    if (zoneHour < 0 || !fields.Next(':')) return false;
    zoneMinute = fields.Number(2, 59);
    if (zoneMinute < 0) return false;
  }
  time.tz_hour = static_cast<signed char>(west ? -zoneHour : zoneHour);
  time.tz_minute = static_cast<signed char>(west ? -zoneMinute : zoneMinute);
  time.hour = static_cast<signed char>(local.hour + time.tz_hour);
  time.minute = static_cast<signed char>(local.minute + time.tz_minute);
  time.second = local.second;
  time.hundredths = static_cast<signed char>(hundredths);
  return true;
}

std::string TextOfZonedTime(const d_Time& time) {
  std::string text = TextOfTime(time.LocalHour(), time.LocalMinute(), time.second);
  char part[32];
  if (time.hundredths != 0) {
    std::snprintf(part, sizeof part, ".%02d", time.hundredths);
    text += part;
  }
  if (time.tz_hour != 0 || time.tz_minute != 0) {
    const char sign = time.tz_hour < 0 || time.tz_minute < 0 ? '-' : '+';
    std::snprintf(part, sizeof part, "%c%02d:%02d", sign, std::abs(time.tz_hour), std::abs(time.tz_minute));
    text += part;
  }
  return text;
}

void ParseZonedTime(void* value, std::string_view text, const TextStyle&, Pattern) {
  Fields fields(text);
  if (!ReadZonedTime(fields, As<d_Time>(value)) || !fields.AtEnd())
    throw Failure(Shown(text) + " is not a time (hour:minute:second.25+hour:minute)");
}
std::string PrintZonedTime(const void* value) { return TextOfZonedTime(As<d_Time>(value)); }

void ParseTimestamp(void* value, std::string_view text, const TextStyle&, Pattern) {
  auto& point = As<d_Timestamp>(value);
  Fields fields(text);
  if (!ReadDate(fields, point.date, Pattern::kNone) || !fields.Next('T') || !Exists(point.date) ||
      !ReadZonedTime(fields, point.time) || !fields.AtEnd())
    throw Failure(Shown(text) + " is not a point in time (year-month-dayThour:minute:second.25+hour:minute)");
}
std::string PrintTimestamp(const void* value) {
  const auto& point = As<d_Timestamp>(value);
  return TextOfDate(point.date) + "T" + TextOfZonedTime(point.time);
}

void ParseInterval(void* value, std::string_view text, const TextStyle& style, Pattern pattern) {
  ParseReal<float>(&As<d_Interval>(value).value, text, style, pattern);
}
std::string PrintInterval(const void* value) { return PrintReal<float>(&As<d_Interval>(value).value); }

// ---------------------------------------------------------------------------
// Texts

void ParseString(void* value, std::string_view text, const TextStyle& style, Pattern) {
  As<NxString>(value) = StringOfUtf8(text, style.codeSet, style.language);
}
std::string PrintString(const void* value) { return Utf8OfString(As<NxString>(value)); }

/// An alphabetic string, which knows Latin-1 only.
template <class T>
void ParseAlphabetic(void* value, std::string_view text, const TextStyle&, Pattern) {
  As<T>(value) = StringOfUtf8(text, kCodeSetLatin1).StrGet();
}
template <class T>
std::string PrintAlphabetic(const void* value) {
  const char* text = As<T>(value)._pStr;
  return Utf8OfString(NxString(text ? text : ""));
}

// ---------------------------------------------------------------------------
// Blobs

/// Hexadecimal digits, or the path of a file that has the bytes behind a "@".
void ParseBlob(void* value, std::string_view text, const TextStyle& style, Pattern) {
  std::string bytes;
  if (text.rfind('@', 0) == 0) {
    const std::string path(text.substr(1));
    bytes = ReadFile(path.rfind('/', 0) == 0 ? path : style.folder + path, kLargestBlob);
  } else {
    bytes = FromHex(text);
  }
  if (bytes.size() > kLargestBlob)
    throw Failure("the blob has " + std::to_string(bytes.size()) + " bytes; at most " +
                  std::to_string(kLargestBlob) + " can be kept");
  As<NxBlob>(value).SetTo(bytes.data(), static_cast<long>(bytes.size()));
}
std::string PrintBlob(const void* value) {
  const auto& blob = As<NxBlob>(value);
  const void* bytes = blob.Seek(0, blob.Length());
  return bytes ? Hex({static_cast<const char*>(bytes), static_cast<unsigned long>(blob.Length())}, "") : "";
}

// ---------------------------------------------------------------------------
// The table

#define NXTM_DATE_DIRECTIVES "AaBbdemYy"
#define NXTM_TIME_DIRECTIVES "HIMSPp"

template <class T>
constexpr TextForm Integer(const char* type, const char* nullable) {
  return {type, nullable, Kind::kPlain, nullptr, nullptr, ParseInteger<T>, PrintInteger<T>};
}
template <class T>
constexpr TextForm Real(const char* type, const char* nullable) {
  return {type, nullable, Kind::kReal, nullptr, nullptr, ParseReal<T>, PrintReal<T>};
}

constexpr TextForm Identifier(const char* type, const char* directives, const char* format) {
  return {type, nullptr, Kind::kPlain, directives, format, nullptr, nullptr};
}

const TextForm kForms[] = {
    Integer<signed char>("char", "NxNull_char"),
    Integer<unsigned char>("NxByte", "NxNull_uchar"),
    Integer<short>("short", "NxNull_short"),
    Integer<unsigned short>("NxWord", "NxNull_ushort"),
    Integer<int>("int", "NxNull_int"),
    Integer<unsigned>("unsigned", "NxNull_unsigned"),
    Integer<long>("long", "NxNull_long"),
    Integer<unsigned long>("NxDWord", "NxNull_ulong"),
    Integer<int>("enum", nullptr),
    Integer<unsigned long>("BlockId", nullptr),
    Real<float>("float", "NxNull_float"),
    Real<double>("double", "NxNull_double"),
    {"NxInt64", "NxNull_NxInt64", Kind::kPlain, "SdioxX", nullptr, ParseInt64, PrintInt64},
    {"NxSeal", nullptr, Kind::kPlain, "", nullptr, ParseSeal, PrintSeal},
    {"NxBoolean", nullptr, Kind::kPlain, "", nullptr, ParseBoolean, PrintBoolean},
    {"NxDate", nullptr, Kind::kDate, NXTM_DATE_DIRECTIVES, nullptr, ParseDate, PrintDate},
    {"NxTime", nullptr, Kind::kPlain, NXTM_TIME_DIRECTIVES, nullptr, ParseTime, PrintTime},
    {"NxDateTime", nullptr, Kind::kPlain, NXTM_DATE_DIRECTIVES NXTM_TIME_DIRECTIVES, nullptr, ParseDateTime,
     PrintDateTime},
    {"d_Date", nullptr, Kind::kDate, NXTM_DATE_DIRECTIVES, nullptr, ParseStandardDate, PrintStandardDate},
    {"d_Time", nullptr, Kind::kPlain, NXTM_TIME_DIRECTIVES, nullptr, ParseZonedTime, PrintZonedTime},
    {"d_Timestamp", nullptr, Kind::kPlain, NXTM_DATE_DIRECTIVES NXTM_TIME_DIRECTIVES, nullptr, ParseTimestamp,
     PrintTimestamp},
    {"d_Interval", nullptr, Kind::kReal, "deHIMS", nullptr, ParseInterval, PrintInterval},
    Identifier("NxObjId", "HLBhl", "(%H-%L#%B)"),
    Identifier("NxClassId", "CVh", "(%Cv%V)"),
    Identifier("NxRef", "DHLBChl", "(%D:%H-%L#%B, %C)"),
    {"NxString", nullptr, Kind::kText, "", nullptr, ParseString, PrintString},
    {"NxIString", nullptr, Kind::kAlphabetic, "", nullptr, ParseAlphabetic<NxIString>,
     PrintAlphabetic<NxIString>},
    {"NxCaseIString", nullptr, Kind::kAlphabetic, "", nullptr, ParseAlphabetic<NxCaseIString>,
     PrintAlphabetic<NxCaseIString>},
    {"NxBlob", nullptr, Kind::kBlob, "", nullptr, ParseBlob, PrintBlob},
};

/// The forms by type identifier.
std::array<const TextForm*, kTypeCount> FormsByType() {
  std::array<const TextForm*, kTypeCount> forms{};
  for (const TextForm& form : kForms) {
    forms[static_cast<unsigned char>(FindType(form.type))] = &form;
    if (form.nullable) forms[static_cast<unsigned char>(FindType(form.nullable))] = &form;
  }
  return forms;
}

const TextForm* Find(char type) {
  static const auto forms = FormsByType();
  const auto id = static_cast<unsigned char>(type);
  return id < forms.size() ? forms[id] : nullptr;
}

}  // namespace

const TextForm& FormOf(char type) {
  if (const TextForm* form = Find(type)) return *form;
  throw Failure(std::string("type ") + Manager().NameGet(type, nullptr) + " has no text form here");
}

bool IsUsable(char type) { return Find(type) != nullptr; }

}  // namespace nxtm
