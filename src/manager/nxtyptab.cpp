// The descriptor records of the built-in types and the two tables that find them by
// type identifier, with the functions of their null states. The records are built at
// compile time, so that they serve before any other static value of a program.

#include <cstring>

#include "nxbool.h"
#include "nxcomp.h"
#include "nxstring.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "nxtypfmt.h"
#include "nxtyphash.h"
#include "nxtypmgr.h"

namespace {

/// The flags word of a type whose values are just `size` bytes, and of one whose
/// values refer to storage of their own.
constexpr unsigned int Fixed(unsigned short size) { return 1U << 16 | size; }
constexpr unsigned int OwnsStorage(unsigned short size) { return size; }

// The rows keep to one grouping: clang-format would give every slot a line.
// clang-format off

constexpr NxTypeTab kIllegal = {
    "illegal", NxIllegalCreate, NxIllegalDelete, NxIllegalStore, NxIllegalLoad,
    NxIllegalNullSizeGet, NxIllegalSizeGet, NxIllegalSizeGetFromMemFile,
    NxIllegalCompare, NxIllegalEvalAndBound, NxIllegalHash, NxIllegalConvertTo, NxIllegalConvertFrom,
    NxIllegalConstructor, NxIllegalDestructor, NxIllegalAssignment, NxIllegalCopy, NxIllegalTranslate,
    NoIsNullDefined, nullptr, "illegal", NxIllegalPrintToNxString, NxIllegalScanFromNxString,
    Fixed(0), NxIllegalDefaultValue};

// The scalars whose functions serve several types.

constexpr NxTypeTab kChar = {
    "char", CharCreate, CharDelete, CharStore, CharStore,
    CharNullSizeGet, CharSizeGet, CharSizeGetFromMemFile,
    CharCompare, CharEvalAndBound, CharHash, CharConvertToNxString, CharConvertFromNxString,
    CharConstructor, CharDestructor, CharAssignment, CharCopy, CharTranslate,
    NoIsNullDefined, nullptr, "%c", CharPrintToNxString, CharScanFromNxString, Fixed(1), CharDefaultValue};

constexpr NxTypeTab kShort = {
    "short", ShortCreate, ShortDelete, ShortStore, ShortStore,
    ShortNullSizeGet, ShortSizeGet, ShortSizeGetFromMemFile,
    ShortCompare, ShortEvalAndBound, ShortHash, ShortConvertToNxString, ShortConvertFromNxString,
    ShortConstructor, ShortDestructor, ShortAssignment, ShortCopy, ShortTranslate,
    NoIsNullDefined, nullptr, "%hd", ShortPrintToNxString, ShortScanFromNxString,
    Fixed(2), ShortDefaultValue};

constexpr NxTypeTab kInt = {
    "int", IntCreate, IntDelete, IntStore, IntLoad,
    IntNullSizeGet, IntSizeGet, IntSizeGetFromMemFile,
    IntCompare, IntEvalAndBound, IntHash, IntConvertToNxString, IntConvertFromNxString,
    IntConstructor, IntDestructor, IntAssignment, IntCopy, IntTranslate,
    NoIsNullDefined, nullptr, "%d", IntPrintToNxString, IntScanFromNxString, Fixed(4), IntDefaultValue};

constexpr NxTypeTab kLong = {
    "long", LongCreate, LongDelete, LongStore, LongStore,
    LongNullSizeGet, LongSizeGet, LongSizeGetFromMemFile,
    LongCompare, LongEvalAndBound, LongHash, LongConvertToNxString, LongConvertFromNxString,
    LongConstructor, LongDestructor, LongAssignment, LongCopy, LongTranslate,
    NoIsNullDefined, nullptr, "%ld", LongPrintToNxString, LongScanFromNxString, Fixed(4), LongDefaultValue};

constexpr NxTypeTab kFloat = {
    "float", FloatCreate, FloatDelete, FloatStore, FloatStore,
    FloatNullSizeGet, FloatSizeGet, FloatSizeGetFromMemFile,
    FloatCompare, FloatEvalAndBound, FloatHash, FloatConvertToNxString, FloatConvertFromNxString,
    FloatConstructor, FloatDestructor, FloatAssignment, FloatCopy, FloatTranslate,
    NoIsNullDefined, nullptr, "%f", FloatPrintToNxString, FloatScanFromNxString, Fixed(4), FloatDefaultValue};

constexpr NxTypeTab kDouble = {
    "double", DoubleCreate, DoubleDelete, DoubleStore, DoubleStore,
    DoubleNullSizeGet, DoubleSizeGet, DoubleSizeGetFromMemFile,
    DoubleCompare, DoubleEvalAndBound, DoubleHash, DoubleConvertToNxString, DoubleConvertFromNxString,
    DoubleConstructor, DoubleDestructor, DoubleAssignment, DoubleCopy, DoubleTranslate,
    NoIsNullDefined, nullptr, "%lf", DoublePrintToNxString, DoubleScanFromNxString,
    Fixed(8), DoubleDefaultValue};

constexpr NxTypeTab kString = {
    "NxString", NxStringCreate, NxStringDelete, StringStore, StringLoad,
    StringNullSizeGet, StringSizeGet, StringSizeGetFromMemFile,
    StringCompare, StringEvalAndBound, StringHash, NxStringConvertToNxString, NxStringConvertFromNxString,
    NxStringConstructor, NxStringDestructor, NxStringAssignment, NxStringCopy, NxStringTranslate,
    NxStringIsNull, NxStringSetNull, "%s", NxStringPrintToNxString, NxStringScanFromNxString,
    OwnsStorage(8), NxStringDefaultValue};

// clang-format on

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

/// A type whose operations are not there yet: the illegal type's stand in.
constexpr NxTypeTab Pending(const char* name, const char* format, unsigned int flags,
                            NxSlot::Null* isNull = NoIsNullDefined, NxSlot::Null* setNull = nullptr) {
  NxTypeTab record = Sharing(kIllegal, name, format);
  record.flags = flags;
  record.IsNull = isNull;
  record.SetNull = setNull;
  return record;
}

}  // namespace

