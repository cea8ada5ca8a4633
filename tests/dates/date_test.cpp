// Dates and times: the day-number formulas over every day of the supported years
// against each other and a walk through the calendar, and field arithmetic with carries.
#include "nxcomp.h"

#include <gtest/gtest.h>

#include "nxbase.h"
#include "nxcalendar.h"
#include "support/strings.h"

namespace {

NxDate Date(int year, int month, int day) {
  NxDate d(0L);
  d.year = static_cast<short>(year);
  d.month = static_cast<signed char>(month);
  d.day = static_cast<signed char>(day);
  return d;
}

NxTime Time(int hour, int minute, int second) {
  NxTime t(0L);
  t.hour = static_cast<signed char>(hour);
  t.minute = static_cast<signed char>(minute);
  t.second = static_cast<signed char>(second);
  return t;
}

int DaysOfMonth(int year, int month) {
  static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  return month == 2 && leap ? 29 : kDays[month - 1];
}

/// The calendar day by day.
struct Walk {
  int year, month, day;
  void Next() {
    if (++day <= DaysOfMonth(year, month)) return;
    day = 1;
    if (++month <= 12) return;
    month = 1;
    ++year;
  }
};

TEST(NxDate, EveryDayOfTheSupportedYears) {
  long dayNumber = 0;
  for (Walk w = {-4713, 11, 24}; w.year <= 32767; w.Next(), ++dayNumber) {
    const NxDate d(dayNumber);
    ASSERT_TRUE(d.year == w.year && d.month == w.month && d.day == w.day) << dayNumber;
    ASSERT_EQ(d.dayabs(), dayNumber);
    ASSERT_TRUE(d.IsDate());
    ASSERT_EQ(d.daynxtmonth(), DaysOfMonth(w.year, w.month) - w.day + 1) << dayNumber;
    // Day 0 was a Monday.
    if (w.year >= 1) {
      ASSERT_EQ(d.DayOfTheDate(), dayNumber % 7) << dayNumber;
    }
  }
  EXPECT_EQ(dayNumber, NxCalendar::DayNumber(32768, 1, 1));
}

TEST(NxCalendar, FastFormulasAreTheGeneralOnes) {
  for (long year = -32768; year <= 32767; ++year)
    for (long month = -128; month <= 128; ++month)
      ASSERT_EQ(NxCalendar::DayNumber(year, month, -128), NxCalendar::GeneralDayNumber(year, month, -128))
          << year << ' ' << month;
  for (long dayNumber = -100000; dayNumber <= NxCalendar::kLastDay + 100000; ++dayNumber) {
    const NxCalendar::CivilDate fast = NxCalendar::DateOf(dayNumber);
    const NxCalendar::CivilDate general = NxCalendar::GeneralDateOf(dayNumber);
    ASSERT_TRUE(fast.year == general.year && fast.month == general.month && fast.day == general.day)
        << dayNumber;
  }
}

TEST(NxDate, DaysThatNoMonthHasAreNoDates) {
  for (int year : {-400, 0, 1900, 2000, 2001, 2004, 32767})
    for (int month = -128; month <= 127; ++month)
      for (int day = -128; day <= 127; ++day) {
        const bool valid = month >= 1 && month <= 12 && day >= 1 && day <= DaysOfMonth(year, month);
        ASSERT_EQ(Date(year, month, day).IsDate() != 0, valid) << year << '-' << month << '-' << day;
      }
}

TEST(NxDate, Arithmetic) {
  EXPECT_EQ(Date(1999, 12, 31) + 1, Date(2000, 1, 1));
  EXPECT_EQ(Date(2000, 3, 1) - 1, Date(2000, 2, 29));
  EXPECT_EQ(Date(2001, 2, 28) - (-1L), Date(2001, 3, 1));
  EXPECT_EQ(Date(2001, 3, 1) - Date(2001, 2, 1), 28);
  NxDate d = Date(2000, 2, 28);
  EXPECT_EQ(++d, Date(2000, 2, 29));
  EXPECT_EQ(d += 366, Date(2001, 3, 1));
  EXPECT_EQ(--d, Date(2001, 2, 28));
  EXPECT_EQ(d -= 59, Date(2000, 12, 31));
  const long number = d;
  EXPECT_EQ(number, 2451910);
}

TEST(NxDateAndTime, OperatorsFollowTheOrder) {
  const NxDate dates[] = {Date(-32768, 1, 1), Date(2000, -1, 4), Date(2000, 1, 4), Date(2000, 5, -1),
                          Date(2000, 5, 9),   Date(-1, 5, 9),    Date(2003, 1, 1)};
  for (const NxDate& a : dates)
    for (const NxDate& b : dates) {
      const int order = a != b;  // the golden cases have the difference itself
      EXPECT_EQ(b != a, -order);
      EXPECT_TRUE((a < b) == (order < 0) && (a > b) == (order > 0) && (a <= b) == (order <= 0) &&
                  (a >= b) == (order >= 0) && (a == b) == (&a == &b));
    }
  const NxTime times[] = {Time(-128, 59, 59), Time(0, 0, 0),  Time(0, 0, 1),
                          Time(0, 1, 0),      Time(1, -1, 9), Time(1, 0, 0)};
  for (const NxTime& a : times)
    for (const NxTime& b : times) {
      EXPECT_EQ(a != b, (&a > &b) - (&a < &b));
      EXPECT_TRUE(OperatorsAgree(a, b, (&a > &b) - (&a < &b)));
    }
}

TEST(NxDate, WeekdaysAndMonthEnds) {
  EXPECT_STREQ(Date(2000, 1, 1).PrintDayOfTheDate().StrGet(), "Saturday");
  EXPECT_EQ(Date(4600, 3, 1).DayOfTheDate(), NxCalendar::DayNumber(4600, 3, 1) % 7);
  EXPECT_EQ(Date(-99, 3, 1).DayOfTheDate(), 6);  // a negative congruence before year 1
  EXPECT_TRUE(Date(2000, 2, 29).IsLastDayOfTheMonth());
  EXPECT_TRUE(Date(2001, 2, 28).IsLastDayOfTheMonth());
  EXPECT_TRUE(Date(1999, 12, 31).IsLastDayOfTheMonth());
  EXPECT_FALSE(Date(2000, 2, 28).IsLastDayOfTheMonth());
}

TEST(NxTime, EverySecondOfTheDay) {
  NxTime t(0L);
  for (long s = 0; s < 86400; ++s, ++t) {
    ASSERT_TRUE(t.IsTime());
    ASSERT_EQ(static_cast<long>(t), s);
    ASSERT_EQ(t, NxTime(s));
    for (long span : {1L, 59L, 3599L, 3661L, 86399L}) {
      ASSERT_EQ(static_cast<long>(t + span), (s + span) % 86400);
      ASSERT_EQ(static_cast<long>(t - span), (s - span + 86400) % 86400);
      ASSERT_EQ(static_cast<long>(t - NxTime(span)), (s - span + 86400) % 86400);
    }
  }
  EXPECT_EQ(t, Time(0, 0, 0));
  EXPECT_EQ(--t, Time(23, 59, 59));
  EXPECT_EQ(t += 2, Time(0, 0, 1));
  EXPECT_EQ(t -= 3600, Time(23, 0, 1));
}

TEST(NxTime, OutsideTheDay) {
  EXPECT_EQ(NxTime(90061L), Time(25, 1, 1));
  EXPECT_EQ(NxTime(-3661L), Time(-1, -1, -1));
  EXPECT_EQ(Time(10, 0, 0) + 86400L * 2, Time(10, 0, 0));
  EXPECT_EQ(Time(23, 0, 0) + 3600L * 200, Time(-33, 0, 0));  // the hour is a byte
  EXPECT_EQ(Time(10, 0, 0) + -5L, Time(10, 0, -5));
  EXPECT_EQ(Time(10, 0, 0) - 86400L, Time(10, 0, 0));
  EXPECT_EQ(Time(10, 0, 0) - 2 * 86400L, Time(-14, 0, 0));  // one day is given back, not two
  for (const NxTime& t : {Time(24, 0, 0), Time(0, 60, 0), Time(0, 0, 60), Time(-1, 0, 0), Time(0, 0, -1)})
    EXPECT_FALSE(t.IsTime());
}

}  // namespace
