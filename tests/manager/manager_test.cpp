// Records, tables, the type manager's dispatch and its composite operations, the
// library's context and identity.

#include "nxtypmgr.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "nxbase.h"
#include "nxcomp.h"
#include "nxconv.h"
#include "nxint64.h"
#include "nxstring.h"
#include "nxtmdata.h"
#include "nxtmvers.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypfmt.h"
#include "support/strings.h"
#include "support/typerows.h"

namespace {

TEST(Records, AreThoseOfTheTable) {
  NxTypeMgr mgr(5);
  const std::vector<TypeRow> rows = AllTypeRows();
  ASSERT_EQ(rows.size(), kTypeCount);
  for (const TypeRow& row : rows) {
    SCOPED_TRACE(row.name);
    char found = 99;
    EXPECT_EQ(mgr.Name2NxTypeId(row.name.c_str(), found), 0);
    EXPECT_EQ(found, row.id);
    EXPECT_EQ(mgr.MemLenGet(row.id, 3), 3 * row.size);
    EXPECT_EQ(mgr.IsFixed(row.id), row.fixed);
    EXPECT_EQ(mgr.ExchangeFormat(row.id, nullptr), row.format);
    EXPECT_EQ(mgr.SupportsNullValue(row.id), row.Nullable());
    EXPECT_EQ(mgr.IsValidType(row.id), 1);
    void* slots[25];
    std::memcpy(slots, mgr.table[static_cast<int>(row.id)], sizeof slots);
    for (int i = 0; i < 25; ++i) EXPECT_TRUE(slots[i] || i == 19) << "slot " << i;
  }
  EXPECT_EQ(mgr.MemLenGet(17, 4000), 14464) << "in 16 bits";
  char base[16], name[16];
  EXPECT_EQ(mgr.GetArrayElement(13, base, 5, 0), base + 15);
  EXPECT_EQ(mgr.GetArrayElement(13, base, 5, 5), nullptr);
  EXPECT_EQ(mgr.NameGet(18, name), name);
  EXPECT_STREQ(name, "NxBlob");
  EXPECT_EQ(mgr.DiskIsNullValue(15, base), -2999);
}

TEST(Records, TheIllegalTypeDoesNothing) {
  int error = 7;
  unsigned char byte = 0xEE;
  NxTypeMgr mgr(5);
  EXPECT_EQ(mgr.Create(40, 3), nullptr);
  EXPECT_EQ(mgr.Store(40, &byte, &byte, 1, 1) + mgr.table[40]->NullSizeGet(3), 0);
  mgr.ConstructorPtrGet(40)(&byte, 1, 0);
  EXPECT_EQ(mgr.Cmp(40, 0, &byte, 0, &byte, 0, 1, 1, error), 0);
  EXPECT_EQ(mgr.Hash(40, 0, &byte, 1, 1, error), 0U);
  EXPECT_EQ(error, 7);
  EXPECT_EQ(byte, 0xEE);
}

TEST(Steps, IncrementPointerStaysBelowTheEnd) {
  char buffer[8];
  void* p = buffer;
  EXPECT_EQ(IncrementPointer(p, buffer + 8, 7), 0);
  EXPECT_EQ(IncrementPointer(p, buffer + 8, 1), 2101);
  EXPECT_EQ(IncrementPointer(p, buffer + 8, 0xFFFFFFFF), 2101);
  EXPECT_EQ(IncrementPointer(p, buffer + 3, 1), 2101);
  EXPECT_EQ(p, buffer + 7);
}

TEST(Life, DatesBeginToday) {
  auto* dates = static_cast<NxDate*>(NxDateCreate(3));
  EXPECT_TRUE(dates[2].IsDate() && dates[2].year > 2000);
  NxDateDelete(dates, 3);
  NxTime time(-1L);
  NxTimeConstructor(&time, 1, 0);
  EXPECT_TRUE(time.IsTime());
}

TEST(StringArrays, StringsAndOwnership) {
  NxTypeMgr mgr(5);
  auto* strings = static_cast<NxString*>(mgr.Create(11, 2));
  {
    NxTypeConvertData borrowed(11, 2, strings, nullptr);
    EXPECT_EQ(borrowed.GetString(1), strings + 1);
    EXPECT_EQ(borrowed.GetString(-1), nullptr);
    EXPECT_EQ(borrowed.GetString(2), nullptr);
    borrowed.typeId = 12;
    EXPECT_EQ(borrowed.GetString(0), nullptr);
  }
  strings[0] = "still there";
  alignas(NxTypeConvertData) char place[sizeof(NxTypeConvertData)];
  auto* owning = new (place) NxTypeConvertData(11, 2, strings, &mgr);
  owning->~NxTypeConvertData();
  NxTypeConvertData after;
  std::memcpy(static_cast<void*>(&after), place, sizeof after);
  EXPECT_EQ(after.count, 0U);
  EXPECT_EQ(after.typeId, 100);
  EXPECT_EQ(after.data, nullptr);
  after.mgr = nullptr;
}

TEST(Identifiers, OutsideTheTables) {
  for (unsigned long factory : {5UL, 2UL}) {
    NxTypeMgr mgr(factory);
    for (int id : {100, 101, 127}) {
      EXPECT_EQ(mgr.IsValidType(static_cast<char>(id)), 1);
      EXPECT_STREQ(mgr.NameGet(static_cast<char>(id), nullptr), "illegal");
    }
    for (int id : {-128, -1, 41, 99}) {
      EXPECT_EQ(mgr.IsValidType(static_cast<char>(id)), 0);
      EXPECT_STREQ(mgr.NameGet(static_cast<char>(id), nullptr), "illegal");
      EXPECT_EQ(mgr.Create(static_cast<char>(id), 3), nullptr);
      EXPECT_EQ(mgr.GetArrayElement(static_cast<char>(id), &mgr, 0, 0), nullptr);
    }
  }
  NxTypeMgr early(2);
  for (char id : {28, 39, 40}) EXPECT_STREQ(early.NameGet(id, nullptr), "illegal");
  EXPECT_EQ(early.IsValidType(40), 1);  // by the identifier alone
}

TEST(Manager, FactoryChoosesTheTable) {
  for (unsigned i = 0; i < kOldTypeCount; ++i)
    EXPECT_EQ(NxOldtypetab[i], i == 11 ? &NxOldStringTab : NxNewtypetab[i]);
  EXPECT_EQ(NxTypeMgr(3).SupportsNullValue(11), 0);
}

/// A manager with a table of its own.
class OwnTable : public testing::Test {
 protected:
  OwnTable() : mgr(5) {
    for (NxTypeTab*& entry : table) entry = &record;
    table[11] = &NxStringTab;
    mgr.table = table;
  }
  NxTypeTab record = NxIllegalTab;
  NxTypeTab* table[kTypeCount];
  NxTypeMgr mgr;
  char a[8] = {}, b[8] = {};
};

TEST_F(OwnTable, EmptySlots) {
  record.PrintToNxString = nullptr;
  record.ScanFromNxString = nullptr;
  record.ConvertToNxString = nullptr;
  record.ConvertFromNxString = nullptr;
  record.Assignment = nullptr;
  NxString out("kept");
  EXPECT_EQ(&mgr.PrintToNxString(2, out, a, nullptr, 3), &out);
  EXPECT_EQ(Text(out), "kept");
  EXPECT_EQ(mgr.ScanFromNxString(2, a, out, nullptr, 1), a);
  EXPECT_EQ(mgr.ConvertTo(2, a, 1), nullptr);
  EXPECT_EQ(mgr.ConvertToNxStringOld(a, 2, 1), nullptr);
  NxTypeConvertData strings;
  EXPECT_EQ(mgr.ConvertFrom(2, &strings, 1), nullptr);
  EXPECT_EQ(strings.mgr, &mgr);
  EXPECT_EQ(mgr.ConvertFromNxStringOld(&out, 2, 1), nullptr);
  EXPECT_EQ(mgr.SetNullValue(2, a), 0);
}

TEST_F(OwnTable, SetNullFallsBack) {
  record = NxLongTab;
  long value = 5;
  record.SetNull = [](void*) { return 7; };
  EXPECT_EQ(mgr.SetNullValue(2, &value), 7);
  EXPECT_EQ(value, 5);
  record.SetNull = [](void*) { return -2999; };
  EXPECT_EQ(mgr.SetNullValue(2, &value), 0);
  EXPECT_EQ(value, 0);
  value = 5;
  record.Assignment = nullptr;  // then "0" is scanned
  EXPECT_EQ(mgr.SetNullValue(2, &value), 0);
  EXPECT_EQ(value, 0);
  NxString text("x");
  EXPECT_EQ(NxTypeMgr(5).SetNullValue(11, &text), 0);
  EXPECT_TRUE(text.IsNullValue());
  NxString earlyText("x");
  EXPECT_EQ(NxTypeMgr(3).SetNullValue(11, &earlyText), 0);  // no null state: the empty text
  EXPECT_TRUE(earlyText.IsEmpty() && !earlyText.IsNullValue());
}

TEST(Manager, ExchangesAreSeenByAll) {
  NxTypeMgr one(5), other(3);
  EXPECT_STREQ(one.ExchangeFormat(2, "#%ld"), "%ld");
  NxString out;
  long value = 7;
  EXPECT_EQ(Text(other.PrintToNxString(2, out, &value, nullptr, 1)), "#7");
  EXPECT_STREQ(other.ExchangeFormat(2, "%ld"), "#%ld");
  const auto compare = one.ExchangeNxTypeCmpFunc(2, NxShortTab.Compare);
  EXPECT_EQ(other.CmpFuncPtrGet(2), NxShortTab.Compare);
  EXPECT_EQ(one.ExchangeNxTypeCmpFunc(2, nullptr), NxShortTab.Compare);
  EXPECT_EQ(one.ExchangeNxTypeCmpFunc(2, compare), NxShortTab.Compare);
  EXPECT_EQ(one.CmpFuncPtrGet(2), compare);
  EXPECT_EQ(one.ComparePtrGet(2), nullptr);
  EXPECT_EQ(one.ExchangePrintToNxStringFunc(2, nullptr), NxLongTab.PrintToNxString);
  EXPECT_EQ(one.ExchangeScanFromNxStringFunc(2, nullptr), NxLongTab.ScanFromNxString);
  EXPECT_EQ(one.SetNullPtrGet(2), nullptr);
}

TEST(Text, Arrays) {
  NxTypeMgr mgr(5);
  int values[] = {1, 2, 3};
  NxString out;
  EXPECT_EQ(Text(mgr.PrintToNxString(7, out, values, "%d", 3)), "1,2,3");
  EXPECT_EQ(Text(mgr.PrintToNxString(7, out, values, "%d", 1)), "1");
  char letters[] = {'A', '\n', 'z'};
  // The output may hold the format, or be one of the values.
  NxString format("<%c>");
  EXPECT_EQ(Text(mgr.PrintToNxString(0, format, letters, format.StrGet(), 2)), "<A>0x0a");
  format = "%d;";
  EXPECT_EQ(Text(mgr.PrintToNxString(7, format, values, format.StrGet(), 3)), "%d;1;,2;,3;");
  format = std::string(3000, '-').append("%S").c_str();
  NxInt64 seven(7);
  EXPECT_EQ(Text(mgr.PrintToNxString(26, format, &seven, format.StrGet(), 1)).substr(3000),
            "%S" + std::string(3000, '-') + "7");
  NxString strings[] = {NxString("a"), NxString("b")};
  EXPECT_EQ(Text(mgr.PrintToNxString(11, strings[1], strings, nullptr, 2)), "ba,b");
  NxString text("41");
  EXPECT_EQ(mgr.ScanFromNxString(7, values, text, nullptr, 1), values);
  EXPECT_EQ(values[0], 41);
}

TEST(Text, NullText) {
  EXPECT_EQ(Text(NxTypeMgr::GetNullPrintString()), "{NULL}");
  EXPECT_EQ(&NxTypeMgr::SetNullPrintString(NxString("-")), &NxTypeMgr::GetNullPrintString());
  NxTypeMgr mgr(5);
  unsigned char null = 255;
  NxString out;
  EXPECT_EQ(Text(mgr.PrintToNxString(27, out, &null, nullptr, 1)), "-");
  NxTypeMgr::SetNullPrintString(NxString("{NULL}"));
}

TEST(Text, ManyValuesInOne) {
  NxTypeMgr mgr(5);
  NxString strings[] = {NxString("a"), NxString("b\x01")};
  NxString* text = mgr.ConvertToNxStringOld(strings, 11, 2);
  EXPECT_EQ(Text(*text),
            "a\x02"
            "b\x01\x02");  // the first code that is in neither
  auto* back = static_cast<NxString*>(mgr.ConvertFromNxStringOld(text, 11, 2));
  EXPECT_EQ(Text(back[0]), "a");
  EXPECT_EQ(Text(back[1]), "b\x01");
  EXPECT_TRUE(text->IsEmpty());
  mgr.Delete(11, back, 2);
  mgr.Delete(11, text, 1);

  struct Row {
    const char* text;
    long values[3];
    const char* left;
  };
  const Row rows[] = {{"5;7;", {5, 7, 0}, ""},
                      {"5*7*", {5, 7, 0}, ""},
                      {"12?3?4?", {12, 3, 4}, ""},
                      {";;9;", {0, 0, 9}, ""},
                      {"5\xBC\xB9\x37\xB9", {5, 7, 0}, ""},  // a quarter is no raised one
                      {"", {0, 0, 0}, ""}};
  for (const Row& row : rows) {
    NxString list(row.text);
    auto* values = static_cast<long*>(mgr.ConvertFromNxStringOld(&list, 2, 3));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(values[i], row.values[i]) << row.text;
    EXPECT_EQ(Text(list), row.left);
    mgr.Delete(2, values, 3);
  }
}

// Positions beyond 32767 do not fit the sign of a 16-bit position.
TEST(Text, ManyValuesInALongText) {
  NxTypeMgr mgr(5);
  NxString text;
  text.Fill(40000, 'x');
  text += NxString(";12;");
  auto* parts = static_cast<NxString*>(mgr.ConvertFromNxStringOld(&text, 11, 2));
  EXPECT_EQ(parts[0].Len(), 40000);
  EXPECT_EQ(Text(parts[1]), "12");
  EXPECT_TRUE(text.IsEmpty());
  mgr.Delete(11, parts, 2);
}

TEST(Context, DefaultManager) {
  EXPECT_EQ(DefaultTypeMgr(nullptr), nullptr);
  ___NxTypemgrContext(1);
  ASSERT_NE(DefaultTypeMgr(nullptr), nullptr);
  EXPECT_EQ(DefaultTypeMgr(nullptr)->factory, 5);
  auto* own = new NxTypeMgr(3);
  delete DefaultTypeMgr(nullptr);
  EXPECT_EQ(DefaultTypeMgr(own), own);
  ___NxTypemgrContext(0);  // releases whatever is there
  EXPECT_EQ(DefaultTypeMgr(nullptr), nullptr);
}

TEST(Identity, NamesAndVersion) {
  EXPECT_EQ(NxCheckDll(0), 0);
  int version[5], number = 0;
  const char *shortName, *built, *unknown, *compiler, *empty;
  EXPECT_STREQ(NxDescribeDll(&version[0], &version[1], &version[2], &version[3], &version[4], &shortName,
                             &built, &unknown, &number, &compiler, &empty),
               "Quorvantics Typemanager");
  EXPECT_EQ(std::vector<int>(version, version + 5), (std::vector<int>{9, 5, 23, 262, 0}));
  EXPECT_STREQ(shortName, "nx21Rtms");
  EXPECT_STREQ(unknown, "unknown");
  EXPECT_STREQ(empty, "");
  EXPECT_EQ(number, 320);
  const char *info = nullptr, *date = nullptr;
  GetNxTypeMgrInfo(nullptr, nullptr, nullptr, nullptr, nullptr);
  GetNxTypeMgrInfo(nullptr, nullptr, &info, &date, nullptr);
  EXPECT_STREQ(info, "Quorvantics Typemanager 9.5.23.262.0 ");
  EXPECT_EQ(std::string(built).substr(0, std::strlen(date) + 1), std::string(date) + " ");
}

}  // namespace
