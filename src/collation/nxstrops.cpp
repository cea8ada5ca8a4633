// NxString: editing, trimming, case, replacing and splitting. Lengths and positions
// are computed in 32 bits throughout; the members' own are 16 bits wide.

#include <algorithm>

#include "collation/nxstrfind.h"
#include "nxstritr.h"
#include "text/nxstrbuild.h"

namespace {

bool InsertText(NxString& s, const NxString& text, unsigned long pos) {
  return NxBuildText(s, {text.StrGet(), text._nCodeSet, text.Len(), pos}, NxBuildMode::kInsert);
}

/// Removes the characters from pos to end, which do not lie beyond the length. False, with
/// the string as it was, for want of memory.
bool CutText(NxString& s, unsigned long pos, unsigned long end) {
  return NxBuildText(s, {s.StrGet(), s._nCodeSet, s.Len() - end, pos, end}, NxBuildMode::kCompose);
}

/// Appends n copies of a character, given as a text of it and a zero, behind the
/// first pos characters.
void AppendCopies(NxString& s, const char* character, unsigned char codeSet, unsigned long pos,
                  unsigned long n) {
  NxBuildText(s, {character, codeSet, 1, pos, 0, n}, NxBuildMode::kCompose);
}

void ExpandTo(NxString& s, unsigned long n, const char* character, unsigned char codeSet) {
  const unsigned long length = s.Len();
  if (length < n) AppendCopies(s, character, codeSet, length, n - length);
}

/// A character followed by a zero, so that a conversion reads just the one.
template <class T>
struct OneCharacter {
  explicit OneCharacter(T c) : text{c, 0} {}
  operator const char*() const { return reinterpret_cast<const char*>(text); }
  T text[2];
};

bool IsSpaceAt(const NxString& s, unsigned long pos) {
  const unsigned long width = NxCharWidth(s._nCodeSet);
  return NxChar(s._pBuffer + pos * width, s._nCodeSet, s._nLanguage, kFormatMemory).IsSpace();
}

/// The text that Transform writes, in a buffer that grows with it: one character may
/// become any number of them.
class TransformedText {
 public:
  explicit TransformedText(const NxString& s)
      : codeSet_(s._nCodeSet),
        width_(NxCharWidth(s._nCodeSet)),
        room_(std::max<unsigned long>(s._nSize, width_)) {
    buffer_ = NxNewZeroArray<char>(room_);
  }
  TransformedText(const TransformedText&) = delete;
  TransformedText& operator=(const TransformedText&) = delete;
  ~TransformedText() { delete[] buffer_; }

  /// Appends c, mapped to the text's code set; false when it has no room.
  bool Put(const NxChar& c) {
    if (!buffer_ || (used_ + 2 * width_ > room_ && !Grow())) return false;
    NxChar(buffer_ + used_, codeSet_, kLanguageDefault, kDefaultByteOrder) = c;
    used_ += width_;
    return true;
  }
  void MoveTo(NxString& s) {
    if (!buffer_) return;
    NxAttach(s, buffer_, used_ + width_);
    buffer_ = nullptr;
  }

 private:
  /// Twice the room, up to the limit. What is not used stays zero: the terminator.
  bool Grow() {
    if (used_ + 2 * width_ > kMaxStringBytes) {
      NxReportOverflow(kOverflowInBuild);
      return false;
    }
    const unsigned long room = std::min(std::max(2 * room_, 2 * width_), kMaxStringBytes);
    char* buffer = NxNewZeroArray<char>(room);
    if (!buffer) return false;
    std::memcpy(buffer, buffer_, used_);
    delete[] buffer_;
    buffer_ = buffer;
    room_ = room;
    return true;
  }

  const unsigned char codeSet_;
  const unsigned long width_;
  unsigned long room_;
  unsigned long used_ = 0;
  char* buffer_ = nullptr;
};

}  // namespace

// ---------------------------------------------------------------------------
// Editing

NxString& NxString::Insert(const NxString& s, unsigned short pos) {
  if (pos <= Len()) InsertText(*this, s, pos);
  return *this;
}

NxString& NxString::Replace(const NxString& s, unsigned short pos) {
  const unsigned long length = Len();
  if (pos >= length) return *this;
  const unsigned long n = std::min<unsigned long>(s.Len(), length - pos);
  if (n > 0) NxBuildText(*this, {s.StrGet(), s._nCodeSet, n, pos}, NxBuildMode::kOverwrite);
  return *this;
}

NxString& NxString::Fill(unsigned short n, char c) {
  AppendCopies(*this, OneCharacter(c), GetDefault8CodeSet(), 0, n);
  return *this;
}
NxString& NxString::Fill(unsigned short n, unsigned short c) {
  AppendCopies(*this, OneCharacter(c), GetDefault16CodeSet(), 0, n);
  return *this;
}

NxString& NxString::Expand(unsigned short n, char c) {
  ExpandTo(*this, n, OneCharacter(c), GetDefault8CodeSet());
  return *this;
}
NxString& NxString::Expand(unsigned short n, unsigned short c) {
  ExpandTo(*this, n, OneCharacter(c), GetDefault16CodeSet());
  return *this;
}

NxString& NxString::Cut(unsigned short pos, short count) {
  const long length = Len();
  const long n = count == -1 || pos + count > length ? length - pos : count;
  if (n > 0) CutText(*this, pos, pos + n);
  return *this;
}

