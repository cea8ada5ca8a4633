// Dates and times: the day-number formulas over every day of the supported years
// against each other and a walk through the calendar, and field arithmetic with carries.
#include "nxcomp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "d_date.h"
#include "d_interv.h"
#include "d_time.h"
#include "d_timest.h"
#include "nxbase.h"
#include "nxcalendar.h"
#include "nxdatime.h"
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

/// The calendar day by day; a mixed one is Julian before 1582-10-15.
struct Walk {
  int year, month, day;
  bool isMixed;
  int dayOfYear = 1;

  bool IsLeap() const {
    return year % 4 == 0 && ((isMixed && year <= 1582) || year % 100 != 0 || year % 400 == 0);
  }
  int DaysOfMonth() const {
    static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeap() ? 29 : kDays[month - 1];
  }
  void Next() {
    ++dayOfYear;
    if (isMixed && year == 1582 && month == 10 && day == 4) {
      day = 15;
    } else if (++day > DaysOfMonth()) {
      day = 1;
      if (++month > 12) month = 1, ++year, dayOfYear = 1;
    }
  }
};

TEST(NxDate, EveryDayOfTheSupportedYears) {
  long dayNumber = 0;
  for (Walk w = {-4713, 11, 24, false}; w.year <= 32767; w.Next(), ++dayNumber) {
    const NxDate d(dayNumber);
    ASSERT_TRUE(d.year == w.year && d.month == w.month && d.day == w.day) << dayNumber;
    ASSERT_EQ(d.dayabs(), dayNumber);
    ASSERT_TRUE(d.IsDate());
    ASSERT_EQ(d.daynxtmonth(), w.DaysOfMonth() - w.day + 1) << dayNumber;
    // Day 0 was a Monday.
    if (w.year >= 1) {
      ASSERT_EQ(d.DayOfTheDate(), dayNumber % 7) << dayNumber;
    }
  }
  EXPECT_EQ(dayNumber, NxCalendar::DayNumber(32768, 1, 1));
}

/// Day numbers from the first to the last, and the days around every year's ends.
template <class DayNumber, class DateOf>
void ExpectSameCalendar(DayNumber fast, DayNumber general, DateOf fastDate, DateOf generalDate, long first) {
  for (long year = -32768; year <= 32767; ++year)
    for (long month = -128; month <= 128; ++month)
      for (long day : {-128L, 1L, 127L})
        ASSERT_EQ(fast(year, month, day), general(year, month, day)) << year << ' ' << month << ' ' << day;
  for (long number = first; number <= NxCalendar::kLastDay + 100000; ++number) {
    const NxCalendar::CivilDate a = fastDate(number), b = generalDate(number);
    ASSERT_TRUE(a.year == b.year && a.month == b.month && a.day == b.day) << number;
  }
}

TEST(NxCalendar, FastFormulasAreTheGeneralOnes) {
  ExpectSameCalendar(NxCalendar::DayNumber, NxCalendar::GeneralDayNumber, NxCalendar::DateOf,
                     NxCalendar::GeneralDateOf, -100000);
  ExpectSameCalendar(NxCalendar::MixedDayNumber, NxCalendar::GeneralMixedDayNumber, NxCalendar::MixedDateOf,
                     NxCalendar::GeneralMixedDateOf, 2299000);
}

