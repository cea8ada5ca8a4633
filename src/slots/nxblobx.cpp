// The slots of NxBlob.
#include "nxblobx.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "nxblob.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "nxtyphash.h"
#include "slots/nxconvkit.h"
#include "slots/nxelement.h"
#include "slots/nxfixed.h"
#include "slots/nxlife.h"

NX_LIFE_CYCLE(Blob, NxBlob, NxObjectForm<NxBlob>, NxObjectValues<NxBlob>)

void* NxBlobDefaultValue(unsigned long n, int asNull) {
  return asNull ? NxNullValues<NxBlob>(n) : NxDefaultFromEmptyText(BlobConvertFromNxString, n);
}

int NxBlobIsNull(void* value) { return static_cast<NxBlob*>(value)->IsNullValue(); }
int NxBlobSetNull(void* value) { return static_cast<NxBlob*>(value)->SetNullValue(); }

// ---------------------------------------------------------------------------
// Stored images

namespace {

constexpr unsigned long kLongBytes = 4;
constexpr long kNullLength = -1;

long LongAt(const void* place, unsigned char format) {
  long v;
  LongStore(&v, place, format & kFormatCodeMask, 1);
  return v;
}

/// Bytes of an image with the header T; a null one has no more than that.
unsigned long ImageBytes(long total) {
  return kLongBytes + (total == kNullLength ? 0 : static_cast<unsigned long>(total));
}

unsigned long StoredBytes(const NxBlob& b) { return kLongBytes + static_cast<unsigned long>(b.Length()); }

/// A blob in an image.
struct StoredBlob {
  long length;                 // as the image says
  const unsigned char* bytes;  // those that the image has of them
  unsigned long count;

  bool IsNull() const { return length == kNullLength; }
  bool IsCut() const { return !IsNull() && count != static_cast<unsigned long>(length); }
};

/// Walks the blobs of an image without a step beyond its end.
class BlobReader {
 public:
  /// A length of 0 is no limit: then the image ends where its header says.
  BlobReader(const void* image, unsigned long length, unsigned char format)
      : place_(static_cast<const unsigned char*>(image)),
        left_(length != 0 ? length : kLongBytes),
        format_(format) {
    long total = 0;
    if (TakeLong(total) && length == 0) left_ = static_cast<unsigned long>(std::max(total, 0L));
  }

  /// Bytes from here to the end.
  unsigned long Left() const { return left_; }

  /// Takes the next blob; false when not even its length is there.
  bool Take(StoredBlob& blob) {
    if (!TakeLong(blob.length)) return false;
    // A negative length is one that no image has.
    blob.count = blob.IsNull() ? 0 : std::min(static_cast<unsigned long>(blob.length), left_);
    blob.bytes = place_;
    Skip(blob.count);
    return true;
  }

 private:
  bool TakeLong(long& v) {
    if (left_ < kLongBytes) return false;
    v = LongAt(place_, format_);
    Skip(kLongBytes);
    return true;
  }
  void Skip(unsigned long n) {
    place_ += n;
    left_ -= n;
  }

  const unsigned char* place_;
  unsigned long left_;
  unsigned char format_;
};

/// Writes an image as far as its room goes.
class ImageWriter {
 public:
  ImageWriter(void* image, unsigned long room, unsigned char format)
      : place_(static_cast<unsigned char*>(image)), room_(room), format_(format & kFormatCodeMask) {}

  void PutLong(long v) {
    unsigned char bytes[kLongBytes];
    LongStore(bytes, &v, format_, 1);
    Put(bytes, kLongBytes);
  }
  void Put(const void* bytes, unsigned long n) {
    n = std::min(n, room_);
    if (n != 0) std::memcpy(place_, bytes, n);
    place_ += n;
    room_ -= n;
  }

