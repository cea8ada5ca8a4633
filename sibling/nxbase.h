/// What the type manager calls of the base-services library `libnx21Rbs`:
/// byte order and stored sizes of scalars, the clock, reports, the memory
/// handler, the version check, configuration and memory files.
#ifndef NXBASE_H
#define NXBASE_H

#include <cstddef>

#include "nxapi.h"

// ---------------------------------------------------------------------------
// Format byte
//
//   bits 0-3  format code, the byte order of a stored image:
//               1  this machine's order        (least significant byte first)
//               2  most significant byte first
//               8  values in memory            (native)
//               any other code: least significant byte first
//   bit  5    code-set substitution: a stored code set becomes 0
//   bit  6    code-set substitution: code set 0 becomes the native one
//   bit  7    key form: stored strings are index keys
//
// These values are embedded in stored images and in calls of the engine; they
// never change.

inline constexpr unsigned char kFormatCodeMask = 0x0F;
inline constexpr unsigned char kFormatNative = 1;
inline constexpr unsigned char kFormatBigEndian = 2;
inline constexpr unsigned char kFormatMemory = 8;
inline constexpr unsigned char kFormatDropCodeSet = 0x20;
inline constexpr unsigned char kFormatNativeCodeSet = 0x40;
inline constexpr unsigned char kFormatKey = 0x80;

// ---------------------------------------------------------------------------
// Scalar conversion
//
// Each converts n values between memory and the stored form that `format`
// names and returns the number of stored bytes written or consumed. Neither
// pointer needs alignment. `dst` may equal `src` but may not overlap it
// otherwise. The `Store` functions without a `Load` serve both directions.

NX_API int CharStore(void* dst, const void* src, unsigned char format, unsigned long n);
NX_API int ShortStore(void* dst, const void* src, unsigned char format, unsigned long n);
NX_API int LongStore(void* dst, const void* src, unsigned char format, unsigned long n);
NX_API int FloatStore(void* dst, const void* src, unsigned char format, unsigned long n);
NX_API int DoubleStore(void* dst, const void* src, unsigned char format, unsigned long n);
NX_API int IntStore(void* dst, const void* src, unsigned char format, unsigned long n);
NX_API int IntLoad(void* dst, const void* src, unsigned char format, unsigned long n);
NX_API int UnsignedStore(void* dst, const void* src, unsigned char format, unsigned long n);
NX_API int UnsignedLoad(void* dst, const void* src, unsigned char format, unsigned long n);

// Stored bytes of n values. The widths do not depend on the values, so `p` may
// be null; `form` and `format` are those of the type records.

NX_API int CharSizeGet(const void* p, unsigned char form, unsigned char format, unsigned long n);
NX_API int ShortSizeGet(const void* p, unsigned char form, unsigned char format, unsigned long n);
NX_API int LongSizeGet(const void* p, unsigned char form, unsigned char format, unsigned long n);
NX_API int IntSizeGet(const void* p, unsigned char form, unsigned char format, unsigned long n);
NX_API int FloatSizeGet(const void* p, unsigned char form, unsigned char format, unsigned long n);
NX_API int DoubleSizeGet(const void* p, unsigned char form, unsigned char format, unsigned long n);

// Stored bytes of n null images.

NX_API int CharNullSizeGet(unsigned long n);
NX_API int ShortNullSizeGet(unsigned long n);
NX_API int LongNullSizeGet(unsigned long n);
NX_API int IntNullSizeGet(unsigned long n);
NX_API int FloatNullSizeGet(unsigned long n);
NX_API int DoubleNullSizeGet(unsigned long n);

// ---------------------------------------------------------------------------
// Clock

/// A calendar date as the clock delivers it.
struct bdate {
  short year;         // astronomical
  signed char month;  // [1:12]
  signed char day;    // [1:31]
};
static_assert(sizeof(bdate) == 4 && offsetof(bdate, month) == 2 && offsetof(bdate, day) == 3);

/// A time of day as the clock delivers it.
struct btime {
  signed char hour;       // [0:23]
  signed char minute;     // [0:59]
  signed char second;     // [0:60]
  signed char hundredth;  // not read by any caller
  int zone;               // seconds east of universal time
};
static_assert(sizeof(btime) == 8 && offsetof(btime, second) == 2 && offsetof(btime, zone) == 4);

/// The error of `bksgettimezone` when the zone cannot be told.
inline constexpr int kTimeZoneUnavailable = -2171;

