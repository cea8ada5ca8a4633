/// Identifiers of objects and classes, and references to objects.
///
///   NxObjId     an object by its number, with the block that it lies in
///   NxDBOId     the same in one of several databases
///   NxClassId   a class by its number and version
///   NxRef       an object of any database, with its class
///   NxLocalRef  an object of this database, with its class
///
///   NxRef ref;
///   ref.ScanFromNxString(NxString("(3:0-42#7, 12)"), nullptr);
///   if (ref.IsValid()) ref.PrintToNxString(text, "database %D, object %L");
///
/// All comparison operators named `!=` answer -1, 0 or 1: 1 when the left operand sorts
/// after the right one. Blocks and classes of references take no part in comparison.
///
/// Texts follow formats. A field directive stands for a number in decimal:
///
///   %B block   %H %L object number, high 16 and low 32 bits   %D database
///   %C class number   %V class version
///
/// A positional one, %h of a 16-bit and %l of a 32-bit field, stands for the next field of
/// an order that the type fixes; the character behind it belongs to it, so that "%hu" and
/// "%lu" may be written. That order is high, low, block for NxObjId; classNumber, version
/// for NxClassId; database, high, low, block, classNumber for the references. Where the
/// width is not that of the field, or none is left, 0 is printed and a number skipped.
///
/// Printing copies other characters; behind a "%" they stand for themselves. What is
/// printed is cut at 511 characters. Scanning skips one character of the text for each of
/// them, whatever it is. A number may have blanks and a sign in front, but only digits are
/// gone over, and what is no number leaves its field as it was: 0 at first. A null value
/// prints as `NxTypeMgr::GetNullPrintString`, and text that begins with that scans as null.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef NXREF_H
#define NXREF_H

#include <cstddef>

#include "nxapi.h"
#include "nxslot.h"

class NxDBOId;
class NxRef;

/// An object by its 48-bit number. The number 0 is null, whatever the block.
class NX_API NxObjId {
 public:
  NxObjId& operator=(const NxObjId&) = default;
  /// Takes the object, not its database.
  NxObjId& operator=(const NxDBOId& id);

  // The object number plus or minus 1 or n, modulo 2^48.

  NxObjId& operator++();
  NxObjId& operator--();
  NxObjId& operator+=(short n);

  int operator==(const NxObjId& id) const { return low == id.low && high == id.high; }
  int operator!=(const NxObjId& id) const;
  int operator==(const NxDBOId& id) const;
  int operator!=(const NxDBOId& id) const;

  int IsNullValue() const { return low == 0 && high == 0; }
  /// Makes the identifier null, its block 0, and returns 0.
  int SetNullValue();
  /// Becomes the identifier that sorts last.
  void SetHighestValue();

  /// out becomes the text under format, null standing for "(%H-%L#%B)". Returns out.
  NxString& PrintToNxString(NxString& out, const char* format) const;
  void ScanFromNxString(const NxString& text, const char* format);

  // The slots of NxObjIdTab; those that are no members are in nxrefx.h.

  static NxSlot::Create Create;
  static NxSlot::Delete Delete;
  static NxSlot::Store Store;
  static NxSlot::Load Load;
  static NxSlot::NullSizeGet NullSizeGet;
  static NxSlot::SizeGet SizeGet;
  static NxSlot::SizeGetFromMemFile SizeGetFromMemFile;
  static NxSlot::Compare Compare;
  static NxSlot::EvalAndBound EvalAndBound;
  static NxSlot::Hash Hash;
  static NxSlot::ConvertTo ConvertToNxString;
  static NxSlot::ConvertFrom ConvertFromNxString;
  static NxSlot::Translate Translate;
  static NxSlot::Print PrintToString;
  static NxSlot::Scan ScanFromString;

  unsigned long block = 0;   // not compared
  unsigned long low = 0;     // bits 0 to 31 of the object number
  unsigned short high = 0;   // bits 32 to 47
  unsigned short spare = 0;  // carries nothing; 0, so that new values are all zero
};
static_assert(sizeof(NxObjId) == 12 && offsetof(NxObjId, low) == 4 && offsetof(NxObjId, high) == 8);

/// An object with the number of its database.
class NX_API NxDBOId {
 public:
  NxDBOId& operator=(const NxDBOId&) = default;
  /// The object in database 0.
  NxDBOId& operator=(const NxObjId& id);

  int operator==(const NxDBOId& id) const {
    return low == id.low && high == id.high && database == id.database;
  }
  /// By database, then object number.
  int operator!=(const NxDBOId& id) const;
  /// An NxObjId is in database 0.
  int operator==(const NxObjId& id) const { return low == id.low && high == id.high && database == 0; }
  int operator!=(const NxObjId& id) const;

  /// The object without its database, as NxObjId prints it.
  NxString& PrintToNxString(NxString& out, const char* format) const;
  /// The object as NxObjId scans it, in database 0.
  void ScanFromNxString(const NxString& text, const char* format);

  unsigned long block = 0;
  unsigned long low = 0;
  unsigned short high = 0;
  unsigned short database = 0;
};
static_assert(sizeof(NxDBOId) == 12 && offsetof(NxDBOId, high) == 8 && offsetof(NxDBOId, database) == 10);

/// A class by its number and version. 65535 in both fields is null; a new one is not.
class NX_API NxClassId {
 public:
  NxClassId& operator=(const NxClassId&) = default;

