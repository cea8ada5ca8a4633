/// Sort keys: byte strings whose order as unsigned bytes is the order of a type, so that any
/// ordered store holds an index without knowing this library.
///
///   unsigned char a[64], b[64];
///   unsigned long lengthA = NxSortKey(kStringTypeId, image1, 1, 0, 0, a, sizeof a);
///   unsigned long lengthB = NxSortKey(kStringTypeId, image2, 1, 0, 0, b, sizeof b);
///   int order = std::memcmp(a, b, std::min(lengthA, lengthB));   // as Cmp with wildcards off
///
/// No key of a type is a prefix of another one of it. So the keys of several fields, joined,
/// order field by field, and complemented keys order the other way round.
///
/// The order is that of stored images under wildcards off. The bytes stand in
/// docs/formats.md; those of texts change with the collation version (`NxCollationVersion`).
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef NXSORTKEY_H
#define NXSORTKEY_H

#include "nxapi.h"

/// Option of NxSortKey: the key for the order from the last value to the first.
inline constexpr unsigned short kSortKeyDescending = 0x0001;

/// Writes the sort key of one value of a type of the current formats. Null sorts first.
///
/// `value` is in memory under format code 8, else its stored image under `format`; `length`
/// is the bytes of the image's buffer, 0 meaning no limit. At most `room` bytes are written
/// to `key`, which may be null when `room` is 0. Returns the length of the whole key: when
/// that is more than `room`, what was written is its beginning. 0, with nothing promised
/// about `key`: the type has no order (blobs, the illegal type), the image is not whole and
/// sound, or memory was short.
NX_API unsigned long NxSortKey(char typeId, const void* value, unsigned char format, unsigned long length,
                               unsigned short options, void* key, unsigned long room);

/// Where the keys lie that a query term selects: from `lower` on, below `upper`. Both are
/// allocated with malloc and belong to the record's holder, who releases them with free.
struct NxSortKeyRange {
  void* lower;  // null: from the first key on
  void* upper;  // null: to the last key
  unsigned long lowerLength;
  unsigned long upperLength;
};

/// Bounds of a query term: all (ascending) sort keys of values that the term selects lie in
/// `range`, and others may lie there, too. `term`, `format` and `length` are as the value of
/// NxSortKey; `options` is a compare option word (nxoption.h) with the relation, the wildcards
/// and what is ignored. Returns 1, or 0 with an empty record where NxSortKey answers 0.
/// Floats that are not a number are selected by no bounds.
NX_API int NxSortKeyBounds(char typeId, const void* term, unsigned char format, unsigned long length,
                           unsigned short options, NxSortKeyRange& range);

#endif
