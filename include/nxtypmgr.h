/// Type identifiers, descriptor records, their two tables, and `NxTypeMgr`, which
/// dispatches every request to the record of a type.
///
///   NxTypeMgr mgr(5);                                  // current format
///   long values[2] = {1, 2};
///   unsigned char image[8];
///   mgr.Store(2, image, values, 1, 2);                 // type 2 is "long"
///   long order = mgr.Cmp(2, image, image + 4, 0, 1, 1);  // negative: 1 sorts before 2
#ifndef NXTYPMGR_H
#define NXTYPMGR_H

#include "nxapi.h"

class MemFile;
class NxString;
class NxTypeConvertData;
struct NxEvalData;
struct NxIdxBounds;

/// Names a type: 0 to 40 the built-in types, 100 and above the illegal type.
using NxTypeId = signed char;

inline constexpr unsigned long kTypeCount = 41;     // entries of NxNewtypetab
inline constexpr unsigned long kOldTypeCount = 28;  // entries of NxOldtypetab
inline constexpr char kStringTypeId = 11;           // NxString
inline constexpr char kIllegalTypeId = 100;         // the identifier of a record without type
inline constexpr int kIllegalTypeIndex = 40;        // the illegal type's place in NxNewtypetab

/// Result code: not possible for this type in this form.
inline constexpr int kNotPossible = -2999;

/// Descriptor record of a type: its name, its operations, its print format and
/// its size. "Values" are n consecutive values in memory; an image is their
/// stored form. Counts are in values, sizes and lengths in bytes.
struct NxTypeTab {
  const char* name;

  /// Allocates n values. Released by Delete of the same record with the same n.
  void* (*Create)(unsigned long n);
  /// Destroys and releases what Create made; null is accepted. Returns 0.
  int (*Delete)(void* values, unsigned long n);
  /// Writes the image of n values; returns the bytes written.
  int (*Store)(void* image, const void* values, unsigned char format, unsigned long n);
  /// Reads n constructed values from an image; returns the bytes consumed.
  int (*Load)(void* values, const void* image, unsigned char format, unsigned long n);
  /// Stored bytes of n empty values.
  int (*NullSizeGet)(unsigned long n);
  /// Stored bytes of n values, which are in memory when bit 3 of form is set and
  /// an image written under format otherwise.
  int (*SizeGet)(const void* p, unsigned char form, unsigned char format, unsigned long n);
  /// Stored bytes of the n values whose image starts at the file's offset.
  int (*SizeGetFromMemFile)(MemFile* file, unsigned char format, unsigned long n);
  /// Three-way comparison of count values; lengths of 0 mean no limit.
  long (*Compare)(unsigned char format, unsigned long len1, void* value1, unsigned long len2, void* value2,
                  unsigned short options, unsigned long count, int& error);
  /// Scan bounds of a query term and the fraction of the index that it selects.
  float (*EvalAndBound)(NxIdxBounds* indexRange, unsigned short& relation, void* key, unsigned char format,
                        unsigned long count, NxIdxBounds* bounds);
  /// Hash of count values; a length of 0 means no limit.
  unsigned long (*Hash)(unsigned char format, unsigned long len, void* value, unsigned long count,
                        int& error);
  /// The texts of n values, in a record that the caller deletes.
  NxTypeConvertData* (*ConvertToNxString)(void* values, unsigned long n);
  /// n values made by Create from texts; the record stays as it is.
  void* (*ConvertFromNxString)(NxTypeConvertData* strings, unsigned long n);
  /// Constructs n values in raw storage. No type reads extra.
  void (*Constructor)(void* place, unsigned long n, unsigned long extra);
  /// Destroys n values in place. No type reads extra.
  void (*Destructor)(void* place, unsigned long n, unsigned long extra);
  /// Assigns to n constructed values: src[0] to all when fill is not 0.
  void (*Assignment)(void* dst, void* src, unsigned long n, int fill);
  /// Copy-constructs n values in raw storage; fill as for Assignment.
  void (*Copy)(void* dst, void* src, unsigned long n, int fill);
  /// Moves n values from one form to another; returns the bytes produced.
  int (*Translate)(void* dst, unsigned char dstForm, unsigned long dstLength, void* src,
                   unsigned char srcForm, unsigned long srcLength, unsigned long n);
  /// Not 0 when the value is null.
  int (*IsNull)(void* value);
  /// Makes the value null and returns 0; null for types without a null state.
  int (*SetNull)(void* value);
  /// Default print format.
  const char* format;
  /// Writes the text of n values to out, which it returns.
  NxString& (*PrintToNxString)(NxString& out, void* values, const char* format, unsigned long n);
  /// Reads n values from text; returns values.
  void* (*ScanFromNxString)(void* values, NxString& in, const char* format, unsigned long n);
  /// Low half: bytes of one value in memory. High half: 1 when a value is just
  /// these bytes, 0 when it refers to storage of its own.
  unsigned int flags;
  /// n values of the type's default, null ones when asNull is not 0 and the type
  /// has a null state. Released by Delete.
  void* (*DefaultValue)(unsigned long n, int asNull);
};
static_assert(sizeof(NxTypeTab) == 25 * 4, "25 slots of one word");

