// The cases of golden/*.txt, a line each: verb, operands, "=", result. README.md in this
// folder says what each verb does.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>

#include "base/nxformat.h"
#include "golden/notation.h"
#include "nxchar.h"
#include "nxcomp.h"
#include "nxconv.h"
#include "nxint64.h"
#include "nxstritr.h"
#include "nxtmdata.h"
#include "nxtypevl.h"
#include "nxtypfmt.h"
#include "nxtyphash.h"
#include "ord2str.h"
#include "strwild.h"

namespace {

using namespace golden;

/// A type by its name, of early database formats behind "early-"; behind ":" the format
/// bytes in hexadecimal under which alone the case holds.
struct Type {
  TypeRow row;
  NxTypeMgr mgr{5};
  std::vector<unsigned char> formats;

  explicit Type(std::string word, std::vector<unsigned char> all = {1, 2, 8}) : formats(std::move(all)) {
    if (const std::size_t colon = word.find(':'); colon != std::string::npos) {
      formats.clear();
      for (const char byte : FromHex(word.substr(colon + 1)))
        formats.push_back(static_cast<unsigned char>(byte));
      word.resize(colon);
    }
    if (word.compare(0, 6, "early-") == 0) {
      mgr.SetFactory(3);
      word.erase(0, 6);
    }
    static const std::vector<TypeRow> rows = AllTypeRows();
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&](const TypeRow& r) { return r.name == word; });
    if (found != rows.end()) row = *found;
    EXPECT_EQ(row.name, word);
  }
  std::string Stored(const std::string& word, unsigned char format) { return Image(mgr, row, word, format); }
};

/// A value in memory, built of a word and released with it.
class InMemory {
 public:
  InMemory(Type& type, const std::string& word) : type_(type), value_(type.mgr.Create(type.row.id, 1)) {
    const TextWord text(type.row.fixed ? "''" : word);
    if (IsText(type.row))
      *static_cast<NxString*>(value_) = String(text.text, text.codeSet, text.language);
    else if (type.row.id == 20)
      *static_cast<NxIString*>(value_) = Bytes8(text.text).c_str();
    else if (type.row.id == 21)
      *static_cast<NxCaseIString*>(value_) = Bytes8(text.text).c_str();
    else
      std::memcpy(value_, Value(type.row, word).data(), type.row.size);
    if (word == "null") type.mgr.SetNullValue(type.row.id, value_);
  }
  InMemory(const InMemory&) = delete;
  InMemory& operator=(const InMemory&) = delete;
  ~InMemory() { type_.mgr.Delete(type_.row.id, value_, 1); }
  void* Get() const { return value_; }
  std::string Raw() const { return std::string(static_cast<char*>(value_), type_.row.size); }

 private:
  Type& type_;
  void* value_;
};

/// Whether a word says more than a value in memory can hold.
bool OnlyStored(const std::string& word) {
  const std::size_t end = word.rfind('\'');
  return word[0] == '{' || (end != std::string::npos &&
                            (word[0] != '\'' || word.find_first_of("-#", end) != std::string::npos));
}

// ---------------------------------------------------------------------------
// Values

void Compare(const Words& in, const Words& out) {
  Type type(in[1]);
  const unsigned short options = Options(in[2]);
  const int expectedError = out.size() < 2 ? 0 : out[1] == "past" ? kPastBuffer : kNotPossible;
  for (const unsigned char format : type.formats) {
    SCOPED_TRACE(testing::Message() << "format " << int{format});
    int error = 77;
    long order;
    if (format == kFormatMemory) {
      if (OnlyStored(in[3]) || OnlyStored(in[4])) continue;
      const InMemory a(type, in[3]), b(type, in[4]);
      order = type.mgr.Cmp(type.row.id, 0, a.Get(), 0, b.Get(), options, 1, format, error);
    } else {
      if (type.formats.size() > 1 && format == kFormatBigEndian && (in[3][0] == '{' || in[4][0] == '{'))
        continue;
      const std::string x = type.Stored(in[3], format), y = type.Stored(in[4], format);
      const Block a = Exactly(x), b = Exactly(y);
      order = type.mgr.Cmp(type.row.id, a.Size(), a.Data(), b.Size(), b.Data(), options, 1, format, error);
    }
    if (std::abs(std::stol(out[0])) > 1)
      EXPECT_EQ(order, std::stol(out[0]));
    else
      EXPECT_EQ(Sign(order), std::stol(out[0]));
    EXPECT_EQ(error, expectedError);
  }
}

