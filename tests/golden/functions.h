// The verbs of single functions: each takes the operands of a case and answers its result,
// written as the results of cases are.
#ifndef FUNCTIONS_H
#define FUNCTIONS_H

#include <deque>
#include <functional>
#include <map>

#include "base/nxformat.h"
#include "golden/notation.h"
#include "nxchar.h"
#include "nxcomp.h"
#include "nxint64.h"
#include "nxstritr.h"
#include "nxtmdata.h"
#include "nxtypevl.h"
#include "nxtyphash.h"
#include "ord2str.h"
#include "strwild.h"
#include "support/terms.h"

namespace golden {

// ---------------------------------------------------------------------------
// Results

inline std::string Shown(const std::string& word) { return word; }
inline std::string Shown(const char* word) { return word; }
inline std::string Shown(long long number) { return std::to_string(number); }
inline std::string Shown(long number) { return std::to_string(number); }
inline std::string Shown(int number) { return std::to_string(number); }
inline std::string Shown(double number) {
  std::ostringstream out;
  out.precision(17);
  out << number;
  return out.str();
}
/// A text in quotes; what is not ASCII as \uHHHH.
inline std::string Quoted(const Units& text) {
  std::string word = "'";
  for (const char16_t unit : text) {
    char escaped[8];
    std::snprintf(escaped, sizeof escaped, unit < ' ' || unit > '~' ? "\\u%04X" : "%c", unsigned{unit});
    word += escaped;
  }
  return word + "'";
}
inline std::string Quoted(const std::string& text) { return Quoted(Widened(text)); }
inline std::string Braced(const std::string& bytes) { return "{" + ToHex(bytes) + "}"; }
inline std::string Hex(unsigned long number) {
  std::ostringstream out;
  out << std::uppercase << std::hex << number;
  return out.str();
}

template <class... Parts>
std::string Say(const Parts&... parts) {
  std::string words;
  ((words += (words.empty() ? "" : " ") + Shown(parts)), ...);
  return words;
}
/// What several ways answer: one result when they agree.
template <class T>
std::string Agreed(std::initializer_list<T> answers) {
  std::string words = Shown(*answers.begin());
  for (const T& answer : answers)
    if (Shown(answer) != Shown(*answers.begin())) words += " or " + Shown(answer);
  return words;
}
/// A result as it stands in a file, written as Say writes it.
inline std::string Canonical(const Words& result) {
  std::string words;
  for (const std::string& word : result)
    words += (words.empty() ? "" : " ") + (word[0] == '\''  ? Quoted(TextWord(word).text)
                                           : word[0] == '{' ? Braced(FromHex(word.substr(1)))
                                                            : word);
  return words;
}

// ---------------------------------------------------------------------------
// Operands

/// A number or one of the names of languages.
inline unsigned char LanguageOf(const std::string& word) {
  static const char* const kNames[] = {"none",    "english", "german", "french",
                                       "spanish", "swedish", "danish", "turkish"};
  for (unsigned char number = 0; number < 8; ++number)
    if (word == kNames[number]) return number;
  return static_cast<unsigned char>(std::stoi(word));
}

/// The words of a case from its verb on, and how many words its result has.
struct Case {
  Words words;
  std::size_t wanted;

  bool Has(std::size_t i) const { return i < words.size(); }
  const std::string& operator[](std::size_t i) const { return words.at(i); }
  long Number(std::size_t i) const { return Has(i) ? std::stol(words[i]) : 0; }
  unsigned short Word(std::size_t i) const { return static_cast<unsigned short>(Number(i)); }
  double Double(std::size_t i) const { return std::stod(words.at(i)); }
  unsigned short Hex(std::size_t i) const {
    return static_cast<unsigned short>(std::stoul(words.at(i), nullptr, 16));
  }
  unsigned char Byte(std::size_t i) const { return static_cast<unsigned char>(Hex(i)); }
  unsigned char Language(std::size_t i) const { return Has(i) ? LanguageOf(words[i]) : kLanguageEnglish; }
  TextWord Text(std::size_t i) const { return TextWord(words.at(i)); }
  std::string Bytes(std::size_t i) const { return Bytes8(Text(i).text); }
  std::string Raw(std::size_t i) const { return FromHex(words.at(i).substr(1)); }
  NxString String(std::size_t i, unsigned char codeSet = kCodeSetLatin1) const {
    return ::String(Text(i).text, codeSet, kLanguageEnglish);
  }
  /// A text with its terminator, "null" and "-" for none.
  const char* Chars(std::size_t i) const {
    if (words.at(i) == "null" || words[i] == "-") return nullptr;
    return kept.emplace_back(Bytes(i)).c_str();
  }
  /// A text in its own code set or another one, ended by a zero character of either width.
  std::string Encoded(std::size_t i, int codeSet = -1) const {
    return ::Encoded(Text(i).text, static_cast<unsigned char>(codeSet < 0 ? Text(i).codeSet : codeSet)) +
           std::string(2, '\0');
  }

