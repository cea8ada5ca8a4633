// Texts of identifiers and references: one interpreter of formats (nxref.h says what they
// are made of), to which each class is a table of its fields.
#include <cctype>
#include <cstdlib>
#include <cstring>

#include "nxnulltext.h"
#include "nxref.h"
#include "nxstring.h"
#include "text/nxtextio.h"

namespace {

constexpr const char* kObjIdFormat = "(%H-%L#%B)";
constexpr const char* kClassIdFormat = "(%Cv%V)";
constexpr const char* kRefFormat = "(%D:%H-%L#%B, %C)";
constexpr const char* kFullRefFormat = "(%D:%H-%L#%B,%Cv%V)";
constexpr const char* kLocalRefFormat = "(%H-%L#%B,%C)";

// ---------------------------------------------------------------------------
// Fields

enum class Width : unsigned char { k16, k32 };

/// A number in a value.
struct Field {
  char directive;
  Width width;
  unsigned char offset;  // bytes from the start of the value

  unsigned long Get(const void* value) const {
    const char* place = static_cast<const char*>(value) + offset;
    if (width == Width::k32) return Read<unsigned long>(place);
    return Read<unsigned short>(place);
  }
  /// A field of 16 bits takes the low ones of the number.
  void Put(void* value, unsigned long number) const {
    const auto half = static_cast<unsigned short>(number);
    char* place = static_cast<char*>(value) + offset;
    if (width == Width::k32)
      std::memcpy(place, &number, sizeof number);
    else
      std::memcpy(place, &half, sizeof half);
  }

 private:
  template <class V>
  static V Read(const char* place) {
    V number;
    std::memcpy(&number, place, sizeof number);
    return number;
  }
};

/// The fields of a class, those with a position first and in its order.
struct Fields {
  const Field* fields;
  unsigned count;
  unsigned positions;

  const Field* ByDirective(char c) const {
    for (unsigned i = 0; i < count; ++i)
      if (fields[i].directive == c) return fields + i;
    return nullptr;
  }
  /// Null beyond the positions, and where the field has another width.
  const Field* ByPosition(unsigned i, Width width) const {
    return i < positions && fields[i].width == width ? fields + i : nullptr;
  }
};

constexpr Field kObjIdFields[] = {
    {'H', Width::k16, offsetof(NxObjId, high)},
    {'L', Width::k32, offsetof(NxObjId, low)},
    {'B', Width::k32, offsetof(NxObjId, block)},
};
constexpr Field kClassIdFields[] = {
    {'C', Width::k16, offsetof(NxClassId, classNumber)},
    {'V', Width::k16, offsetof(NxClassId, version)},
};
constexpr Field kRefFields[] = {
    {'D', Width::k16, offsetof(NxRef, database)},
    {'H', Width::k16, offsetof(NxRef, objId) + offsetof(NxObjId, high)},
    {'L', Width::k32, offsetof(NxRef, objId) + offsetof(NxObjId, low)},
    {'B', Width::k32, offsetof(NxRef, objId) + offsetof(NxObjId, block)},
    {'C', Width::k16, offsetof(NxRef, classId) + offsetof(NxClassId, classNumber)},
    {'V', Width::k16, offsetof(NxRef, classId) + offsetof(NxClassId, version)},
};

constexpr Fields FieldsOf(const NxObjId*) { return {kObjIdFields, 3, 3}; }
constexpr Fields FieldsOf(const NxClassId*) { return {kClassIdFields, 2, 2}; }
constexpr Fields FieldsOf(const NxRef*) { return {kRefFields, 6, 5}; }

// ---------------------------------------------------------------------------
// Formats

/// What stands next in a format: a number or one character.
struct Piece {
  bool isNumber;
  const Field* field;  // of a number; null for a positional directive that meets no field
  char character;
};

/// Takes a format apart. A "%" that ends it is dropped.
class FormatReader {
 public:
  FormatReader(const Fields& fields, const char* format) : fields_(fields), p_(format) {}

  /// False at the end of the format.
  bool Next(Piece& piece) {
    if (*p_ != '%') return Character(piece);
    ++p_;
    if (*p_ == 'h') return Positional(piece, Width::k16);
    if (*p_ == 'l') return Positional(piece, Width::k32);
    const Field* field = fields_.ByDirective(*p_);
    if (!field) return Character(piece);
    ++p_;
    piece = {true, field, 0};
    return true;
  }

 private:
  bool Character(Piece& piece) {
    if (*p_ == 0) return false;
    piece = {false, nullptr, *p_++};
    return true;
  }

  bool Positional(Piece& piece, Width width) {
    ++p_;
    if (*p_) ++p_;  // the "u" of "%hu"
    piece = {true, fields_.ByPosition(position_++, width), 0};
    return true;
  }

  const Fields& fields_;
  const char* p_;
  unsigned position_ = 0;
};

/// A text of at most 511 characters; the rest is cut.
class WorkText {
 public:
  void Add(char c) {
    if (used_ + 1 < sizeof text_) text_[used_++] = c;
  }
  void Add(unsigned long number) {
    char digits[10];  // as many as the largest number has
    unsigned count = 0;
    do {
      digits[count++] = static_cast<char>('0' + number % 10);
      number /= 10;
    } while (number != 0);
    while (count > 0) Add(digits[--count]);
  }
  const char* Text() {
    text_[used_] = 0;
    return text_;
  }

