/// Values of the workbench: their text, as people write it, and their stored image.
#ifndef NXTM_VALUE_H
#define NXTM_VALUE_H

#include <string>
#include <string_view>

#include "nx21rtms.h"

namespace nxtm {

/// A stored image.
using Image = std::string;

/// The manager that the workbench asks: the current database format.
NxTypeMgr& Manager();

/// The identifier of a type by its name; a Failure names the types when there is none.
char FindType(const std::string& name);
/// Whether the type's values can be stored and written as text here.
bool IsUsable(char type);

/// How texts of a string type are encoded.
struct TextStyle {
  unsigned char codeSet = 0;  // 0: Latin-1 where the text allows it, else Unicode
  unsigned char language = 1;
};

/// Longest text that has a stored image, in bytes of its code set.
constexpr unsigned long kMaxTextBytes = 65531;

/// What the text of a value may hold besides values.
enum class Pattern {
  kNone,   // a value
  kFields  // dates may have "*" in place of a field: any year, month or day
};

/// The stored image, under format code 1 or 2, of a value written as text:
///
///   integers          decimal, within the type's range
///   float, double     decimal, with exponent; finite
///   strings           UTF-8
///   NxDate, NxTime    2004-03-15, 13:45:07
///   NxBoolean         true, false
///
/// Throws a Failure that says what is wrong with the text.
Image ImageOfText(char type, const std::string& text, const TextStyle& style, unsigned char format = 1,
                  Pattern pattern = Pattern::kNone);
/// The image of the type's null value; the type must have a null state.
Image NullImage(char type, unsigned char format = 1);

/// A value taken out of its image.
struct TextOfValue {
  std::string text;  // UTF-8
  bool isNull = false;
};
/// The text of an image. A string image must be whole.
TextOfValue TextOfImage(char type, const Image& image, unsigned char format = 1);

/// Bytes of the image at the start of data, or 0 when none fits in it.
unsigned long ImageSize(char type, std::string_view data, unsigned char format = 1);

std::string Hex(std::string_view bytes);
/// The bytes of a text of hexadecimal digits; blanks between them do not count.
Image FromHex(const std::string& text);

/// The number of the language of a name or number.
unsigned char FindLanguage(const std::string& name);
/// The number of a code set that texts may have.
unsigned char FindCodeSet(const std::string& number);

/// Converts UTF-8; a Failure tells the position of a broken sequence, or that the text
/// is too long for its code set.
NxString StringOfUtf8(const std::string& text, const TextStyle& style);
std::string Utf8OfString(const NxString& s);

}  // namespace nxtm

#endif
