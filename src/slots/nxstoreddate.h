// Stored dates: a year of two bytes in the format code's order, a month and a day.
#ifndef NXSTOREDDATE_H
#define NXSTOREDDATE_H

#include "slots/nxelement.h"

inline constexpr unsigned kStoredMonth = 2;  // offset of the month
inline constexpr unsigned kStoredDay = 3;    // offset of the day
inline constexpr int kAnyField = -1;         // in a field of a key: any year, month or day

inline signed char NxCharAt(const void* image, unsigned at) {
  return static_cast<const signed char*>(image)[at];
}

/// -1, 0 or 1 by `length` bytes from an offset on, as signed numbers.
inline long NxOrderChars(const void* a, const void* b, unsigned at, unsigned length) {
  for (const unsigned end = at + length; at < end; ++at)
    if (const long order = NxOrder(NxCharAt(a, at), NxCharAt(b, at))) return order;
  return 0;
}

/// Compares two stored dates, with years as numbers of type Year. -1 in a field of the
/// second date means any, unless the options turn wildcards off.
template <class Year>
class NxStoredDateOrder {
 public:
  NxStoredDateOrder(unsigned char format, unsigned short options)
      : format_(format), wildcards_(!(options & kWildcardsOff)) {}

  long operator()(const void* a, const void* b) const {
    const Year secondYear = YearOf(b);
    const long years = NxOrder(YearOf(a), secondYear);
    if (years != 0 && !(wildcards_ && secondYear == static_cast<Year>(kAnyField))) return years;
    const bool anyMonth = wildcards_ && NxCharAt(b, kStoredMonth) == kAnyField;
    const bool anyDay = wildcards_ && NxCharAt(b, kStoredDay) == kAnyField;
    const long months = anyMonth ? 0 : NxOrderChars(a, b, kStoredMonth, 1);
    return months != 0 || anyDay ? months : NxOrderChars(a, b, kStoredDay, 1);
  }

 private:
  Year YearOf(const void* date) const { return NxReadElement<Year, ShortStore>(date, format_); }

  unsigned char format_;
  bool wildcards_;
};

#endif