NxTypeTab NxCharTab = kChar;
NxTypeTab NxShortTab = kShort;
NxTypeTab NxLongTab = kLong;
NxTypeTab NxDoubleTab = kDouble;
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

// clang-format off

NxTypeTab NxIStringTab = {
    "NxIString", NxIStringCreate, NxIStringDelete, NxIStringStore, NxIStringLoad,
    NxIStringNullSizeGet, NxIStringSizeGet, NxIStringSizeGetFromMemFile,
    NxIStringCompare, NxIStringEvalAndBound, NxIStringHash,
    NxIStringConvertToNxString, NxIStringConvertFromNxString,
    NxIStringConstructor, NxIStringDestructor, NxIStringAssignment, NxIStringCopy, NxIStringTranslate,
    NoIsNullDefined, nullptr, "%s", NxIStringPrintToNxString, NxIStringScanFromNxString,
    OwnsStorage(8), NxIStringDefaultValue};

NxTypeTab NxCaseIStringTab = {
    "NxCaseIString", NxCaseIStringCreate, NxCaseIStringDelete, NxCaseIStringStore, NxCaseIStringLoad,
    NxCaseIStringNullSizeGet, NxCaseIStringSizeGet, NxCaseIStringSizeGetFromMemFile,
    NxCaseIStringCompare, NxCaseIStringEvalAndBound, NxCaseIStringHash,
    NxCaseIStringConvertToNxString, NxCaseIStringConvertFromNxString,
    NxCaseIStringConstructor, NxCaseIStringDestructor, NxCaseIStringAssignment,
    NxCaseIStringCopy, NxCaseIStringTranslate,
    NoIsNullDefined, nullptr, "%s", NxCaseIStringPrintToNxString, NxCaseIStringScanFromNxString,
    OwnsStorage(8), NxCaseIStringDefaultValue};

