// How golden cases are written: lines of words, texts in quotes, values and images of
// every type. README.md in this folder is its description for those who write them.
#ifndef NOTATION_H
#define NOTATION_H

#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "nxcistr.h"
#include "nxistr.h"
#include "nxtypcmp.h"
#include "nxtypmgr.h"
#include "support/block.h"
#include "support/strings.h"
#include "support/typerows.h"

namespace golden {

using Words = std::vector<std::string>;

/// The words of a line; quotes and braces hold spaces together, "#" begins a comment.
inline Words SplitWords(const std::string& line) {
  Words words;
  std::string word;
  char closing = 0;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (!closing && c == '#' && word.empty()) break;
    if (closing || c != ' ')
      word += c;
    else if (!word.empty())
      words.push_back(word), word.clear();
    if (closing && c == '\\')
      word += line[++i];
    else if (closing)
      closing = c == closing ? 0 : closing;
    else
      closing = c == '\'' ? '\'' : c == '{' ? '}' : 0;
  }
  if (!word.empty()) words.push_back(word);
  return words;
}

/// UTF-8 with the escapes \xHH, \uHHHH, \0, \n, \t, \r and \ before any other character.
inline Units Unescaped(const std::string& text) {
  Units units;
  for (std::size_t i = 0; i < text.size();) {
    const auto lead = static_cast<unsigned char>(text[i++]);
    if (lead == '\\') {
      const char kind = text[i++];
      const std::size_t digits = kind == 'x' ? 2 : kind == 'u' ? 4 : 0;
      const std::string names = "0ntr", values("\0\n\t\r", 4);
      const std::size_t named = names.find(kind);
      units += static_cast<char16_t>(digits ? std::stoi(text.substr(i, digits), nullptr, 16)
                                            : (named < 4 ? values : std::string(4, kind))[named & 3]);
      i += digits;
      continue;
    }
    const int more = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : 2;
    int value = more == 0 ? lead : more == 1 ? lead & 0x1F : lead & 0x0F;
    for (int k = 0; k < more; ++k) value = value << 6 | (text[i++] & 0x3F);
    units += static_cast<char16_t>(value);
  }
  return units;
}

inline std::string Bytes8(const Units& units) { return Encoded(units, kCodeSetLatin1); }

inline std::string FromHex(const std::string& hex) {
  std::istringstream in(hex);
  std::string bytes;
  for (int byte; in >> std::hex >> byte;) bytes += static_cast<char>(byte);
  return bytes;
}
inline std::string ToHex(const std::string& bytes) {
  std::string hex;
  for (const char byte : bytes) {
    char text[4];
    std::snprintf(text, sizeof text, "%02X ", static_cast<unsigned char>(byte));
    hex += text;
  }
  return hex.substr(0, hex.empty() ? 0 : hex.size() - 1);
}

/// KIND'text'@CODESET/LANGUAGE#TOTAL-CUT, or "null".
struct TextWord {
  std::string kind;
  Units text;
  unsigned char codeSet = kCodeSetLatin1, language = kLanguageEnglish;
  int total = -1;
  std::size_t cut = 0;

  explicit TextWord(const std::string& word) {
    if (word == "null") {
      language = kLanguageNull;
      return;
    }
    const std::size_t begin = word.find('\''), end = word.rfind('\'');
    kind = word.substr(0, begin);
    text = Unescaped(word.substr(begin + 1, end - begin - 1));
    std::istringstream in(word.substr(end + 1));
    int number;
    for (char mark; in >> mark >> number;) {
      if (mark == '@') codeSet = static_cast<unsigned char>(number);
      if (mark == '/') language = static_cast<unsigned char>(number);
      if (mark == '#') total = number;
      if (mark == '-') cut = static_cast<std::size_t>(number);
    }
  }
};

inline bool IsText(const TypeRow& row) { return row.id == 11; }
inline bool IsAlphabetic(const TypeRow& row) { return row.id == 20 || row.id == 21; }