void Hash(const Words& in, const Words& out) {
  Type type(in[1]);
  for (const unsigned char format : type.formats) {
    if (format == kFormatMemory && OnlyStored(in[2])) continue;
    const InMemory value(type, in[2]);
    const std::string image = format == kFormatMemory ? value.Raw() : type.Stored(in[2], format);
    const Block block = Exactly(image);
    int error = 77;
    EXPECT_EQ(type.mgr.Hash(type.row.id, block.Size(), block.Data(), 1, format, error),
              std::stoul(out[0], nullptr, 16))
        << int{format};
    EXPECT_EQ(error, out.size() < 2 ? 0 : out[1] == "past" ? kPastBuffer : kNotPossible);
  }
}

void StoredImage(const Words& in, const Words& out) {
  Type type(in[1], {1});
  for (const unsigned char format : type.formats) {
    const InMemory value(type, in[2]), back(type, "null");
    const std::string expected = FromHex(out[0].substr(1));
    Block image(static_cast<unsigned long>(type.mgr.DiskLenGet(type.row.id, value.Get(), format, 1, 8)));
    EXPECT_EQ(type.mgr.Store(type.row.id, image.Data(), value.Get(), format, 1), expected.size());
    EXPECT_EQ(ToHex(Str(image)), ToHex(expected));
    EXPECT_EQ(type.mgr.Load(type.row.id, back.Get(), image.Data(), format, 1), expected.size());
    Block again(image.Size());
    type.mgr.Store(type.row.id, again.Data(), back.Get(), format, 1);
    EXPECT_TRUE(again == image || expected[0] == 0x01) << "stored again, but for texts as in memory";
  }
}

/// translate TYPE SOURCE-FORMAT SOURCE FORMAT LENGTH: the bytes that Translate produces.
void Translate(const Words& in, const Words& out) {
  Type type(in[1]);
  const auto from = static_cast<unsigned char>(std::stoi(in[2], nullptr, 16));
  const auto to = static_cast<unsigned char>(std::stoi(in[4], nullptr, 16));
  Block dst(std::stoul(in[5]));
  const unsigned long n = in.size() > 6 ? std::stoul(in[6]) : 1;
  int produced;
  if (from == kFormatMemory) {
    const InMemory value(type, in[3]);
    produced = type.mgr.Translate(type.row.id, dst.Data(), to, dst.Size(), value.Get(), from, 0, n);
  } else {
    const std::string source = type.Stored(in[3], from);
    const Block src = Exactly(source);
    produced = type.mgr.Translate(type.row.id, dst.Data(), to, dst.Size(), src.Data(), from, src.Size(), n);
    EXPECT_EQ(Str(src), source);
  }
  std::string expected;
  for (const std::string& word : out)
    expected += word[0] == '{' ? FromHex(word.substr(1)) : type.Stored(word, to);
  ASSERT_EQ(produced, static_cast<int>(expected.size()));
  EXPECT_EQ(ToHex(Str(dst, expected.size())), ToHex(expected));
}

/// An index range, or none for "-".
struct Range {
  std::string low, high;
  NxIdxBounds bounds{};
  Range(Type& type, const std::string& lowWord, const std::string& highWord, unsigned char format) {
    if (lowWord == "-") return;
    low = type.Stored(lowWord, format);
    high = type.Stored(highWord, format);
    bounds = {&low[0], &high[0], static_cast<unsigned char>(low.size()),
              static_cast<unsigned char>(high.size())};
  }
  NxIdxBounds* Get() { return bounds.lower ? &bounds : nullptr; }
};