NxTypeTab NxDateTab = {
    "NxDate", NxDateCreate, NxDateDelete, DateStore, DateLoad,
    DateNullSizeGet, DateSizeGet, DateSizeGetFromMemFile,
    DateCompare, DateEvalAndBound, DateHash, NxDateConvertToNxString, NxDateConvertFromNxString,
    NxDateConstructor, NxDateDestructor, NxDateAssignment, NxDateCopy, NxDateTranslate,
    NxDateIsNull, NxDateSetNull, "%a %e.%b %Y", NxIllegalPrintToNxString, NxIllegalScanFromNxString,
    Fixed(4), NxDateDefaultValue};

NxTypeTab NxTimeTab = {
    "NxTime", NxTimeCreate, NxTimeDelete, TimeStore, TimeLoad,
    TimeNullSizeGet, TimeSizeGet, TimeSizeGetFromMemFile,
    TimeCompare, TimeEvalAndBound, TimeHash, NxTimeConvertToNxString, NxTimeConvertFromNxString,
    NxTimeConstructor, NxTimeDestructor, NxTimeAssignment, NxTimeCopy, NxTimeTranslate,
    NxTimeIsNull, NxTimeSetNull, "%I:%M:%S %p", NxIllegalPrintToNxString, NxIllegalScanFromNxString,
    Fixed(3), NxTimeDefaultValue};

NxTypeTab NxInt64Tab = {
    "NxInt64", NxInt64Create, NxInt64Delete, Int64Store, Int64Load,
    Int64NullSizeGet, Int64SizeGet, Int64SizeGetFromMemFile,
    Int64Compare, Int64EvalAndBound, Int64Hash, Int64ConvertToNxString, Int64ConvertFromNxString,
    Int64Constructor, Int64Destructor, Int64Assignment, Int64Copy, Int64Translate,
    NoIsNullDefined, nullptr, "%S", Int64PrintToNxString, Int64ScanFromNxString, Fixed(8), Int64DefaultValue};

NxTypeTab NxBooleanTab = {
    "NxBoolean", NxBooleanCreate, NxBooleanDelete, BooleanStore, BooleanLoad,
    BooleanNullSizeGet, BooleanSizeGet, BooleanSizeGetFromMemFile,
    BooleanCompare, BooleanEvalAndBound, BooleanHash, BooleanConvertToNxString, BooleanConvertFromNxString,
    BooleanConstructor, BooleanDestructor, BooleanAssignment, BooleanCopy, BooleanTranslate,
    NxBooleanIsNull, NxBooleanSetNull, "noop", BooleanPrintToNxString, BooleanScanFromNxString,
    Fixed(1), NxBooleanDefaultValue};

NxTypeTab NxSealTab = {
    "NxSeal", NxSealCreate, NxSealDelete, SealStore, SealLoad,
    SealNullSizeGet, SealSizeGet, SealSizeGetFromMemFile,
    SealCompare, SealEvalAndBound, SealHash, SealConvertToNxString, SealConvertFromNxString,
    SealConstructor, SealDestructor, SealAssignment, SealCopy, SealTranslate,
    NoIsNullDefined, nullptr, "noop", SealPrintToNxString, SealScanFromNxString, Fixed(6), SealDefaultValue};

// clang-format on

NxTypeTab NxObjIdTab = Pending("NxObjId", "(%H-%L#%B)", Fixed(12), NxObjIdIsNull, NxObjIdSetNull);
NxTypeTab NxClassIdTab = Pending("NxClassId", "(%Cv%V)", Fixed(4), NxClassIdIsNull, NxClassIdSetNull);
NxTypeTab NxRefTab = Pending("NxRef", "(%D:%H-%L#%B, %C)", Fixed(20), NxRefIsNull, NxRefSetNull);
NxTypeTab NxBlobTab = Pending("NxBlob", "[BLOB,len=%L]", OwnsStorage(4), NxBlobIsNull, NxBlobSetNull);
NxTypeTab NxDateTimeTab =
    Pending("NxDateTime", "%a %e.%b %Y %I:%M:%S %p", Fixed(8), NxDateTimeIsNull, NxDateTimeSetNull);
