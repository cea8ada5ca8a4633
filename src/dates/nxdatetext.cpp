#include "dates/nxdatetext.h"

#include <cstring>
#include <optional>

#include "base/nxdigits.h"
#include "text/nxtextio.h"

namespace {

/// The directive at a "%": the character behind it, 0 at the end of the format.
bool IsMark(char directive) { return directive == 'p' || directive == 'P'; }

/// Whether a format says morning or afternoon.
bool HasMark(const char* format) {
  for (const char* f = format; (f = std::strchr(f, '%')) && f[1]; f += 2)
    if (IsMark(f[1])) return true;
  return false;
}

bool IsMonth(int month) { return month >= 1 && month <= 12; }

constexpr unsigned long kShortName = 3;  // characters of "Mon" and "Jan"

// ---------------------------------------------------------------------------
// Printing

constexpr unsigned long kLongestPiece = 16;  // no directive writes more

class DateTimePrinter {
 public:
  DateTimePrinter(NxPieceWriter& pieces, const NxDateTime& value, const char* format)
      : pieces_(pieces), date_(value.date), time_(value.time), format_(format) {}

  void Print() {
    for (const char* f = format_; *f; ++f) {
      char* place = pieces_.Room(kLongestPiece);
      if (*f != '%')
        *place++ = *f;
      else if (*++f)
        place = Put(place, *f);
      else
        return;  // a "%" without directive
      pieces_.Took(place);
    }
  }

 private:
  char* Put(char* place, char directive) {
    switch (directive) {
      case 'A':
        return Text(place, nx_weekdays[date_.DayOfTheDate()]);
      case 'a':
        return Text(place, nx_weekdays[date_.DayOfTheDate()], kShortName);
      case 'B':
        return IsMonth(date_.month) ? Text(place, nx_months[date_.month - 1]) : Number(place, date_.month, 3);
      case 'b':
        return IsMonth(date_.month) ? Text(place, nx_months[date_.month - 1], kShortName)
                                    : Number(place, date_.month, 3);
      case 'd':
      case 'e':
        return Pair(place, date_.day);
      case 'm':
        return Pair(place, date_.month);
      case 'Y':
        return Year(place);
      case 'y':
        return Pair(place, date_.year % 100);
      case 'H':
        return Pair(place, time_.hour);
      case 'I':
        return Pair(place, ClockHour());
      case 'M':
        return Pair(place, time_.minute);
      case 'S':
        return Pair(place, time_.second);
      case 'P':
        return Text(place, time_.hour >= 12 ? "PM" : "AM");
      case 'p':
        return Text(place, time_.hour >= 12 ? "pm" : "am");
      default:
        *place = directive;
        return place + 1;
    }
  }

  /// The hour as clocks show it. Midnight is 12 only beside a mark of the morning, which
  /// is looked for once.
  int ClockHour() {
    if (time_.hour != 0) return time_.hour > 12 ? time_.hour - 12 : time_.hour;
    if (!midnight_) midnight_ = HasMark(format_) ? 12 : 0;
    return *midnight_;
  }

  static char* Text(char* place, const char* text) { return Text(place, text, std::strlen(text)); }
  static char* Text(char* place, const char* text, unsigned long n) {
    std::memcpy(place, text, n);
    return place + n;
  }

  char* Year(char* place) const {
    const auto year = static_cast<unsigned>(date_.year);
    return year < 10000 ? NxPutPair(NxPutPair(place, year / 100), year % 100) : Number(place, date_.year, 4);
  }

  static char* Pair(char* place, int v) {
    return static_cast<unsigned>(v) < 100 ? NxPutPair(place, static_cast<unsigned>(v)) : Number(place, v, 2);
  }

  /// A sign where v is negative, and so many digits or more.
  static char* Number(char* place, int v, unsigned long digits) {
    char area[8];  // five digits at the most
    char* const end = area + sizeof area;
    char* begin = NxPutDecimal(end, static_cast<unsigned>(v < 0 ? -v : v));
    while (begin > end - digits) *--begin = '0';
    if (v < 0) *place++ = '-';
    return Text(place, begin, static_cast<unsigned long>(end - begin));
  }

  NxPieceWriter& pieces_;
  const NxDate& date_;
  const NxTime& time_;
  const char* format_;
  std::optional<int> midnight_;
};

// ---------------------------------------------------------------------------
// Scanning

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Reads a number of at most `width` characters, its sign counted, behind any blanks, as
/// the C library's "%2d" does. False when there is none.
bool ReadNumber(const char* text, int width, int& number) {
  while (IsBlank(*text)) ++text;
  const bool negative = *text == '-';
  if (negative || *text == '+') {
    ++text;
    --width;
  }
  if (NxDigitValue(*text) > 9) return false;
  int value = 0;
  for (; width > 0 && NxDigitValue(*text) <= 9; --width, ++text)
    value = value * 10 + static_cast<int>(NxDigitValue(*text));
  number = negative ? -value : value;
  return true;
}

/// Walks a format and a text. A directive moves on by as many characters as it prints,
/// whatever it reads there; at the end of the text it reads nothing.
class DateTimeScanner {
 public:
  DateTimeScanner(const char* text, NxDateTime& fields) : at_(text), date_(fields.date), time_(fields.time) {}