/// Today's local date.
NX_API void bksgetdate(bdate* date);
/// The local time of day.
NX_API void bksgettime(btime* time);
/// Universal time and date.
NX_API void bksgetsystemtime(btime* time, bdate* date);
/// Minutes to add to universal time to get local time, or -2171.
NX_API int bksgettimezone();

// ---------------------------------------------------------------------------
// Reports, memory, versions

/// Reports a failed condition: `expression`, `path` and `line` on one line of
/// standard error, or to the handler that is set. Returns to the caller.
NX_API void NEXO_assert(const char* expression, const char* path, int line);

using NxAssertHandler = void (*)(const char* expression, const char* path, int line);
/// Sets the handler that `NEXO_assert` calls in place of printing; null puts
/// the printing back. Returns the handler that was set before. Handlers are set before
/// threads start, and are called from any of them.
NX_API NxAssertHandler NxSetAssertHandler(NxAssertHandler handler);

/// Called when an allocation of `size` bytes failed. Calls the handler that is
/// set and returns when it returns; without a handler it reports the size and
/// ends the process.
NX_API void NxCallMemoryHandler(unsigned long size);

using NxMemoryHandler = void (*)(unsigned long size);
/// Sets the handler of `NxCallMemoryHandler`; null removes it. Returns the
/// handler that was set before. As above, before threads start.
NX_API NxMemoryHandler NxSetMemoryHandler(NxMemoryHandler handler);

/// 0 when `major` and `minor` equal this build's, -1 otherwise. The further
/// numbers, and flag bits beyond 0 and 1, are accepted and ignored.
NX_API int CheckNxVersionNumber(int major, int minor, int build, int patch, int extra, int flags);

// ---------------------------------------------------------------------------
// Configuration

/// Extra argument of a configuration query: the section that a key is looked up
/// in first ("debug"), null for none, and a reserved word.
struct NxConfigScope {
  const char* section;
  unsigned long reserved;
};

/// The process's configuration: named 16-bit settings.
class NX_API NxConfig {
 public:
  // Callers reach the operations by their place: Query stays the second one.

  /// Stores `value` under `key`.
  virtual void Set(const char* key, unsigned short value) = 0;
  /// Stores the value of `key` in `value` and returns 1; leaves `value` as it
  /// is and returns 0 when the key is absent. `scope` may be null.
  virtual int Query(const char* key, unsigned short* value, const NxConfigScope* scope) = 0;

 protected:
  ~NxConfig() = default;
};

/// The process's configuration, or null when there is none. Called with -1 (as
/// a pointer) it only asks; called with another pointer, null included, it
/// installs that configuration, which stays the caller's.
///
/// Unless one was installed, the configuration is what the file says that the
/// environment variable `NX21_CONFIG` names. It is read once. A line is
/// `key=number` or `section.key=number`, blank, or a comment behind `#`; other
/// lines are reported on standard error and left out. Threads may ask at once; installing is
/// done before they start.
NX_API NxConfig* DefaultConfig(NxConfig* config);

/// The argument with which `DefaultConfig` only asks.
inline NxConfig* NxAskConfig() { return reinterpret_cast<NxConfig*>(-1L); }

// ---------------------------------------------------------------------------
// Memory files

/// Bytes in memory with a current offset and a length; holds them or borrows
/// them from the caller.
class NX_API MemFile {
 public:
  /// An empty file that holds its bytes.
  MemFile();
  /// Borrows `length` bytes at `data`, which must outlive the file; the
  /// current offset is 0.
  MemFile(void* data, unsigned long length);
  MemFile(const MemFile&) = delete;
  MemFile& operator=(const MemFile&) = delete;
  ~MemFile();

  /// Moves the current offset to `offset` bytes from the start (`whence` 0), the
  /// current offset (1) or the end (2). Returns a pointer to the bytes there and
  /// sets `available` (when given) to the number of bytes readable from it. A
  /// place outside the file, or at its end, leaves the offset as it was and
  /// answers null with `available` 0. `mode` is reserved, 0.
  void* Seek(long offset, unsigned short whence, unsigned long* available, unsigned short mode);

  /// Appends `length` bytes at the end of a holding file. Returns 0, or -1 for a
  /// borrowing file.
  int Append(const void* data, unsigned long length);

  unsigned long Offset() const { return offset_; }
  unsigned long Length() const { return length_; }

 private:
  unsigned char* data_;
  unsigned long length_;
  unsigned long offset_;
  bool owns_;
};

#endif