 private:
  unsigned char* place_;
  unsigned long room_;
  unsigned char format_;
};

unsigned long SizeInMemory(const NxBlob* values, unsigned long n) {
  unsigned long size = kLongBytes;
  for (unsigned long i = 0; i < n; ++i) size += StoredBytes(values[i]);
  return size;
}

/// Stores in a room of so many bytes; answers how many of them are written.
unsigned long StoreBlobs(void* image, unsigned long room, const NxBlob* values, unsigned char format,
                         unsigned long n) {
  const unsigned long size = SizeInMemory(values, n);
  ImageWriter out(image, room, format);
  out.PutLong(static_cast<long>(size - kLongBytes));
  for (unsigned long i = 0; i < n; ++i) {
    const NxBlob& b = values[i];
    out.PutLong(b.IsNullValue() ? kNullLength : b.Length());
    out.Put(b.Seek(0, b.Length()), static_cast<unsigned long>(b.Length()));
  }
  return std::min(size, room);
}

/// Loads from what `image` has; blobs for which there is nothing become empty.
void LoadBlobs(NxBlob* values, BlobReader image, unsigned long n) {
  for (unsigned long i = 0; i < n; ++i) {
    StoredBlob blob = {0, nullptr, 0};
    image.Take(blob);
    if (blob.IsNull())
      values[i].SetNullValue();
    else
      values[i].SetTo(blob.bytes, static_cast<long>(blob.count));
  }
}

}  // namespace

int BlobStore(void* image, const void* values, unsigned char format, unsigned long n) {
  return static_cast<int>(StoreBlobs(image, ULONG_MAX, static_cast<const NxBlob*>(values), format, n));
}

int BlobLoad(void* values, const void* image, unsigned char format, unsigned long n) {
  LoadBlobs(static_cast<NxBlob*>(values), BlobReader(image, 0, format), n);
  return static_cast<int>(ImageBytes(LongAt(image, format)));
}

int BlobNullSizeGet(unsigned long) { return kLongBytes; }

int BlobSizeGet(const void* p, unsigned char form, unsigned char format, unsigned long n) {
  return static_cast<int>(form & kFormatMemory ? SizeInMemory(static_cast<const NxBlob*>(p), n)
                                               : ImageBytes(LongAt(p, format)));
}

int BlobSizeGetFromMemFile(MemFile* file, unsigned char format, unsigned long) {
  unsigned long available = 0;
  const void* image = file->Seek(0, 1, &available, 0);
  return image && available >= kLongBytes ? static_cast<int>(ImageBytes(LongAt(image, format))) : 0;
}

int NxBlobTranslate(void* dst, unsigned char dstForm, unsigned long dstLength, void* src,
                    unsigned char srcForm, unsigned long srcLength, unsigned long n) {
  const bool toMemory = dstForm & kFormatMemory;
  const bool fromMemory = srcForm & kFormatMemory;
  if (toMemory && fromMemory) {
    NxBlobAssignment(dst, src, n, 0);
    return static_cast<int>(n * sizeof(NxBlob));
  }
  if (toMemory && srcLength == 0) return BlobLoad(dst, src, srcForm, n);
  if (toMemory) {
    const BlobReader image(src, srcLength, srcForm);
    LoadBlobs(static_cast<NxBlob*>(dst), image, n);
    if (srcLength < kLongBytes) return static_cast<int>(srcLength);
    return static_cast<int>(std::min(ImageBytes(LongAt(src, srcForm)), srcLength));
  }
  if (fromMemory) {
    const unsigned long room = dstLength != 0 ? dstLength : ULONG_MAX;
    return static_cast<int>(StoreBlobs(dst, room, static_cast<const NxBlob*>(src), dstForm, n));
  }
  return NxResizeImage(dst, dstLength, src, srcLength);
}

// ---------------------------------------------------------------------------
// Comparison and bounds