void Estimate(const Words& in, const Words& out) {
  Type type(in[1], {1, 2});
  for (const unsigned char format : type.formats) {
    std::string key = type.Stored(in[3], format);
    Range range(type, in[4], in[5], format);
    unsigned short relation = Options(in[2]);
    NxIdxBounds bounds{};
    const float estimate =
        type.mgr.EvalAndBound(type.row.id, range.Get(), relation, &key[0], format, 1, &bounds, nullptr);
    std::free(bounds.lower);
    std::free(bounds.upper);
    const std::size_t slash = out[0].find('/');
    const double expected =
        std::stod(out[0]) / (slash < out[0].size() ? std::stod(out[0].substr(slash + 1)) : 1);
    EXPECT_FLOAT_EQ(estimate, static_cast<float>(expected)) << int{format};
  }
}

void Bounds(const Words& in, const Words& out) {
  Type type(in[1], {1, 2});
  for (const unsigned char format : type.formats) {
    if (format == kFormatBigEndian && (out[0][0] == '{' || out[1][0] == '{' || in[3][0] == '{')) continue;
    SCOPED_TRACE(testing::Message() << "format " << int{format});
    const std::string image = type.Stored(in[3], format);
    const Block key = Exactly(image);
    NxIdxBounds bounds{};
    unsigned short relation = Options(in[2]);
    type.mgr.EvalAndBound(type.row.id, nullptr, relation, key.Data(), format, 1, &bounds, nullptr);
    const auto expect = [&](void* bound, unsigned char length, const std::string& word) {
      const std::unique_ptr<void, decltype(&std::free)> owned(bound, std::free);
      EXPECT_EQ(bound ? ToHex(std::string(static_cast<char*>(bound), length)) : "-",
                word == "-" ? word : ToHex(type.Stored(word, format)));
    };
    expect(bounds.lower, bounds.lowerLen, out[0]);
    expect(bounds.upper, bounds.upperLen, out[1]);
    const std::string mark = out.size() > 2 ? out[2] : "";
    EXPECT_EQ(relation & kWildcardFound, mark == "found" ? kWildcardFound : 0);
    EXPECT_TRUE(mark != "masked" || relation == (Options(in[2]) & kRelationMask)) << relation;
    EXPECT_TRUE(key == Exactly(image)) << "the key is as it was";
  }
}

/// calc RELATION LOW HIGH INDEX-LOW INDEX-HIGH
void Calc(const Words& in, const Words& out) {
  EXPECT_EQ(
      CalcRange(Options(in[1]), std::stod(in[2]), std::stod(in[3]), std::stod(in[4]), std::stod(in[5]), 1),
      std::stod(out[0]));
}

// ---------------------------------------------------------------------------
// Texts of values

std::string Shown(const NxString& s) { return s.IsNullValue() ? "null" : "'" + Text(s) + "'"; }
std::string Shown(const std::string& word) {
  return word[0] == '\'' ? "'" + Bytes8(TextWord(word).text) + "'" : word;
}

/// What a string array becomes, the text being the last of two.
std::string FromTexts(Type& type, const std::string& word) {
  NxString strings[2];
  if (word != "missing") strings[1] = String(TextWord(word).text, TextWord(word).codeSet, 1);
  if (word == "null") strings[1].SetNullValue();
  NxTypeConvertData record(11, word == "missing" ? 1 : 2, strings, nullptr);
  void* values = type.mgr.ConvertFrom(type.row.id, &record, 2);
  record.mgr = nullptr;  // the texts stay here
  const char* const raw = static_cast<char*>(values) + type.row.size;
  std::string value(type.row.size, '\0');  // what is stored of it
  for (const TypeRow::Field& field : type.row.image)
    std::memcpy(&value[field.offset], raw + field.offset, field.width);
  type.mgr.Delete(type.row.id, values, 2);
  return value;
}

void Array(const Words& in, const Words& out) {
  Type type(in[1]);
  const std::string value = Value(type.row, in[2]);
  std::string values = "x" + value + value;  // not aligned
  const std::unique_ptr<NxTypeConvertData> strings(type.mgr.ConvertTo(type.row.id, &values[1], 2));
  ASSERT_EQ(strings->count, 2U);
  EXPECT_EQ(Shown(*strings->GetString(1)), Shown(out[0]));
  if (out.size() < 2) {
    EXPECT_EQ(ToHex(FromTexts(type, out[0])), ToHex(value));
  }
}