/// The records by identifier. The records are shared and writable: an exchange
/// through any manager is seen by all.
extern NX_API NxTypeTab* NxNewtypetab[kTypeCount];
/// The records of early database formats: entry 11 is NxOldStringTab, every other
/// one the record of NxNewtypetab.
extern NX_API NxTypeTab* NxOldtypetab[kOldTypeCount];

extern NX_API NxTypeTab NxCharTab, NxShortTab, NxLongTab, NxDoubleTab, NxFloatTab, NxWordTab, NxDWordTab,
    NxIntTab, NxUnsignedTab, NxEnumTab, NxByteTab, NxStringTab, NxDateTab, NxTimeTab, NxBlockIdTab,
    NxObjIdTab, NxClassIdTab, NxRefTab, NxBlobTab, NxDateTimeTab, NxIStringTab, NxCaseIStringTab, Nxd_DateTab,
    Nxd_TimeTab, Nxd_TimestampTab, Nxd_IntervalTab, NxInt64Tab, NxBooleanTab, NxNull_charTab, NxNull_ucharTab,
    NxNull_shortTab, NxNull_ushortTab, NxNull_intTab, NxNull_unsignedTab, NxNull_longTab, NxNull_ulongTab,
    NxNull_floatTab, NxNull_doubleTab, NxNull_NxInt64Tab, NxSealTab, NxIllegalTab, NxOldStringTab;

/// Dispatches by type identifier to the records of one database format.
///
/// An identifier that names no record (below 0, 41 to 99, and on early formats 28
/// and above) reaches the illegal type, whose operations do nothing and answer 0.
/// No operation takes ownership of what it is handed unless it says so.
class NX_API NxTypeMgr {
 public:
  /// As SetFactory.
  explicit NxTypeMgr(unsigned long factory);
  /// Chooses the table by database format number: 0 to 3 early, 4 to 10 current,
  /// 11 counts as 3, 12 and above count as 4.
  void SetFactory(unsigned long factory);

  // Identification and sizes.

  /// 1 when the identifier names a type (the illegal one included), whichever
  /// table the manager holds; else 0.
  int IsValidType(char id);
  /// Copies the type's name with its NUL to buffer and returns buffer; with a
  /// null buffer returns the record's own name.
  char* NameGet(char id, char* buffer);
  /// Finds a type by its exact name. 0 with the identifier in id, or 1 with the
  /// first identifier past the table in id (41; 28 for early formats).
  int Name2NxTypeId(const char* name, char& id);
  /// 1 when a value is just its bytes, 0 when it refers to storage of its own.
  unsigned short IsFixed(char id);
  /// Bytes of n values in memory, modulo 65536.
  unsigned short MemLenGet(char id, unsigned long n);
  int SupportsNullValue(char id);
  /// Element i of an array of n values at base; null when n is not 0 and i is not
  /// below it.
  void* GetArrayElement(char id, void* base, unsigned long i, unsigned long n);

  // Life cycle.

  void* Create(char id, unsigned long n);
  int Delete(char id, void* values, unsigned long n);
  void* DefaultValue(char id, unsigned long n, int asNull);

  // Stored images.

  int Store(char id, void* image, void* values, unsigned char format, unsigned long n);
  int Load(char id, void* values, void* image, unsigned char format, unsigned long n);
  /// Stored bytes of n values at p: values in memory when bit 3 of form is set,
  /// else an image under format.
  int DiskLenGet(char id, void* p, unsigned char format, unsigned long n, unsigned char form);
  int DiskLenGetFromMemFile(char id, MemFile* file, unsigned char format, unsigned long n);
  int Translate(char id, void* dst, unsigned char dstForm, unsigned long dstLength, void* src,
                unsigned char srcForm, unsigned long srcLength, unsigned long n);

  // Queries.

