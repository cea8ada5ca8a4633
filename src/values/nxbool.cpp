// NxBoolean: its null state and the comparisons that put null first.
#include "nxbool.h"

namespace {

signed char Signed(const NxBoolean& b) { return static_cast<signed char>(b.value); }

}  // namespace

int NxBoolean::SetNullValue() {
  value = kNull;
  return 0;
}

int NxBoolean::operator==(const NxBoolean& b) const {
  if (IsNullValue() || b.IsNullValue()) return IsNullValue() && b.IsNullValue();
  return (value == 0) == (b.value == 0);
}

int NxBoolean::operator<(const NxBoolean& b) const {
  if (IsNullValue()) return !b.IsNullValue();
  if (b.IsNullValue()) return 0;
  return Signed(*this) <= Signed(b) && !(*this == b);
}

int NxBoolean::operator>(const NxBoolean& b) const {
  if (IsNullValue()) return 0;
  if (b.IsNullValue()) return 1;
  return Signed(*this) > Signed(b);
}
