// Comparison of every type over any bytes, lengths, counts, options and formats: only
// the stated error words come, nothing outside the operands is read, the result
// depends on nothing but them, and the short ways of strings answer as the long one.

#include "operand.h"

namespace {

constexpr unsigned short kLastEarlyFormat = 3;  // of database formats

struct Result {
  long order;
  int error;

  bool operator==(const Result& r) const { return order == r.order && error == r.error; }
};

Result Compare(Subject& subject, const Operand& a, const Operand& b, unsigned short options,
               unsigned long count, unsigned char format) {
  constexpr int kUnset = 4711;
  int error = subject.IsIllegal() ? 0 : kUnset;
  const long order =
      subject.mgr.Cmp(subject.id, a.Length(), a.Data(), b.Length(), b.Data(), options, count, format, error);
  Require(error == 0 || error == kPastBuffer || error == kNotPossible);
  return {order, error};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input in(data, size);
  Subject subject(in.Byte());
  const unsigned char format = in.Byte();
  const unsigned short options = in.Word();
  const unsigned char few = in.Byte();
  const unsigned long count = few < 250 ? few : ~0UL >> (few - 250);

  const Operand a(in, subject, format, count);
  const Operand b(in, subject, format, count);
  if (!a.IsPossible() || !b.IsPossible()) return 0;
  const Block bytesOfA = a.Bytes();
  const Block bytesOfB = b.Bytes();
  const Result result = Compare(subject, a, b, options, count, format);
  Require(a.Bytes() == bytesOfA && b.Bytes() == bytesOfB);
  Require(Compare(subject, a, b, options, count, format) == result);
  if (subject.IsText() && subject.mgr.factory > kLastEarlyFormat) {
    Result common;
    common.order = StringCompareCommon(format, a.Length(), a.Data(), b.Length(), b.Data(), options, count,
                                       common.error, 0);
    Require(common == result);
  }
  if (a.Length() == 0 && b.Length() == 0)
    Require(subject.mgr.Cmp(subject.id, a.Data(), b.Data(), options, count, format) == result.order);
  return 0;
}
