/// Type identifiers, the descriptor record of a type, and the function type of each of
/// its slots: what the families of operations and the type manager both know.
#ifndef NXSLOT_H
#define NXSLOT_H

#include <type_traits>

#include "nxapi.h"

class MemFile;
class NxString;
class NxTypeConvertData;
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

/// The function type of each slot of `NxTypeTab`.
struct NxSlot {
  using Create = std::remove_pointer_t<decltype(NxTypeTab::Create)>;
  using Delete = std::remove_pointer_t<decltype(NxTypeTab::Delete)>;
  using Store = std::remove_pointer_t<decltype(NxTypeTab::Store)>;
  using Load = std::remove_pointer_t<decltype(NxTypeTab::Load)>;
  using NullSizeGet = std::remove_pointer_t<decltype(NxTypeTab::NullSizeGet)>;
  using SizeGet = std::remove_pointer_t<decltype(NxTypeTab::SizeGet)>;
  using SizeGetFromMemFile = std::remove_pointer_t<decltype(NxTypeTab::SizeGetFromMemFile)>;
  using Compare = std::remove_pointer_t<decltype(NxTypeTab::Compare)>;
  using EvalAndBound = std::remove_pointer_t<decltype(NxTypeTab::EvalAndBound)>;
  using Hash = std::remove_pointer_t<decltype(NxTypeTab::Hash)>;
  using ConvertTo = std::remove_pointer_t<decltype(NxTypeTab::ConvertToNxString)>;
  using ConvertFrom = std::remove_pointer_t<decltype(NxTypeTab::ConvertFromNxString)>;
  using Place = std::remove_pointer_t<decltype(NxTypeTab::Constructor)>;
  using Copy = std::remove_pointer_t<decltype(NxTypeTab::Copy)>;
  using Translate = std::remove_pointer_t<decltype(NxTypeTab::Translate)>;
  using Null = std::remove_pointer_t<decltype(NxTypeTab::IsNull)>;
  using Print = std::remove_pointer_t<decltype(NxTypeTab::PrintToNxString)>;
  using Scan = std::remove_pointer_t<decltype(NxTypeTab::ScanFromNxString)>;
  using DefaultValue = std::remove_pointer_t<decltype(NxTypeTab::DefaultValue)>;
};

#endif
