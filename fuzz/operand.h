// Operands of the type manager's operations: stored images of any bytes, and values
// in memory, which for the types that own storage are built from bytes.
#ifndef FUZZ_OPERAND_H
#define FUZZ_OPERAND_H

#include <memory>

#include "input.h"
#include "nxblob.h"
#include "nxcistr.h"
#include "nxistr.h"
#include "nxlang.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypmgr.h"

/// A type under one of the two tables.
struct Subject {
  NxTypeMgr mgr;
  char id;

  /// Bit 7 of the byte chooses the table of early formats.
  explicit Subject(unsigned char byte)
      : mgr(byte & 0x80 ? 3 : 5), id(static_cast<char>((byte & 0x7F) % 42)) {}

  bool IsText() const { return id == kStringTypeId; }
  bool IsAlphabetic() const { return id == kIString || id == kCaseIString; }
  bool IsString() const { return IsText() || IsAlphabetic(); }
  bool IsBlob() const { return id == kBlob; }
  /// Whether a value in memory refers to storage of its own.
  bool OwnsStorage() { return !mgr.IsFixed(id); }
  /// Whether the type has operations of its own.
  bool IsIllegal() { return mgr.CmpFuncPtrGet(id) == NxIllegalCompare; }
  /// Whether a format byte hands a Compare or Hash slot values in memory.
  bool InMemory(unsigned char format) const {
    return IsString() ? format == kFormatMemory : (format & kFormatCodeMask) == kFormatMemory;
  }

  static constexpr char kBlob = 18;
  static constexpr char kIString = 20;
  static constexpr char kCaseIString = 21;
};

/// Gives a string value of the type some text, form and language; a blob bytes.
inline void TakeText(Input& in, const Subject& subject, void* value) {
  const unsigned char kind = in.Byte();
  const unsigned char form = in.Byte();
  const Block bytes = in.TakeBlock();
  auto* text = reinterpret_cast<const char*>(bytes.Data());
  if (subject.IsBlob()) {
    if (kind & 1)
      static_cast<NxBlob*>(value)->SetTo(text, static_cast<long>(bytes.Size()));
    else
      static_cast<NxBlob*>(value)->SetNullValue();
    return;
  }
  if (subject.IsText()) {
    auto& s = *static_cast<NxString*>(value);
    s = NxString(kind, form);
    const unsigned long length = std::min(bytes.Size() / NxCharWidth(kind), kMaxStringBytes);
    if (length != 0) s.MakeString(text, kind, static_cast<short>(length));
    return;
  }
  const Block closed(bytes.Size() + 1);
  CopyBytes(closed.Data(), bytes.Data(), bytes.Size());
  closed.Data()[bytes.Size()] = 0;
  const char* const zeroEnded = kind & 1 ? reinterpret_cast<const char*>(closed.Data()) : nullptr;
  if (subject.id == Subject::kIString) {
    auto& s = *static_cast<NxIString*>(value);
    s = zeroEnded;
    s._nForm = form;
  } else {
    auto& s = *static_cast<NxCaseIString*>(value);
    s = zeroEnded;
    s._nForm = form;
  }
}

/// Values that own storage in memory, strings and blobs, released with the object.
class OwningValues {
 public:
  OwningValues(Subject& subject, unsigned long n)
      : subject_(subject), n_(n), values_(subject.mgr.Create(subject.id, n)) {}
  OwningValues(Input& in, Subject& subject, unsigned long n) : OwningValues(subject, n) {
    for (unsigned long i = 0; i < n; ++i) TakeText(in, subject, At(i));
  }
  OwningValues(const OwningValues&) = delete;
  OwningValues& operator=(const OwningValues&) = delete;
  ~OwningValues() { subject_.mgr.Delete(subject_.id, values_, n_); }

  void* Data() const { return values_; }
  void* At(unsigned long i) const { return static_cast<char*>(values_) + Size(subject_) * i; }

  /// Bytes of a value.
  static unsigned long Size(Subject& subject) { return subject.mgr.MemLenGet(subject.id, 1); }

 private:
  Subject& subject_;
  unsigned long n_;
  void* values_;
};

/// The 16-bit length of an image.
inline unsigned short LengthAt(const void* place, unsigned char format) {
  unsigned short n;
  ShortStore(&n, place, format, 1);
  return n;
}

/// Whether the image of `count` values lies within the block, so that a slot may be
/// called without a length.
inline bool IsWhole(Subject& subject, const Block& block, unsigned char format, unsigned long count) {
  if (subject.IsBlob()) {  // an image with a negative size ends behind that
    if (block.Size() < 4) return false;
    long size;
    LongStore(&size, block.Data(), format & kFormatCodeMask, 1);
    return size < 0 || size <= static_cast<long>(block.Size() - 4);
  }
  if (!subject.IsString()) {
    const int stored =
        subject.mgr.DiskLenGet(subject.id, nullptr, format & kFormatCodeMask, 1, kFormatMemory);
    const auto size = std::max<unsigned long>(stored, subject.mgr.MemLenGet(subject.id, 1));
    return 1ULL * size * count <= block.Size();
  }
  const unsigned char code = format & kFormatCodeMask;
  if (subject.IsAlphabetic())
    return block.Size() >= 3 && 3UL + LengthAt(block.Data() + 1, code) <= block.Size();
  for (unsigned long pos = 0; count > 0; --count) {
    if (pos + 2 > block.Size()) return false;
    const unsigned long n = LengthAt(block.Data() + pos, code);
    pos += 2 + n;
    if (pos > block.Size()) return false;
    // Of an early image the first length is that of all texts.
    if (n != 0 && !(format & kFormatKey) && block.Data()[pos - 1] == 0) return true;
  }
  return true;
}

/// An array handed to a Compare or Hash slot.
class Operand {
 public:
  Operand(Input& in, Subject& subject, unsigned char format, unsigned long count)
      : unlimited_(in.Byte() & 1), block_(TakeArray(in, subject, format)) {
    const bool objects = values_ != nullptr;
    unlimited_ = unlimited_ && (objects ? count <= block_.Size() / OwningValues::Size(subject)
                                        : IsWhole(subject, block_, format, count));
  }

  void* Data() const { return block_.Data(); }
  /// The length to state; 0 is for no limit.
  unsigned long Length() const { return unlimited_ ? 0 : block_.Size(); }
  /// A buffer of no bytes cannot be stated.
  bool IsPossible() const { return unlimited_ || block_.Size() != 0; }
  const Block& Bytes() const { return block_; }

 private:
  /// Objects are built beside the array, which holds what there is room for of them.
  Block TakeArray(Input& in, Subject& subject, unsigned char format) {
    if (!subject.OwnsStorage() || !subject.InMemory(format)) return in.TakeBlock();
    const unsigned long size = OwningValues::Size(subject);
    const unsigned char shape = in.Byte();
    const unsigned long n = 1 + shape % 4;
    values_ = std::make_unique<OwningValues>(in, subject, n);
    return Block(values_->Data(), n * size - shape / 4 % size);
  }

  bool unlimited_;
  std::unique_ptr<OwningValues> values_;
  Block block_;
};

#endif
