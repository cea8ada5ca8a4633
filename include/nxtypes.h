/// The slot functions of life cycle, stored images, translation, string arrays and
/// null state. What each slot does stands at its place in `NxTypeTab`.
///
/// Images and buffers need no alignment. The format byte of every slot that has
/// one (constants in nxbase.h, embedded in stored images, never to change):
///
///   bits 0-3  format code: 2 most significant byte first, 8 values in memory,
///             1 this machine's order, any other code least significant byte first
///   bit  5    a stored code set becomes 0
///   bit  6    code set 0 becomes the native one
///   bit  7    key form: stored strings are index keys
///
/// Image of one value, by type:
///
///   scalars      the value in the code's byte order
///   NxDate       year (2 bytes, in the code's order), month, day
///   NxTime       hour, minute, second
///   NxInt64      low half, then high half, 4 bytes each in the code's order
///   NxBoolean    0 false, 1 true, 255 null
///   NxSeal       6 bytes, most significant first under every code
///   NxString     2-byte length N of what follows, code set, language, text, 00 FF
///                  (a text of 65532 bytes, the one too long for N, loses its last)
///   early form   2-byte length, then every text with its NUL
///   NxIString,   header byte (0x40 texts in the disk code set, 0x01 as in memory,
///   NxCaseIString  0xC0 key), 2-byte length, then every text with its NUL
///
/// Threads may call these at once, with values and buffers that no other thread changes.
#ifndef NXTYPES_H
#define NXTYPES_H

#include "nxapi.h"
#include "nxbase.h"
#include "nxslot.h"

// ---------------------------------------------------------------------------
// Life cycle
//
// Scalars: Create(n) makes an array of n; of char zero-filled. The others: one
// object for n 0 and 1, an array from 2 on, so Delete needs an n on the same side
// of 2. A null pointer may be deleted.

NX_API NxSlot::Create CharCreate, ShortCreate, IntCreate, LongCreate, FloatCreate, DoubleCreate,
    NxStringCreate, NxIStringCreate, NxCaseIStringCreate, NxDateCreate, NxTimeCreate, NxInt64Create,
    NxBooleanCreate, NxSealCreate, NxIllegalCreate;
NX_API NxSlot::Delete CharDelete, ShortDelete, IntDelete, LongDelete, FloatDelete, DoubleDelete,
    NxStringDelete, NxIStringDelete, NxCaseIStringDelete, NxDateDelete, NxTimeDelete, NxInt64Delete,
    NxBooleanDelete, NxSealDelete, NxIllegalDelete;
NX_API NxSlot::Place CharConstructor, ShortConstructor, IntConstructor, LongConstructor, FloatConstructor,
    DoubleConstructor, NxStringConstructor, NxIStringConstructor, NxCaseIStringConstructor, NxDateConstructor,
    NxTimeConstructor, Int64Constructor, BooleanConstructor, SealConstructor, NxIllegalConstructor;
NX_API NxSlot::Place CharDestructor, ShortDestructor, IntDestructor, LongDestructor, FloatDestructor,
    DoubleDestructor, NxStringDestructor, NxIStringDestructor, NxCaseIStringDestructor, NxDateDestructor,
    NxTimeDestructor, Int64Destructor, BooleanDestructor, SealDestructor, NxIllegalDestructor;
NX_API NxSlot::Copy CharAssignment, ShortAssignment, IntAssignment, LongAssignment, FloatAssignment,
    DoubleAssignment, NxStringAssignment, NxIStringAssignment, NxCaseIStringAssignment, NxDateAssignment,
    NxTimeAssignment, Int64Assignment, BooleanAssignment, SealAssignment, NxIllegalAssignment;
NX_API NxSlot::Copy CharCopy, ShortCopy, IntCopy, LongCopy, FloatCopy, DoubleCopy, NxStringCopy,
    NxIStringCopy, NxCaseIStringCopy, NxDateCopy, NxTimeCopy, Int64Copy, BooleanCopy, SealCopy, NxIllegalCopy;
NX_API NxSlot::DefaultValue CharDefaultValue, ShortDefaultValue, IntDefaultValue, LongDefaultValue,
    FloatDefaultValue, DoubleDefaultValue, NxStringDefaultValue, NxIStringDefaultValue,
    NxCaseIStringDefaultValue, NxDateDefaultValue, NxTimeDefaultValue, Int64DefaultValue,
    NxBooleanDefaultValue, SealDefaultValue, NxIllegalDefaultValue;

