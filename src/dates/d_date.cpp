// d_Date: a date of the mixed calendar (nxcalendar.h), computed by way of its day number.
#include "d_date.h"

#include "d_interv.h"
#include "d_timest.h"
#include "dates/nxdaytime.h"
#include "dates/nxoverlap.h"
#include "nxbase.h"
#include "nxcomp.h"
#include "nxdatime.h"

namespace {

/// Moves by any number of days, of either sign.
d_Date& Move(d_Date& d, long days) {
  d.setAbsDate(NxCalendar::WrapAdd(d.getAbsDate(), days));
  return d;
}

long WholeDays(const d_Interval& iv) { return NxWholePart(iv.value / double{kSecondsOfDay}); }

}  // namespace

d_Date::d_Date() {
  bdate today = {};
  bksgetdate(&today);
  year = today.year;
  month = today.month;
  day = today.day;
}

d_Date::d_Date(const d_Timestamp& t) : d_Date(t.date) {}

d_Date::d_Date(const NxDate& d) : year(d.year), month(d.month), day(d.day) {}

d_Date::d_Date(const NxDateTime& t) : d_Date(t.date) {}

d_Date& d_Date::operator=(const d_Timestamp& t) { return *this = t.date; }

d_Date& d_Date::operator=(const NxDate& d) { return *this = d_Date(d); }

d_Date& d_Date::operator=(const NxDateTime& t) { return *this = d_Date(t.date); }

d_Date d_Date::current() { return d_Date(); }

d_Date& d_Date::next(Weekday weekday) { return Move(*this, (weekday - day_of_week() + 13) % 7 + 1); }

d_Date& d_Date::previous(Weekday weekday) { return Move(*this, -((day_of_week() - weekday + 13) % 7 + 1)); }

d_Date& d_Date::operator+=(const d_Interval& iv) { return Move(*this, WholeDays(iv)); }

d_Date& d_Date::operator-=(const d_Interval& iv) {
  return Move(*this, NxCalendar::WrapMul(WholeDays(iv), -1));
}

d_Date operator+(const d_Date& d, const d_Interval& iv) { return d_Date(d) += iv; }

d_Date operator+(const d_Interval& iv, const d_Date& d) { return d_Date(d) += iv; }

d_Date operator-(const d_Date& d, const d_Interval& iv) { return d_Date(d) -= iv; }

d_Date d_Date::operator++(int) {
  const d_Date before(*this);
  Move(*this, 1);
  return before;
}

d_Date d_Date::operator--(int) {
  const d_Date before(*this);
  Move(*this, -1);
  return before;
}

int operator!=(const d_Date& a, const d_Date& b) { return static_cast<int>(a.getAbsDate() - b.getAbsDate()); }

bool overlaps(const d_Date& a1, const d_Date& a2, const d_Date& b1, const d_Date& b2) {
  using Order = NxDifferenceOrder<d_Date>;
  return NxOverlaps<Order>(Order::NotAfter(a1, a2), a1, a2, b1, b2);
}