TEST(NxDate, DaysThatNoMonthHasAreNoDates) {
  for (int year : {-400, 0, 1900, 2000, 2001, 2004, 32767})
    for (int month = -128; month <= 127; ++month)
      for (int day = -128; day <= 127; ++day) {
        const bool valid =
            month >= 1 && month <= 12 && day >= 1 && day <= Walk{year, month, 1, false}.DaysOfMonth();
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
  EXPECT_EQ(d.divide(-7, 2) * 10 + d.modulo(-7, -2), -29);  // -3 and 1
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

// ---------------------------------------------------------------------------
// The classes of the standard types: periods against their points, timestamps against whole
// seconds, and the worked cases.

std::string Text(const d_Date& d) {
  return std::to_string(d.year) + '-' + std::to_string(d.month) + '-' + std::to_string(d.day);
}

/// All six fields: "12:30:15.25+2:0".
std::string Text(const d_Time& t) {
  return std::to_string(t.hour) + ':' + std::to_string(t.minute) + ':' + std::to_string(t.second) + '.' +
         std::to_string(t.hundredths) + '+' + std::to_string(t.tz_hour) + ':' + std::to_string(t.tz_minute);
}

std::string Text(const d_Timestamp& t) { return Text(t.date) + ' ' + Text(t.time); }

d_Interval Seconds(float seconds) {
  d_Interval iv;
  iv.value = seconds;
  return iv;
}

d_Interval Days(int days) { return d_Interval(days, 0, 0, 0); }

/// The default zone for the time of a test.
struct DefaultZone {
  explicit DefaultZone(int hours) { d_Time::set_default_Time_Zone(d_Time::Time_Zone(hours)); }
  ~DefaultZone() { d_Time::set_default_Time_Zone(d_Time::Utc); }
};

// ---------------------------------------------------------------------------
// Calendar

TEST(StandardDate, EveryDayFromYearOne) {
  d_Date d(1, 1, 1);
  int weekday = d_Date::Saturday;
  long number = julian_day(1, 1, 1);
  for (Walk w = {1, 1, 1, true}; w.year <= 32767; w.Next(), ++number, weekday = (weekday + 1) % 7) {
    d.setAbsDate(number);
    ASSERT_TRUE(d.year == w.year && d.month == w.month && d.day == w.day) << number << ' ' << Text(d);
    ASSERT_EQ(d.getAbsDate(), number) << Text(d);
    ASSERT_EQ(d.day_of_week(), weekday) << Text(d);
    ASSERT_EQ(d.day_of_year(), w.dayOfYear) << Text(d);
    ASSERT_EQ(d.days_in_month(), w.DaysOfMonth()) << Text(d);
  }
  EXPECT_EQ(julian_day(2000, 1, 1), 2451544);
  EXPECT_EQ(julian_day(1582, 10, 15) - julian_day(1582, 10, 4), 1);
  EXPECT_EQ(d_Date(2000, 1, 1).day_of_week(), d_Date::Saturday);
  EXPECT_EQ(d_Date::days_in_month(2000, 0) + d_Date::days_in_month(2000, 13), 0);
}

TEST(StandardDate, FieldsAndNumbersThatAreNoDateFollowTheFormulas) {
  const struct {
    short year;
    signed char month, day;
    long number;
  } numbers[] = {{2001, 2, 29, 2451969},  {2000, 0, 1, 2451513},     {-4712, 1, 1, 0},
                 {1582, 10, 14, 2299169}, {2000, 13, -128, 2451781}, {-32768, -128, -128, -10251530}};
  for (const auto& c : numbers)
    EXPECT_EQ(julian_day(c.year, static_cast<char>(c.month), static_cast<char>(c.day)), c.number) << c.number;
  d_Date d(0, 0, 0);
  const struct {
    long number;
    const char* date;
  } dates[] = {{-1, "-4712-1-1"}, {-2000, "-4716--4--18"}, {2147483647, "-23342-6-4"}};
  for (const auto& c : dates) {
    d.setAbsDate(c.number);
    EXPECT_EQ(Text(d), c.date);
  }
  EXPECT_EQ(d_Date(-32768, 1, 1).day_of_week(), ((julian_day(-32768, 1, 1) + 2) % 7 + 7) % 7);
}

TEST(StandardDate, MovesByWholeDays) {
  const d_Date d(2000, 1, 1);
  EXPECT_EQ(Text(d_Date(2000, 60)), "2000-2-29");
  EXPECT_EQ(Text(d_Date(2001, 0)), "2000-12-31");
  EXPECT_EQ(Text(d + Seconds(129600)), "2000-1-2");
  EXPECT_EQ(Text(Seconds(-129600) + d), "1999-12-31");
  EXPECT_EQ(Text(d - Seconds(129600)), "1999-12-31");
  for (int weekday = 0; weekday < 7; ++weekday) {
    d_Date later(d), earlier(d);
    const auto to = static_cast<d_Date::Weekday>(weekday);
    EXPECT_EQ(later.next(to) != d, weekday + 1);
    EXPECT_EQ(earlier.previous(to) != d, weekday - 6 - (weekday == 6 ? 7 : 0));
    EXPECT_TRUE(later.day_of_week() == to && earlier.day_of_week() == to);
  }
  d_Date e(1582, 10, 4);
  EXPECT_EQ(Text(e++), "1582-10-4");
  EXPECT_EQ(Text(e--), "1582-10-15");
  EXPECT_EQ(Text(e), "1582-10-4");
  EXPECT_EQ(Text(e -= Days(1)), "1582-10-3");
  EXPECT_EQ(Text(e += Days(2)), "1582-10-15");
  // No day number holds what is not finite, but something must come out.
  d_Date lost(d);
  lost += Seconds(std::numeric_limits<float>::infinity());
  lost -= Seconds(std::numeric_limits<float>::quiet_NaN());
}

// ---------------------------------------------------------------------------
// Intervals

TEST(StandardInterval, PartsAddUpAndOneNegativePartTurnsTheWhole) {
  const struct {
    d_Interval interval;
    float seconds;
  } cases[] = {{d_Interval(1, 2, 3, 4.5F), 93784.5F},   {d_Interval(0, -1, 30, 0), -5400},
               {d_Interval(0, 0, 0, -0.5F), -0.5F},     {d_Interval(-1, 0, 0, 1), -86401},
               {d_Interval(30000, 0, 0, 0), 2.592e9F},  // no 32-bit number of seconds
               {2 * d_Interval(0, 0, 1, 0) * -3, -360}, {d_Interval(0, 0, 0, 7) / 2, 3.5F},
               {d_Interval(0, 0, 0, 7) / 0, 7},         {Seconds(5) + Seconds(7) - -Seconds(1), 13}};
  for (const auto& c : cases) EXPECT_EQ(c.interval.value, c.seconds);
  EXPECT_TRUE(std::signbit((-d_Interval()).value));
}

TEST(StandardInterval, MadePositiveByWholeDays) {
  const float infinity = std::numeric_limits<float>::infinity();
  const struct {
    float before, after;  // seconds
  } cases[] = {{-3600, 82800},           {-86400, 0},           {-200000, 59200}, {0, 0}, {90000, 90000},
               {-8388608 * 86400.0F, 0}, {-infinity, -infinity}};
  for (const auto& c : cases) {
    d_Interval iv = Seconds(c.before);
    makePositiveInterval(iv);
    EXPECT_EQ(iv.value, c.after) << c.before;
    EXPECT_EQ(std::signbit(iv.value), std::signbit(c.after)) << c.before;
  }
}

// ---------------------------------------------------------------------------
// Times

TEST(StandardTime, HoldsItsHourWithTheZoneAdded) {
  const DefaultZone zone(2);
  EXPECT_EQ(Text(d_Time(10, 30, 15.25F)), "12:30:15.25+2:0");
  EXPECT_EQ(Text(d_Time(10, 30, 15.999F, -3, 30)), "7:60:15.99+-3:30");
  EXPECT_EQ(Text(d_Time(90061L)), "27:1:1.0+2:0");
  EXPECT_EQ(Text(d_Time(-1L)), "25:59:59.0+2:0");
  EXPECT_EQ(Text(d_Time(-172800L)), "2:0:0.0+2:0");
  EXPECT_EQ(Text(d_Time(-2147483647L - 1)), "22:45:52.0+2:0");

  const NxDateTime point(NxDate(2451545), NxTime(3661));
  d_Time t(9, 9, 9.09F);
  EXPECT_EQ(Text(t = point), "3:1:1.0+2:0");
  EXPECT_EQ(Text(t = NxTime(0L)), "2:0:0.0+2:0");
  EXPECT_EQ(Text(t = d_Timestamp(d_Date(point), d_Time(1, 2, 3))), "3:2:3.0+2:0");
  EXPECT_EQ(Text(d_Time(point)) + Text(d_Time(d_Timestamp(d_Date(NxDate(1L)), t))), "3:1:1.0+2:03:2:3.0+2:0");

  setenv("TZ", "There-05:30", 1);
  d_Time::set_default_Time_Zone_to_local();
  EXPECT_EQ(d_Time::_tz, 5);
  unsetenv("TZ");
}

TEST(StandardTime, MovesRoundMidnight) {
  const struct {
    d_Time time;
    float seconds;
    const char *inPlace, *sum, *inPlaceDifference;
  } cases[] = {
      {d_Time(23, 59, 59, 0, 0), 2, "0:0:1.0+0:0", "0:0:1.0+0:0", "23:59:57.0+0:0"},
      {d_Time(0, 0, 0, 0, 0), -1, "23:59:59.0+0:0", "23:59:59.0+0:0", "0:0:1.0+0:0"},
      // A sum begins at the whole second, and so does a difference in place.
      {d_Time(0, 0, 1.5F, 0, 0), 0.25F, "0:0:1.75+0:0", "0:0:1.25+0:0", "0:0:0.75+0:0"},
      {d_Time(10, 30, 15, 2, 0), 50400, "2:30:15.0+2:0", "2:30:15.0+2:0", "22:30:15.0+2:0"},
  };
  for (const auto& c : cases) {
    d_Time t(c.time), u(c.time);
    const d_Interval iv = Seconds(c.seconds);
    EXPECT_EQ(Text(t += iv), c.inPlace);
    EXPECT_EQ(Text(c.time + iv), c.sum);
    EXPECT_EQ(Text(iv + c.time), c.sum);
    EXPECT_EQ(Text(u -= iv), c.inPlaceDifference);
    EXPECT_EQ(Text(c.time - iv), c.inPlaceDifference);
  }
  EXPECT_EQ((d_Time(10, 0, 5.9F) - d_Time(9, 59, 59)).value, 6);
}

TEST(StandardTime, ComparesLocalTimesInWholeSeconds) {
  const struct {
    d_Time a, b;
    int order;
  } cases[] = {{d_Time(10, 0, 0.5F), d_Time(10, 0, 0.2F), 0},
               {d_Time(10, 0, 1.1F), d_Time(10, 0, 0.2F), 0},  // 0.9 seconds
               {d_Time(10, 0, 2.5F), d_Time(10, 0, 0.2F), 2},
               {d_Time(10, 0, 1), d_Time(10, 1, 0), -1},
               {d_Time(12, 0, 0), d_Time(9, 59, 0), 3},
               {d_Time(12, 0, 0, 5, 30), d_Time(12, 0, 0, -9, 0), 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.a != c.b, c.order);
    EXPECT_EQ(c.b != c.a, -c.order);
  }
}

// ---------------------------------------------------------------------------
// Timestamps

TEST(StandardTimestamp, MovesByTheCalendar) {
  const struct {
    d_Date date;
    d_Time time;
    d_Interval interval;
    const char* moved;
  } cases[] = {
      {d_Date(2000, 1, 31), d_Time(10, 0, 0), Days(1), "2000-2-1 10:0:0.0+0:0"},
      {d_Date(2000, 3, 1), d_Time(1, 0, 0), d_Interval(0, -2, 0, 0), "2000-2-29 23:0:0.0+0:0"},
      {d_Date(2001, 5, 1), d_Time(0, 0, 0), Days(-3), "2001-4-28 0:0:0.0+0:0"},
      {d_Date(2001, 5, 1), d_Time(0, 0, 0), Days(-1), "2001-4-30 0:0:0.0+0:0"},
      // A count just below 0 that rounds to midnight.
      {d_Date(2001, 5, 0), d_Time(0, 0, 0.5F), Seconds(-0.501F), "2001-4-30 0:0:0.0+0:0"},
      {d_Date(1582, 10, 4), d_Time(12, 0, 0.5F, 2, 30), d_Interval(0, 12, 0, 0), "1582-10-15 2:30:0.50+2:30"},
      // More seconds than 32 bits count.
      {d_Date(2000, 1, 2), d_Time(0, 0, 0), Days(36500), "2099-12-8 0:0:0.0+0:0"},
  };
  for (const auto& c : cases) {
    const d_Timestamp t(c.date, c.time);
    d_Timestamp sum(t), difference(t);
    EXPECT_EQ(Text(sum += c.interval), c.moved);
    EXPECT_EQ(Text(c.interval + t) + Text(t + c.interval), std::string(c.moved) + c.moved);
    EXPECT_EQ(Text(difference -= -c.interval), c.moved);
    EXPECT_EQ(Text(t - -c.interval), c.moved);
  }
}

TEST(StandardTimestamp, MovesAsWholeSecondsDo) {
  for (int day = 1; day <= 28; day += 9)
    for (long second = 0; second < 86400; second += 3599)
      for (long span = -9000000; span <= 9000000; span += 30011) {
        const d_Timestamp t(d_Date(2000, 2, static_cast<unsigned short>(day)), d_Time(second));
        const d_Timestamp moved = t + Seconds(static_cast<float>(span));
        const long count = 200L * 86400 + second + span;
        d_Date date(t.date);
        date.setAbsDate(date.getAbsDate() + count / 86400 - 200);
        ASSERT_EQ(Text(moved), Text(d_Timestamp(date, d_Time(count % 86400)))) << Text(t) << ' ' << span;
      }
}

TEST(StandardTimestamp, PartsComeAndGo) {
  const DefaultZone zone(1);
  d_Timestamp t(d_Date(2000, 1, 1), d_Time(1, 2, 3));
  EXPECT_EQ(Text(t = d_Date(1999, 1, 1)), "1999-1-1 2:2:3.0+1:0");
  EXPECT_EQ(Text(t = NxDateTime(NxDate(2451545), NxTime(60L))), "2000-1-1 1:1:0.0+1:0");
  d_Date d(t);
  EXPECT_EQ(Text(d = NxDate(2451546)), "2000-1-2");
  EXPECT_EQ(Text(d = NxDateTime(NxDate(2451547), NxTime(0L))), "2000-1-3");
  EXPECT_EQ(Text(d = t), "2000-1-1");
  EXPECT_EQ(t != d_Timestamp(d_Date(1999, 12, 31), d_Time(23, 0, 0)), 1);
  EXPECT_EQ(t != d_Timestamp(d, d_Time(0, 3, 0)), -2);

  // The library's other types take part wherever a standard one is expected.
  NxDate leapDay(2451604);
  EXPECT_EQ(Text(t = leapDay), "2000-2-29 1:1:0.0+1:0");
  EXPECT_EQ(Text(leapDay + Days(1)) + Text(leapDay - Days(29)), "2000-3-12000-1-31");
  EXPECT_EQ(Text(NxTime(60L) + Seconds(5)), "1:1:5.0+1:0");
  EXPECT_EQ(Text((t.time = 3600L) - Seconds(1)), "1:59:59.0+1:0");
  EXPECT_EQ(t != leapDay, 0);
  EXPECT_EQ((t - d_Timestamp(leapDay, NxTime(3000L))).value, 600);  // times only

  const d_Date today = d_Date::current();
  EXPECT_LE(today != d_Timestamp::current(), 0);
  EXPECT_EQ(d_Time::current().tz_hour, 1);
}

// ---------------------------------------------------------------------------
// Periods

/// Whether two periods of a few points overlap, for every choice of their ends.
template <class A, class B>
void ExpectSharedPoints(A a, B b) {
  for (int a1 = 0; a1 < 5; ++a1)
    for (int a2 = 0; a2 < 5; ++a2)
      for (int b1 = 0; b1 < 5; ++b1)
        for (int b2 = 0; b2 < 5; ++b2)
          EXPECT_EQ(overlaps(a(a1), a(a2), b(b1), b(b2)), std::max(std::min(a1, a2), std::min(b1, b2)) <=
                                                              std::min(std::max(a1, a2), std::max(b1, b2)))
              << a1 << ' ' << a2 << ' ' << b1 << ' ' << b2;
}

TEST(StandardPeriods, OverlapWhereTheyShareAPoint) {
  const auto date = [](int i) { return d_Date(2000, static_cast<unsigned short>(58 + i)); };
  const auto time = [](int i) { return d_Time(10, static_cast<unsigned short>(i), 0); };
  const auto stamp = [&](int i) { return d_Timestamp(date(i), time(i)); };
  const auto stampOfADay = [&](int i) { return d_Timestamp(date(0), time(i)); };
  ExpectSharedPoints(date, date);
  ExpectSharedPoints(time, time);
  ExpectSharedPoints(stamp, stamp);
  ExpectSharedPoints(stampOfADay, stampOfADay);
  ExpectSharedPoints(stamp, date);
  ExpectSharedPoints(date, stamp);
  ExpectSharedPoints(stamp, time);
  ExpectSharedPoints(time, stamp);
}

TEST(StandardPeriods, TimestampsLessThanASecondApartHaveNoOrder) {
  const d_Date d(2000, 1, 1);
  const d_Timestamp a(d, d_Time(10, 0, 0.2F)), b(d, d_Time(10, 0, 0.7F)), c(d, d_Time(10, 0, 5));
  EXPECT_FALSE(overlaps(a, a, b, b));  // neither the same nor one before the other
  EXPECT_TRUE(overlaps(a, c, c, b));
}

}  // namespace
