/// `NxString`: a text with its code set and language.
///
///   NxString name("Caf\xe9");                // default 8-bit code set (Latin-1)
///   name += NxString(" Zoo");
///   if (name.Find(NxString("zoo"), 0, 0x0030) >= 0) ...   // ignoring case
///
/// Characters are one byte wide in code sets below 225 and two bytes (16-bit units
/// of this machine's order) from there. Lengths, positions and counts are in
/// characters and 16 bits wide unless said otherwise; -1 (65535) as a length means
/// "to the end". A buffer never exceeds 65533 bytes, terminator included: a longer
/// one is reported ("String overflow") and the operation leaves the string as it was, as it
/// does for want of memory; strings that are returned by value are then empty.
///
/// Threads: as standard types. Several may read one string at once; whoever changes one must
/// be alone with it. The process's defaults and wildcards are set before threads start.
#ifndef NXSTRING_H
#define NXSTRING_H

#include "nxapi.h"
#include "nxoption.h"

class NxChar;
class NxCharOperation;

/// Result code: a code-set argument or order value that is not valid here.
inline constexpr int kInvalidCodeSet = -2002;
/// Result code of NxSplitList: the list is used up.
inline constexpr int kEndOfList = -2005;
/// Largest buffer in bytes, terminator included.
inline constexpr unsigned long kMaxStringBytes = 65533;

class NX_API NxString {
 public:
  // Construction. The default code sets and the default language are asked of the
  // language context at the moment of the call. Null texts give empty strings.

  /// Empty, default code set and language.
  NxString();
  /// Empty.
  NxString(unsigned char codeSet, unsigned char language);
  NxString(const NxString& s);
  /// One character, or empty for 0.
  NxString(char c);
  NxString(unsigned short c);
  /// A zero-terminated text in the default 8-bit or 16-bit code set.
  NxString(const char* text);
  NxString(const unsigned short* text);
  /// Its first n characters as they stand; n 65535 means the whole text.
  NxString(const char* text, unsigned short n);
  NxString(const unsigned short* text, unsigned short n);
  /// The number in decimal; an unsigned int is printed as a signed one.
  NxString(short v);
  NxString(int v);
  NxString(unsigned int v);
  NxString(long v);
  NxString(unsigned long v);
  /// The number with 15 significant digits.
  NxString(double v);

  ~NxString();
  /// Releases the buffer and zeroes the other fields.
  void Destroy();
  void d_deactivate();

  NxString& operator=(const NxString& s);
  /// Texts, in the default 8-bit or 16-bit code set and the default language; null
  /// empties. The text may be the string's own.
  NxString& operator=(const char* text);
  NxString& operator=(const unsigned short* text);
  /// Moves s here; s keeps its code set and language and loses its text.
  void Destruct(NxString& s);

  /// The text, never null: a string without buffer hands out zeroString.
  char* StrGet() const;
  /// The library's one empty string.
  static NxString& EmptyString();
  /// Sets _nSize to size and returns a new zero-filled buffer of that many bytes,
  /// not attached. The caller attaches or releases it with delete[].
  char* Alloc(short size);

  // Null state.

  /// Makes the string null and returns 0.
  int SetNullValue();
  /// 1 for language 254, and for code set 254 with language 0; else 0.
  int IsNullValue() const;

  // Code sets. 0, or -2002 with the string unchanged.

  /// Relabels; -2002 when the character width would change.
  int SetCodeSetCode(unsigned char cs);
  /// Relabels, converting the characters only when the width changes; -2002 when
  /// they would not fit then.
  int SetCodeSet(unsigned char cs);
  /// Converts the characters; -2002 for code set 0 and when they would not fit.
  int MapToCodeSet(unsigned char cs);
  /// Becomes at most n (-1: all) characters of s in code set cs; returns how many,
  /// or -2002 when s is this string. Room for n characters is kept, and so is a
  /// present buffer that has it.
  int CopyMapped(const NxString& s, unsigned char cs, short n = -1);

  // Process-wide defaults, kept by the language context. The setters return 0, or -2002
  // and change nothing for a number that no string can carry.

