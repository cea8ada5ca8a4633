// The language library: every character has an order of its own, code sets map
// there and back, and each mechanism of the collation data is at work in a language.

#include "nxlang.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "nxchar.h"
#include "nxoption.h"
#include "ord2str.h"
#include "strwild.h"

namespace {

constexpr unsigned char kByteCodeSets[] = {kCodeSetLatin1, kCodeSetWindows1252, kCodeSetLatin9,
                                           kCodeSetLatin2};
constexpr unsigned short kNoCharacter = 0x7F;
constexpr unsigned short kCaseMask = 0x3000;

const NxCodeSet& CodeSet(unsigned char number) { return *NxLanguageContext::QueryCodeSet(number); }

const NxCharInfo* Unicode(unsigned short value) { return CodeSet(kCodeSetUnicode).CharTable()->Find(value); }

/// All order values of a record: its own and those of its expansion.
std::vector<unsigned short> Orders(const NxCharInfo& info) {
  std::vector<unsigned short> orders = {info.order};
  for (short i = 0; info.expansion != nullptr && i < info.expansion->Count(); ++i)
    orders.push_back(info.expansion->At(i));
  return orders;
}

int Compare(unsigned char language, const std::u16string& a, const std::u16string& b,
            unsigned short options = kWildcardsOff) {
  return NxStrCmp(kCodeSetUnicode, language, reinterpret_cast<const char*>(a.c_str()), kCodeSetUnicode,
                  language, reinterpret_cast<const char*>(b.c_str()), options, -1, 1, nullptr);
}

bool IsLetter(unsigned short order) { return order >= kFirstLetterOrder && order < kFirstHanOrder; }

// ---------------------------------------------------------------------------
// Records

TEST(Records, NoTwoCharactersHaveTheSameOrderValues) {
  std::map<std::vector<unsigned short>, unsigned> seen;
  for (unsigned value = 0; value < 0x10000; ++value) {
    const NxCharInfo* info = Unicode(static_cast<unsigned short>(value));
    if (value < 512) {
      ASSERT_NE(info, nullptr) << value;
      EXPECT_EQ(info, CodeSet(kCodeSetUnicode).CharTable()->Record(static_cast<unsigned short>(value)));
    }
    if (info == nullptr || value == 0x212A || value == 0x212B) continue;  // Kelvin and Ångström are K and Å
    const auto [at, fresh] = seen.emplace(Orders(*info), value);
    EXPECT_TRUE(fresh) << std::hex << value << " orders as " << at->second;
  }
  EXPECT_EQ(Orders(*Unicode(0x212A)), Orders(*Unicode('K')));
  EXPECT_EQ(Orders(*Unicode(0x212B)), Orders(*Unicode(0xC5)));
  for (const unsigned short unlisted : {0x258, 0x301, 0x3B1, 0x20AC, 0x4E00, 0xFFFF})
    EXPECT_EQ(Unicode(unlisted), nullptr) << unlisted;
}

TEST(Records, OrderValuesFallIntoTheClassesOfTheirCharacters) {
  for (unsigned short value = 0; value < 512; ++value) {
    const unsigned short order = Unicode(value)->order;
    const bool control = value < 0x21 || (value >= 0x7F && value <= 0xA0);
    EXPECT_EQ(order < kFirstSymbolOrder, control) << value;
    EXPECT_NE(order, 13) << value << " takes the undefined ordering indicator";
    if (value >= 0x100) {
      EXPECT_TRUE(IsLetter(order)) << value;
    }
    if (value >= '0' && value <= '9') {
      EXPECT_EQ(order, kFirstDigitOrder + 10 * (value - '0'));
    }
    if ((value >= 'A' && value <= 'Z') || (value >= 'a' && value <= 'z')) {
      const unsigned short lower = value >= 'a' ? 1 : 0;
      EXPECT_EQ(order, 0x4000 | lower << 12 | ((value & 0x1F) + 2) << 2) << value;
    }
    for (const unsigned short part : Orders(*Unicode(value)))
      EXPECT_EQ(part == 0, value == 0) << value << " would end its text";
  }
}

TEST(Records, ByteCodeSetsHaveARecordForEveryByteAndOrderAsUnicodeDoes) {
  for (const unsigned char number : kByteCodeSets) {
    const NxCodeSet& codeSet = CodeSet(number);
    std::map<std::vector<unsigned short>, unsigned> seen;
    for (unsigned byte = 0; byte < 256; ++byte) {
      const NxCharInfo* info = codeSet.FlatRecords()[byte];
      ASSERT_NE(info, nullptr) << byte;
      EXPECT_EQ(info, codeSet.CharTable()->Find(static_cast<unsigned short>(byte)));
      EXPECT_TRUE(seen.emplace(Orders(*info), byte).second) << int{number} << " " << byte;
      const char text[] = {static_cast<char>(byte), 0};
      const unsigned short wide[] = {codeSet.FlatToUnicode()[byte], 0};
      EXPECT_EQ(NxStrCmp(number, kLanguageGerman, text, kCodeSetUnicode, kLanguageGerman,
                         reinterpret_cast<const char*>(wide), kWildcardsOff, -1, 1, nullptr),
                0)
          << int{number} << " " << byte;
    }
  }
}

TEST(Records, CaseIsTheOnlyDifferenceBetweenACapitalAndItsSmallLetter) {
  for (unsigned value = 1; value < 0x10000; ++value) {
    const unsigned short capital = static_cast<unsigned short>(value);
    const NxUnicodeProps* props = CodeSet(kCodeSetUnicode).GetUnicodeProps(capital, kLanguageNone);
    if (props == nullptr || props->lower == 0 || Unicode(capital) == nullptr) continue;
    // The dotted capital I has no small letter of its own, and neither have the signs of K and Å.
    if (capital == 0x130) continue;
    ASSERT_NE(Unicode(props->lower), nullptr) << std::hex << value;
    const std::vector<unsigned short> big = Orders(*Unicode(capital));
    const std::vector<unsigned short> small = Orders(*Unicode(props->lower));
    ASSERT_EQ(big.size(), small.size()) << std::hex << value;
    EXPECT_LT(big[0], small[0]) << std::hex << value;
    for (std::size_t i = 0; i < big.size(); ++i)
      EXPECT_EQ(big[i] & ~kCaseMask, small[i] & ~kCaseMask) << std::hex << value;
  }
}

TEST(Records, OrderValueTextOrdersByItsUnits) {
  const NxCharTable* table = CodeSet(kCodeSetOrderValues).CharTable();
  ASSERT_NE(table->Find(511), nullptr);
  EXPECT_EQ(table->Find(511)->order, 511);
  EXPECT_EQ(table->Record(300)->order, 300);
  EXPECT_EQ(table->Find(512), nullptr);
  EXPECT_EQ(NxChar(static_cast<unsigned short>(0x4010), kCodeSetOrderValues, 1).IsAlpha(), 1);
}

// ---------------------------------------------------------------------------
// Languages

TEST(Languages, VariantsOfOneLanguageDoNotCollide) {
  for (const unsigned char language : {kLanguageSpanish, kLanguageSwedish, kLanguageDanish}) {
    ASSERT_TRUE(NxLanguageContext::QueryLanguage(language)->hasVariants);
    std::map<std::vector<unsigned short>, unsigned> seen;
    unsigned moved = 0;
    for (unsigned value = 0; value < 0x2000; ++value) {
      const NxCharInfo* info = Unicode(static_cast<unsigned short>(value));
      if (info == nullptr) continue;
      const NxCharInfo* variant = info->variants != nullptr ? info->variants->Find(language) : nullptr;
      moved += variant != nullptr;
      info = variant != nullptr ? variant : info;
      EXPECT_TRUE(seen.emplace(Orders(*info), value).second) << int{language} << " " << std::hex << value;
      for (short i = 0; info->followers != nullptr && i < info->followers->count; ++i)
        EXPECT_TRUE(seen.emplace(Orders(*info->followers->entries[i].info), value).second)
            << std::hex << value;
    }
    EXPECT_GT(moved, 0u);
  }
}

TEST(Languages, SelectorsAreSharedByLanguagesOfOneOrder) {
  const std::map<unsigned char, unsigned char> selectors = {{0, 1}, {1, 1}, {2, 1}, {3, 1},   {4, 4},  {5, 5},
                                                            {6, 6}, {7, 1}, {8, 1}, {200, 1}, {255, 1}};
  for (const auto& [language, selector] : selectors) {
    EXPECT_EQ(CodeSet(kCodeSetLatin1).GetCollation(language), selector) << int{language};
    EXPECT_EQ(CodeSet(kCodeSetUnicode).GetCollation(language), selector) << int{language};
    EXPECT_EQ(CodeSet(kCodeSetOrderValues).GetCollation(language), language & 0x7F);
  }
  EXPECT_EQ(Compare(kLanguageGerman, u"Zoë", u"Zoë"), 0);
  EXPECT_EQ(NxStrCmp(kCodeSetLatin1, kLanguageGerman, "Zo\xEB", kCodeSetLatin1, kLanguageFrench, "Zo\xEB",
                     kWildcardsOff, -1, 1, nullptr),
            0);
}

TEST(Languages, UnknownNumbersAnswerAsTheFirst) {
  for (const unsigned char unknown : {8, 77, 253, 254, 255})
    EXPECT_EQ(NxLanguageContext::QueryLanguage(unknown)->number, kLanguageEnglish);
  for (unsigned char known = 0; known <= kLanguageTurkish; ++known)
    EXPECT_EQ(NxLanguageContext::QueryLanguage(known)->number, known);
  for (const unsigned char unknown : {0, 5, 100, 224})
    EXPECT_EQ(NxLanguageContext::QueryCodeSet(unknown), &CodeSet(kCodeSetLatin1)) << int{unknown};
  for (const unsigned char unknown : {225, 252, 255})
    EXPECT_EQ(NxLanguageContext::QueryCodeSet(unknown), &CodeSet(kCodeSetUnicode)) << int{unknown};
}

TEST(Languages, DefaultsAreSetAndSetUpAnew) {
  EXPECT_EQ(NxLanguageContext::SetDefaultCodeSet(kCodeSetUnicode), 0);
  EXPECT_EQ(NxLanguageContext::SetDefaultLanguage(kLanguageDanish), 0);
  EXPECT_EQ(NxLanguageContext::SetDefaultCmpOp(0x0230), 0);
  for (const unsigned char refused : {0, 254, 255})
    EXPECT_EQ(NxLanguageContext::SetDefaultCodeSet(refused), -2002);
  for (const unsigned char refused : {254, 255})
    EXPECT_EQ(NxLanguageContext::SetDefaultLanguage(refused), -2002);
  EXPECT_EQ(NxLanguageContext::GetDefaultCodeSet(), kCodeSetUnicode);
  EXPECT_EQ(NxLanguageContext::GetDefault8CodeSet(), kCodeSetLatin1);
  EXPECT_EQ(NxLanguageContext::GetDefault16CodeSet(), kCodeSetUnicode);
  EXPECT_EQ(NxLanguageContext::GetDefaultLanguage(), kLanguageDanish);
  EXPECT_EQ(NxLanguageContext::GetDefaultCmpOp(), 0x0230);

  ___NxI18NContext(0);
  ___NxI18NContext(1);
  EXPECT_EQ(NxLanguageContext::GetDefaultCodeSet(), kCodeSetLatin1);
  EXPECT_EQ(NxLanguageContext::GetDefaultLanguage(), kLanguageEnglish);
  EXPECT_EQ(NxLanguageContext::GetDefaultCmpOp(), 0);
}

TEST(Mapping, EveryByteGoesToUnicodeAndBack) {
  for (const unsigned char number : kByteCodeSets) {
    const NxCodeSet& codeSet = CodeSet(number);
    unsigned mapped = 0;
    for (unsigned short byte = 0; byte < 256; ++byte) {
      const unsigned short unicode = CodeSet(kCodeSetUnicode).MapFrom(byte, number);
      EXPECT_EQ(unicode, codeSet.FlatToUnicode()[byte]);
      EXPECT_EQ(codeSet.MapFrom(unicode, kCodeSetUnicode), byte) << int{number} << " " << byte;
      EXPECT_EQ(unicode == 0, byte == 0);
    }
    for (unsigned value = 0; value < 0x10000; ++value)
      mapped += codeSet.MapFrom(static_cast<unsigned short>(value), kCodeSetUnicode) != kNoCharacter;
    EXPECT_EQ(mapped, 255u) << "only what the code set has may leave 0x7F";
    EXPECT_EQ(codeSet.MapFrom(0x141, number == kCodeSetLatin1 ? kCodeSetLatin9 : kCodeSetLatin1),
              kNoCharacter)
        << "no 8-bit character is above 255";
  }
}

}  // namespace
