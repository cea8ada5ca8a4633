#include "nxstritr.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/strings.h"

namespace {

using Orders = std::vector<unsigned short>;

constexpr unsigned short kCh[] = {'c', 'h'};
constexpr unsigned short kCx[] = {'c', 'x', 'a'};
const NxWCharList kListCh(kCh, 2), kListCx(kCx, 3), kFinished(kCh, 0);

std::vector<unsigned short> WideUnits(const std::string& text) {
  const Units units = Widened(text);
  std::vector<unsigned short> wide(units.begin(), units.end());
  wide.push_back(0);
  return wide;
}

Orders OrdersOf(const char* text, unsigned char language, unsigned char codeSet = 1) {
  NxStringIterator it(text, codeSet, language, 1);
  Orders orders;
  while (unsigned short order = it.GetNextOrder(1)) orders.push_back(order);
  EXPECT_EQ(it.GetNextOrder(1), 0);
  EXPECT_TRUE(it.IsEOS());
  return orders;
}

unsigned short OrderOf(char c) { return NxChar(c, 1, 1).GetOrder(); }

TEST(StringIterator, StepsByTheWidthOfItsCharacters) {
  const auto units = WideUnits("ab");
  NxStringIterator bytes("ab", 1, 255, 255), wide(units.data(), 255, 2, 255);
  for (NxStringIterator* it : {&bytes, &wide}) {
    const NxStringIterator start(*it);
    EXPECT_EQ(*it->operator++(0), 'a');
    EXPECT_EQ(**it, 'b');
    EXPECT_FALSE(it->IsEOS());
    it->Step(7);
    EXPECT_TRUE(it->IsEOS());
    EXPECT_EQ(*(*it)--, '\0');
    --*it;
    EXPECT_TRUE(*it == start);
    it->Step(0);
    it->Step(1);
    EXPECT_TRUE(*it == start);
  }
  EXPECT_EQ(bytes._nLanguage, NxLanguageContext::GetDefaultLanguage());
  EXPECT_EQ(wide._nCodeSet, NxLanguageContext::GetDefault16CodeSet());
}

TEST(StringIterator, WithoutTextIsAtItsEnd) {
  NxString empty, copy("x");
  NxStringIterator none, overEmpty(empty), over(copy);
  for (NxStringIterator* it : {&none, &overEmpty}) {
    EXPECT_TRUE(it->IsEOS());
    EXPECT_EQ(it->GetNextOrder(1), 0);
    EXPECT_EQ(GetNextOrderValue(*it, 0), 0);
  }
  ++none;
  --none;
  EXPECT_TRUE(none.IsEOS());
  NxCharToUpper op;
  none.Transform(over, op);
  EXPECT_EQ(copy.Len(), 0);
  EXPECT_EQ(overEmpty._nByteOrder, 8);
}

TEST(StringIterator, OwnsTheTextOfACharacter) {
  const char bigEndian[] = "\x20\xAC";
  for (const NxChar& c : {NxChar('x', 1, 2), NxChar(static_cast<unsigned short>(0x20AC), 253, 2),
                          NxChar(bigEndian, 253, 2, 2)}) {
    NxStringIterator it(c);
    EXPECT_EQ(it._bOwnsBuffer, 1);
    EXPECT_EQ(it._nByteOrder, 1);
    EXPECT_EQ(static_cast<unsigned short>(*it), static_cast<unsigned short>(c));
    const NxStringIterator start(it);
    EXPECT_EQ(start._bOwnsBuffer, 0);
    ++it;
    EXPECT_TRUE(it.IsEOS());
    ++it;        // past the terminator, as Transform leaves it
    it = start;  // back in the text, which stays
    EXPECT_EQ(static_cast<unsigned short>(*it), static_cast<unsigned short>(c));
  }
  NxStringIterator it(NxChar('x'));
  it = NxStringIterator("yz", 1, 1, 1);
  EXPECT_EQ(it._bOwnsBuffer, 0);
  EXPECT_EQ(*it, 'y');
}

TEST(Overflow, ListIsDeliveredBeforeTheTextGoesOn) {
  NxStringIterator it("aé", 1, 2, 2);
  it.SetOverflow(&kListCh, 255);
  EXPECT_EQ(it._nOverflowCodeSet, 1);
  ++it;  // nothing moves while an entry is due
  const NxStringIterator before(it);
  NxChar c = *it;
  EXPECT_EQ(c, 'c');
  EXPECT_EQ(c._nCodeSet, 1);
  EXPECT_EQ(*it, 'h');
  EXPECT_FALSE(it.IsEOS());
  EXPECT_EQ(*it, 'a');  // a finished list gives way to the text, and stays attached
  EXPECT_EQ(it._pOverflow, &kListCh);
  ++it;
  EXPECT_EQ(it._pOverflow, nullptr);
  EXPECT_EQ(*it, '\xC3');

  NxStringIterator again(before);  // copies take the list with them
  EXPECT_EQ(*again, 'c');
  again = before;
  EXPECT_EQ(*again, 'c');
  --again;
  EXPECT_EQ(again._pPos + 1, before._pPos);
  EXPECT_EQ(*again, 'h');

  NxStringIterator end("", 1, 1, 1);
  end.SetOverflow(&kFinished, 254);
  EXPECT_FALSE(end.IsEOS());
}

TEST(Transform, DeliversFurtherCharacters) {
  NxCharToUpper toUpper;
  NxCharToLower toLower;
  char source[32] = "stra\337e \377\337";
  char target[32];
  std::memset(target, 0x55, sizeof target);
  NxStringIterator from(source, 1, 2, 255), to(target, 1, 2, 255);
  from.Transform(to, toUpper);
  EXPECT_STREQ(target, "STRASSE \xFFSS");
  EXPECT_EQ(to._pPos - target, 12);
  EXPECT_EQ(from._pPos - source, 10);
  EXPECT_EQ(target[12], 0x55);

  std::memset(target, 0x55, sizeof target);  // into another code set
  NxStringIterator again(source, 1, 2, 255), wide(target, 253, 2, 255);
  again.Transform(wide, toUpper);
  EXPECT_EQ(wide._pPos - target, 24);
  const auto expected = WideUnits("STRASSE \xFFSS");
  EXPECT_EQ(std::memcmp(target, expected.data(), 24), 0);
  EXPECT_EQ(target[24], 0x55);

  NxStringIterator back(target, 253, 2, 255), bytes(source, 1, 2, 255);
  back.Transform(bytes, toLower);
  EXPECT_STREQ(source, "strasse \xFFss");
}

TEST(NextOrder, OfOrderValueTexts) {
  const unsigned short units[] = {0x4041, 0x0102, 0, 7};
  NxStringIterator stored(units, 254, 2, 2);
  EXPECT_EQ(stored.GetNextOrder(1), 0x4140);
  NxStringIterator it(units, 254, 2, 8);
  EXPECT_EQ(it._nCollation, 2);
  EXPECT_EQ(it.GetNextOrder(1), 0x4041);
  EXPECT_EQ(it.GetNextOrder(0), 0x0102);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(it.GetNextOrder(1), 0);
  it.SetOverflow(&kFinished, 254);
  EXPECT_EQ(it.GetNextOrder(1), 0);
  EXPECT_TRUE(it.IsEOS());
  --it;
  it.SetOverflow(&kListCh, 254);
  EXPECT_EQ(it.GetNextOrder(1), 0x0102);
  EXPECT_EQ(it.GetNextOrder(1), 0x0102);  // a list holds the text
}

TEST(NextOrder, ContractionsInLists) {
  const Orders c = OrdersOf("c", 4), ch = OrdersOf("ch", 4);
  ASSERT_EQ(ch.size(), 1U);

  // Among the characters of a list, which is not stepped back over.
  char text[] = "-cx";
  NxStringIterator it(text + 1, 1, 4, 1);
  it.SetOverflow(&kListCh, 1);
  EXPECT_EQ(it.GetNextOrder(1), ch[0]);
  EXPECT_EQ(it._pPos, text + 2);
  it = NxStringIterator(text + 1, 1, 4, 1);
  it.SetOverflow(&kListCx, 1);
  EXPECT_EQ(it.GetNextOrder(1), c[0]);
  EXPECT_EQ(it.GetNextOrder(1), OrderOf('x'));
  EXPECT_EQ(it.GetNextOrder(1), OrderOf('a'));
  EXPECT_EQ(it.GetNextOrder(1), OrderOf('x'));
  EXPECT_EQ(it.GetNextOrder(1), 0);
  // Nothing behind the end of the text goes together with a list's last character.
  const char end[] = "\0h";
  const NxWCharList onlyC(kCh, 1);
  it = NxStringIterator(end, 1, 4, 1);
  it.SetOverflow(&onlyC, 1);
  EXPECT_EQ(it.GetNextOrder(1), c[0]);
}

TEST(NextOrder, CharactersWithoutRecordSwitchToPlainOrder) {
  const unsigned short text[] = {'a', 0x3042, 'b', 0xFFF0, 0xFFEF, 0};
  NxStringIterator it(text, 253, 1, 8);
  const struct {
    unsigned short update, order;
    int selector;
  } steps[] = {{0, OrderOf('a'), 1}, {1, 0x3042, 20}, {1, OrderOf('b'), 1}, {1, 0xFFF0, 1}, {1, 0xFFEF, 20}};
  for (const auto& step : steps) {
    EXPECT_EQ(it.GetNextOrder(step.update), step.order);
    EXPECT_EQ(it._nCollation, step.selector) << step.order;
  }
  NxStringIterator unlisted(text + 1, 253, 1, 8);
  EXPECT_EQ(unlisted.GetNextOrder(0), 0x3042);
  EXPECT_EQ(unlisted._nCollation, 1);
  const unsigned short asterisk = NxString::GetAsterisk();
  NxString::_nAsterisk = 0x3042;  // a wildcard of one's own does not switch
  it = NxStringIterator(text + 1, 253, 1, 8);
  EXPECT_EQ(it.GetNextOrder(1), 0x3042);
  EXPECT_EQ(it._nCollation, 1);
  NxString::_nAsterisk = asterisk;
}

// What an iterator keeps from its opening gives way to fields that were changed since.
TEST(NextOrder, FollowsChangedFields) {
  NxStringIterator it("n\xB1", 1, 1, 1), filled;
  it._nLanguage = kLanguageSpanish;
  it.GetNextOrder(1);
  EXPECT_EQ(it._nCollation, kLanguageSpanish);
  it._nCodeSet = kCodeSetLatin2;
  EXPECT_EQ(it.GetNextOrder(1), OrderOf('a') | 13 << 7);  // a with ogonek
  filled._pPos = it._pPos - 2;
  filled._nCodeSet = 1;
  filled._nLanguage = kLanguageDanish;
  EXPECT_EQ(filled.GetNextOrder(1), OrderOf('n'));
  EXPECT_EQ(filled._nCollation, kLanguageDanish);
}

TEST(NextOrderValue, ClearsBitsOfLettersAndReadsPlainBytes) {
  NxStringIterator it(
      "e\xE9"
      "7",
      1, 1, 1);
  EXPECT_EQ(GetNextOrderValue(it, 0x3000), OrderOf('E'));
  EXPECT_EQ(GetNextOrderValue(it, 0x3F80), OrderOf('E'));
  EXPECT_EQ(GetNextOrderValue(it, 0xFFFF), OrderOf('7'));
  EXPECT_EQ(GetNextOrderValue(it, 0), 0);
  NxStringIterator bytes("\xE9", 0, 1, 1);
  EXPECT_EQ(GetNextOrderValue(bytes, 0xFFFF), 0xE9);
  EXPECT_EQ(GetNextOrderValue(bytes, 0), 0);
  EXPECT_EQ(GetNextOrderValue(bytes, 0), 0);
}

}  // namespace
