// The cases of golden/*.txt, a line each: verb, operands, "=", result. README.md in this
// folder says what each verb does.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>

#include "golden/functions.h"
#include "nxconv.h"
#include "nxtmdata.h"
#include "nxtypfmt.h"

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

void Compare(const Case& in, const Words& out) {
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

void Hash(const Case& in, const Words& out) {
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

void StoredImage(const Case& in, const Words& out) {
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
void Translate(const Case& in, const Words& out) {
  Type type(in[1]);
  const auto from = static_cast<unsigned char>(std::stoi(in[2], nullptr, 16));
  const auto to = static_cast<unsigned char>(std::stoi(in[4], nullptr, 16));
  Block dst(std::stoul(in[5]));
  const unsigned long n = in.Has(6) ? std::stoul(in[6]) : 1;
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

void Estimate(const Case& in, const Words& out) {
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

void Bounds(const Case& in, const Words& out) {
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

void Array(const Case& in, const Words& out) {
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

void FromArray(const Case& in, const Words& out) {
  Type type(in[1]);
  *___NxTypeMgrOptions() = in.Has(3) ? kOptionDecimalOnly : 0;
  EXPECT_EQ(ToHex(FromTexts(type, in[2])), ToHex(Value(type.row, out[0])));
  *___NxTypeMgrOptions() = 0;
}

void Print(const Case& in, const Words& out) {
  Type type(in[1]);
  const char* const format = in.Chars(2);
  const InMemory value(type, in[3]);
  NxString text("old");
  EXPECT_EQ(&type.mgr.PrintToNxString(type.row.id, text, value.Get(), format, 1), &text);
  EXPECT_EQ(Shown(text), Shown(out[0]));
}

/// Into a value that was `77`, from text of either width; "-" when it is still that.
void Scan(const Case& in, const Words& out) {
  Type type(in[1]);
  const char* const format = in.Chars(2);
  for (const unsigned char codeSet : {kCodeSetLatin1, kCodeSetUnicode}) {
    NxString text = String(TextWord(in[3]).text, codeSet, 1);
    const InMemory value(type, "77"), expected(type, out[0] == "-" ? "77" : out[0]);
    EXPECT_EQ(type.mgr.ScanFromNxString(type.row.id, value.Get(), text, format, 1), value.Get());
    EXPECT_EQ(ToHex(value.Raw()), ToHex(expected.Raw())) << "code set " << int{codeSet};
  }
}

// ---------------------------------------------------------------------------
// Texts

/// A chain of words in their order, which holds of all pairs; "=" joins equal ones.
void OrderChain(const Case& in, const Words&) {
  std::vector<std::pair<Units, int>> chain;
  int place = 0;
  for (std::size_t i = 3; in.Has(i); ++i)
    if (in[i] == "~")
      --place;
    else
      chain.emplace_back(in[i][0] == '\'' ? TextWord(in[i]).text : Unescaped(in[i]), place++);
  const unsigned char language = in.Language(1);
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

// ---------------------------------------------------------------------------
// The files

const std::map<std::string, void (*)(const Case&, const Words&)> kVerbs = {
    {"array", Array},          {"bounds", Bounds}, {"compare", Compare},    {"estimate", Estimate},
    {"from-array", FromArray}, {"hash", Hash},     {"image", StoredImage},  {"order", OrderChain},
    {"print", Print},          {"scan", Scan},     {"translate", Translate}};

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
    ASSERT_TRUE(words[0] == "order" || !result.empty()) << "no result";
    const Case operands = {words, result.size()};
    if (const auto verb = kVerbs.find(words[0]); verb != kVerbs.end()) {
      verb->second(operands, result);
    } else {
      ASSERT_EQ(kFunctions.count(words[0]), 1U) << "no such verb";
      EXPECT_EQ(kFunctions.at(words[0])(operands), Canonical(result));
    }
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
