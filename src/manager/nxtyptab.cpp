// The descriptor records of the built-in types and the two tables that find them by
// type identifier. The records are built at compile time, so that they serve before any
// other static value of a program.

#include "nxblobx.h"
#include "nxdatimx.h"
#include "nxnultyp.h"
#include "nxrefx.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "nxtypfmt.h"
#include "nxtyphash.h"
#include "nxtypmgr.h"
#include "odmgtyp.h"

namespace {

/// The flags word of a type whose values are just `size` bytes, and of one whose
/// values refer to storage of their own.
constexpr unsigned int Fixed(unsigned short size) { return 1U << 16 | size; }
constexpr unsigned int OwnsStorage(unsigned short size) { return size; }

/// The slots of a type by the prefixes of its functions, its own name, format, size and
/// null state being left open: Made##Create, Class##Copy, Stored##Compare and so on. The
/// scalars load by the function that stores them, so Load is given; and DefaultValue, which
/// takes its prefix from either.
#define NX_SLOTS_NAMED(Made, Class, Translated, Converted, Printed, Stored, load, defaultValue)              \
  {                                                                                                          \
    nullptr, Made##Create, Made##Delete, Stored##Store, load, Stored##NullSizeGet, Stored##SizeGet,          \
        Stored##SizeGetFromMemFile, Stored##Compare, Stored##EvalAndBound, Stored##Hash,                     \
        Converted##ConvertToNxString, Converted##ConvertFromNxString, Class##Constructor, Class##Destructor, \
        Class##Assignment, Class##Copy, Translated##Translate, NoIsNullDefined, nullptr, nullptr,            \
        Printed##PrintToNxString, Printed##ScanFromNxString, 0, defaultValue                                 \
  }

/// The same for most types, which convert and print under the name of the class.
#define NX_SLOTS(Made, Class, Stored, load, defaultValue) \
  NX_SLOTS_NAMED(Made, Class, Class, Class, Class, Stored, load, defaultValue)

/// The slots of a class that has most of them as static members, its name, format, size and
/// null state being left open.
#define NX_MEMBER_SLOTS(Class)                                                                            \
  {                                                                                                       \
    nullptr, Class::Create, Class::Delete, Class::Store, Class::Load, Class::NullSizeGet, Class::SizeGet, \
        Class::SizeGetFromMemFile, Class::Compare, Class::EvalAndBound, Class::Hash,                      \
        Class::ConvertToNxString, Class::ConvertFromNxString, Class##Constructor, Class##Destructor,      \
        Class##Assignment, Class##Copy, Class::Translate, NoIsNullDefined, nullptr, nullptr,              \
        Class::PrintToString, Class::ScanFromString, 0, Class##DefaultValue                               \
  }

/// A record of given slots under a name, with its print format and size.
constexpr NxTypeTab Named(NxTypeTab slots, const char* name, const char* format, unsigned int flags) {
  slots.name = name;
  slots.format = format;
  slots.flags = flags;
  return slots;
}

/// The same for a type with a null state.
constexpr NxTypeTab Nullable(NxTypeTab slots, const char* name, const char* format, unsigned int flags,
                             NxSlot::Null* isNull, NxSlot::Null* setNull) {
  slots = Named(slots, name, format, flags);
  slots.IsNull = isNull;
  slots.SetNull = setNull;
  return slots;
}

// The illegal type converts under names of its own.
constexpr NxTypeTab kIllegal = {"illegal",
                                NxIllegalCreate,
                                NxIllegalDelete,
                                NxIllegalStore,
                                NxIllegalLoad,
                                NxIllegalNullSizeGet,
                                NxIllegalSizeGet,
                                NxIllegalSizeGetFromMemFile,
                                NxIllegalCompare,
                                NxIllegalEvalAndBound,
                                NxIllegalHash,
                                NxIllegalConvertTo,
                                NxIllegalConvertFrom,
                                NxIllegalConstructor,
                                NxIllegalDestructor,
                                NxIllegalAssignment,
                                NxIllegalCopy,
                                NxIllegalTranslate,
                                NoIsNullDefined,
                                nullptr,
                                "illegal",
                                NxIllegalPrintToNxString,
                                NxIllegalScanFromNxString,
                                Fixed(0),
                                NxIllegalDefaultValue};

// The scalars whose functions serve several types.
constexpr NxTypeTab kChar =
    Named(NX_SLOTS(Char, Char, Char, CharStore, CharDefaultValue), "char", "%c", Fixed(1));
constexpr NxTypeTab kShort =
    Named(NX_SLOTS(Short, Short, Short, ShortStore, ShortDefaultValue), "short", "%hd", Fixed(2));
constexpr NxTypeTab kInt = Named(NX_SLOTS(Int, Int, Int, IntLoad, IntDefaultValue), "int", "%d", Fixed(4));
constexpr NxTypeTab kLong =
    Named(NX_SLOTS(Long, Long, Long, LongStore, LongDefaultValue), "long", "%ld", Fixed(4));
constexpr NxTypeTab kFloat =
    Named(NX_SLOTS(Float, Float, Float, FloatStore, FloatDefaultValue), "float", "%f", Fixed(4));

constexpr NxTypeTab kString = Nullable(NX_SLOTS(NxString, NxString, String, StringLoad, NxStringDefaultValue),
                                       "NxString", "%s", OwnsStorage(8), NxStringIsNull, NxStringSetNull);

/// A type that takes its functions from another of its size, under its own name and
/// print format.
constexpr NxTypeTab Sharing(NxTypeTab base, const char* name, const char* format) {
  base.name = name;
  base.format = format;
  return base;
}

/// The same for one that also reads the bits differently.
constexpr NxTypeTab Sharing(NxTypeTab base, const char* name, const char* format, NxSlot::Compare* compare,
                            NxSlot::EvalAndBound* bound, NxSlot::Hash* hash) {
  base = Sharing(base, name, format);
  base.Compare = compare;
  base.EvalAndBound = bound;
  base.Hash = hash;
  return base;
}

constexpr NxTypeTab Unsigned() {
  NxTypeTab record = Sharing(kInt, "unsigned", "%u", UnsignedCompare, UnsignedEvalAndBound, UnsignedHash);
  record.Store = UnsignedStore;
  record.Load = UnsignedLoad;
  record.Translate = UnsignedTranslate;
  return record;
}

constexpr NxTypeTab Enum() {
  NxTypeTab record = Sharing(kInt, "enum", "%d");
  record.Translate = EnumTranslate;
  return record;
}

/// The string type as early database formats stored it: without a null state.
constexpr NxTypeTab OldString() {
  NxTypeTab record =
      Sharing(kString, kString.name, kString.format, StringOldCompare, StringOldEvalAndBound, StringOldHash);
  record.Store = StringOldStore;
  record.SizeGet = StringOldSizeGet;
  record.SizeGetFromMemFile = StringOldSizeGetFromMemFile;
  record.Translate = NxStringOldTranslate;
  record.IsNull = NoIsNullDefined;
  record.SetNull = nullptr;
  return record;
}

/// An interval is a float to all operations but life cycle and text.
constexpr NxTypeTab Interval() {
  constexpr NxSlot::Translate* d_IntervalTranslate = FloatTranslate;
  NxTypeTab record = NX_SLOTS(d_Interval, d_Interval, Float, d_IntervalLoad, d_IntervalDefaultValue);
  record.Store = d_IntervalStore;
  return record;
}

}  // namespace