void FromArray(const Words& in, const Words& out) {
  Type type(in[1]);
  *___NxTypeMgrOptions() = in.size() > 3 ? kOptionDecimalOnly : 0;
  EXPECT_EQ(ToHex(FromTexts(type, in[2])), ToHex(Value(type.row, out[0])));
  *___NxTypeMgrOptions() = 0;
}

/// "-" is the type's own format.
const char* FormatOf(const std::string& word, std::string& bytes) {
  if (word == "-") return nullptr;
  bytes = Bytes8(TextWord(word).text);
  return bytes.c_str();
}

void Print(const Words& in, const Words& out) {
  Type type(in[1]);
  std::string bytes;
  const char* format = FormatOf(in[2], bytes);
  const InMemory value(type, in[3]);
  NxString text("old");
  EXPECT_EQ(&type.mgr.PrintToNxString(type.row.id, text, value.Get(), format, 1), &text);
  EXPECT_EQ(Shown(text), Shown(out[0]));
}

/// Into a value that was `77`, from text of either width; "-" when it is still that.
void Scan(const Words& in, const Words& out) {
  Type type(in[1]);
  std::string bytes;
  const char* format = FormatOf(in[2], bytes);
  for (const unsigned char codeSet : {kCodeSetLatin1, kCodeSetUnicode}) {
    NxString text = String(TextWord(in[3]).text, codeSet, 1);
    const InMemory value(type, "77"), expected(type, out[0] == "-" ? "77" : out[0]);
    EXPECT_EQ(type.mgr.ScanFromNxString(type.row.id, value.Get(), text, format, 1), value.Get());
    EXPECT_EQ(ToHex(value.Raw()), ToHex(expected.Raw())) << "code set " << int{codeSet};
  }
}

/// The kinds of value whose conversion a format has.
void Fits(const Words& in, const Words& out) {
  using Arg = NxFormatArg;
  const std::pair<const char*, Arg> kinds[] = {{"byte", Arg::kByte},     {"short", Arg::kShort},
                                               {"word", Arg::kWord},     {"float", Arg::kFloat},
                                               {"double", Arg::kDouble}, {"text", Arg::kText}};
  const std::string format = Bytes8(TextWord(in[2]).text);
  for (const auto& [name, kind] : kinds) {
    const bool scans = in[1] == "scan";
    if (!scans && (kind == Arg::kByte || kind == Arg::kShort || kind == Arg::kFloat)) continue;
    EXPECT_EQ((scans ? NxScanFormatFits : NxPrintFormatFits)(format.c_str(), {kind}),
              out[0] == "all" || std::count(out.begin(), out.end(), name) != 0)
        << name;
  }
}

// ---------------------------------------------------------------------------
// Texts

/// A number or one of the names of languages.
unsigned char Language(const std::string& word) {
  static const char* const kNames[] = {"none",    "english", "german", "french",
                                       "spanish", "swedish", "danish", "turkish"};
  for (unsigned char number = 0; number < 8; ++number)
    if (word == kNames[number]) return number;
  return static_cast<unsigned char>(std::stoi(word));
}

/// A chain of words in their order, which holds of all pairs; "=" joins equal ones.
void OrderChain(const Words& in, const Words&) {
  std::vector<std::pair<Units, int>> chain;
  int place = 0;
  for (std::size_t i = 3; i < in.size(); ++i)
    if (in[i] == "~")
      --place;
    else
      chain.emplace_back(in[i][0] == '\'' ? TextWord(in[i]).text : Unescaped(in[i]), place++);
  const unsigned char language = Language(in[1]);
  for (const auto& [a, placeA] : chain)
    for (const auto& [b, placeB] : chain)
      for (const unsigned char codeSet : {kCodeSetUnicode, kCodeSetLatin1}) {
        const auto isWide = [](char16_t unit) { return unit > 0xFF; };
        if (codeSet == kCodeSetLatin1 &&
            (std::any_of(a.begin(), a.end(), isWide) || std::any_of(b.begin(), b.end(), isWide)))
          continue;
        const std::string end(2, '\0');
        EXPECT_EQ(Sign(NxStrCmp(codeSet, language, (Encoded(a, codeSet) + end).c_str(), codeSet, language,
                                (Encoded(b, codeSet) + end).c_str(), Options(in[2]) | kWildcardsOff, -1, 1,
                                nullptr)),
                  Sign(placeA - placeB))
            << testing::PrintToString(a) << " and " << testing::PrintToString(b) << " in " << int{codeSet};
      }
}