namespace {

/// -2, -1, 0, 1 or 2, of the bytes that the images have.
long Order(const StoredBlob& a, const StoredBlob& b) {
  if (a.IsNull() || b.IsNull()) return a.IsNull() && b.IsNull() ? 0 : a.IsNull() ? -2 : 2;
  const unsigned long common = std::min(a.count, b.count);
  const int order = common != 0 ? std::memcmp(a.bytes, b.bytes, common) : 0;
  if (order != 0) return order < 0 ? -1 : 1;
  return a.length < b.length ? -1 : a.length > b.length;
}

long CompareStored(BlobReader first, BlobReader second, unsigned long count, int& error) {
  for (; count > 0; --count) {
    StoredBlob a, b;
    if (!first.Take(a) || !second.Take(b)) {
      error = kPastBuffer;
      return 0;
    }
    if (a.IsCut() || b.IsCut()) error = kPastBuffer;
    const long result = Order(a, b);
    if (result != 0 || error != 0) return result;
  }
  return 0;
}

long OrderInMemory(const void* a, const void* b) {
  return *static_cast<const NxBlob*>(a) != *static_cast<const NxBlob*>(b);
}

}  // namespace

long BlobCompare(unsigned char format, unsigned long len1, void* value1, unsigned long len2, void* value2,
                 unsigned short /*options*/, unsigned long count, int& error) {
  error = 0;
  if (count == 0) return 0;
  if (NxInMemory(format))
    return NxCompareArrays({{value1, len1, count, sizeof(NxBlob)}, {value2, len2, count, sizeof(NxBlob)}},
                           count, error, OrderInMemory);
  return CompareStored({value1, len1, format}, {value2, len2, format}, count, error);
}

float BlobEvalAndBound(NxIdxBounds*, unsigned short&, void*, unsigned char, unsigned long, NxIdxBounds*) {
  return 1.0F;
}

// ---------------------------------------------------------------------------
// Hashing

namespace {

unsigned long WordInMemory(const void* p) {
  return static_cast<unsigned long>(static_cast<const NxBlob*>(p)->Length());
}

/// Takes what stands at a place for the header of an image: mixes in the size of that
/// and goes on behind it, `count` times or up to the end. Hash indexes hold these
/// values, so it stays as it is: of any array hardly more than T is mixed in.
unsigned long HashStored(const unsigned char* place, unsigned long left, unsigned char format,
                         unsigned long count) {
  unsigned long h = 0;
  for (; count > 0 && left >= kLongBytes; --count) {
    left -= kLongBytes;
    const long total = LongAt(place, format);
    const unsigned long size = total < kNullLength ? left : std::min(left, ImageBytes(total));
    h ^= size;
    place += kLongBytes + size;
    left -= size;
  }
  return h;
}

/// Whether `length` bytes hold the image that begins there.
bool HoldsImage(const void* image, unsigned long length, unsigned char format) {
  if (length < kLongBytes) return false;
  const long total = LongAt(image, format);
  return total >= kNullLength && ImageBytes(total) <= length;
}

}  // namespace

unsigned long BlobHash(unsigned char format, unsigned long len, void* value, unsigned long count,
                       int& error) {
  error = 0;
  if (count == 0) return 0;
  if (NxInMemory(format)) return NxHashArray({value, len, count, sizeof(NxBlob)}, count, error, WordInMemory);
  if (len == 0) len = ImageBytes(std::max(LongAt(value, format), kNullLength));
  if (!HoldsImage(value, len, format)) error = kPastBuffer;
  return kHashMultiplier * HashStored(static_cast<const unsigned char*>(value), len, format, count);
}

// ---------------------------------------------------------------------------
// String arrays

NxTypeConvertData* BlobConvertToNxString(void* values, unsigned long n) {
  return NxTextsOf<NxBlob>(values, n, [](const NxBlob& v, NxString& s) {
    if (v.IsNullValue()) s.SetNullValue();
  });
}
void* BlobConvertFromNxString(NxTypeConvertData* strings, unsigned long n) {
  return NxValuesOf<NxBlob>(strings, n, BlobCreate, BlobDelete, NxNullOf<NxBlob>(),
                            [](const NxString&) { return NxBlob(); });
}
