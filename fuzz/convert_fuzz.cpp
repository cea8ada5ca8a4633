// String arrays of every type: values of any texts, the texts of any values, and several
// values in one text. Every conversion makes its values, and the same ones each time.

#include <string>
#include <vector>

#include "nxconv.h"
#include "operand.h"

namespace {

/// Longer texts are slow: every part of one that joins values is looked for in the whole of it.
constexpr unsigned short kMost = 1000;

/// Strings of any code set, language and bytes, null ones among them.
class Texts {
 public:
  Texts(Input& in, unsigned long n) : strings_(n) {
    const Subject text(kStringTypeId);
    for (NxString& s : strings_) {
      TakeText(in, text, &s);
      if (s.Len() > kMost) s = s.Left(kMost);
    }
  }

  /// A record that carries them; fewer than are asked for, and none at all, may be there.
  NxTypeConvertData Record(unsigned char shape) {
    const bool none = shape & 1;
    return {shape & 2 ? kIllegalTypeId : kStringTypeId, strings_.size(), none ? nullptr : strings_.data(),
            nullptr};
  }

 private:
  std::vector<NxString> strings_;
};

/// What a conversion made, released with its type.
struct Values {
  Values(Subject& subject, void* data, unsigned long n) : subject(subject), data(data), n(n) {}
  Values(const Values&) = delete;
  Values& operator=(const Values&) = delete;
  ~Values() { subject.mgr.Delete(subject.id, data, n); }

  Subject& subject;
  void* const data;
  const unsigned long n;
};

std::vector<std::string> TextsOf(const Values& values) {
  const std::unique_ptr<NxTypeConvertData> texts(
      values.subject.mgr.ConvertTo(values.subject.id, values.data, values.n));
  Require(texts && texts->typeId == kStringTypeId &&
          !texts->GetString(static_cast<int>(std::max(values.n, 1UL))));
  std::vector<std::string> bytes;
  for (unsigned long i = 0; i < values.n; ++i) {
    const NxString& s = *texts->GetString(static_cast<int>(i));
    bytes.emplace_back(s.StrGet(), static_cast<std::size_t>(s.Len()) * NxCharWidth(s._nCodeSet));
    if (s.IsNullValue()) bytes.back() = "null";
  }
  return bytes;
}

void* FromRecord(Subject& subject, NxTypeConvertData& record, unsigned long n) {
  void* values = subject.mgr.ConvertFrom(subject.id, &record, n);
  record.mgr = nullptr;  // the strings stay with their owner
  return values;
}

/// The texts that a type wrote are read, and read the same each time.
void RequireReadable(const Values& values) {
  Subject& subject = values.subject;
  const std::unique_ptr<NxTypeConvertData> texts(subject.mgr.ConvertTo(subject.id, values.data, values.n));
  const Values once(subject, subject.mgr.ConvertFrom(subject.id, texts.get(), values.n), values.n);
  const Values again(subject, subject.mgr.ConvertFrom(subject.id, texts.get(), values.n), values.n);
  Require(TextsOf(once) == TextsOf(again));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input in(data, size);
  Subject subject(in.Byte());
  if (subject.IsIllegal()) return 0;
  const unsigned char shape = in.Byte();
  const unsigned long n = 1 + shape / 4 % 4, given = shape / 16 % 8;
  Texts texts(in, given);
  NxTypeConvertData record = texts.Record(shape);
  const Values values(subject, FromRecord(subject, record, n), n);
  Require(values.data != nullptr);
  const std::vector<std::string> written = TextsOf(values);
  Require(TextsOf(values) == written);
  RequireReadable(values);

  NxString* const joined = subject.mgr.ConvertToNxStringOld(values.data, subject.id, n);
  Require(joined != nullptr);
  const Values split(subject, subject.mgr.ConvertFromNxStringOld(joined, subject.id, n), n);
  Require(split.data != nullptr);
  subject.mgr.Delete(kStringTypeId, joined, 1);
  NxString one;
  TakeText(in, Subject(kStringTypeId), &one);
  if (one.Len() > kMost) one = one.Left(kMost);
  const Values ofAny(subject, subject.mgr.ConvertFromNxStringOld(&one, subject.id, n), n);
  Require(ofAny.data != nullptr);
  return 0;
}
