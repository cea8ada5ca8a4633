/// `NxStringIterator`: walks the characters of a text of any code set and delivers
/// their collation order values; and the character operations of `Transform`.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef NXSTRITR_H
#define NXSTRITR_H

#include "nxapi.h"
#include "nxchar.h"

class NxCodeSet;
class NxString;
class NxWCharList;

/// An operation on characters. `it` is the iterator that the character came from
/// and may be given further characters to deliver.
class NX_API NxCharOperation {
 public:
  virtual NxChar operator()(const NxChar& c, NxStringIterator* it) = 0;

 protected:
  ~NxCharOperation() = default;
};

class NX_API NxCharToUpper : public NxCharOperation {
 public:
  NxChar operator()(const NxChar& c, NxStringIterator* it) override;
};

class NX_API NxCharToLower : public NxCharOperation {
 public:
  NxChar operator()(const NxChar& c, NxStringIterator* it) override;
};

/// A position in a zero-terminated text. The text must outlive the iterator unless
/// the iterator owns it. Stepping past the terminator or before the start is the
/// caller's responsibility.
class NX_API NxStringIterator {
 public:
  /// Without text.
  NxStringIterator();
  /// Non-owning copies.
  NxStringIterator(NxStringIterator* it);
  NxStringIterator(const NxStringIterator& it);
  /// Over the text of s, read in memory form.
  NxStringIterator(const NxString& s);
  NxStringIterator(NxString&&) = delete;  // its text would be gone
  /// A code set, language or byte order of 255 means the default.
  NxStringIterator(const char* t, unsigned char cs, unsigned char lang, unsigned char byteOrder);
  NxStringIterator(const unsigned short* t, unsigned char cs, unsigned char lang, unsigned char byteOrder);
  /// Owns a text of the one character.
  NxStringIterator(const NxChar& c);
  ~NxStringIterator();

  /// Takes all but the ownership; a text that was owned is released, unless `it` is a
  /// place in it.
  NxStringIterator& operator=(const NxStringIterator& it);
  /// 1 when both positions are equal.
  int operator==(const NxStringIterator& it) const;

  /// The current character, detached; takes a pending overflow entry.
  NxChar operator*();
  NxStringIterator& operator++();
  NxStringIterator operator++(int);
  NxStringIterator& operator--();
  NxStringIterator operator--(int);
  /// Forward when not 0, else back.
  NxStringIterator& Step(unsigned short forward);

  /// 1 at the end of the text with no overflow list attached.
  int IsEOS() const;
  /// Makes list pending, its entries in code set cs (255: the iterator's; 254: they are
  /// order values). The list stays the caller's and must outlive its delivery.
  void SetOverflow(const NxWCharList* list, unsigned char cs);

  /// Writes op's result for every character to dst, which must have room for all that
  /// op expands to, then the terminator. Both end behind the terminator.
  void Transform(NxStringIterator& dst, NxCharOperation& op);
  /// The next collation order value; 0 at the end, where the iterator stays. With
  /// updateCollation not 0, _nCollation becomes the selector that goes with the value.
  unsigned short GetNextOrder(unsigned short updateCollation);

  char* _pPos;                      //
  unsigned char _nCodeSet;          //
  unsigned char _nLanguage;         //
  unsigned char _nCollation;        // collation selector; from 20 on plain order
  const NxWCharList* _pOverflow;    // pending extra characters, or null
  short _nOverflowIndex;            // the next of them
  unsigned char _nOverflowCodeSet;  // their code set; 254: order values
  unsigned char _nByteOrder;        // format code of the characters read
  unsigned char _bOwnsBuffer;       //
  unsigned char _nOpenCodeSet;      // what _pCodeSet and _nOpenCollation were asked for
  unsigned char _nOpenLanguage;     //
  unsigned char _nOpenCollation;    // the language's selector
  char* _pOwnedText;                // start of the text when it is owned, else null
  const NxCodeSet* _pCodeSet;       // asked for at opening, not for every character
};

/// The next order value of it, with the bits of mask cleared from a letter's. For
/// code set 0 the byte itself.
NX_API unsigned short GetNextOrderValue(NxStringIterator& it, unsigned short mask);

#endif