NxString NxString::Copy(unsigned short pos, short count) const {
  const unsigned long length = Len();
  if (pos >= length) return NxString(GetDefault8CodeSet(), GetDefaultLanguage());
  const unsigned long n = std::min<unsigned long>(static_cast<unsigned short>(count), length - pos);
  NxString copy(_nCodeSet, _nLanguage);
  NxComposeText(copy, _pBuffer + pos * NxCharWidth(_nCodeSet), _nCodeSet, n);
  return copy;
}

NxString NxString::Left(unsigned short n) const { return Copy(0, static_cast<short>(std::min(Len(), n))); }

NxString NxString::Right(unsigned short n) const {
  const unsigned short length = Len();
  const unsigned short m = std::min(length, n);
  return Copy(static_cast<unsigned short>(length - m), static_cast<short>(m));
}

// ---------------------------------------------------------------------------
// Trimming

namespace {

/// Spaces that begin a text of so many characters.
unsigned long LeadingSpaces(const NxString& s, unsigned long length) {
  unsigned long spaces = 0;
  while (spaces < length && IsSpaceAt(s, spaces)) ++spaces;
  return spaces;
}

/// Characters of it up to the spaces that end it. They are looked for from the end of the
/// text: the buffer may be larger than text and terminator.
unsigned long WithoutTrailingSpaces(const NxString& s, unsigned long length) {
  while (length > 0 && IsSpaceAt(s, length - 1)) --length;
  return length;
}

}  // namespace

NxString& NxString::LeftTrim() {
  const unsigned long spaces = LeadingSpaces(*this, Len());
  if (spaces > 0) CutText(*this, 0, spaces);
  return *this;
}

NxString& NxString::RightTrim() {
  const unsigned long length = Len();
  const unsigned long kept = WithoutTrailingSpaces(*this, length);
  if (kept < length) CutText(*this, kept, length);
  return *this;
}

NxString& NxString::Trim() {
  const unsigned long length = Len();
  const unsigned long spaces = LeadingSpaces(*this, length);
  const unsigned long kept = std::max(WithoutTrailingSpaces(*this, length), spaces);
  if (kept - spaces < length)
    NxBuildText(*this, {StrGet(), _nCodeSet, kept - spaces, 0, spaces}, NxBuildMode::kCompose);
  return *this;
}

// ---------------------------------------------------------------------------
// Case

NxString& NxString::ToUpper() {
  NxCharToUpper upper;
  return Transform(upper);
}

NxString& NxString::ToLower() {
  NxCharToLower lower;
  return Transform(lower);
}

NxString& NxString::Transform(NxCharOperation& op) {
  if (!_pBuffer) return *this;
  TransformedText text(*this);
  for (NxStringIterator it(*this); !it.IsEOS(); ++it)
    if (!text.Put(op(*it, &it))) return *this;
  text.MoveTo(*this);
  return *this;
}

// ---------------------------------------------------------------------------
// Replacing and splitting

NxString& NxString::ReplaceAll(const NxString& from, const NxString& to, unsigned short start) {
  const unsigned long fromLength = from.Len();
  const unsigned long toLength = to.Len();
  long i = fromLength == 0 ? kNoMatch : NxFindText(*this, from, start, kDefaultOptions);
  if (i == kNoMatch || i >= Len()) return *this;  // a match behind the text replaces nothing
  // On a copy: this string may be `from` or `to`, and stays as it is on an overflow and
  // for want of memory.
  const NxShortageWatch shortage;
  NxString text(*this);
  if (shortage.Happened()) return *this;
  do {
    const unsigned long pos = static_cast<unsigned long>(i);
    const unsigned long end = std::min<unsigned long>(pos + fromLength, text.Len());
    if (!CutText(text, pos, end) || !InsertText(text, to, pos)) return *this;
    i = NxFindText(text, from, pos + toLength, kDefaultOptions);
  } while (i != kNoMatch && i < text.Len());
  Destruct(text);
  return *this;
}

namespace {

/// Characters are replaced as texts of one.
template <class Character>
NxString& ReplaceCharacters(NxString& s, Character from, Character to, unsigned short start) {
  const NxShortageWatch shortage;
  const NxString fromText(from), toText(to);
  return shortage.Happened() ? s : s.ReplaceAll(fromText, toText, start);
}

}  // namespace

NxString& NxString::ReplaceAll(char from, char to, unsigned short start) {
  return ReplaceCharacters(*this, from, to, start);
}
NxString& NxString::ReplaceAll(unsigned short from, unsigned short to, unsigned short start) {
  return ReplaceCharacters(*this, from, to, start);
}

int NxSplitList(NxString& list, NxString& item, const NxString& separator, unsigned short& pos) {
  const NxShortageWatch shortage;
  unsigned short begin = pos;
  long end = NxFindText(list, separator, begin, kDefaultOptions);
  if (end == 0) end = NxFindText(list, separator, ++begin, kDefaultOptions);
  const unsigned short length = list.Len();
  if (end == kNoMatch) {
    if (begin >= length) {
      pos = begin;
      return kEndOfList;
    }
    end = length;
  }
  NxString part = list.Copy(begin, static_cast<short>(end - begin));
  part.Trim();
  if (shortage.Happened()) return kEndOfList;
  item.Destruct(part);
  pos = static_cast<unsigned short>(end + 1);
  return 0;
}
