// Translation of strings and blobs between memory, stored images and keys: nothing is written
// beside the destination or read beside the source, the source stays as it is, the
// bytes produced depend on the source alone, and what is stored loads again.

#include "nxbase.h"
#include "operand.h"

namespace {

constexpr unsigned char kEarly = 0x80;  // of a subject's byte
constexpr unsigned char kSubjects[] = {kStringTypeId, Subject::kIString, Subject::kCaseIString,
                                       kStringTypeId | kEarly};
constexpr unsigned char kBlobs = 0x80;  // of a case's first byte: of blobs

struct Case {
  Subject subject;
  unsigned char dstForm, srcForm;
  unsigned long n;

  bool ToMemory() const { return dstForm & kFormatMemory; }
  bool FromMemory() const { return srcForm & kFormatMemory; }
  /// Whether a text is stored as it is.
  bool StoresPlainly() const {
    constexpr unsigned char kChanging = kFormatKey | kFormatDropCodeSet | kFormatNativeCodeSet;
    return FromMemory() && !ToMemory() && !(dstForm & kChanging);
  }
};

/// Whether a string is what the class promises.
void CheckText(const NxString& s) {
  Require((s._pBuffer == nullptr) == (s._nSize == 0));
  if (!s._pBuffer) return;
  const unsigned long width = NxCharWidth(s._nCodeSet);
  Require(s._nSize % width == 0);
  for (unsigned long i = s._nSize - width; i < s._nSize; ++i) Require(s._pBuffer[i] == 0);
}

void CheckValues(const Case& c, const OwningValues& values) {
  for (unsigned long i = 0; i < c.n && c.subject.IsText(); ++i)
    CheckText(*static_cast<const NxString*>(values.At(i)));
}

bool AreSame(const NxString& a, const NxString& b) {
  return a._nCodeSet == b._nCodeSet && a._nLanguage == b._nLanguage &&
         std::max<unsigned>(a._nSize, NxCharWidth(a._nCodeSet)) ==
             std::max<unsigned>(b._nSize, NxCharWidth(b._nCodeSet)) &&
         (a._nSize == 0 || b._nSize == 0 || std::memcmp(a._pBuffer, b._pBuffer, a._nSize) == 0);
}

/// Into a destination of `length` bytes that held `filling` before.
Block Store(Case& c, void* src, unsigned long srcLength, unsigned long length, unsigned char filling) {
  Block dst(length);
  if (length != 0) std::memset(dst.Data(), filling, length);
  const int produced =
      c.subject.mgr.Translate(c.subject.id, dst.Data(), c.dstForm, length, src, c.srcForm, srcLength, c.n);
  Require(produced >= 0 && static_cast<unsigned long>(produced) <= length);
  return Block(dst.Data(), static_cast<unsigned long>(produced));
}

/// A current string that was stored whole is the same when it is loaded.
void CheckLoad(Case& c, const Block& image, const NxString& s) {
  OwningValues loaded(c.subject, 1);
  auto& back = *static_cast<NxString*>(loaded.Data());
  const int read = c.subject.mgr.Translate(c.subject.id, &back, kFormatMemory, 0, image.Data(), c.dstForm,
                                           image.Size(), 1);
  Require(read == static_cast<int>(image.Size()));
  Require(AreSame(s, back));
}

void Translate(Case& c, void* src, unsigned long srcLength, unsigned long dstLength) {
  if (c.ToMemory()) {
    OwningValues values(c.subject, c.n);
    c.subject.mgr.Translate(c.subject.id, values.Data(), c.dstForm, 0, src, c.srcForm, srcLength, c.n);
    CheckValues(c, values);
    return;
  }
  const Block produced = Store(c, src, srcLength, dstLength, 0x00);
  Require(Store(c, src, srcLength, dstLength, 0xA5) == produced);
  const bool whole = produced.Size() < dstLength;
  if (c.n == 1 && whole && c.StoresPlainly() && c.subject.IsText() && c.subject.mgr.factory > 3)
    CheckLoad(c, produced, *static_cast<const NxString*>(src));
}

void IgnoreReport(const char*, const char*, int) {}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  NxSetAssertHandler(IgnoreReport);
  Input in(data, size);
  const unsigned char choice = in.Byte();
  Case c = {Subject(choice & kBlobs ? Subject::kBlob : kSubjects[choice % 4]), in.Byte(), in.Byte(),
            choice / 4 % 5UL};
  const unsigned long dstLength = in.Size();
  // To blobs a length of 0 is no limit.
  if (c.subject.IsBlob() && ((!c.ToMemory() && dstLength == 0) || (!c.FromMemory() && in.IsUsedUp())))
    return 0;
  if (c.FromMemory()) {
    const OwningValues values(in, c.subject, c.n);
    const Block objects(values.Data(), c.n * OwningValues::Size(c.subject));
    Translate(c, values.Data(), 0, dstLength);
    Require(Block(values.Data(), objects.Size()) == objects);
    CheckValues(c, values);
  } else {
    const Block image = in.Rest();
    const Block before = image;
    Translate(c, image.Data(), image.Size(), dstLength);
    Require(image == before);
  }
  return 0;
}
