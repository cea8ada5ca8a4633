/// `NxBlob`: binary large objects, bytes of any number on the heap, with a null state.
///
///   NxBlob b("abc");                  // 4 bytes: the terminating zero, too
///   b.Append("de", 2);
///   b.Cut(3, 1);                      // a b c d e
///   const void* cd = b.Seek(2, 2);
///
/// Positions and lengths are in bytes. A position is out of range when it is negative,
/// beyond the length, or overflows together with the length asked for. A negative
/// number of bytes counts as none unless said otherwise, and so does a null pointer to
/// bytes, which may be the blob's own. Memory comes from `malloc`; when there is none
/// the memory handler (nxbase.h) is called, and if it returns the blob stays as it was
/// (a new one is null).
///
/// Threads: several may read one blob at once; changing one takes it alone.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef NXBLOB_H
#define NXBLOB_H

#include <cstddef>

#include "nxapi.h"

class NxBlob;
class NxString;

/// The bytes of a blob, and their owner.
class NX_API NxBlobData {
 public:
  /// No bytes.
  NxBlobData() = default;
  /// A copy of n bytes at p.
  NxBlobData(const void* p, long n);
  /// A copy of b's bytes; none of a null blob.
  NxBlobData(const NxBlob& b);
  /// n bytes, uninitialised.
  NxBlobData(long n);
  NxBlobData(const NxBlobData&) = delete;
  NxBlobData& operator=(const NxBlobData&) = delete;
  /// Releases the buffer.
  ~NxBlobData();

  /// Becomes a copy of n bytes at p. A buffer stays when the length does not grow and
  /// shrinks by 128 at most; else a new one of just n bytes is taken. Returns whether
  /// there was memory for it.
  bool init(const void* p, long n);
  /// Sets the length. To more bytes by a new buffer, its new bytes uninitialised; to
  /// fewer in place; to none by releasing the buffer.
  void Resize(unsigned long n);

  unsigned char* buffer = nullptr;  // from malloc, or null
  long length = 0;                  // bytes in use

 private:
  friend class NxBlob;
  static unsigned char* Allocate(unsigned long n);
  void Rebuild(unsigned long n);
  void Hold(unsigned char* fresh, unsigned long n);
};
static_assert(sizeof(NxBlobData) == 8 && offsetof(NxBlobData, length) == 4);

class NX_API NxBlob {
 public:
  /// Empty, which is not null.
  NxBlob();
  /// n bytes, uninitialised.
  NxBlob(long n);
  /// A copy of n bytes at p.
  NxBlob(const void* p, long n);
  /// A text with its terminating zero; empty for null.
  NxBlob(const char* text);
  /// The number's decimal text with its terminating zero; a double with six decimals.
  NxBlob(int v);
  NxBlob(short v);
  NxBlob(unsigned long v);
  NxBlob(double v);
  /// The string's buffer, terminator included; null for a null string.
  NxBlob(const NxString& s);
  NxBlob(const NxBlob& b);
  ~NxBlob();

  NxBlob& operator=(const NxBlob& b);
  /// A length of 4 bytes in this machine's order and that many bytes; null for a
  /// negative length, and for a null pointer.
  NxBlob& operator=(const char* lengthAndBytes);

  int operator==(const NxBlob& b) const { return (*this != b) == 0; }
  /// 0 when equal. 2 when only b is null, -2 when only this blob is; else -1 or 1 by
  /// the first bytes that differ (unsigned) or, without one, by the lengths.
  int operator!=(const NxBlob& b) const;

  /// 0 for a null blob.
  long Length() const { return data_ ? data_->length : 0; }

  /// Takes a new buffer of n bytes that begins with the old ones; what is new of it is
  /// uninitialised. A null blob becomes n uninitialised bytes.
  void Expand(long n);
  /// As NxBlobData::Resize. A null blob becomes n uninitialised bytes.
  void Resize(unsigned long n);
  /// Puts n bytes behind the own ones. With none to append nothing happens.
  void Append(const void* p, long n);
  void Append(const NxBlob& b);
  NxBlob& operator+=(const NxBlob& b);

  /// The address of the byte at pos, from which on there are n bytes; null when there
  /// are not, when n is 0, and for a null blob. It holds until the blob changes.
  void* Seek(long pos, long n);
  const void* Seek(long pos, long n) const;
  /// The n bytes from pos on, or as many as there are; empty for none.
  NxBlob CopyFrom(long pos, long n) const;
  /// Overwrites n bytes from pos on, or as many as there are here and in src, by the
  /// first ones of src. The length stays.
  void CopyTo(const NxBlob& src, long pos, long n);
  /// Becomes a copy of n bytes at p, as NxBlobData::init.
  void SetTo(const void* p, long n);
  /// Removes n bytes from pos on, or as many as there are.
  void Cut(long pos, long n);
  /// Where the bytes of `pattern` occur first; no bytes occur at 0. 65535 when they do
  /// not occur, when they do from 65535 on only, and in a null blob.
  unsigned short Search(const NxBlob& pattern) const;

  /// New data of n + 1 bytes, uninitialised, which belong to the caller (`delete`).
  static NxBlobData* AllocData(long n);
  /// Takes the bytes of another blob, which becomes empty, or stays null.
  void Destroy(NxBlob& other);

  /// The decimal number that the bytes begin with, as strtol and strtod read it; 0
  /// without one and for a null blob. Integers are cut to the type's size.
  operator int() const;
  operator short() const;
  operator long() const;
  operator double() const;

  int IsNullValue() const { return data_ == nullptr; }
  /// Releases the bytes and makes the blob null. Returns 0.
  int SetNullValue();

 private:
  bool Reaches(long pos, long n) const;
  long Clip(long pos, long n) const;

  NxBlobData* data_;  // null for a null blob
};
static_assert(sizeof(NxBlob) == 4);

#endif