NxTypeTab Nxd_DateTab = Pending("d_Date", "%a %b %e", Fixed(4));
NxTypeTab Nxd_TimeTab = Pending("d_Time", "%I:%M:%S %p", Fixed(6));
NxTypeTab Nxd_TimestampTab = Pending("d_Timestamp", "%a %b %e %I:%M:%S %p", Fixed(10));
NxTypeTab Nxd_IntervalTab = Pending("d_Interval", "%e days, %I hours, %M minutes, %S seconds", Fixed(4));
NxTypeTab NxNull_charTab = Pending("NxNull_char", "%c", Fixed(2), NxNull_charIsNull, NxNull_charSetNull);
NxTypeTab NxNull_ucharTab = Pending("NxNull_uchar", "%c", Fixed(2), NxNull_ucharIsNull, NxNull_ucharSetNull);
NxTypeTab NxNull_shortTab = Pending("NxNull_short", "%hd", Fixed(4), NxNull_shortIsNull, NxNull_shortSetNull);
NxTypeTab NxNull_ushortTab =
    Pending("NxNull_ushort", "%hu", Fixed(4), NxNull_ushortIsNull, NxNull_ushortSetNull);
NxTypeTab NxNull_intTab = Pending("NxNull_int", "%d", Fixed(8), NxNull_intIsNull, NxNull_intSetNull);
NxTypeTab NxNull_unsignedTab =
    Pending("NxNull_unsigned", "%u", Fixed(8), NxNull_unsignedIsNull, NxNull_unsignedSetNull);
NxTypeTab NxNull_longTab = Pending("NxNull_long", "%ld", Fixed(8), NxNull_longIsNull, NxNull_longSetNull);
NxTypeTab NxNull_ulongTab = Pending("NxNull_ulong", "%lu", Fixed(8), NxNull_ulongIsNull, NxNull_ulongSetNull);
NxTypeTab NxNull_floatTab = Pending("NxNull_float", "%f", Fixed(8), NxNull_floatIsNull, NxNull_floatSetNull);
NxTypeTab NxNull_doubleTab =
    Pending("NxNull_double", "%lf", Fixed(12), NxNull_doubleIsNull, NxNull_doubleSetNull);
NxTypeTab NxNull_NxInt64Tab =
    Pending("NxNull_NxInt64", "%S", Fixed(12), NxNull_NxInt64IsNull, NxNull_NxInt64SetNull);

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

// Null states. Values are read and written where they stand, aligned or not.

namespace {

template <class T>
T Field(const void* value, unsigned offset) {
  T field;
  std::memcpy(&field, static_cast<const char*>(value) + offset, sizeof field);
  return field;
}

constexpr unsigned short kNoClass = 65535;

/// A nullable scalar is its value, then its null flag.
template <unsigned kValueBytes>
int NullFlag(const void* value) {
  return static_cast<const signed char*>(value)[kValueBytes];
}

template <unsigned kValueBytes>
int SetNullFlag(void* value) {
  std::memset(value, 0, kValueBytes);
  static_cast<signed char*>(value)[kValueBytes] = 1;
  return 0;
}

// Where the fields of an object identifier stand: block, low and high are the first
// ten bytes; the class identifier is classNumber, version.
constexpr unsigned kLowOffset = 4;
constexpr unsigned kHighOffset = 8;
constexpr unsigned kObjIdBytes = 10;
// A date-time is a date and, behind it, a time.
constexpr unsigned kTimeOffset = 4;

}  // namespace

int NoIsNullDefined(void*) { return 0; }