  /// By number, then version; null sorts first.
  int operator!=(const NxClassId& id) const;
  int operator>(const NxClassId& id) const { return (*this != id) > 0; }

  int IsNullValue() const { return classNumber == kNoClass && version == kNoClass; }
  /// Makes the identifier null and returns 0.
  int SetNullValue();

  /// out becomes the text under format, null standing for "(%Cv%V)". Returns out.
  NxString& PrintToNxString(NxString& out, const char* format) const;
  void ScanFromNxString(const NxString& text, const char* format);

  // The slots of NxClassIdTab; those that are no members are in nxrefx.h.

  static NxSlot::Create Create;
  static NxSlot::Delete Delete;
  static NxSlot::Store Store;
  static NxSlot::Load Load;
  static NxSlot::NullSizeGet NullSizeGet;
  static NxSlot::SizeGet SizeGet;
  static NxSlot::SizeGetFromMemFile SizeGetFromMemFile;
  static NxSlot::Compare Compare;
  static NxSlot::EvalAndBound EvalAndBound;
  static NxSlot::Hash Hash;
  static NxSlot::ConvertTo ConvertToNxString;
  static NxSlot::ConvertFrom ConvertFromNxString;
  static NxSlot::Translate Translate;
  static NxSlot::Print PrintToString;
  static NxSlot::Scan ScanFromString;

  static constexpr unsigned short kNoClass = 65535;

  unsigned short classNumber = 0;
  unsigned short version = 0;
};
static_assert(sizeof(NxClassId) == 4 && offsetof(NxClassId, version) == 2);

/// An object with its class. It is null when the object is.
class NX_API NxLocalRef {
 public:
  NxLocalRef& operator=(const NxLocalRef&) = default;
  /// Takes object and class.
  NxLocalRef& operator=(const NxRef& ref);
  /// These take one part and leave the other.
  NxLocalRef& operator=(const NxObjId& id);
  NxLocalRef& operator=(const NxClassId& id);

  int operator==(const NxLocalRef& ref) const { return objId == ref.objId; }
  int operator!=(const NxLocalRef& ref) const { return objId != ref.objId; }
  /// A local reference is in database 0.
  int operator==(const NxRef& ref) const;
  int operator!=(const NxRef& ref) const;

  /// As a reference into database 0; null stands for "(%H-%L#%B,%C)". Returns out.
  NxString& PrintToNxString(NxString& out, const char* format) const;
  void ScanFromNxString(const NxString& text, const char* format);

  NxObjId objId;
  NxClassId classId;
};
static_assert(sizeof(NxLocalRef) == 16 && offsetof(NxLocalRef, classId) == 12);

/// An object with its database and its class. It is null when the object is.
class NX_API NxRef {
 public:
  NxRef& operator=(const NxRef&) = default;
  /// Takes object and class; the database becomes 0.
  NxRef& operator=(const NxLocalRef& ref);
  /// Takes object and database.
  NxRef& operator=(const NxDBOId& id);
  /// These take one part and leave the others.
  NxRef& operator=(const NxObjId& id);
  NxRef& operator=(const NxClassId& id);
  NxRef& operator=(unsigned short databaseNumber);

  int operator==(const NxRef& ref) const { return objId == ref.objId && database == ref.database; }
  /// By object number, then database. (Stored references order by database first.)
  int operator!=(const NxRef& ref) const;

  int IsNullValue() const { return objId.IsNullValue(); }
  /// Makes the object null, its block 0, and returns 0.
  int SetNullValue() { return objId.SetNullValue(); }

  /// Whether it names an object, a class, and a database other than 65535.
  int IsValid() const { return !IsInvalid(); }
  int IsInvalid() const;
  /// Whether it names an object, and a class unless the database is 65535.
  int IsValidOriginId() const { return !IsInvalidOriginId(); }
  int IsInvalidOriginId() const;

  /// out becomes the text under format, null standing for "(%D:%H-%L#%B, %C)". Returns out.
  NxString& PrintToNxString(NxString& out, const char* format) const;
  void ScanFromNxString(const NxString& text, const char* format);

  // The slots of NxRefTab; those that are no members are in nxrefx.h. Images and default
  // texts have no class version: it comes back as 0.

  static NxSlot::Create Create;
  static NxSlot::Delete Delete;
  static NxSlot::Store Store;
  static NxSlot::Load Load;
  static NxSlot::NullSizeGet NullSizeGet;
  static NxSlot::SizeGet SizeGet;
  static NxSlot::SizeGetFromMemFile SizeGetFromMemFile;
  static NxSlot::Compare Compare;
  static NxSlot::EvalAndBound EvalAndBound;
  static NxSlot::Hash Hash;
  static NxSlot::ConvertTo ConvertToNxString;
  static NxSlot::ConvertFrom ConvertFromNxString;
  static NxSlot::Translate Translate;
  /// These two take a null format for "(%D:%H-%L#%B,%Cv%V)".
  static NxSlot::Print PrintToString;
  static NxSlot::Scan ScanFromString;

  static constexpr unsigned short kNoDatabase = 65535;

  NxObjId objId;
  unsigned short database = 0;
  NxClassId classId;
  unsigned short spare = 0;  // as in NxObjId
};
static_assert(sizeof(NxRef) == 20 && offsetof(NxRef, database) == 12 && offsetof(NxRef, classId) == 14);

#endif