  static unsigned char GetDefaultCodeSet();
  static int SetDefaultCodeSet(unsigned char cs);
  static unsigned char GetDefaultLanguage();
  static int SetDefaultLanguage(unsigned char language);
  static unsigned char GetDefault8CodeSet();
  static unsigned char GetDefault16CodeSet();
  static unsigned short GetDefaultCmpOp();
  static int SetDefaultCmpOp(unsigned short op);

  // Wildcards, as collation order values; process-wide. Unless they are set, those of
  // "*", "?" and "\\" in code set 1. The setters return 0.

  static unsigned short GetAsterisk();
  static unsigned short GetQuestion();
  static unsigned short GetEscape();
  static int SetAsterisk(const NxChar& c);
  static int SetQuestion(const NxChar& c);
  static int SetEscape(const NxChar& c);
  /// The first order value of c, without changing any wildcard. Returns 0.
  static int SetAQE(const NxChar& c, unsigned short& order);

  // Length and emptiness.

  /// Characters before the first zero character.
  unsigned short Len() const;
  /// Bytes of the terminator: 1 or 2.
  unsigned short NullLen() const;
  int IsEmpty() const;
  int operator!() const;

  // Concatenation.

  /// Appends s, converted to this string's code set.
  NxString& operator+=(const NxString& s);
  /// Appends the character, text or number; an unsigned short is a number to an
  /// 8-bit string and a character to a 16-bit one.
  NxString& operator<<(char c);
  NxString& operator<<(unsigned short c);
  NxString& operator<<(const char* text);
  NxString& operator<<(const unsigned short* text);
  NxString& operator<<(const NxString& s);
  NxString& operator<<(short v);
  NxString& operator<<(int v);
  NxString& operator<<(unsigned int v);
  NxString& operator<<(long v);
  NxString& operator<<(unsigned long v);
  NxString& operator<<(float v);
  NxString& operator<<(double v);

  // Editing; each returns the string itself.

  /// Nothing happens for a pos beyond the length.
  NxString& Insert(const NxString& s, unsigned short pos);
  /// Overwrites characters from pos; the length never changes.
  NxString& Replace(const NxString& s, unsigned short pos);
  /// Becomes n copies of c.
  NxString& Fill(unsigned short n, char c);
  NxString& Fill(unsigned short n, unsigned short c);
  /// Appends copies of c up to length n.
  NxString& Expand(unsigned short n, char c);
  NxString& Expand(unsigned short n, unsigned short c);
  /// Removes count (-1: all) characters from pos.
  NxString& Cut(unsigned short pos, short count = -1);
  /// count (-1: all) characters from pos. From the end or beyond: an empty string of
  /// the default 8-bit code set and language.
  NxString Copy(unsigned short pos, short count = -1) const;
  NxString Left(unsigned short n) const;
  NxString Right(unsigned short n) const;

  // Trimming: a space is a character that orders as one (blanks and controls).

  NxString& LeftTrim();
  NxString& RightTrim();
  NxString& Trim();

  // Case, by the string's code set; characters may become several (ß, SS).

  NxString& ToUpper();
  NxString& ToLower();
  NxString& Transform(NxCharOperation& op);

  // Searching. op is a compare option word (nxtypcmp.h), kDefaultOptions the default one.

  /// Position of the first match at or after start, or -1. Positions from 32768 on
  /// come out negative: as an unsigned short they are right, and only -1 means none.
  /// With wildcards on, "*" and "?" of the pattern are wildcards. A pattern without
  /// buffer, or of more bytes than the rest of the text has, is not found.
  short Find(const NxString& pattern, unsigned short start = 0, unsigned short op = kDefaultOptions) const;
  short Find(char c, unsigned short start = 0, unsigned short op = kDefaultOptions) const;
  short Find(unsigned short c, unsigned short start = 0, unsigned short op = kDefaultOptions) const;
  short SubStringPos(const NxString& pattern, unsigned short op = kDefaultOptions) const;
  /// Replaces every match under the default options, from start on. An empty `from`
  /// matches nothing.
  NxString& ReplaceAll(const NxString& from, const NxString& to, unsigned short start = 0);
  NxString& ReplaceAll(char from, char to, unsigned short start = 0);
  NxString& ReplaceAll(unsigned short from, unsigned short to, unsigned short start = 0);

