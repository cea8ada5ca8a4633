/// Nullable scalars: a number with a null flag behind it, and the slots of the eleven types.
///
///   NxNull_long v;        // null
///   v = NxNull_long(12);  // not null
///   v.SetNullValue();     // null again, its number 0
///
/// In memory a value is null when its flag byte is not 0. Images stand without padding,
/// one after another: the flag byte, then the number in the format code's byte order; under
/// the codes from 8 on first the number, then the flag byte. A stored flag is 1 for null,
/// whose number is stored as 0; any other flag is read as not null.
///
/// Null sorts before every number and hashes to a word of its own. It prints as the null
/// text; empty text, and text that begins with the null text, scans as null. A number that
/// cannot be read from other text leaves the number as it was, and the value not null.
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef NXNULTYP_H
#define NXNULTYP_H

#include <cstddef>

#include "nxapi.h"
#include "nxint64.h"
#include "nxslot.h"

/// A number or null. Values may be copied byte by byte and stand anywhere, aligned or not,
/// where a slot takes them.
template <class V>
class NxNullable {
 public:
  /// Null.
  NxNullable() { SetNullValue(); }
  explicit NxNullable(const V& number) : value(number), nullFlag(0) {}

  int IsNullValue() const { return nullFlag != 0; }
  /// Returns 0.
  int SetNullValue() {
    value = 0;
    nullFlag = 1;
    return 0;
  }

  V value;               // 0 when null
  signed char nullFlag;  // 0, or 1 for null
};

/// X(type, type of its number, prefix of the functions that convert and hash the number,
/// print format) for each type of a built-in number, and for all eleven types.
#define NX_NULLABLE_NUMBERS(X)                   \
  X(NxNull_char, char, Char, "%c")               \
  X(NxNull_uchar, unsigned char, Char, "%c")     \
  X(NxNull_short, short, Short, "%hd")           \
  X(NxNull_ushort, unsigned short, Short, "%hu") \
  X(NxNull_int, int, Int, "%d")                  \
  X(NxNull_unsigned, unsigned int, Int, "%u")    \
  X(NxNull_long, long, Long, "%ld")              \
  X(NxNull_ulong, unsigned long, Long, "%lu")    \
  X(NxNull_float, float, Float, "%f")            \
  X(NxNull_double, double, Double, "%lf")

#define NX_NULLABLE_TYPES(X) \
  NX_NULLABLE_NUMBERS(X)     \
  X(NxNull_NxInt64, NxInt64, Int64, "%S")

/// A type and its slots (nxslot.h says what each does). Create and DefaultValue make null
/// values. The number of a scanned char may stand as a "0x" number. In string arrays null
/// is a null string; a char and an unsigned short print there as the character.
#define NX_DECLARE_NULLABLE(Type, Value, Scalar, Format)                                            \
  using Type = NxNullable<Value>;                                                                   \
  static_assert(offsetof(Type, nullFlag) == sizeof(Value), "the flag follows the number");          \
  static_assert(sizeof(Type) == sizeof(Value) + (sizeof(Value) < 4 ? sizeof(Value) : 4), "padded"); \
  NX_API NxSlot::Create Type##Create;                                                               \
  NX_API NxSlot::Delete Type##Delete;                                                               \
  NX_API NxSlot::Store Type##Store;                                                                 \
  NX_API NxSlot::Load Type##Load;                                                                   \
  NX_API NxSlot::NullSizeGet Type##NullSizeGet;                                                     \
  NX_API NxSlot::SizeGet Type##SizeGet;                                                             \
  NX_API NxSlot::SizeGetFromMemFile Type##SizeGetFromMemFile;                                       \
  NX_API NxSlot::Compare Type##Compare;                                                             \
  NX_API NxSlot::EvalAndBound Type##EvalAndBound;                                                   \
  NX_API NxSlot::Hash Type##Hash;                                                                   \
  NX_API NxSlot::ConvertTo Type##ConvertToNxString;                                                 \
  NX_API NxSlot::ConvertFrom Type##ConvertFromNxString;                                             \
  NX_API NxSlot::Place Type##Constructor, Type##Destructor;                                         \
  NX_API NxSlot::Copy Type##Assignment, Type##Copy;                                                 \
  NX_API NxSlot::Translate Type##Translate;                                                         \
  NX_API NxSlot::Null Type##IsNull, Type##SetNull;                                                  \
  NX_API NxSlot::Print Type##PrintToNxString;                                                       \
  NX_API NxSlot::Scan Type##ScanFromNxString;                                                       \
  NX_API NxSlot::DefaultValue Type##DefaultValue;

NX_NULLABLE_TYPES(NX_DECLARE_NULLABLE)

#undef NX_DECLARE_NULLABLE

#endif