int Mapped(int (*wild)(const char*, const char*, unsigned char, unsigned char), const Words& in) {
  const TypeRow row{21, "", 0, false, {}, false, "", "", "", "", ""};
  std::string texts[2];
  unsigned char forms[2];
  for (int i = 0; i < 2; ++i) {
    const TextWord word(in[2 + static_cast<std::size_t>(i)]);
    texts[i] = word.kind == "k" ? Keys(row, Bytes8(word.text)) : Bytes8(word.text);
    forms[i] = word.kind == "k" ? 0xC0 : word.kind == "d" ? 0x40 : 0x00;
  }
  return wild(texts[0].c_str(), texts[1].c_str(), forms[0], forms[1]);
}

/// match FUNCTION PATTERN TEXT [N]
void Match(const Words& in, const Words& out) {
  const std::string a = in[2] == "null" ? "" : Bytes8(TextWord(in[2]).text);
  const std::string b = in[3] == "null" ? "" : Bytes8(TextWord(in[3]).text);
  const char* const p = in[2] == "null" ? nullptr : a.c_str();
  const char* const t = in[3] == "null" ? nullptr : b.c_str();
  const int n = in.size() > 4 ? std::stoi(in[4]) : 0, expected = std::stoi(out[0]);
  if (in[1] == "nxstrcmp") {
    EXPECT_EQ(nxstrcmp(p, t, n), expected);
  } else if (in[1] == "nxstrwild") {
    EXPECT_EQ(nxstrwild(p, t, n), expected);
  } else if (in[1] == "strwild") {
    EXPECT_EQ(strwild(p, t), expected);
    EXPECT_EQ(istrwild(p, t, 0, 0), expected);
    EXPECT_EQ(caseistrwild(p, t, 0, 0), expected);
  } else {
    EXPECT_EQ(Mapped(in[1] == "istrwild"       ? istrwild
                     : in[1] == "caseistrwild" ? caseistrwild
                                               : mappedwild,
                     in),
              expected);
  }
}

/// first-wild 'text': the position of the first "?", "*" or "\".
void FirstWild(const Words& in, const Words& out) {
  const std::string text = Bytes8(TextWord(in[1]).text);
  EXPECT_EQ(strwc(text.c_str()), std::stoi(out[0]));
  for (const unsigned char form : {0x00, 0x40}) {
    EXPECT_EQ(istrwc(text.c_str(), form), std::stoi(out[0]));
    EXPECT_EQ(caseistrwc(text.c_str(), form), std::stoi(out[0]));
  }
}

/// find-wild 'text' ALL|ASTERISK LENGTH: in characters, under every kind of code set.
void FindWild(const Words& in, const Words& out) {
  for (const unsigned char codeSet : {0, 1, 253}) {
    const std::string text = Encoded(TextWord(in[1]).text, codeSet) + std::string(2, '\0');
    short bytes = 77;
    const int position = NxStrWild(codeSet, 1, text.c_str(), in[2] == "asterisk",
                                   static_cast<short>(std::stoi(in[3])), &bytes, 1);
    EXPECT_EQ(position, std::stoi(out[0])) << int{codeSet};
    EXPECT_EQ(bytes, position < 0 ? -1 : position * NxCharWidth(codeSet));
  }
}

void HashText(const Words& in, const Words& out) {
  const TextWord word(in[1]);
  const std::string text = Encoded(word.text, word.codeSet) + std::string(2, '\0');
  EXPECT_EQ(HashString(word.codeSet, word.language, text.c_str(), static_cast<short>(std::stoi(in[2])), 1),
            std::stoul(out[0], nullptr, 16));
}

/// place 'text' N: the place of a text's start on the scale of estimates.
void Place(const Words& in, const Words& out) {
  const TextWord word(in[1]);
  const std::string text = Encoded(word.text, word.codeSet) + std::string(2, '\0');
  NxStringIterator it(text.c_str(), word.codeSet, word.language, 1);
  EXPECT_EQ(std::to_string(EvalString(it, static_cast<unsigned short>(std::stoi(in[2])))),
            out[0] + ".000000");
}

