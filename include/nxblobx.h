/// The slots of `NxBlob`. What each slot does stands at its place in `NxTypeTab`; the
/// text slots are those of nxtypfmt.h.
///
/// The image of an array of blobs, all lengths being longs in the format code's order:
///
///   T               number of bytes behind it
///   of every blob:  its length, or -1 for a null blob; its bytes
///
/// An image with a length that it has no bytes for is read as far as it goes, which is
/// as far as a buffer length says that was handed in, and else as far as T says. Loaded
/// blobs for which there are no bytes become empty. What Compare and Hash then answer
/// holds for the bytes that are there, and error is 2101.
#ifndef NXBLOBX_H
#define NXBLOBX_H

#include "nxapi.h"
#include "nxslot.h"

NX_API NxSlot::Create BlobCreate;
NX_API NxSlot::Delete BlobDelete;
NX_API NxSlot::Place NxBlobConstructor, NxBlobDestructor;
NX_API NxSlot::Copy NxBlobAssignment, NxBlobCopy;
NX_API NxSlot::DefaultValue NxBlobDefaultValue;

NX_API NxSlot::Store BlobStore;
NX_API NxSlot::Load BlobLoad;
/// 4, the header, whatever n is.
NX_API NxSlot::NullSizeGet BlobNullSizeGet;
NX_API NxSlot::SizeGet BlobSizeGet;
NX_API NxSlot::SizeGetFromMemFile BlobSizeGetFromMemFile;
/// A stored source of length 0 has no limit but its header's, and a destination of
/// length 0 none. An image that is longer than its destination is cut.
NX_API NxSlot::Translate NxBlobTranslate;

/// Answers -2 when only the first of two blobs is null and 2 when only the second is,
/// else -1, 0 or 1: by the first bytes that differ, then by the lengths.
NX_API NxSlot::Compare BlobCompare;
/// Blobs have no bounds: answers 1.
NX_API NxSlot::EvalAndBound BlobEvalAndBound;
/// Of the lengths, not the bytes.
NX_API NxSlot::Hash BlobHash;

/// The bytes have no text: null blobs become null strings and others empty ones, and
/// back.
NX_API NxSlot::ConvertTo BlobConvertToNxString;
NX_API NxSlot::ConvertFrom BlobConvertFromNxString;

#endif