  // Comparison by collation, under the default options for the operators: with
  // wildcards on (the default), "*" and "?" of the right operand are wildcards.

  int operator==(const NxString& s) const;
  int operator!=(const NxString& s) const;
  int operator<(const NxString& s) const;
  int operator>(const NxString& s) const;
  int operator<=(const NxString& s) const;
  int operator>=(const NxString& s) const;
  /// Negative, 0 or positive over the first len (-1: all) characters.
  int Compare(const NxString& s, short len = -1, unsigned short op = kDefaultOptions) const;
  int EqualsIgnoreLanguage(const NxString& s) const;

  // Numbers. Texts that do not parse give 0.

  operator int() const;
  operator short() const;
  operator long() const;
  operator double() const;
  /// The number in base 10 (Atol) or by its C prefix (Strtol). 0, or -1 with v 0
  /// when the text does not begin with a digit or "-".
  int Atol(long& v) const;
  int Strtol(long& v) const;

  /// Character i, bound to the text: assigning to it changes the string. Outside
  /// the text a detached zero character.
  NxChar operator[](int i);

  // Buffer building: every edit ends here.

  /// Becomes n (-1: all) characters of text, a text in code set cs. mode is the
  /// byte order of its 16-bit units (255: 1). A null text or n 0 leaves no buffer.
  void MakeString(const char* text, unsigned char cs, short n = -1, unsigned char mode = 255);
  /// Puts srcLen characters from srcStart of src (in srcCodeSet) at destPos; with
  /// repeat other than 1, that many copies of the first character of src. buildMode:
  /// 1 overwrites, 2 inserts, 3 composes (keeps what stands before destPos, drops the
  /// rest). src may be the string's own text. Nothing happens when it is to overwrite
  /// or insert outside the text, or puts an empty text there.
  void BuildString(const char* src, unsigned char srcCodeSet, unsigned short destPos, unsigned short srcStart,
                   unsigned short srcLen, unsigned short repeat, unsigned short buildMode,
                   unsigned char byteOrder);

  char* _pBuffer;            // text and terminator, or null; allocated with new[]
  unsigned short _nSize;     // bytes of the buffer, terminator included
  unsigned char _nCodeSet;   //
  unsigned char _nLanguage;  // 254: null

  static unsigned short _nAsterisk;  // 0: not yet determined
  static unsigned short _nQuestion;
  static unsigned short _nEscape;
};
static_assert(sizeof(NxString) == 8, "values are walked in steps of 8 bytes");

/// Both texts, in the code set and language of a.
NX_API NxString operator+(const NxString& a, const NxString& b);

/// Takes the item of list that begins at pos, up to the separator, trimmed, and moves
/// pos one character past the end of the item. A separator that begins the list is
/// skipped. 0, or -2005 with item unchanged at the end of the list and for want of memory.
NX_API int NxSplitList(NxString& list, NxString& item, const NxString& separator, unsigned short& pos);

/// Copies bytes; with width 2 and byteOrder 2 as 16-bit units put through
/// ShortStore. An odd last byte is not copied then.
NX_API void NxMemCpy(char* dst, char* src, short width, unsigned char byteOrder, unsigned long bytes);

/// Converts a whole text between code sets into a new buffer, released with
/// delete[]. Returns its size in bytes. len and byteOrder are not read. A text whose
/// size 16 bits cannot say is reported ("String overflow") and cut.
NX_API unsigned short AllocMapped(unsigned char srcCodeSet, unsigned char dstCodeSet, char* src, char*& out,
                                  unsigned short len, unsigned char byteOrder);
/// Converts at most n (-1: all) characters into buffer (null or made with new[]), and a
/// zero character behind them; the rest of a buffer large enough for n stays as it is. A
/// smaller one is released for a new one, and size becomes its bytes. Returns the
/// characters converted; 0 with the buffer as it was after an overflow.
NX_API int AllocMappedN(unsigned char srcCodeSet, unsigned char dstCodeSet, char* src, short n, char*& buffer,
                        unsigned short& size);

/// The text of strings without buffer: empty at either width.
extern NX_API char* zeroString;
extern NX_API unsigned int correctZeroLengthStringEvenForUnicode;
extern NX_API NxString __theEmptyString;

#endif
