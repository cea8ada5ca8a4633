// Hashing of every type over any bytes, lengths, counts and formats: only the stated
// error words come, nothing outside the array is read, and texts that are equal by
// their order values hash alike.

#include "operand.h"

namespace {

constexpr int kUnset = 4711;

unsigned long Hash(Subject& subject, const Operand& values, unsigned long count, unsigned char format,
                   int& error) {
  error = kUnset;
  const unsigned long hash =
      subject.mgr.Hash(subject.id, values.Length(), values.Data(), count, format, error);
  if (subject.IsAlphabetic() || subject.IsIllegal())
    Require(hash == 0 && error == kUnset);
  else
    Require(error == 0 || error == kPastBuffer || error == kNotPossible);
  return hash;
}

/// Whether two stored texts are whole and have one code set and one language.
bool AreOfOneKind(Subject& subject, const Block& a, const Block& b, unsigned char format) {
  return IsWhole(subject, a, format, 1) && IsWhole(subject, b, format, 1) && a.Size() >= 4 && b.Size() >= 4 &&
         std::memcmp(a.Data() + 2, b.Data() + 2, 2) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input in(data, size);
  Subject subject(in.Byte());
  const unsigned char format = in.Byte();
  const unsigned char few = in.Byte();
  const unsigned long count = few < 250 ? few : ~0UL >> (few - 250);

  const Operand a(in, subject, format, count);
  if (!a.IsPossible()) return 0;
  const Block bytes = a.Bytes();
  int error;
  const unsigned long hash = Hash(subject, a, count, format, error);
  Require(a.Bytes() == bytes);
  int again;
  Require(Hash(subject, a, count, format, again) == hash && again == error);

  // Key form lets no text be taken for an early image, so that both have a head.
  if (!subject.IsText() || count != 1 || error != 0 || subject.InMemory(format) || !(format & kFormatKey))
    return 0;
  const Operand b(in, subject, format, count);
  if (!b.IsPossible() || !AreOfOneKind(subject, a.Bytes(), b.Bytes(), format)) return 0;
  const unsigned long other = Hash(subject, b, count, format, error);
  if (error != 0) return 0;
  const long order = subject.mgr.Cmp(subject.id, a.Length(), a.Data(), b.Length(), b.Data(), kOrderValuesOnly,
                                     count, format, error);
  if (order == 0 && error == 0) Require(other == hash);
  return 0;
}
