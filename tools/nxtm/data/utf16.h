/// UTF-16 that is read as UTF-8.
#ifndef NXTM_UTF16_H
#define NXTM_UTF16_H

#include <string>

#include "data/csvfile.h"

namespace nxtm {

enum class Utf16Order {
  kByMark,  // of the byte order mark that begins the source; without one little
  kLittle,
  kBig
};

/// The text of a source in UTF-8, without a byte order mark. A Failure, which names `file`, at
/// half a character and at the half of a surrogate pair.
ByteSource Utf8OfUtf16(ByteSource source, const std::string& file, Utf16Order order);

}  // namespace nxtm

#endif