// ---------------------------------------------------------------------------
// Stored images
//
// No function checks the buffer that it writes into: ask the size first. The
// scalars' Store, Load, SizeGet and NullSizeGet are those of nxbase.h.

NX_API NxSlot::Store StringStore, StringOldStore, NxIStringStore, NxCaseIStringStore, DateStore, TimeStore,
    Int64Store, BooleanStore, SealStore, NxIllegalStore;
/// StringLoad reads the current and the early image.
NX_API NxSlot::Load StringLoad, NxIStringLoad, NxCaseIStringLoad, DateLoad, TimeLoad, Int64Load, BooleanLoad,
    SealLoad, NxIllegalLoad;
NX_API NxSlot::NullSizeGet StringNullSizeGet, NxIStringNullSizeGet, NxCaseIStringNullSizeGet, DateNullSizeGet,
    TimeNullSizeGet, Int64NullSizeGet, BooleanNullSizeGet, SealNullSizeGet, NxIllegalNullSizeGet;
NX_API NxSlot::SizeGet StringSizeGet, StringOldSizeGet, NxIStringSizeGet, NxCaseIStringSizeGet, DateSizeGet,
    TimeSizeGet, Int64SizeGet, BooleanSizeGet, SealSizeGet, NxIllegalSizeGet;
NX_API NxSlot::SizeGetFromMemFile CharSizeGetFromMemFile, ShortSizeGetFromMemFile, IntSizeGetFromMemFile,
    LongSizeGetFromMemFile, FloatSizeGetFromMemFile, DoubleSizeGetFromMemFile, StringSizeGetFromMemFile,
    StringOldSizeGetFromMemFile, NxIStringSizeGetFromMemFile, NxCaseIStringSizeGetFromMemFile,
    DateSizeGetFromMemFile, TimeSizeGetFromMemFile, Int64SizeGetFromMemFile, BooleanSizeGetFromMemFile,
    SealSizeGetFromMemFile, NxIllegalSizeGetFromMemFile;

// ---------------------------------------------------------------------------
// Translation
//
// Fixed-size types: memory to memory copies, stored to memory loads, memory to
// stored stores, stored to stored resizes (cut, or zeros behind) without a change
// of byte order. The strings add their key form (bit 7 of the form).

NX_API NxSlot::Translate CharTranslate, ShortTranslate, IntTranslate, EnumTranslate, UnsignedTranslate,
    LongTranslate, FloatTranslate, DoubleTranslate, NxStringTranslate, NxStringOldTranslate,
    NxIStringTranslate, NxCaseIStringTranslate, NxDateTranslate, NxTimeTranslate, Int64Translate,
    BooleanTranslate, SealTranslate, NxIllegalTranslate;

// ---------------------------------------------------------------------------
// String arrays

NX_API NxSlot::ConvertTo CharConvertToNxString, ShortConvertToNxString, IntConvertToNxString,
    LongConvertToNxString, FloatConvertToNxString, DoubleConvertToNxString, NxStringConvertToNxString,
    NxIStringConvertToNxString, NxCaseIStringConvertToNxString, NxDateConvertToNxString,
    NxTimeConvertToNxString, Int64ConvertToNxString, BooleanConvertToNxString, SealConvertToNxString,
    NxIllegalConvertTo;
/// Position i without a string counts as a null string.
NX_API NxSlot::ConvertFrom CharConvertFromNxString, ShortConvertFromNxString, IntConvertFromNxString,
    LongConvertFromNxString, FloatConvertFromNxString, DoubleConvertFromNxString, NxStringConvertFromNxString,
    NxIStringConvertFromNxString, NxCaseIStringConvertFromNxString, NxDateConvertFromNxString,
    NxTimeConvertFromNxString, Int64ConvertFromNxString, BooleanConvertFromNxString, SealConvertFromNxString,
    NxIllegalConvertFrom;

// ---------------------------------------------------------------------------
// Null state

/// For types without a null state: answers 0.
NX_API NxSlot::Null NoIsNullDefined;
NX_API NxSlot::Null NxStringIsNull, NxDateIsNull, NxTimeIsNull, NxObjIdIsNull, NxClassIdIsNull, NxRefIsNull,
    NxBlobIsNull, NxDateTimeIsNull, NxBooleanIsNull;
NX_API NxSlot::Null NxStringSetNull, NxDateSetNull, NxTimeSetNull, NxObjIdSetNull, NxClassIdSetNull,
    NxRefSetNull, NxBlobSetNull, NxDateTimeSetNull, NxBooleanSetNull;

#endif
