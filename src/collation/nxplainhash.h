// The hash of an 8-bit text of known size by its order table, four bytes at a time: the road of
// most stored strings. HashString is what it is tested against.
#ifndef NXPLAINHASH_H
#define NXPLAINHASH_H

#include "collation/nxordertable.h"

/// A step of every hash of a text: takes in one more value.
inline unsigned NxMixHash(unsigned hash, unsigned value) { return hash * 9 + value; }

/// Hashes `size` bytes of text, at least one, before which there are three more that can be
/// read. False where a character needs the iterator, or a zero ends the text before.
inline bool NxHashPlain(const NxOrderTable& table, const char* text, unsigned size, unsigned& hash) {
  constexpr unsigned kStep = 4;
  const unsigned* const keys = table.hashKeys;
  const unsigned before = -size % kStep;
  const auto* bytes = reinterpret_cast<const unsigned char*>(text) - before;
  const unsigned char* const end = bytes + before + size;
  // The first step takes one to four bytes: values of 0 before them change nothing.
  unsigned mixed = 0, marks = 0;
  for (unsigned i = 0; i < kStep; ++i) {
    const unsigned key = keys[bytes[i]] & -static_cast<unsigned>(i >= before);  // without a branch
    mixed = NxMixHash(mixed, key);
    marks |= key;
  }
  for (bytes += kStep; bytes != end; bytes += kStep) {
    for (unsigned i = 0; i < kStep; ++i) {
      const unsigned key = keys[bytes[i]];
      mixed = NxMixHash(mixed, key);
      marks |= key;
    }
  }
  hash = mixed;
  return !(marks & NxOrderTable::kNeedsIterator);
}

#endif
