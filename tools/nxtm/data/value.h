/// Values of the workbench: their text, as people write it, and their stored image.
#ifndef NXTM_VALUE_H
#define NXTM_VALUE_H

#include <memory>
#include <string>
#include <string_view>

#include "data/textform.h"
#include "nx21rtms.h"

namespace nxtm {

/// A stored image.
using Image = std::string;

/// The manager that the workbench asks: the current database format.
NxTypeMgr& Manager();

/// The identifier of a type by its name; a Failure names the types when there is none.
char FindType(const std::string& name);
/// The type that holds a type's values and null, or the type itself where there is none.
char NullableTypeOf(char type);
/// Whether values of the type are texts, which order by letters.
bool IsText(char type);

/// A value taken out of its image.
struct TextOfValue {
  std::string text;  // UTF-8
  bool isNull = false;
};

/// A value in memory, made and released by the type manager.
class Box {
 public:
  explicit Box(char type);
  Box(const Box&) = delete;
  Box& operator=(const Box&) = delete;
  ~Box() { Manager().Delete(type_, value_, 1); }

  void* Get() const { return value_; }
  /// Appends the value's image.
  void Store(Image& bytes, unsigned char format) const;
  /// Bytes of the image of every value of the type; 0 where they have sizes of their own.
  unsigned long FixedSize() const { return fixedSize_; }

 private:
  unsigned long ImageSize(unsigned char format) const;

  char type_;
  void* value_;
  unsigned long fixedSize_;  // of every image; 0: of a value's own
};

/// Turns the texts of one type and style into stored images and back. It keeps the memory
/// that this takes, so one serves a whole column. The stored images are those of format
/// code 1 or 2.
class Converter {
 public:
  /// A Failure when the type has no text form or the style's format does not fit it.
  explicit Converter(char type, TextStyle style = {});

  /// The image of a text; a Failure says what is wrong with it. Under a format the text
  /// must be what the value prints.
  Image ToImage(std::string_view text, unsigned char format = kFormatNative,
                Pattern pattern = Pattern::kNone);
  /// Appends the image of a text under the native format. The common texts are written straight
  /// to the bytes; the answer is that of ToImage. After a Failure the bytes may have a rest of it.
  void AppendImage(Image& bytes, std::string_view text);
  /// The text of an image, which must be whole.
  TextOfValue ToText(std::string_view image, unsigned char format = kFormatNative);

 private:
  void Parse(std::string_view text, Pattern pattern);
  void Append(Image& bytes, std::string_view text, unsigned char format, Pattern pattern);
  std::string Print() const;
  void RequireFit();

  char type_;
  const TextForm& form_;
  TextStyle style_;
  std::unique_ptr<Box> box_;
  signed char* nullFlag_;  // of a nullable type's value, else null
};

/// The image of the type's null value; the type must have a null state.
Image NullImage(char type, unsigned char format = kFormatNative);

/// Bytes of the image at the start of data, or 0 when none fits in it.
unsigned long ImageSize(char type, std::string_view data, unsigned char format = kFormatNative);

/// The text that the library prints of a value, and the value, written in its own form,
/// that the library reads from a text; without a format under the type's own.
std::string PrintedText(char type, const std::string& value, const TextStyle& style, const char* format);
std::string ScannedText(char type, const std::string& text, const TextStyle& style, const char* format);

/// Bytes of the largest blob: a value is several times in memory while it is stored.
constexpr unsigned long kLargestBlob = 128UL << 20;
/// The bytes of a blob's image, which is whole.
std::string_view BytesOfBlob(std::string_view image);

std::string Hex(std::string_view bytes, const char* between = " ");
/// The bytes of a text of hexadecimal digits; blanks between them do not count.
Image FromHex(std::string_view text);

/// The number of the language of a name or number.
unsigned char FindLanguage(const std::string& name);
/// The number of a code set that texts may have.
unsigned char FindCodeSet(const std::string& number);

}  // namespace nxtm

#endif