 private:
  char text_[512];
  unsigned used_ = 0;
};

void PrintFields(NxString& out, const Fields& fields, const void* value, const char* format) {
  WorkText text;
  FormatReader reader(fields, format);
  for (Piece piece; reader.Next(piece);) {
    if (!piece.isNumber)
      text.Add(piece.character);
    else
      text.Add(piece.field ? piece.field->Get(value) : 0);
  }
  out = text.Text();
}

/// Reads the number at text as the C library scans "%lu": blanks and a sign may stand in
/// front of it. False when there is none.
bool ReadNumber(const char* text, unsigned long& number) {
  char* end;
  number = std::strtoul(text, &end, 10);
  return end != text;
}

void ScanFields(void* value, const Fields& fields, const char* text, const char* format) {
  for (unsigned i = 0; i < fields.count; ++i) fields.fields[i].Put(value, 0);
  FormatReader reader(fields, format);
  for (Piece piece; *text && reader.Next(piece);) {
    if (!piece.isNumber) {
      ++text;
      continue;
    }
    unsigned long number;
    if (piece.field && ReadNumber(text, number)) piece.field->Put(value, number);
    while (std::isdigit(static_cast<unsigned char>(*text))) ++text;
  }
}

// ---------------------------------------------------------------------------
// Values

template <class T>
NxString& Print(NxString& out, const T& value, const char* format) {
  if (value.IsNullValue()) return out = __NullPrintString;
  PrintFields(out, FieldsOf(&value), &value, format);
  return out;
}

template <class T>
void Scan(T& value, const NxString& in, const char* format) {
  const NxScanText text(in);
  if (text.IsMissing()) return;
  if (NxBeginsWithNullText(text.String())) {
    value.SetNullValue();  // of a reference only the object
    return;
  }
  ScanFields(&value, FieldsOf(&value), text.Chars(), format);
}

/// The same of values that need not be aligned.
template <class T>
NxString& PrintAt(NxString& out, const void* place, const char* format) {
  T value;
  std::memcpy(static_cast<void*>(&value), place, sizeof value);
  return Print(out, value, format);
}

template <class T>
void* ScanAt(void* place, const NxString& in, const char* format) {
  if (!place) return nullptr;
  T value;
  std::memcpy(static_cast<void*>(&value), place, sizeof value);
  Scan(value, in, format);
  std::memcpy(place, &value, sizeof value);
  return place;
}

const char* Or(const char* format, const char* defaultFormat) { return format ? format : defaultFormat; }

}  // namespace

NxString& NxObjId::PrintToString(NxString& out, void* value, const char* format, unsigned long /*n*/) {
  return PrintAt<NxObjId>(out, value, Or(format, kObjIdFormat));
}
void* NxObjId::ScanFromString(void* value, NxString& in, const char* format, unsigned long /*n*/) {
  return ScanAt<NxObjId>(value, in, Or(format, kObjIdFormat));
}
NxString& NxObjId::PrintToNxString(NxString& out, const char* format) const {
  return Print(out, *this, Or(format, kObjIdFormat));
}
void NxObjId::ScanFromNxString(const NxString& text, const char* format) {
  Scan(*this, text, Or(format, kObjIdFormat));
}

NxString& NxDBOId::PrintToNxString(NxString& out, const char* format) const {
  NxObjId id;
  id = *this;
  return id.PrintToNxString(out, format);
}
void NxDBOId::ScanFromNxString(const NxString& text, const char* format) {
  NxObjId id;
  id.ScanFromNxString(text, format);
  *this = id;
}

NxString& NxClassId::PrintToString(NxString& out, void* value, const char* format, unsigned long /*n*/) {
  return PrintAt<NxClassId>(out, value, Or(format, kClassIdFormat));
}
void* NxClassId::ScanFromString(void* value, NxString& in, const char* format, unsigned long /*n*/) {
  return ScanAt<NxClassId>(value, in, Or(format, kClassIdFormat));
}
NxString& NxClassId::PrintToNxString(NxString& out, const char* format) const {
  return Print(out, *this, Or(format, kClassIdFormat));
}
void NxClassId::ScanFromNxString(const NxString& text, const char* format) {
  Scan(*this, text, Or(format, kClassIdFormat));
}

NxString& NxLocalRef::PrintToNxString(NxString& out, const char* format) const {
  NxRef ref;
  ref = *this;
  return ref.PrintToNxString(out, Or(format, kLocalRefFormat));
}
void NxLocalRef::ScanFromNxString(const NxString& text, const char* format) {
  NxRef ref;
  ref.ScanFromNxString(text, Or(format, kLocalRefFormat));
  *this = ref;
}

NxString& NxRef::PrintToString(NxString& out, void* value, const char* format, unsigned long /*n*/) {
  return PrintAt<NxRef>(out, value, Or(format, kFullRefFormat));
}
void* NxRef::ScanFromString(void* value, NxString& in, const char* format, unsigned long /*n*/) {
  return ScanAt<NxRef>(value, in, Or(format, kFullRefFormat));
}
NxString& NxRef::PrintToNxString(NxString& out, const char* format) const {
  return Print(out, *this, Or(format, kRefFormat));
}
void NxRef::ScanFromNxString(const NxString& text, const char* format) {
  Scan(*this, text, Or(format, kRefFormat));
}
