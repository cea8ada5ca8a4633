/// UTF-8, the encoding of all text that the workbench reads and writes.
#ifndef NXTM_UTF8_H
#define NXTM_UTF8_H

#include <string>

#include "nx21rtms.h"

namespace nxtm {

/// Longest text that has a stored image, in bytes of its code set.
constexpr unsigned long kMaxTextBytes = 65531;

/// Converts UTF-8. Code set 0 is Latin-1 where all characters have a place there, else
/// Unicode. A Failure tells the position of a broken sequence, or that the text is too
/// long or has no place in its code set.
NxString StringOfUtf8(const std::string& text, unsigned char codeSet = 0, unsigned char language = 1);
std::string Utf8OfString(const NxString& s);

}  // namespace nxtm

#endif
