// Printing and scanning of every type under any format, from any text: nothing is read
// behind a format, a text or a value, no other format reaches the C library than one that
// fits, and a value prints alike each time.

#include <string>

#include "operand.h"

namespace {

/// Zero-terminated bytes in an allocation of just their size.
Block TakeZeroEnded(Input& in) {
  const Block bytes = in.TakeBlock();
  Block text(bytes.Size() + 1);
  CopyBytes(text.Data(), bytes.Data(), bytes.Size());
  text.Data()[bytes.Size()] = 0;
  return text;
}

constexpr char kDate = 12;
constexpr char kTime = 13;

const char* Chars(const Block& text) { return reinterpret_cast<const char*>(text.Data()); }

/// n values of the type: objects are made by it, plain ones are any bytes.
class Values {
 public:
  Values(Input& in, Subject& subject, unsigned long n)
      : subject_(subject),
        n_(n),
        bytes_(subject.mgr.IsFixed(subject.id) ? subject.mgr.MemLenGet(subject.id, n) : 0) {
    if (bytes_.Size() == 0) {
      objects_ = subject.mgr.Create(subject.id, n);
      if (subject.IsString()) TakeText(in, subject, objects_);
      return;
    }
    const Block given = in.Take(bytes_.Size());
    std::memset(bytes_.Data(), 0, bytes_.Size());
    CopyBytes(bytes_.Data(), given.Data(), given.Size());
  }
  Values(const Values&) = delete;
  Values& operator=(const Values&) = delete;
  ~Values() {
    if (objects_) subject_.mgr.Delete(subject_.id, objects_, n_);
  }

  void* Data() const { return objects_ ? objects_ : bytes_.Data(); }

 private:
  Subject& subject_;
  unsigned long n_;
  Block bytes_;
  void* objects_ = nullptr;
};

std::string Printed(Subject& subject, const Values& values, const char* format, unsigned char codeSet,
                    unsigned long n) {
  NxString out(codeSet, 1);
  Require(&subject.mgr.PrintToNxString(subject.id, out, values.Data(), format, n) == &out);
  const unsigned width = NxCharWidth(out._nCodeSet);
  return {out.StrGet(), static_cast<std::size_t>(out.Len()) * width};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input in(data, size);
  Subject subject(in.Byte());
  if (subject.IsIllegal()) return 0;
  const unsigned char shape = in.Byte();
  const unsigned char codeSet = shape & 4 ? kCodeSetUnicode : kCodeSetLatin1;
  const unsigned long n = 1 + shape % 4;
  const Block format = TakeZeroEnded(in);
  const Block text = TakeZeroEnded(in);
  const Values values(in, subject, n);
  const char* fmt = shape & 8 ? nullptr : Chars(format);

  // A date or a time alone is printed beside the present time or date.
  const bool asksClock = subject.id == kDate || subject.id == kTime;
  const std::string before = Printed(subject, values, fmt, codeSet, n);
  Require(asksClock || Printed(subject, values, fmt, codeSet, n) == before);
  NxString input(Chars(text));
  if (shape & 16) input.MapToCodeSet(kCodeSetUnicode);
  Require(subject.mgr.ScanFromNxString(subject.id, values.Data(), input, fmt, n) == values.Data());
  const std::string after = Printed(subject, values, fmt, codeSet, n);
  subject.mgr.ScanFromNxString(subject.id, values.Data(), input, fmt, n);
  Require(asksClock || Printed(subject, values, fmt, codeSet, n) == after);
  return 0;
}
