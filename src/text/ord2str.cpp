// Collation order values by name: for the texts of index bounds and for diagnostics.

#include "ord2str.h"

#include <cstdio>

#include "nxchar.h"
#include "nxlang.h"
#include "nxstring.h"

namespace {

constexpr unsigned short kUndefinedOrder = 13;
constexpr unsigned short kLastSymbolIndex = 16047;
constexpr unsigned char kNoCharacter = 0x07;
constexpr unsigned char kHanCharacter = 0x7F;

/// A symbol with a name; what has no character of its own in ASCII is shown as ".".
struct Symbol {
  unsigned short index;
  char character;
  const char* name;
};

constexpr Symbol kSymbols[] = {
    {32, '_', "_"},
    {34, '.', "macron sign"},
    {35, '.', "soft hyphen"},
    {36, '-', "-"},
    {37, ',', ","},
    {38, ';', ";"},
    {39, ':', ":"},
    {40, '!', "!"},
    {41, '.', "inverted exclamation mark"},
    {42, '?', "?"},
    {44, '/', "solidus"},
    {46, '.', "full stop"},
    {49, '.', "middle dot"},
    {50, '.', "cedilla"},
    {52, '\'', "apostrophe"},
    {55, '"', "\""},
    {58, '.', "left pointing double angle quotation mark"},
    {59, '.', "right pointing double angle quotation mark"},
    {60, '(', "("},
    {62, ')', ")"},
    {64, '[', "["},
    {65, ']', "]"},
    {66, '{', "{"},
    {67, '}', "}"},
    {68, '.', "section sign"},
    {69, '.', "pilcrow sign"},
    {70, '.', "copyright sign"},
    {71, '.', "registered sign"},
    {73, '@', "@"},
    {74, '.', "currency sign"},
    {75, '.', "cent sign"},
    {76, '$', "$"},
    {77, '.', "pound sign"},
    {78, '.', "yen sign"},
    {79, '*', "*"},
    {80, '.', "reverse solidus"},
    {81, '&', "&"},
    {82, '#', "#"},
    {83, '%', "%"},
    {85, '+', "+"},
    {87, '.', "plus minus sign"},
    {88, '\'', "'"},
    {89, '`', "`"},
    {91, '^', "^"},
    {94, '.', "diaeresis"},
    {96, '~', "~"},
    {98, '.', "division sign"},
    {99, '.', "multiplication sign"},
    {101, '<', "<"},
    {103, '=', "="},
    {105, '>', ">"},
    {106, '.', "not sign"},
    {107, '|', "|"},
    {108, '.', "broken bar"},
    {109, '.', "degree sign"},
    {110, '.', "micron sign"},
    {139, '.', "inverted question mark"},
};

constexpr const char* kAccents[] = {
    nullptr,         "cedilla",      "accent acute", "accent grave", "accent circumflex",
    "tilde",         "diaeresis",    "ring above",   "stroke",       "accent caron",
    "accent macron", "accent breve", "dot above",    "ogonek",       "accent double acute",
};
constexpr unsigned short kAccentCount = sizeof kAccents / sizeof kAccents[0];

// ASCII spellings of the bytes from 0x80 on of code set 1.
constexpr const char* subst_repr[128] = {
    "",     "",     "",     "",      "",      "",     "",      "",
    "",     "",     "",     "",      "",      "",     "",      "",  // 0x80
    "",     "",     "",     "",      "",      "",     "",      "",
    "",     "",     "",     "",      "",      "",     "",      "",  // 0x90
    "",     "",     "",     "",      "",      "",     "",      "",
    "",     "",     "",     "",      "",      "",     "",      "",  // 0xA0
    "",     "",     "",     "",      "",      "",     "",      "",
    "",     "",     "",     "",      "",      "",     "",      "",  // 0xB0
    "\\`A", "\\'A", "\\^A", "\\~A",  "\\\"A", "\\AA", "\\AE",  "\\,C",
    "\\`E", "\\'E", "\\^E", "\\\"E", "\\`I",  "\\'I", "\\^I",  "\\\"I",  // 0xC0
    "\\-D", "\\~N", "\\`O", "\\'O",  "\\^O",  "\\~O", "\\\"O", "",
    "\\-O", "\\`U", "\\'U", "\\^U",  "\\\"U", "\\'Y", "\\TH",  "\\ss",  // 0xD0
    "\\`a", "\\'a", "\\^a", "\\~a",  "\\\"a", "\\aa", "\\ae",  "\\,c",
    "\\`e", "\\'e", "\\^e", "\\\"e", "\\`i",  "\\'i", "\\^i",  "\\\"i",  // 0xE0
    "\\-d", "\\~n", "\\`o", "\\'o",  "\\^o",  "\\~o", "\\\"o", "",
    "\\-o", "\\`u", "\\'u", "\\^u",  "\\\"u", "\\'y", "\\th",  "\\\"y",  // 0xF0
};

const Symbol* FindSymbol(unsigned short index) {
  for (const Symbol& symbol : kSymbols)
    if (symbol.index == index) return &symbol;
  return nullptr;
}

bool IsPlainOrder(unsigned short order, unsigned char language) {
  return order >= kFirstHanOrder || (language & 0x7F) >= kPlainOrderSelector;
}

struct Letter {
  explicit Letter(unsigned short order) {
    NxExtractLetterComponentsFromOrdering(order, caseBits, accent, index, extension);
  }
  unsigned char Character() const {
    return static_cast<unsigned char>(index + (caseBits == 0 ? 0x3E : 0x5E));
  }

