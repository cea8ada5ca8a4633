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
#include "nxnulltext.h"
#include "nxslot.h"

struct NxEvalData;

/// The records by identifier. The records are shared and writable: an exchange
/// through any manager is seen by all, and is made while no other thread uses a manager.
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
///
/// Threads may use one manager, and the records, at once, as long as nobody exchanges a
/// function or format, sets the factory or the null text: those want to be alone. The values
/// that they hand in are shared as standard types are.
class NX_API NxTypeMgr {
 public:
  /// As SetFactory.
  explicit NxTypeMgr(unsigned long factory);
  /// Chooses the table by database format number: 0 to 3 early, 4 to 10 current,
  /// 11 counts as 3, 12 and above count as 4.
  void SetFactory(unsigned long number);

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

#endif