  /// Compares without length limits; errors are dropped.
  long Cmp(char id, void* value1, void* value2, unsigned short options, unsigned long count,
           unsigned char format);
  long Cmp(char id, unsigned long len1, void* value1, unsigned long len2, void* value2,
           unsigned short options, unsigned long count, unsigned char format, int& error);
  /// data is accepted and not passed on.
  float EvalAndBound(char id, NxIdxBounds* indexRange, unsigned short& relation, void* key,
                     unsigned char format, unsigned long count, NxIdxBounds* bounds, NxEvalData* data);
  unsigned long Hash(char id, unsigned long len, void* value, unsigned long count, unsigned char format,
                     int& error);

  // Null values.

  int IsNullValue(char id, void* value);
  /// Makes a value null, or the value that an empty text converts to for a type
  /// without a null state. Returns 0, or what the type's SetNull reports.
  int SetNullValue(char id, void* value);
  /// -2999: a stored image is not tested for null.
  int DiskIsNullValue(char id, void* image);

  // Text.

  /// The text printed for null values; the reference stays valid.
  static NxString& GetNullPrintString();
  static NxString& SetNullPrintString(const NxString& text);

  /// Prints n values to out, several of them separated by ",". A null format
  /// means the record's. Returns out.
  NxString& PrintToNxString(char id, NxString& out, void* values, const char* format, unsigned long n);
  /// Scans n values from text; a null format means the record's. Returns values.
  void* ScanFromNxString(char id, void* values, NxString& text, const char* format, unsigned long n);

  /// The texts of n values. The caller deletes the record, which releases its
  /// strings through this manager.
  NxTypeConvertData* ConvertTo(char id, void* values, unsigned long n);
  /// n values from texts, released by Delete of the type. The record now belongs
  /// to this manager; the caller still deletes it.
  void* ConvertFrom(char id, NxTypeConvertData* strings, unsigned long n);
  /// One text in which every value is followed by a separator that occurs in none
  /// of them. Released by Delete of type 11 with n 1; null when not possible.
  NxString* ConvertToNxStringOld(void* values, char id, unsigned long n);
  /// The reverse; the separator is the last character of text, which is consumed.
  void* ConvertFromNxStringOld(NxString* text, char id, unsigned long n);

  // Slots.

  using StoreFunc = int (*)(void*, const void*, unsigned char, unsigned long);
  using LoadFunc = int (*)(void*, const void*, unsigned char, unsigned long);
  using CompareFunc = long (*)(unsigned char, unsigned long, void*, unsigned long, void*, unsigned short,
                               unsigned long, int&);
  using PlaceFunc = void (*)(void*, unsigned long, unsigned long);
  using CopyFunc = void (*)(void*, void*, unsigned long, int);
  using NullFunc = int (*)(void*);
  using PrintFunc = NxString& (*)(NxString&, void*, const char*, unsigned long);
  using ScanFunc = void* (*)(void*, NxString&, const char*, unsigned long);

  StoreFunc StorePtrGet(char id);
  LoadFunc LoadPtrGet(char id);
  CompareFunc CmpFuncPtrGet(char id);
  PlaceFunc ConstructorPtrGet(char id);
  PlaceFunc DestructorPtrGet(char id);
  CopyFunc AssignmentPtrGet(char id);
  CopyFunc CopyPtrGet(char id);
  NullFunc IsNullPtrGet(char id);
  /// Null for types without a null state.
  NullFunc SetNullPtrGet(char id);
  /// Null for every type; the compare function comes from CmpFuncPtrGet.
  CompareFunc ComparePtrGet(char id);

  // Exchanges: each returns what the record held and stores a new value unless it
  // is null. The record is shared by every manager; what is installed must live
  // as long as it is installed.

  const char* ExchangeFormat(char id, const char* format);
  CompareFunc ExchangeNxTypeCmpFunc(char id, CompareFunc function);
  PrintFunc ExchangePrintToNxStringFunc(char id, PrintFunc function);
  ScanFunc ExchangeScanFromNxStringFunc(char id, ScanFunc function);

  NxTypeTab** table;       // NxNewtypetab or NxOldtypetab, not owned
  unsigned short factory;  // the effective database format number

 private:
  /// The record of an identifier, or null when there is none.
  NxTypeTab* Find(char id) const;
  /// The same with the illegal type's for none.
  NxTypeTab& Record(char id) const;
  void AssignEmptyText(char id, void* value);
};
static_assert(sizeof(NxTypeMgr) == 8, "a table pointer and a format number");

/// What GetNullPrintString hands out; "{NULL}" when the library is loaded.
extern NX_API NxString __NullPrintString;
/// "0": what a type scans to be made null when it knows no other way.
extern NX_API NxString SourceZeroString;

#endif