  mutable std::deque<std::string> kept = {};
};

inline const unsigned char* Unsigned(const std::string& s) {
  return reinterpret_cast<const unsigned char*>(s.c_str());
}
inline unsigned char AlphaForm(const TextWord& word) {
  return word.kind == "k" ? 0xC0 : word.kind == "d" ? 0x40 : 0x00;
}
/// The bytes of an alphabetic text; behind "k" the keys of it.
inline std::string AlphaBytes(const TextWord& word, bool foldsCase) {
  TypeRow row{};
  row.id = foldsCase ? 21 : 20;
  return word.kind == "k" ? Keys(row, Bytes8(word.text)) : Bytes8(word.text);
}

// ---------------------------------------------------------------------------
// Bytes and characters

inline std::string Match(const Case& c) {
  const char *const p = c.Chars(2), *const t = c.Chars(3);
  const auto n = static_cast<int>(c.Number(4));
  if (c[1] == "nxstrcmp") return Say(nxstrcmp(p, t, n));
  if (c[1] == "nxstrwild") return Say(nxstrwild(p, t, n));
  if (c[1] == "strwild") return Agreed({strwild(p, t), istrwild(p, t, 0, 0), caseistrwild(p, t, 0, 0)});
  const auto wild = c[1] == "istrwild" ? istrwild : c[1] == "caseistrwild" ? caseistrwild : mappedwild;
  const TextWord pattern = c.Text(2), text = c.Text(3);
  return Say(wild(AlphaBytes(pattern, true).c_str(), AlphaBytes(text, true).c_str(), AlphaForm(pattern),
                  AlphaForm(text)));
}

inline std::string FirstWild(const Case& c) {
  const char* const text = c.Chars(1);
  return Agreed(
      {strwc(text), istrwc(text, 0), istrwc(text, 0x40), caseistrwc(text, 0), caseistrwc(text, 0x40)});
}

inline std::string FindWild(const Case& c) {
  const auto find = [&](unsigned char codeSet) {
    short bytes = 77;
    const int position = NxStrWild(codeSet, 1, c.Encoded(1, codeSet).c_str(), c[2] == "asterisk",
                                   static_cast<short>(c.Number(3)), &bytes, 1);
    return bytes == (position < 0 ? -1 : position * NxCharWidth(codeSet)) ? position : 9999;
  };
  return Agreed({find(0), find(1), find(253)});
}

inline std::string Character(const Case& c) {
  unsigned char found = 0x55;
  const int failed = NxConvertOrderToChar(c.Hex(1), c.Language(2), found, 0, nullptr);
  return failed ? "failed" : Quoted(Units{found});
}
inline std::string NameOf(unsigned short order, unsigned char language) {
  NxString text;
  return NxConvertOrderToString(order, language, text) ? "failed" : Quoted(Text(text));
}
inline std::string Named(const Case& c) {
  const unsigned short order =
      NxChar(static_cast<unsigned short>(c.Text(1).text[0]), kCodeSetUnicode, 1).GetOrder();
  unsigned char found = 0x55;
  NxConvertOrderToChar(order, kLanguageEnglish, found, 1, nullptr);
  const std::string name = NameOf(order, kLanguageEnglish);
  return c.wanted > 1 ? Say(name, Quoted(Units{found})) : name;
}

inline std::string CaseOf(const Case& c) {
  const NxUnicodeProps* props = NxLanguageContext::QueryCodeSet(static_cast<unsigned char>(c.Number(1)))
                                    ->GetUnicodeProps(c.Text(3).text[0], c.Language(2));
  Units upper, lower;
  if (props && props->upper) upper += static_cast<char16_t>(props->upper);
  for (short i = 0; props && props->furtherUpper && i < props->furtherUpper->Count(); ++i)
    upper += static_cast<char16_t>(props->furtherUpper->At(i));
  if (props && props->lower) lower += static_cast<char16_t>(props->lower);
  return Say(upper.empty() ? "-" : Quoted(upper), lower.empty() ? "-" : Quoted(lower));
}

inline std::string ClassOf(const Case& c) {
  const NxChar ch(c.Hex(1), kCodeSetUnicode, 1);
  return Say(ch.IsSpace(), ch.IsSymbol(), ch.IsDigit(), ch.IsAlpha(), ch.IsHan());
}

// ---------------------------------------------------------------------------
// Strings

inline std::string Number(const Case& c) {
  const NxString s = c.String(1);
  const long number = s;
  const double exact = s;
  *___NxTypeMgrOptions() = kOptionDecimalOnly;
  const int decimal = s;
  *___NxTypeMgrOptions() = 0;
  return Say(number, static_cast<short>(s) == static_cast<short>(number) ? decimal : -1, exact);
}

inline std::string Parse(const Case& c) {
  long decimal = 99, byPrefix = 99;
  const int result = c.String(1).Atol(decimal);
  return Say(Agreed({result, c.String(1).Strtol(byPrefix)}), decimal, byPrefix);
}

/// The text of a string of either width, when its size is that of the text.
inline std::string Whole(const NxString& s) {
  const Units text = NxCharWidth(s._nCodeSet) == 2 ? Text16(s) : Widened(Text(s));
  return s._nSize == (text.size() + 1) * s.NullLen() ? Quoted(text) : "another size";
}

inline std::string Edited(const Case& c, unsigned char codeSet) {
  NxString s = c.String(1, codeSet);
  std::size_t i = 2;
  const auto text = [&] { return c[i++] == "self" ? s : c.String(i - 1, codeSet); };
  const auto number = [&] { return c.Word(i++); };
  const auto letter = [&] { return static_cast<char>(c.Text(i++).text[0]); };
  NxString a, b;
  unsigned short n;
  const std::map<std::string, std::function<void()>> steps = {
      {"append", [&] { s += text(); }},
      {"cut", [&] { n = number(), s.Cut(n, static_cast<short>(number())); }},
      {"expand", [&] { n = number(), s.Expand(n, letter()); }},
      {"fill", [&] { n = number(), s.Fill(n, letter()); }},
      {"insert", [&] { a = text(), s.Insert(a, number()); }},
      {"left-trim", [&] { s.LeftTrim(); }},
      {"lower", [&] { s.ToLower(); }},
      {"replace", [&] { a = text(), s.Replace(a, number()); }},
      {"replace-all", [&] { a = text(), b = text(), s.ReplaceAll(a, b, number()); }},
      {"right-trim", [&] { s.RightTrim(); }},
      {"trim", [&] { s.Trim(); }},
      {"upper", [&] { s.ToUpper(); }},
  };
  while (c.Has(i)) steps.at(c[i++])();
  return Whole(s);
}

inline std::string Find(const Case& c) {
  const auto find = [&](unsigned char codeSet) {
    return long{c.String(1, codeSet).Find(c.String(2, codeSet), c.Word(3), Options(c[4]))};
  };
  return Agreed({find(kCodeSetLatin1), find(kCodeSetUnicode)});
}

inline std::string Split(const Case& c) {
  NxString list = c.String(1), item("untouched");
  unsigned short pos = 0;
  std::string items;
  for (int n = 0; n < 10 && NxSplitList(list, item, c.String(2), pos) == 0; ++n)
    items += (n ? " " : "") + Quoted(Text(item));
  return !items.empty() ? items : Text(item) == "untouched" ? "-" : "touched";
}

/// The kinds of value whose conversion a format has.
inline std::string Fits(const Case& c) {
  using Arg = NxFormatArg;
  const bool scans = c[1] == "scan";
  const std::vector<std::pair<const char*, Arg>> kinds =
      scans ? std::vector<std::pair<const char*, Arg>>{{"byte", Arg::kByte},     {"short", Arg::kShort},
                                                       {"word", Arg::kWord},     {"float", Arg::kFloat},
                                                       {"double", Arg::kDouble}, {"text", Arg::kText}}
            : std::vector<std::pair<const char*, Arg>>{
                  {"word", Arg::kWord}, {"double", Arg::kDouble}, {"text", Arg::kText}};
  std::string found;
  std::size_t count = 0;
  for (const auto& [name, kind] : kinds)
    if ((scans ? NxScanFormatFits : NxPrintFormatFits)(c.Chars(2), {kind}))
      found += (count++ ? " " : "") + std::string(name);
  return count == kinds.size() ? "all" : count ? found : "none";
}

// ---------------------------------------------------------------------------
// Alphabetic texts

inline std::string AlphaKeys(const Case& c) {
  const std::string text = c.Raw(2) + '\0';
  std::string keys(32, '\xEE');
  const int n = (c[1] == "i" ? _NxIMapString : _NxCaseIMapString)(reinterpret_cast<unsigned char*>(&keys[0]),
                                                                  Unsigned(text), c.Word(3));
  return keys[n] == '\xEE' ? Braced(keys.substr(0, n)) : "more";
}

inline std::string Weigh(const Case& c) {
  std::string weights;
  for (const char byte : c.Raw(2)) {
    unsigned char extra = 0xEE;
    weights += static_cast<char>((c[1] == "i" ? _NxIMapByte : _NxCaseIMapByte)(byte, extra));
    weights += static_cast<char>(extra);
  }
  return Braced(weights);
}

inline std::string Capitals(const Case& c) {
  const std::string keys = AlphaBytes(TextWord("k" + c[1]), true);
  std::vector<unsigned char> text(keys.size() + 2, 0);
  const int count = _NxCaseIDeMapString(text.data(), Unsigned(keys), c.Word(2));
  return Say(Quoted(reinterpret_cast<char*>(text.data())), count);
}

inline std::string Letter(const Case& c) {
  int consumed = 7;
  const unsigned char byte = _NxCaseIDeMapByte(c.Byte(1), c.Byte(2), consumed);
  return Say(Hex(byte), consumed);
}

/// Under the forms of both, given in hexadecimal.
inline std::string AlphaCompare(const Case& c) {
  return Say(
      (c[1] == "i" ? nxistrcmp : nxcaseistrcmp)(c.Chars(3), c.Chars(5), c.Word(6), c.Byte(2), c.Byte(4)));
}

// ---------------------------------------------------------------------------
// Identifiers and numbers

inline std::string TypeId(const Case& c) {
  char id = 77;
  const int result = NxTypeMgr(static_cast<unsigned long>(c.Number(1))).Name2NxTypeId(c.Bytes(2).c_str(), id);
  return Say(result, int{id});
}

inline std::string Factory(const Case& c) {
  NxTypeMgr mgr(5);
  mgr.SetFactory(static_cast<unsigned long>(c.Number(1)));
  return Say(int{mgr.factory}, mgr.table == NxOldtypetab ? "early" : "current");
}

inline std::string Day(const Case& c) {
  const NxDate date(c.Number(1));
  return Say(int{date.year}) + ":" + Say(int{date.month}) + ":" + Say(int{date.day});
}

using Verb = std::string (*)(const Case&);
inline const std::map<std::string, Verb> kFunctions = {
    {"alpha-compare", AlphaCompare},
    {"calc",
     [](const Case& c) {
       return Say(CalcRange(Options(c[1]), c.Double(2), c.Double(3), c.Double(4), c.Double(5), 1));
     }},
    {"capitals", Capitals},
    {"case", CaseOf},
    {"char", Character},
    {"class", ClassOf},
    {"day", Day},
    {"edit",
     [](const Case& c) {
       return Agreed({Edited(c, kCodeSetLatin1), Edited(c, kCodeSetUnicode)});
     }},
    {"factory", Factory},
    {"find", Find},
    {"find-wild", FindWild},
    {"first-wild", FirstWild},
    {"fits", Fits},
    {"from-double", [](const Case& c) { return Say(NxInt64(c.Double(1)).Wide()); }},
    {"hash-string",
     [](const Case& c) {
       const NxString s = String(c.Text(1).text, c.Text(1).codeSet, c.Text(1).language);
       return Say(Hex(HashNxString(s)), Hex(HashNxString7(s)));
     }},
    {"hash-text",
     [](const Case& c) {
       const TextWord word = c.Text(1);
       return Hex(
           HashString(word.codeSet, word.language, c.Encoded(1).c_str(), static_cast<short>(c.Number(2)), 1));
     }},
    {"keys", AlphaKeys},
    {"letter", Letter},
    {"map",
     [](const Case& c) {
       return Hex(NxLanguageContext::QueryCodeSet(static_cast<unsigned char>(c.Number(2)))
                      ->MapFrom(c.Hex(3), static_cast<unsigned char>(c.Number(1))));
     }},
    {"match", Match},
    {"name", [](const Case& c) { return NameOf(c.Hex(1), c.Language(2)); }},
    {"named", Named},
    {"number", Number},
    {"parse", Parse},
    {"place",
     [](const Case& c) {
       const std::string text = c.Encoded(1);
       NxStringIterator it(text.c_str(), c.Text(1).codeSet, c.Text(1).language, 1);
       return Say(EvalString(it, c.Word(2)));
     }},
    {"sort-key",
     [](const Case& c) {
       const NxString s = String(c.Text(1).text, c.Text(1).codeSet, c.Text(1).language);
       return Braced(KeyOf(kStringTypeId, &s, kFormatMemory));
     }},
    {"split", Split},
    {"type-id", TypeId},
    {"weigh", Weigh},
};

}  // namespace golden

#endif