  unsigned short caseBits = 0;
  unsigned short accent = 0;
  unsigned short index = 0;
  unsigned short extension = 0;
};

/// The byte from 0x80 on of code set 1 that orders as `order`, or 0.
unsigned char FindAccented(unsigned short order) {
  for (int byte = 0x80; byte <= 0xFF; ++byte)
    if (NxChar(static_cast<char>(byte), kCodeSetLatin1, kLanguageEnglish).GetOrder() == order)
      return static_cast<unsigned char>(byte);
  return 0;
}

}  // namespace

unsigned int GetCompareFromOrder(unsigned short order, unsigned char selector) {
  return NxCompareKey(order, selector);
}

int NxExtractLetterComponentsFromOrdering(unsigned short order, unsigned short& caseBits,
                                          unsigned short& accent, unsigned short& letter,
                                          unsigned short& extension) {
  if (order >= kFirstHanOrder) return kInvalidCodeSet;
  caseBits = (order & kOrderCaseMask) >> 12;
  accent = (order & kOrderAccentMask) >> 7;
  letter = (order & kOrderLetterMask) >> 2;
  extension = order & kOrderExtensionMask;
  return 0;
}

int NxExtractSymbolFromOrder(unsigned short order, unsigned short& symbol) {
  const unsigned short index = order - kFirstSymbolOrder;
  if (index > kLastSymbolIndex) return kInvalidCodeSet;
  symbol = index;
  return 0;
}

int NxExtractDigitFromOrder(unsigned short order, unsigned short& digit, unsigned short& expand) {
  if (order < kFirstDigitOrder || order >= kFirstLetterOrder) return kInvalidCodeSet;
  expand = order & 1;
  digit = ((order & ~1) - kFirstDigitOrder) / 10;
  return 0;
}

int NxConvertOrderToString(unsigned short order, unsigned char language, NxString& text) {
  char name[96];
  if (IsPlainOrder(order, language)) {
    std::snprintf(name, sizeof name, "HAN character 0x%04x\n", order);
  } else if (order < kFirstSymbolOrder) {
    std::snprintf(name, sizeof name, "%s",
                  order == kUndefinedOrder ? "undefined ordering indicator" : "space");
  } else if (order < kFirstDigitOrder) {
    const Symbol* symbol = FindSymbol(order - kFirstSymbolOrder);
    std::snprintf(name, sizeof name, "symbol %s", symbol ? symbol->name : "");
  } else if (order < kFirstLetterOrder) {
    unsigned short digit, expand;
    NxExtractDigitFromOrder(order, digit, expand);
    std::snprintf(name, sizeof name, "digit %d%s", digit, expand ? " with expand" : "");
  } else {
    const Letter letter(order);
    const bool named = letter.accent > 0 && letter.accent < kAccentCount;
    std::snprintf(name, sizeof name, "%s letter %c%s%s%s", letter.caseBits == 0 ? "upper" : "lower",
                  letter.Character(), named ? " with " : "", named ? kAccents[letter.accent] : "",
                  letter.extension != 0 ? " with extension" : "");
  }
  text = name;
  return 0;
}

int NxConvertOrderToChar(unsigned short order, unsigned char language, unsigned char& ch, int withAccent,
                         const char** repr) {
  if (IsPlainOrder(order, language)) {
    ch = kHanCharacter;
  } else if (order < kFirstSymbolOrder) {
    ch = ' ';
  } else if (order < kFirstDigitOrder) {
    const Symbol* symbol = FindSymbol(order - kFirstSymbolOrder);
    ch = symbol ? symbol->character : kNoCharacter;
  } else if (order < kFirstLetterOrder) {
    unsigned short digit, expand;
    NxExtractDigitFromOrder(order, digit, expand);
    ch = static_cast<unsigned char>('0' + digit);
  } else {
    const Letter letter(order);
    ch = letter.Character();
    const unsigned char accented = letter.accent != 0 && withAccent ? FindAccented(order) : 0;
    if (accented != 0) {
      ch = accented;
      if (repr) *repr = subst_repr[accented - 0x80];
    }
  }
  return 0;
}
