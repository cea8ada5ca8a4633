// NxSeal: its order, and its number as NxInt64 and as text.
#include "nxseal.h"

#include "nxint64.h"
#include "nxref.h"
#include "nxstring.h"

int NxSeal::operator!=(const NxSeal& s) const {
  if (w0 != s.w0) return w0 - s.w0;
  if (w1 != s.w1) return w1 - s.w1;
  return w2 - s.w2;
}

void NxSeal::ConvertTo(NxInt64& out) const {
  out = NxInt64(static_cast<unsigned long>(w1) << 16 | w2, static_cast<long>(w0));
}

void NxSeal::ConvertFrom(const NxInt64& v) {
  w0 = static_cast<unsigned short>(v.high);
  w1 = static_cast<unsigned short>(v.low >> 16);
  w2 = static_cast<unsigned short>(v.low);
}

void NxSeal::ConvertFrom(const NxObjId& id) { ConvertFrom(NxInt64(id.low, id.high)); }

NxString& NxSeal::PrintToNxString(NxString& out) const {
  NxInt64 number;
  ConvertTo(number);
  return number.PrintToNxString(out, nullptr);
}

void NxSeal::ScanFromNxString(const NxString& text) {
  NxInt64 number;
  if (!text.IsEmpty()) number.ScanFromNxString(text, nullptr);
  ConvertFrom(number);
}