  void Scan(const char* format) {
    for (const char* f = format; *f; ++f) {
      if (*f != '%')
        Skip(1);
      else if (*++f)
        Read(*f);
      else
        break;
    }
    ApplyMark();
  }

 private:
  void Read(char directive) {
    switch (directive) {
      case 'A':
      case 'a':
        Name(nx_weekdays);
        break;
      case 'B':
      case 'b':
        Month();
        break;
      case 'H':
      case 'I':
        Pair(time_.hour);
        break;
      case 'M':
        Pair(time_.minute);
        break;
      case 'S':
        Pair(time_.second);
        break;
      case 'd':
      case 'e':
        Pair(date_.day);
        break;
      case 'm':
        Pair(date_.month);
        break;
      case 'Y':
        Year();
        break;
      case 'y':
        if (int year; Number(2, year)) date_.year = static_cast<short>(1900 + year);
        break;
      case 'P':
      case 'p':
        Mark();
        break;
      default:
        Skip(1);
    }
  }

  void Skip(int n) {
    for (; n > 0 && *at_; --n) ++at_;
  }

  /// Reads a number and moves on by its width. False when there is none.
  bool Number(int width, int& number) {
    const bool found = ReadNumber(at_, width, number);
    Skip(width);
    return found;
  }

  void Pair(signed char& field) {
    // Two digits, as most of the time.
    const unsigned tens = NxDigitValue(at_[0]);
    const unsigned units = tens <= 9 ? NxDigitValue(at_[1]) : 10;
    if (units <= 9) {
      field = static_cast<signed char>(tens * 10 + units);
      at_ += 2;
    } else if (int number; Number(2, number)) {
      field = static_cast<signed char>(number);
    }
  }

  void Year() {
    if (int number; Number(4, number)) date_.year = static_cast<short>(number);
  }

  /// The place of the name that begins as the text does, -1 for none. Moves on over the
  /// characters of the full name that are there.
  template <int kCount>
  int Name(const char* const (&names)[kCount]) {
    for (int i = 0; i < kCount; ++i) {
      if (std::strncmp(at_, names[i], kShortName) != 0) continue;
      for (const char* name = names[i]; *name && *at_ == *name; ++name) ++at_;
      return i;
    }
    return -1;
  }

  void Month() {
    const int place = Name(nx_months);
    if (place >= 0)
      date_.month = static_cast<signed char>(place + 1);
    else if (int number; Number(3, number))
      date_.month = static_cast<signed char>(number);
  }

  void Mark() {
    if (*at_ == 'p' || *at_ == 'P') mark_ = kAfternoon;
    if (*at_ == 'a' || *at_ == 'A') mark_ = kMorning;
    Skip(2);
  }

  void ApplyMark() {
    if (mark_ == kAfternoon && time_.hour < 12) time_.hour = static_cast<signed char>(time_.hour + 12);
    if (mark_ == kMorning && time_.hour == 12) time_.hour = 0;
  }

  const char* at_;
  NxDate& date_;
  NxTime& time_;
  enum { kNoMark, kMorning, kAfternoon } mark_ = kNoMark;
};

/// Makes a value what scans begin with: 0000-01-01 00:00:00.
void Restart(NxDateTime& value) {
  value.date.year = 0;
  value.date.month = value.date.day = 1;
  value.time.hour = value.time.minute = value.time.second = 0;
}

bool IsAllZero(const NxDateTime& value) {
  const NxDate& d = value.date;
  const NxTime& t = value.time;
  return !(d.year | d.month | d.day | t.hour | t.minute | t.second);
}

}  // namespace

void NxPrintDateTime(NxString& out, const NxDateTime& value, const char* format) {
  if (!format) return;
  NxPieceWriter pieces(out);
  DateTimePrinter(pieces, value, format).Print();
}

void NxScanDateTimeFields(NxDateTime& fields, const char* text, const char* format) {
  if (format) DateTimeScanner(text, fields).Scan(format);
}

void NxScanDateTime(NxDateTime& value, const NxString& in, const char* format) {
  const NxScanText text(in);
  if (text.IsMissing()) return;
  if (NxBeginsWithNullText(text.String())) {
    value.SetNullValue();
    return;
  }
  Restart(value);
  NxScanDateTimeFields(value, text.Chars(), format);
  if (!value.IsDaTime() && !IsAllZero(value)) Restart(value);
}