NxTypeTab NxCharTab = kChar;
NxTypeTab NxShortTab = kShort;
NxTypeTab NxLongTab = kLong;
NxTypeTab NxDoubleTab =
    Named(NX_SLOTS(Double, Double, Double, DoubleStore, DoubleDefaultValue), "double", "%lf", Fixed(8));
NxTypeTab NxFloatTab = kFloat;
NxTypeTab NxWordTab = Sharing(kShort, "NxWord", "%hu", WordCompare, WordEvalAndBound, WordHash);
NxTypeTab NxDWordTab = Sharing(kLong, "NxDWord", "%lu", DwordCompare, DwordEvalAndBound, DwordHash);
NxTypeTab NxIntTab = kInt;
NxTypeTab NxUnsignedTab = Unsigned();
NxTypeTab NxEnumTab = Enum();
NxTypeTab NxByteTab = Sharing(kChar, "NxByte", "%c", ByteCompare, ByteEvalAndBound, ByteHash);
NxTypeTab NxBlockIdTab = Sharing(kLong, "BlockId", "#%lu", DwordCompare, DwordEvalAndBound, DwordHash);
NxTypeTab NxIllegalTab = kIllegal;

NxTypeTab NxStringTab = kString;
NxTypeTab NxOldStringTab = OldString();
NxTypeTab NxIStringTab =
    Named(NX_SLOTS(NxIString, NxIString, NxIString, NxIStringLoad, NxIStringDefaultValue), "NxIString", "%s",
          OwnsStorage(8));
NxTypeTab NxCaseIStringTab =
    Named(NX_SLOTS(NxCaseIString, NxCaseIString, NxCaseIString, NxCaseIStringLoad, NxCaseIStringDefaultValue),
          "NxCaseIString", "%s", OwnsStorage(8));

NxTypeTab NxDateTab =
    Nullable(NX_SLOTS_NAMED(NxDate, NxDate, NxDate, NxDate, Date, Date, DateLoad, NxDateDefaultValue),
             "NxDate", "%a %e.%b %Y", Fixed(4), NxDateIsNull, NxDateSetNull);
NxTypeTab NxTimeTab =
    Nullable(NX_SLOTS_NAMED(NxTime, NxTime, NxTime, NxTime, Time, Time, TimeLoad, NxTimeDefaultValue),
             "NxTime", "%I:%M:%S %p", Fixed(3), NxTimeIsNull, NxTimeSetNull);
NxTypeTab NxDateTimeTab =
    Nullable(NX_SLOTS_NAMED(NxDateTime, NxDateTime, DaTime, DaTime, DaTime, DaTime, DaTimeLoad,
                            NxDateTimeDefaultValue),
             "NxDateTime", "%a %e.%b %Y %I:%M:%S %p", Fixed(8), NxDateTimeIsNull, NxDateTimeSetNull);