unsigned short OrderOf(const std::string& word) {
  return static_cast<unsigned short>(std::stoi(word, nullptr, 16));
}

void Name(const Words& in, const Words& out) {
  NxString text;
  EXPECT_EQ(NxConvertOrderToString(OrderOf(in[1]), in.size() > 2 ? Language(in[2]) : 1, text), 0);
  EXPECT_EQ(Text(text), Bytes8(TextWord(out[0]).text));
}

void Character(const Words& in, const Words& out) {
  unsigned char c = 0x55;
  EXPECT_EQ(NxConvertOrderToChar(OrderOf(in[1]), in.size() > 2 ? Language(in[2]) : 1, c, 0, nullptr), 0);
  EXPECT_EQ(c, TextWord(out[0]).text[0]);
}

/// named 'c' = the name of a character's order value, and the character that stands for it
void Named(const Words& in, const Words& out) {
  const unsigned short order =
      NxChar(static_cast<unsigned short>(TextWord(in[1]).text[0]), kCodeSetUnicode, 1).GetOrder();
  NxString name;
  NxConvertOrderToString(order, kLanguageEnglish, name);
  EXPECT_EQ(Text(name), Bytes8(TextWord(out[0]).text));
  unsigned char c = 0x55;
  NxConvertOrderToChar(order, kLanguageEnglish, c, 1, nullptr);
  if (out.size() > 1) {
    EXPECT_EQ(c, TextWord(out[1]).text[0]);
  }
}

/// map CODESET CODESET VALUE
void Map(const Words& in, const Words& out) {
  const auto number = [&](std::size_t i) { return static_cast<unsigned char>(std::stoi(in[i])); };
  EXPECT_EQ(NxLanguageContext::QueryCodeSet(number(2))->MapFrom(OrderOf(in[3]), number(1)), OrderOf(out[0]));
}

/// case CODESET LANGUAGE 'x' = UPPER LOWER, "-" where there is none.
void Case(const Words& in, const Words& out) {
  const NxUnicodeProps* props = NxLanguageContext::QueryCodeSet(static_cast<unsigned char>(std::stoi(in[1])))
                                    ->GetUnicodeProps(TextWord(in[3]).text[0], Language(in[2]));
  Units upper, lower;
  if (props && props->upper) upper += static_cast<char16_t>(props->upper);
  for (short i = 0; props && props->furtherUpper && i < props->furtherUpper->Count(); ++i)
    upper += static_cast<char16_t>(props->furtherUpper->At(i));
  if (props && props->lower) lower += static_cast<char16_t>(props->lower);
  EXPECT_EQ(upper, out[0] == "-" ? Units() : TextWord(out[0]).text);
  EXPECT_EQ(lower, out[1] == "-" ? Units() : TextWord(out[1]).text);
}

/// number 'text' = by prefix, in base 10, as a double
void Number(const Words& in, const Words& out) {
  const NxString s = String(TextWord(in[1]).text, kCodeSetLatin1, 1);
  EXPECT_EQ(static_cast<long>(s), std::stol(out[0]));
  EXPECT_EQ(static_cast<short>(s), static_cast<short>(std::stol(out[0])));
  EXPECT_EQ(static_cast<double>(s), std::stod(out[2]));
  *___NxTypeMgrOptions() = kOptionDecimalOnly;
  EXPECT_EQ(static_cast<int>(s), std::stol(out[1]));
  *___NxTypeMgrOptions() = 0;
}

/// parse 'text' = result of Atol and Strtol, and their numbers
void Parse(const Words& in, const Words& out) {
  const NxString s = String(TextWord(in[1]).text, kCodeSetLatin1, 1);
  long decimal = 99, byPrefix = 99;
  EXPECT_EQ(s.Atol(decimal), std::stoi(out[0]));
  EXPECT_EQ(s.Strtol(byPrefix), std::stoi(out[0]));
  EXPECT_EQ(decimal, std::stol(out[1]));
  EXPECT_EQ(byPrefix, std::stol(out[2]));
}

