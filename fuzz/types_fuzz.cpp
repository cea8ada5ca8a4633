// Every type held to what is known of it by its row or by its texts: order, hash, shares of
// relations, bounds and sort keys of values that meet often, in memory and stored.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "collation/nxstrcmp.h"
#include "input.h"
#include "nxbase.h"
#include "nxtypevl.h"
#include "strwild.h"
#include "support/terms.h"
#include "support/textsubject.h"
#include "support/typesubject.h"

namespace {

constexpr unsigned long kMultiplier = 1103515245, kInverse = 0xEEB9EB65;  // of hashes

unsigned Drawn(Input& in, unsigned n) { return (n <= 256 ? in.Byte() : in.Word()) % n; }

// ---------------------------------------------------------------------------
// Types of fixed size

class FixedType : public TypeSubject {
 public:
  FixedType(Input& in, const TypeRow& row) : TypeSubject(row), in_(in) {}
  unsigned Below(unsigned n) override { return Drawn(in_, n); }

  void OrderArrays();
  void OrderThree();
  void Hash();
  void Bound();
  void OrderSortKeys();

 private:
  bool Near(float a, float b, float most) const { return std::fabs(a - b) <= most; }

  Input& in_;
};

/// Arrays order by their first difference; a cut buffer says what it holds, and whether that
/// was enough to find the next element.
void FixedType::OrderArrays() {
  const unsigned long n = 1 + Below(3);
  const Block a = Values(n), b = Below(3) ? Values(n) : Block(a);
  for (const unsigned char format : {8, 1, 2, 3}) {
    const Block x = In(format, a), y = In(format, b);
    const auto [first, expected] = FirstDifference(a, b, format);
    int error = 77;
    const long result = mgr.Cmp(id, x.Size(), x.Data(), y.Size(), y.Data(), kWildcardsOff, n, format, error);
    Require(Sign(result) == expected && error == 0);
    Require(mgr.Cmp(id, x.Data(), y.Data(), kWildcardsOff, n, format) == result);
    Require(Sign(mgr.Cmp(id, y.Data(), x.Data(), kWildcardsOff, n, format)) == -expected);
    const Block cut(x.Data(), 1 + Below(static_cast<unsigned>(x.Size())));
    const unsigned long element = SizeIn(format), held = cut.Size() / element;
    const bool stops = first < n && (first >= held || (first + 1 < n && cut.Size() <= (first + 1) * element));
    const long answer =
        mgr.Cmp(id, cut.Size(), cut.Data(), y.Size(), y.Data(), kWildcardsOff, n, format, error);
    Require(Sign(answer) == (first < held ? expected : 0));
    Require(error == (stops || (first == n && held < n) ? kPastBuffer : 0));
  }
}

void FixedType::OrderThree() {
  if (row.order == "f0" || row.order == "d0") return;  // no numbers equal all
  for (const unsigned char format : {8, 1, 2}) {
    const Block a = Values(1), b = Values(1), c = Values(1);
    const int ab = Compare(a.Data(), b.Data(), format), bc = Compare(b.Data(), c.Data(), format);
    Require(ab > 0 || bc > 0 || Compare(a.Data(), c.Data(), format) == (ab < 0 || bc < 0 ? -1 : 0));
  }
}

/// The hash of an array is that of its elements, one after another.
void FixedType::Hash() {
  const unsigned long n = Below(4);
  const Block a = Values(n);
  for (const unsigned char format : {8, 1, 2, 3}) {
    const Block x = In(format, a), y(x);
    const unsigned long element = SizeIn(format);
    int error = 77, cutError = 77;
    const unsigned long hash = mgr.Hash(id, x.Size(), x.Data(), n, format, error);
    Require(error == 0 && mgr.Hash(id, 0, y.Data(), n, format, error) == hash);
    unsigned long each = 0, ofCut = 0;
    const Block cut(x.Data(), n == 0 ? 0 : 1 + Below(static_cast<unsigned>(x.Size())));
    for (unsigned long i = 0; i < n; ++i) {
      unsigned long word = mgr.Hash(id, element, x.Data() + i * element, 1, format, error);
      if (!row.Has('n')) word *= kInverse;
      each ^= word;
      if (i < cut.Size() / element) ofCut ^= word;
    }
    Require(hash == (row.Has('n') ? each : each * kMultiplier));
    if (n == 0) continue;
    Require(mgr.Hash(id, cut.Size(), cut.Data(), n, format, cutError) ==
            (row.Has('n') ? ofCut : ofCut * kMultiplier));
    Require(cutError == (cut.Size() / element == n ? 0 : kPastBuffer));
  }
}

/// Bounds are the key itself; the shares of the relations add up.
void FixedType::Bound() {
  using Owned = std::unique_ptr<void, decltype(&std::free)>;
  const auto format = static_cast<unsigned char>(1 + Below(2));
  Block ends[3] = {Values(1), Values(1), Values(1)};
  std::sort(ends, ends + 3,
            [&](const Block& a, const Block& b) { return Compare(a.Data(), b.Data(), format) < 0; });
  const Block low = Image(ends[0], format), key = Image(ends[1], format), high = Image(ends[2], format);
  const auto length = static_cast<unsigned char>(key.Size());
  NxIdxBounds range = {low.Data(), high.Data(), length, length};
  float share[7] = {};
  for (unsigned short relation = 1; relation <= 6; ++relation) {
    NxIdxBounds bounds{};
    unsigned short word = relation;
    share[relation] = mgr.EvalAndBound(id, &range, word, key.Data(), format, 1, &bounds, nullptr);
    const Owned lower(bounds.lower, std::free), upper(bounds.upper, std::free);
    Require(word == relation);
    Require((lower != nullptr) == (row.Has('k') && !(relation & kRelationLess)));
    Require((upper != nullptr) == (row.Has('k') && !(relation & kRelationGreater)));
    Require(!lower || Block(lower.get(), bounds.lowerLen) == key);
    Require(!upper || Block(upper.get(), bounds.upperLen) == key);
  }
  if (!row.Has('c')) return;
  Require(Near(share[2] + share[1] + share[4], 1, 1e-5F) && Near(share[3], share[2] + share[1], 1e-6F));
  Require(Near(share[5], share[4] + share[1], 1e-6F) && Near(share[6], share[4] + share[2], 1e-6F));
  Require(share[1] > 0);
  Require((share[2] == 0) == (Compare(ends[0].Data(), ends[1].Data(), 8) == 0));
  Require((share[4] == 0) == (Compare(ends[2].Data(), ends[1].Data(), 8) == 0));
}

/// Of any image whose order is total: the truth values, and no floating field that is no number.
void FixedType::OrderSortKeys() {
  const auto pick = [&] {
    Block image(row.ImageSize());
    for (unsigned long i = 0; i < image.Size(); ++i)
      image.Data()[i] = static_cast<unsigned char>("\0\1\x7f\x80\xff\xfe\2"[Below(Below(2) ? 7 : 2)]);
    if (row.Has('o')) *image.Data() = static_cast<unsigned char>("\0\1\xff"[Below(3)]);
    if (row.order[0] == 'f' || row.order[0] == 'd') image.Data()[image.Size() - 1] &= 0xC0;
    return image;
  };
  const Block a = pick(), b = pick();
  const auto order = [&](unsigned short op) {
    int error;
    return Sign(mgr.Cmp(id, a.Size(), a.Data(), b.Size(), b.Data(), op, 1, 1, error));
  };
  const std::string keyA = KeyOf(id, a.Data(), 1, a.Size()), keyB = KeyOf(id, b.Data(), 1, b.Size());
  Require(Sign(keyA.compare(keyB)) == order(kWildcardsOff));
  Require(!IsPrefix(keyA, keyB) && !IsPrefix(keyB, keyA));
  const auto relation = static_cast<unsigned short>(1 + Below(6));
  const auto op = static_cast<unsigned short>(Below(2) * kWildcardsOff);
  NxSortKeyRange range;
  Require(NxSortKeyBounds(id, b.Data(), 1, b.Size(), relation | op, range) == 1);
  Require(!Selects(order(op), relation) || LiesWithin(range, keyA));
  std::free(range.lower);
  std::free(range.upper);
  const Block value(size), swapped(a.Size());
  mgr.Load(id, value.Data(), a.Data(), 1, 1);
  mgr.Store(id, swapped.Data(), value.Data(), 2, 1);
  Require(KeyOf(id, value.Data(), 8) == keyA && KeyOf(id, swapped.Data(), 2, swapped.Size()) == keyA);
}

// ---------------------------------------------------------------------------
// Types of texts

class TextType : public TextSubject {
 public:
  TextType(Input& in, const Kind& kind) : TextSubject(kind), in_(in) {}
  unsigned Below(unsigned n) override { return Drawn(in_, n); }

