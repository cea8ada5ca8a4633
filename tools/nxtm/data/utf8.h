/// UTF-8, the encoding of all text that the workbench reads and writes.
#ifndef NXTM_UTF8_H
#define NXTM_UTF8_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/utf16.h"
#include "nx21rtms.h"

namespace nxtm {

/// Longest text that has a stored image, in bytes of its code set.
constexpr unsigned long kMaxTextBytes = 65531;

/// Converts UTF-8. Code set 0 is Latin-1 where all characters have a place there, else
/// Unicode. A Failure tells the position of a broken sequence, or that the text is too
/// long or has no place in its code set.
NxString StringOfUtf8(std::string_view text, unsigned char codeSet = 0, unsigned char language = 1);
/// Appends the stored image of the string that StringOfUtf8 makes, under the native format.
/// False, and nothing appended, for a text that is left to StringOfUtf8: one that it refuses,
/// and one with letters in an 8-bit code set other than Latin-1.
bool AppendStringImage(std::string& bytes, std::string_view text, unsigned char codeSet,
                       unsigned char language);

/// Turns texts of an encoding into UTF-8.
class Decoder {
 public:
  /// An encoding by its name in any case; a Failure lists them when there is none.
  explicit Decoder(const std::string& encoding);
  /// A source whose texts ToUtf8 decodes: for UTF-16 the source in UTF-8, else itself.
  ByteSource Decoded(ByteSource source, const std::string& file) const {
    return utf16_ ? Utf8OfUtf16(std::move(source), file, *utf16_) : source;
  }
  /// The text in UTF-8, which holds until the next one.
  std::string_view ToUtf8(std::string_view text) { return sequences_.empty() ? text : Decode(text); }

 private:
  std::string_view Decode(std::string_view text);

  std::vector<std::string> sequences_;  // of each byte; none where texts are UTF-8
  std::optional<Utf16Order> utf16_;
  std::string text_;
};

std::string Utf8OfString(const NxString& s);

}  // namespace nxtm

#endif