/// edit 'text' STEP...: on strings of either width.
void Edit(const Words& in, const Words& out) {
  for (const unsigned char codeSet : {kCodeSetLatin1, kCodeSetUnicode}) {
    NxString s = String(TextWord(in[1]).text, codeSet, 1);
    for (std::size_t i = 2; i < in.size();) {
      const std::string& step = in[i++];
      const auto text = [&] {
        const std::string& word = in[i++];
        return word == "self" ? s : String(TextWord(word).text, codeSet, 1);
      };
      const auto number = [&] { return static_cast<unsigned short>(std::stoi(in[i++])); };
      const auto letter = [&] { return static_cast<char>(TextWord(in[i++]).text[0]); };
      if (step == "append") {
        s += text();
      } else if (step == "trim") {
        s.Trim();
      } else if (step == "left-trim") {
        s.LeftTrim();
      } else if (step == "right-trim") {
        s.RightTrim();
      } else if (step == "upper") {
        s.ToUpper();
      } else if (step == "lower") {
        s.ToLower();
      } else if (step == "insert" || step == "replace") {
        const NxString other = text();
        step == "insert" ? s.Insert(other, number()) : s.Replace(other, number());
      } else if (step == "fill" || step == "expand") {
        const unsigned short n = number();
        step == "fill" ? s.Fill(n, letter()) : s.Expand(n, letter());
      } else if (step == "cut") {
        const unsigned short pos = number();
        s.Cut(pos, static_cast<short>(number()));
      } else {
        ASSERT_EQ(step, "replace-all");
        const NxString from = text(), to = text();
        s.ReplaceAll(from, to, number());
      }
    }
    EXPECT_EQ(s._nSize, (TextWord(out[0]).text.size() + 1) * s.NullLen());
    EXPECT_EQ(codeSet == kCodeSetUnicode ? Text16(s) : Widened(Text(s)), TextWord(out[0]).text);
  }
}

/// find 'text' 'pattern' START OPTIONS = POSITION
void Find(const Words& in, const Words& out) {
  for (const unsigned char codeSet : {kCodeSetLatin1, kCodeSetUnicode}) {
    const NxString text = String(TextWord(in[1]).text, codeSet, 1);
    EXPECT_EQ(text.Find(String(TextWord(in[2]).text, codeSet, 1),
                        static_cast<unsigned short>(std::stoi(in[3])), Options(in[4])),
              std::stoi(out[0]));
  }
}

/// split 'list' 'separator' = the items, "-" for none
void Split(const Words& in, const Words& out) {
  NxString list = String(TextWord(in[1]).text, 1, 1), item("untouched");
  unsigned short pos = 0;
  Words items;
  while (items.size() < 10 && NxSplitList(list, item, String(TextWord(in[2]).text, 1, 1), pos) == 0)
    items.push_back(Shown(item));
  EXPECT_EQ(items, out[0] == "-" ? Words() : out);
  EXPECT_TRUE(!items.empty() || Text(item) == "untouched");
}

// ---------------------------------------------------------------------------
// Numbers, dates, alphabetic texts

void FromDouble(const Words& in, const Words& out) {
  EXPECT_EQ(NxInt64(std::stod(in[1])).Wide(), std::stoll(out[0]));
}

/// day NUMBER = the date of a day number, whatever the number
void Day(const Words& in, const Words& out) {
  const NxDate date(std::stol(in[1]));
  EXPECT_EQ(std::to_string(date.year) + ":" + std::to_string(date.month) + ":" + std::to_string(date.day),
            out[0]);
}

/// keys i|case BYTES LIMIT = the keys that are written, and the count that is returned
void AlphaKeys(const Words& in, const Words& out) {
  const std::string text = FromHex(in[2].substr(1)) + '\0';
  unsigned char keys[32];
  std::memset(keys, 0xEE, sizeof keys);
  const auto limit = static_cast<unsigned short>(std::stoi(in[3]));
  const auto* source = reinterpret_cast<const unsigned char*>(text.data());
  const int n = (in[1] == "i" ? _NxIMapString : _NxCaseIMapString)(keys, source, limit);
  EXPECT_EQ(ToHex(std::string(keys, keys + n)), ToHex(FromHex(out[0].substr(1))));
  EXPECT_EQ(keys[n], 0xEE);
}