/// The bytes of a value in memory of a type of fixed size.
inline std::string Value(const TypeRow& row, const std::string& word) {
  std::string value(row.size, '\0');
  if (word[0] == '{') {
    value = FromHex(word.substr(1));
    value.resize(row.size);
    return value;
  }
  if (word == "null") {
    if (row.Nullable()) row.MakeNull(reinterpret_cast<unsigned char*>(&value[0]));
    return value;
  }
  const char kind = row.order[0];
  if (kind == 'f' || kind == 'd') {
    const double number = std::strtod(word.c_str(), nullptr);
    const auto single = static_cast<float>(number);
    std::memcpy(&value[0], kind == 'f' ? static_cast<const void*>(&single) : &number, kind == 'f' ? 4 : 8);
    return value;
  }
  if (word.find_first_of(":-", 1) == std::string::npos) {
    const auto number = static_cast<unsigned long long>(
        word[0] == '-' ? std::strtoll(word.c_str(), nullptr, 0)
                       : static_cast<long long>(std::strtoull(word.c_str(), nullptr, 0)));
    if (row.bigEndian)  // 16-bit words, the highest first
      for (unsigned i = 0; i < 3; ++i) {
        const auto unit = static_cast<unsigned short>(number >> (32 - 16 * i));
        std::memcpy(&value[2 * i], &unit, 2);
      }
    else
      std::memcpy(&value[0], &number, std::min(row.Has('n') ? row.ImageSize() - 1 : row.size, 8UL));
    return value;
  }
  // Fields one after another in their widths, "*" for -1; a year may be negative.
  std::size_t field = 0, at = 0;
  while (at < word.size() && field < row.image.size()) {
    std::size_t end = word.find_first_of(":-T ", at + 1);
    if (end == std::string::npos) end = word.size();
    const int number = word[at] == '*' ? -1 : std::stoi(word.substr(at, end - at));
    std::memcpy(&value[row.image[field].offset], &number, row.image[field].width);
    at = end + 1;
    ++field;
  }
  return value;
}

inline std::string Keys(const TypeRow& row, const std::string& text) {
  std::vector<unsigned char> keys(2 * text.size() + 1);
  const auto* source = reinterpret_cast<const unsigned char*>(text.c_str());
  const int n = (row.id == 20 ? _NxIMapString : _NxCaseIMapString)(keys.data(), source, 0);
  return std::string(keys.begin(), keys.begin() + n - 1);
}

/// The texts of a block: commas outside quotes separate them.
inline std::vector<std::string> Texts(const Units& text) {
  std::vector<std::string> texts(1);
  for (const char16_t unit : text)
    if (unit == 0)
      texts.emplace_back();
    else
      texts.back() += static_cast<char>(unit);
  return texts;
}

/// The stored image of a value under a format.
inline std::string Image(NxTypeMgr& mgr, const TypeRow& row, const std::string& word, unsigned char format) {
  if (word[0] == '{') return FromHex(word.substr(1));
  if (!IsText(row) && !IsAlphabetic(row)) {
    std::string value = Value(row, word), image(row.ImageSize(), '\0');
    mgr.Store(row.id, &image[0], &value[0], format, 1);
    return image;
  }
  const TextWord text(word);
  std::string image;
  if (IsAlphabetic(row)) {
    std::vector<std::string> texts = Texts(text.text);
    const bool keys = text.kind[0] == 'k' || text.kind[0] == 'K';
    if (text.kind == "k")
      for (std::string& t : texts) t = Keys(row, t);
    image = AlphaImage(keys ? 0xC0 : text.kind == "m" ? 0x01 : 0x40, texts, format, text.total);
  } else if (text.kind == "e") {
    image = EarlyImage(Texts(text.text), format & kFormatCodeMask);
  } else if (text.kind == "k") {
    std::string source = StringImage(text.text, text.codeSet, text.language, format);
    image.resize(2 * source.size() + 8);
    image.resize(
        static_cast<std::size_t>(mgr.Translate(row.id, &image[0], format | kFormatKey, image.size(),
                                               &source[0], format & kFormatCodeMask, source.size(), 1)));
  } else {
    image = StringImage(text.text, text.language == kLanguageNull ? 0 : text.codeSet, text.language, format);
  }
  return image.substr(0, image.size() - text.cut);
}

/// The word of compare options, named and joined by "+"; "-" for none.
inline unsigned short Options(const std::string& names) {
  const struct {
    const char* name;
    unsigned short bits;
  } kNames[] = {{"<", kRelationLess},
                {"<=", kRelationLess | kRelationEqual},
                {"=", kRelationEqual},
                {">=", kRelationGreater | kRelationEqual},
                {">", kRelationGreater},
                {"<>", kRelationLess | kRelationGreater},
                {"nocase", kIgnoreCase},
                {"noaccents", kIgnoreAccents},
                {"nospaces", kSkipSpaces},
                {"nosymbols", kSkipSymbols},
                {"orders", kOrderValuesOnly},
                {"plain", kWildcardsOff},
                {"found", kWildcardFound},
                {"high", kRelationHigh},
                {"-", 0}};
  unsigned short options = 0;
  std::istringstream in(names);
  for (std::string name; std::getline(in, name, '+');)
    for (const auto& known : kNames)
      if (name == known.name) options |= known.bits;
  return options;
}

}  // namespace golden

#endif