NxTypeTab Nxd_DateTab =
    Named(NX_SLOTS(d_Date, d_Date, d_Date, d_DateLoad, d_DateDefaultValue), "d_Date", "%a %b %e", Fixed(4));
NxTypeTab Nxd_TimeTab = Named(NX_SLOTS(d_Time, d_Time, d_Time, d_TimeLoad, d_TimeDefaultValue), "d_Time",
                              "%I:%M:%S %p", Fixed(6));
NxTypeTab Nxd_TimestampTab =
    Named(NX_SLOTS(d_Timestamp, d_Timestamp, d_Timestamp, d_TimestampLoad, d_TimestampDefaultValue),
          "d_Timestamp", "%a %b %e %I:%M:%S %p", Fixed(10));
NxTypeTab Nxd_IntervalTab =
    Named(Interval(), "d_Interval", "%e days, %I hours, %M minutes, %S seconds", Fixed(4));

NxTypeTab NxInt64Tab =
    Named(NX_SLOTS(NxInt64, Int64, Int64, Int64Load, Int64DefaultValue), "NxInt64", "%S", Fixed(8));
NxTypeTab NxBooleanTab = Nullable(NX_SLOTS(NxBoolean, Boolean, Boolean, BooleanLoad, NxBooleanDefaultValue),
                                  "NxBoolean", "noop", Fixed(1), NxBooleanIsNull, NxBooleanSetNull);
NxTypeTab NxSealTab =
    Named(NX_SLOTS(NxSeal, Seal, Seal, SealLoad, SealDefaultValue), "NxSeal", "noop", Fixed(6));

NxTypeTab NxObjIdTab =
    Nullable(NX_MEMBER_SLOTS(NxObjId), "NxObjId", "(%H-%L#%B)", Fixed(12), NxObjIdIsNull, NxObjIdSetNull);
NxTypeTab NxClassIdTab =
    Nullable(NX_MEMBER_SLOTS(NxClassId), "NxClassId", "(%Cv%V)", Fixed(4), NxClassIdIsNull, NxClassIdSetNull);
NxTypeTab NxRefTab =
    Nullable(NX_MEMBER_SLOTS(NxRef), "NxRef", "(%D:%H-%L#%B, %C)", Fixed(20), NxRefIsNull, NxRefSetNull);

NxTypeTab NxBlobTab =
    Nullable(NX_SLOTS_NAMED(Blob, NxBlob, NxBlob, Blob, Blob, Blob, BlobLoad, NxBlobDefaultValue), "NxBlob",
             "[BLOB,len=%L]", OwnsStorage(4), NxBlobIsNull, NxBlobSetNull);

#define NX_NULLABLE_RECORD(Type, Value, Scalar, Format)                                                     \
  NxTypeTab Type##Tab = Nullable(NX_SLOTS(Type, Type, Type, Type##Load, Type##DefaultValue), #Type, Format, \
                                 Fixed(sizeof(Type)), Type##IsNull, Type##SetNull);
NX_NULLABLE_TYPES(NX_NULLABLE_RECORD)

NxTypeTab* NxNewtypetab[kTypeCount] = {
    &NxCharTab,       &NxShortTab,       &NxLongTab,        &NxDoubleTab,        &NxFloatTab,
    &NxWordTab,       &NxDWordTab,       &NxIntTab,         &NxUnsignedTab,      &NxEnumTab,
    &NxByteTab,       &NxStringTab,      &NxDateTab,        &NxTimeTab,          &NxBlockIdTab,
    &NxObjIdTab,      &NxClassIdTab,     &NxRefTab,         &NxBlobTab,          &NxDateTimeTab,
    &NxIStringTab,    &NxCaseIStringTab, &Nxd_DateTab,      &Nxd_TimeTab,        &Nxd_TimestampTab,
    &Nxd_IntervalTab, &NxInt64Tab,       &NxBooleanTab,     &NxNull_charTab,     &NxNull_ucharTab,
    &NxNull_shortTab, &NxNull_ushortTab, &NxNull_intTab,    &NxNull_unsignedTab, &NxNull_longTab,
    &NxNull_ulongTab, &NxNull_floatTab,  &NxNull_doubleTab, &NxNull_NxInt64Tab,  &NxSealTab,
    &NxIllegalTab};

NxTypeTab* NxOldtypetab[kOldTypeCount] = {
    &NxCharTab,        &NxShortTab,      &NxLongTab,     &NxDoubleTab,      &NxFloatTab,   &NxWordTab,
    &NxDWordTab,       &NxIntTab,        &NxUnsignedTab, &NxEnumTab,        &NxByteTab,    &NxOldStringTab,
    &NxDateTab,        &NxTimeTab,       &NxBlockIdTab,  &NxObjIdTab,       &NxClassIdTab, &NxRefTab,
    &NxBlobTab,        &NxDateTimeTab,   &NxIStringTab,  &NxCaseIStringTab, &Nxd_DateTab,  &Nxd_TimeTab,
    &Nxd_TimestampTab, &Nxd_IntervalTab, &NxInt64Tab,    &NxBooleanTab};