/// weigh i|case BYTES = for each byte its key and what sets it apart from those that share it
void Weigh(const Words& in, const Words& out) {
  std::string weights;
  for (const char byte : FromHex(in[2].substr(1))) {
    unsigned char extra = 0xEE;
    weights += static_cast<char>((in[1] == "i" ? _NxIMapByte : _NxCaseIMapByte)(byte, extra));
    weights += static_cast<char>(extra);
  }
  EXPECT_EQ(ToHex(weights), ToHex(FromHex(out[0].substr(1))));
}

/// capitals 'text' LIMIT = what the keys of a text turn back into, and the count
void Capitals(const Words& in, const Words& out) {
  const TypeRow row{21, "", 0, false, {}, false, "", "", "", "", ""};
  const std::string keys = Keys(row, Bytes8(TextWord(in[1]).text));
  std::vector<unsigned char> text(keys.size() + 2, 0);
  EXPECT_EQ(_NxCaseIDeMapString(text.data(), reinterpret_cast<const unsigned char*>(keys.c_str()),
                                static_cast<unsigned short>(std::stoi(in[2]))),
            std::stoi(out[1]));
  EXPECT_EQ(reinterpret_cast<char*>(text.data()), Bytes8(TextWord(out[0]).text));
}

/// letter KEY NEXT = the byte of a key, and whether the next key went into it
void Letter(const Words& in, const Words& out) {
  int consumed = 7;
  EXPECT_EQ(_NxCaseIDeMapByte(static_cast<unsigned char>(OrderOf(in[1])),
                              static_cast<unsigned char>(OrderOf(in[2])), consumed),
            OrderOf(out[0]));
  EXPECT_EQ(consumed, std::stoi(out[1]));
}

// ---------------------------------------------------------------------------
// The files

const std::map<std::string, void (*)(const Words&, const Words&)> kVerbs = {
    {"array", Array},
    {"bounds", Bounds},
    {"calc", Calc},
    {"capitals", Capitals},
    {"case", Case},
    {"char", Character},
    {"compare", Compare},
    {"day", Day},
    {"estimate", Estimate},
    {"edit", Edit},
    {"find", Find},
    {"split", Split},
    {"find-wild", FindWild},
    {"first-wild", FirstWild},
    {"fits", Fits},
    {"from-array", FromArray},
    {"from-double", FromDouble},
    {"hash", Hash},
    {"hash-text", HashText},
    {"image", StoredImage},
    {"keys", AlphaKeys},
    {"letter", Letter},
    {"map", Map},
    {"match", Match},
    {"name", Name},
    {"named", Named},
    {"number", Number},
    {"order", OrderChain},
    {"parse", Parse},
    {"place", Place},
    {"print", Print},
    {"scan", Scan},
    {"translate", Translate},
    {"weigh", Weigh},
};

class Golden : public testing::TestWithParam<std::string> {};

TEST_P(Golden, Cases) {
  Reports refused;  // of combinations of formats
  const std::string path = NX_SOURCE_DIR "/tests/golden/" + GetParam() + ".txt";
  std::ifstream in(path);
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    Words words = SplitWords(line), result;
    if (words.empty()) continue;
    if (const auto equals = std::find(words.begin(), words.end(), "=");
        words[0] != "order" && equals != words.end()) {
      // A relation may be "=", too: the last one parts the line.
      const auto last =
          words.end() - std::distance(words.rbegin(), std::find(words.rbegin(), words.rend(), "="));
      result.assign(last, words.end());
      words.erase(last - 1, words.end());
    }
    const testing::ScopedTrace trace(path.c_str(), number, line);
    const auto verb = kVerbs.find(words[0]);
    ASSERT_NE(verb, kVerbs.end()) << "no such verb";
    ASSERT_TRUE(words[0] == "order" || !result.empty()) << "no result";
    verb->second(words, result);
  }
  EXPECT_GT(number, 0) << path;
}

std::vector<std::string> Files() {
  std::vector<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator(NX_SOURCE_DIR "/tests/golden"))
    if (file.path().extension() == ".txt" && file.path().stem() != "types")
      names.push_back(file.path().stem().string());
  std::sort(names.begin(), names.end());
  return names;
}
INSTANTIATE_TEST_SUITE_P(All, Golden, testing::ValuesIn(Files()),
                         [](const auto& info) { return info.param; });

}  // namespace