  void MakeKeys();
  void CompareForms();
  void CompareCut();
  void CompareArrays();
  void Hash();
  void Bound();

 private:
  unsigned char Language() { return static_cast<unsigned char>(1 + Below(7)); }
  int OrderOfTexts(const std::string& a, const std::string& b, unsigned short options,
                   const unsigned char (&codeSets)[2], unsigned char language);

  Input& in_;
};

/// A text has one key from every form.
void TextType::MakeKeys() {
  if (IsEarly()) return;
  std::string text = Word();
  if (id == 11) text += std::string("chLl\xF1\xDF\xE5\xE6").substr(Below(8), Below(4));
  const unsigned char language = Language();
  for (const unsigned char format : {1, 2}) {
    const std::string key = Key(Image({text}, format, 1, language), format);
    Require(id != 11 || Key(Image({text}, format, 253, language), format) == key);
    for (const unsigned char codeSet : {1, 253}) {
      const Values value(*this, {text}, codeSet, language);
      const std::string made = Translated(value.Data(), 8, 0, format | kFormatKey, 254, 1);
      Require(made.substr(0, key.size()) == key);
    }
  }
}

/// How two texts order by the functions that compare texts alone.
int TextType::OrderOfTexts(const std::string& a, const std::string& b, unsigned short options,
                           const unsigned char (&codeSets)[2], unsigned char language) {
  if (IsEarly()) return Sign(NxStrCmpGeneral(0, 0, a.c_str(), 0, 0, b.c_str(), options, -1, 1, nullptr));
  if (!IsAlpha()) {
    const std::string x = Encoded(Widened(a), codeSets[0]) + std::string(2, '\0');
    const std::string y = Encoded(Widened(b), codeSets[1]) + std::string(2, '\0');
    return Sign(NxStrCmpGeneral(codeSets[0], language, x.c_str(), codeSets[1], language, y.c_str(), options,
                                -1, 1, nullptr));
  }
  const std::string x = OnDisk({a})[0], y = OnDisk({b})[0];
  if (options != 0) return Sign((id == 20 ? nxistrcmp : nxcaseistrcmp)(x.c_str(), y.c_str(), 0, 0x40, 0x40));
  const int sign = Compare(Image({a}, 1), Image({b}, 1), 0).sign;
  const auto matches = id == 20 ? istrwild : caseistrwild;
  Require(y.find_first_of("*?") == std::string::npos ||
          (sign == 0) == (matches(y.c_str(), x.c_str(), 0x40, 0x40) == 1));
  return sign;
}

void TextType::CompareForms() {
  const unsigned short kOptions[] = {0,
                                     kWildcardsOff,
                                     kIgnoreCase,
                                     kSkipSymbols | kIgnoreAccents,
                                     kWildcardsOff | kSkipSpaces,
                                     kOrderValuesOnly};
  const auto options = static_cast<unsigned short>(IsAlpha() ? Below(2) * kWildcardsOff : kOptions[Below(6)]);
  const std::string a = Word(), b = Below(4) ? Word(true) : a;
  const unsigned char language = Language();
  const unsigned char codeSets[] = {1, static_cast<unsigned char>(Below(2) ? 1 : 253)};
  const int expected = OrderOfTexts(a, b, options, codeSets, language);
  for (const unsigned char format : {1, 2}) {
    const std::string x = Image({a}, format, codeSets[0], language),
                      y = Image({b}, format, codeSets[1], language);
    Require(Compare(x, y, options, format) == Answer{expected, 0});
    Require(Sign(mgr.Cmp(id, Exactly(x).Data(), Exactly(y).Data(), options, 1, format)) == expected);
    if (id == 11 && !IsEarly() && (options & kWildcardsOff))
      Require(Compare(Key(x, format), Key(y, format), options, format | kFormatKey) == Answer{expected, 0});
  }
  if (IsEarly()) return;  // its objects have code sets, and it has no sort keys
  const Values x(*this, {a}, codeSets[0], language), y(*this, {b}, codeSets[1], language);
  Require(Sign(mgr.Cmp(id, x.Data(), y.Data(), options, 1, 8)) == expected);
  const std::string image = Image({a}, 2, codeSets[0], language), key = KeyOf(id, x.Data(), 8);
  Require(KeyOf(id, image.data(), 2, image.size()) == key);
  Require(options != kWildcardsOff || Sign(key.compare(KeyOf(id, y.Data(), 8))) == expected);
  NxSortKeyRange range;
  const auto relation = static_cast<unsigned short>(1 + Below(6));
  Require(NxSortKeyBounds(id, y.Data(), 8, 0, relation | options, range) == 1);
  Require(!Selects(expected, relation) || LiesWithin(range, key));
  std::free(range.lower);
  std::free(range.upper);
}

/// No error of a cut image means the sign of the whole texts. Symbols, which count less than
/// what may follow them, are left out.
void TextType::CompareCut() {
  const auto options = static_cast<unsigned short>(IsAlpha() ? kWildcardsOff : Below(8) * kWildcardsOff);
  std::string words[] = {Word(), Word(true)};
  const std::string symbols = options & kWildcardsOff ? "- *?" : "- ";
  for (std::string& word : words)
    for (std::size_t at; (at = word.find_first_of(symbols)) != std::string::npos;) word.erase(at, 1);
  const std::string a = Image({words[0]}, 1), b = Image({words[1]}, 1);
  const std::string cutA = a.substr(0, 1 + Below(static_cast<unsigned>(a.size())));
  const std::string cutB = IsAlpha() ? b : b.substr(0, 1 + Below(static_cast<unsigned>(b.size())));
  if (IsEarly() && (cutA.size() + 1 == a.size() || cutB.size() + 1 == b.size())) return;
  const Answer whole = Compare(a, b, options), answer = Compare(cutA, cutB, options);
  // There is no second text.
  Require(IsEarly() || cutA == a || Compare(cutA, b + b, options, 1, 2).error == kPastBuffer);
  Require(answer.error == kPastBuffer || answer == whole);
}

void TextType::CompareArrays() {
  std::vector<std::string> a(1 + Below(3)), b;
  for (std::string& text : a) text = std::string(1, "ab"[Below(2)]);
  for (const std::string& text : a) b.push_back(Below(4) ? text : "c");
  int expected = 0;
  unsigned long first = 0;
  while (first < a.size() && expected == 0) expected = Sign(a[first].compare(b[first])), ++first;
  const std::string x = Image(a, 1), y = Image(b, 1);
  Require(Compare(x, y, kWildcardsOff, 1, a.size()) == Answer{expected, 0});
  const Values valuesA(*this, a), valuesB(*this, b);
  int error = 77;
  const auto inMemory = [&](unsigned long n) {
    return Sign(
        mgr.Cmp(id, a.size() * 8, valuesA.Data(), b.size() * 8, valuesB.Data(), kWildcardsOff, n, 8, error));
  };
  Require(inMemory(a.size()) == expected && error == 0);
  // More are asked for than there are.
  const int past = expected != 0 && first < a.size() ? 0 : kPastBuffer;
  Require(Compare(x, y, kWildcardsOff, 1, a.size() + 1) == Answer{expected, past});
  inMemory(a.size() + 1);
  Require(error == past);
}

/// Equal texts hash alike in every form.
void TextType::Hash() {
  int error = 77;
  const auto hash = [&](const std::string& image, unsigned char format, unsigned long n = 1) {
    const Block block = Exactly(image);
    return mgr.Hash(id, n == 1 || !IsEarly() ? block.Size() : 0, block.Data(), n, format, error);
  };
  const std::string a = Word(), b = Word();
  const unsigned long word = hash(Image({a}, 1), 1);
  if (IsAlpha()) {
    Require(word == 0 && error == 77);  // left alone
    return;
  }
  Require(hash(Image({a}, 2, IsEarly() ? 1 : 253), 2) == word);
  const unsigned long both = hash(Image({a, b}, 1), 1, 2);
  Require(error == 0);
  Require(both == (word * kInverse ^ hash(Image({b}, 1), 1) * kInverse) * kMultiplier);
  hash(Image({a, b}, 1), 1, 3);
  Require(error == kPastBuffer);
  if (IsEarly()) return;
  const Values values(*this, {a, b}, 253);
  Require(mgr.Hash(id, 16, values.Data(), 2, 8, error) == both);
}

/// What a term selects lies within its bounds.
void TextType::Bound() {
  const auto format = static_cast<unsigned char>(1 + Below(2));
  const auto relation = static_cast<unsigned short>(IsAlpha() && Below(2) ? 1 : 1 + Below(6));
  // Accents give the ligatures of alphabetic keys another place while wildcards are on.
  unsigned short options = IsAlpha() && relation != 1 ? kWildcardsOff : 0;
  if (!IsAlpha())
    options = static_cast<unsigned short>(Below(8) << 4 | (Below(4) ? 0 : kSkipSpaces) |
                                          (Below(4) ? 0 : kSkipSymbols));
  // A key with characters that are skipped holds for indexes that skip them as well.
  std::string term = Word(!(options & kWildcardsOff));
  if (options & (kSkipSpaces | kSkipSymbols))
    term.erase(std::remove_if(term.begin(), term.end(), [](char c) { return c == '-' || c == ' '; }),
               term.end());
  const unsigned char language = Language();
  const std::string key = Image({term}, format, Below(2) ? 1 : 253, language);
  const Block keyBlock = Exactly(key);
  Bounds bounds;
  auto word = static_cast<unsigned short>(relation | options);
  mgr.EvalAndBound(id, nullptr, word, keyBlock.Data(), format, 1, &bounds, nullptr);
  Require(Str(keyBlock) == key);
  for (int i = 0; i < 10; ++i) {
    const std::string image = Image({Word()}, format, Below(2) ? 1 : 253, language);
    if (!Selects(Compare(image, key, options, format).sign, relation)) continue;
    const std::string entry = IsEarly() ? image : Key(image, format);
    Require(!bounds.lower || Compare(entry, bounds.Lower(), kWildcardsOff, format).sign >= 0);
    Require(!bounds.upper || Compare(entry, bounds.Upper(), kWildcardsOff, format).sign <= 0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::vector<TypeRow> rows = FixedTypes();
  constexpr void (FixedType::*kOfFixed[])() = {&FixedType::OrderArrays, &FixedType::OrderThree,
                                               &FixedType::Hash, &FixedType::Bound,
                                               &FixedType::OrderSortKeys};
  constexpr void (TextType::*kOfTexts[])() = {&TextType::MakeKeys,   &TextType::CompareForms,
                                              &TextType::CompareCut, &TextType::CompareArrays,
                                              &TextType::Hash,       &TextType::Bound};
  const Reports quiet;
  Input in(data, size);
  while (!in.IsUsedUp()) {
    const unsigned char type = in.Byte();
    if (type & 1) {
      FixedType subject(in, rows[type / 2 % rows.size()]);
      (subject.*kOfFixed[Drawn(in, std::size(kOfFixed))])();
    } else {
      TextType subject(in, kKinds[type / 2 % std::size(kKinds)]);
      (subject.*kOfTexts[Drawn(in, std::size(kOfTexts))])();
    }
  }
  return 0;
}
