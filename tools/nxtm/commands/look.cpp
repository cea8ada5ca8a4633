// The commands that look at types, images and keys.

#include <cstdio>
#include <cstdlib>

#include "commands/commands.h"
#include "data/failure.h"
#include "data/utf8.h"
#include "data/value.h"
#include "nxlang.h"
#include "query/query.h"
#include "store/index.h"

namespace nxtm {

namespace {

/// A type and how its values are written on this command line.
struct Look {
  Look(const std::string& typeName, const LookOptions& options)
      : type(FindType(typeName)),
        style{FindCodeSet(options.codeSet), FindLanguage(options.language), "", ""},
        format(static_cast<unsigned char>(options.format)) {
    if (options.format > 255) throw Failure("a format byte is at most 255");
    if (options.format & kFormatMemory)
      throw Failure("format bytes with bit 3 are forms in memory, not of images");
  }

  Image ImageOf(const std::string& text) const {
    return Converter(type, style).ToImage(text, format, Pattern::kFields);
  }
  Image KeyOf(const std::string& text) const { return KeyImageOf(type, ImageOf(text), format); }

  char type;
  TextStyle style;
  unsigned char format;
};

unsigned short OptionWord(const LookOptions& options) {
  return static_cast<unsigned short>(
      (options.literally ? kWildcardsOff : 0) | (options.ignoreCase ? kIgnoreCase : 0) |
      (options.ignoreAccents ? kIgnoreAccents : 0) | (options.skipSpaces ? kSkipSpaces : 0) |
      (options.skipSymbols ? kSkipSymbols : 0) | (options.orderValues ? kOrderValuesOnly : 0));
}

void PrintError(int error) {
  if (error == kPastBuffer) std::printf("error 2101: holds only as far as the operands reach\n");
  if (error == kNotPossible) std::printf("error -2999: a truncated text is too long\n");
}

std::string OrderName(unsigned short order, unsigned char language) {
  NxString name;
  NxConvertOrderToString(order, language, name);
  std::string text = Utf8OfString(name);
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  return text;
}

/// The order values of a text, named.
std::string OrderNames(NxString& s) {
  std::string names;
  NxStringIterator it(s);
  while (unsigned short order = it.GetNextOrder(1)) {
    if (!names.empty()) names += ", ";
    names += OrderName(order, it._nCollation);
  }
  return names;
}

std::string DescribeKey(char type, const Image& key, unsigned char format) {
  if (key.empty()) return "open";
  std::string text = Hex(key);
  if (type == kStringTypeId) {
    NxString s;
    Manager().Translate(type, &s, kFormatMemory, 0, const_cast<char*>(key.data()), format | kFormatKey,
                        key.size(), 1);
    text += "  (" + OrderNames(s) + ")";
  } else if (!IsText(type)) {
    text += "  (" + Converter(type).ToText(key, format).text + ")";
  }
  return text;
}

unsigned short ParseRelation(const std::string& sign) {
  unsigned long length = 0;
  const unsigned short relation = RelationAt(sign, length);
  if (relation != 0 && length == sign.size()) return relation;
  throw Failure("'" + sign + "' is no relation (=, !=, <, <=, >, >=)");
}

}  // namespace

void ListTypes() {
  std::printf("%3s  %-15s %5s  %-5s  %-4s  %-6s  %s\n", "id", "name", "bytes", "fixed", "null", "schema",
              "print format");
  for (char id = 0; Manager().IsValidType(id) && id < static_cast<char>(kTypeCount); ++id)
    std::printf("%3d  %-15s %5u  %-5s  %-4s  %-6s  %s\n", id, Manager().NameGet(id, nullptr),
                Manager().MemLenGet(id, 1), Manager().IsFixed(id) ? "yes" : "no",
                Manager().SupportsNullValue(id) ? "yes" : "no", IsUsable(id) ? "yes" : "no",
                NxNewtypetab[static_cast<unsigned char>(id)]->format);
}

void ShowStored(const std::string& type, const std::vector<std::string>& texts, const LookOptions& options) {
  Look look(type, options);
  for (const std::string& text : texts) std::printf("%s\n", Hex(look.ImageOf(text)).c_str());
}

void ShowLoaded(const std::string& type, const std::string& hex, const LookOptions& options) {
  Look look(type, options);
  const TextOfValue value = Converter(look.type).ToText(FromHex(hex), look.format);
  std::printf("%s\n", value.isNull ? "{NULL}" : value.text.c_str());
}

void ShowComparison(const std::string& type, const std::string& a, const std::string& b,
                    const LookOptions& options) {
  Look look(type, options);
  Image first = look.ImageOf(a), second = look.ImageOf(b);
  int error = 0;
  long order = Manager().Cmp(look.type, first.size(), first.data(), second.size(), second.data(),
                             OptionWord(options), 1, look.format, error);
  std::printf("%ld  %s %s %s\n", order, a.c_str(), order < 0 ? "<" : order > 0 ? ">" : "=", b.c_str());
  PrintError(error);
}

void ShowHash(const std::string& type, const std::string& text, const LookOptions& options) {
  Look look(type, options);
  Image image = look.ImageOf(text);
  int error = 0;
  std::printf("%08lX\n", Manager().Hash(look.type, image.size(), image.data(), 1, look.format, error));
  PrintError(error);
}

void ShowKey(const std::string& type, const std::string& text, const LookOptions& options) {
  Look look(type, options);
  std::printf("%s\n", DescribeKey(look.type, look.KeyOf(text), look.format).c_str());
}

void ShowBounds(const std::string& type, const std::string& relation, const std::string& text,
                const std::string& low, const std::string& high, const LookOptions& options) {
  Look look(type, options);
  Image key = look.ImageOf(text), lowest, highest;
  NxIdxBounds range{}, bounds{};
  bool hasRange = !low.empty() && !high.empty();
  if (hasRange) {
    lowest = look.KeyOf(low);
    highest = look.KeyOf(high);
    range = {lowest.data(), highest.data(), static_cast<unsigned char>(lowest.size()),
             static_cast<unsigned char>(highest.size())};
  }
  auto word = static_cast<unsigned short>(ParseRelation(relation) | OptionWord(options));
  float fraction = Manager().EvalAndBound(look.type, hasRange ? &range : nullptr, word, key.data(),
                                          look.format, 1, &bounds, nullptr);
  Image lower(static_cast<char*>(bounds.lower), bounds.lower ? bounds.lowerLen : 0);
  Image upper(static_cast<char*>(bounds.upper), bounds.upper ? bounds.upperLen : 0);
  std::free(bounds.lower);
  std::free(bounds.upper);
  std::printf("lower     %s\n", DescribeKey(look.type, lower, look.format).c_str());
  std::printf("upper     %s\n", DescribeKey(look.type, upper, look.format).c_str());
  if (hasRange) std::printf("fraction  %.6g\n", static_cast<double>(fraction));
  if (word & kWildcardFound) std::printf("wildcard found\n");
}

void ShowOrder(const std::string& text, const LookOptions& options) {
  Look look("NxString", options);
  NxString s = StringOfUtf8(text, look.style.codeSet, look.style.language);
  NxStringIterator it(s);
  while (unsigned short order = it.GetNextOrder(1))
    std::printf("%04X  key %08lX  %s\n", order,
                static_cast<unsigned long>(GetCompareFromOrder(order, it._nCollation)),
                OrderName(order, it._nCollation).c_str());
}

void ShowPrinted(const std::string& type, const std::string& value, const LookOptions& options) {
  const Look look(type, options);
  const char* format = options.textFormat ? options.textFormat->c_str() : nullptr;
  std::printf("%s\n", PrintedText(look.type, value, look.style, format).c_str());
}

void ShowScanned(const std::string& type, const std::string& text, const LookOptions& options) {
  const Look look(type, options);
  const char* format = options.textFormat ? options.textFormat->c_str() : nullptr;
  std::printf("%s\n", ScannedText(look.type, text, look.style, format).c_str());
}

}  // namespace nxtm