int NxStringIsNull(void* value) { return static_cast<NxString*>(value)->IsNullValue(); }
int NxStringSetNull(void* value) {
  static_cast<NxString*>(value)->SetNullValue();
  return 0;
}

int NxDateIsNull(void* value) { return static_cast<NxDate*>(value)->IsNullValue(); }
int NxDateSetNull(void* value) { return static_cast<NxDate*>(value)->SetNullValue(); }

int NxTimeIsNull(void* value) { return static_cast<NxTime*>(value)->IsNullValue(); }
int NxTimeSetNull(void* value) { return static_cast<NxTime*>(value)->SetNullValue(); }

int NxBooleanIsNull(void* value) { return static_cast<NxBoolean*>(value)->IsNullValue(); }
int NxBooleanSetNull(void* value) { return static_cast<NxBoolean*>(value)->SetNullValue(); }

int NxDateTimeIsNull(void* value) {
  return NxDateIsNull(value) && NxTimeIsNull(static_cast<char*>(value) + kTimeOffset);
}
int NxDateTimeSetNull(void* value) {
  NxDateSetNull(value);
  return NxTimeSetNull(static_cast<char*>(value) + kTimeOffset);
}

/// A blob is a pointer to its data; making one null has to release them, which needs
/// the class.
int NxBlobIsNull(void* value) { return Field<void*>(value, 0) == nullptr; }
int NxBlobSetNull(void*) { return kNotPossible; }

int NxObjIdIsNull(void* value) {
  return Field<unsigned int>(value, kLowOffset) == 0 && Field<unsigned short>(value, kHighOffset) == 0;
}
int NxObjIdSetNull(void* value) {
  std::memset(value, 0, kObjIdBytes);
  return 0;
}

int NxRefIsNull(void* value) { return NxObjIdIsNull(value); }
int NxRefSetNull(void* value) { return NxObjIdSetNull(value); }

int NxClassIdIsNull(void* value) {
  return Field<unsigned short>(value, 0) == kNoClass && Field<unsigned short>(value, 2) == kNoClass;
}
int NxClassIdSetNull(void* value) {
  std::memset(value, 0xFF, 4);
  return 0;
}

int NxNull_charIsNull(void* value) { return NullFlag<1>(value); }
int NxNull_charSetNull(void* value) { return SetNullFlag<1>(value); }
int NxNull_ucharIsNull(void* value) { return NullFlag<1>(value); }
int NxNull_ucharSetNull(void* value) { return SetNullFlag<1>(value); }
int NxNull_shortIsNull(void* value) { return NullFlag<2>(value); }
int NxNull_shortSetNull(void* value) { return SetNullFlag<2>(value); }
int NxNull_ushortIsNull(void* value) { return NullFlag<2>(value); }
int NxNull_ushortSetNull(void* value) { return SetNullFlag<2>(value); }
int NxNull_intIsNull(void* value) { return NullFlag<4>(value); }
int NxNull_intSetNull(void* value) { return SetNullFlag<4>(value); }
int NxNull_unsignedIsNull(void* value) { return NullFlag<4>(value); }
int NxNull_unsignedSetNull(void* value) { return SetNullFlag<4>(value); }
int NxNull_longIsNull(void* value) { return NullFlag<4>(value); }
int NxNull_longSetNull(void* value) { return SetNullFlag<4>(value); }
int NxNull_ulongIsNull(void* value) { return NullFlag<4>(value); }
int NxNull_ulongSetNull(void* value) { return SetNullFlag<4>(value); }
int NxNull_floatIsNull(void* value) { return NullFlag<4>(value); }
int NxNull_floatSetNull(void* value) { return SetNullFlag<4>(value); }
int NxNull_doubleIsNull(void* value) { return NullFlag<8>(value); }
int NxNull_doubleSetNull(void* value) { return SetNullFlag<8>(value); }
int NxNull_NxInt64IsNull(void* value) { return NullFlag<8>(value); }
int NxNull_NxInt64SetNull(void* value) { return SetNullFlag<8>(value); }
