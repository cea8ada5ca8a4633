// Records, tables, the type manager's dispatch and its composite operations, the
// library's context and identity.

#include "nxtypmgr.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "nxbase.h"
#include "nxconv.h"
#include "nxstring.h"
#include "nxtmdata.h"
#include "nxtmvers.h"
#include "nxtypes.h"
#include "nxtypfmt.h"

namespace {

std::string Text(const NxString& s) { return s.StrGet(); }

struct TypeRow {
  const char* name;
  unsigned short size;
  bool fixed;
  const char* format;
  bool nullable;
};
const TypeRow kTypes[] = {
    {"char", 1, true, "%c", false},
    {"short", 2, true, "%hd", false},
    {"long", 4, true, "%ld", false},
    {"double", 8, true, "%lf", false},
    {"float", 4, true, "%f", false},
    {"NxWord", 2, true, "%hu", false},
    {"NxDWord", 4, true, "%lu", false},
    {"int", 4, true, "%d", false},
    {"unsigned", 4, true, "%u", false},
    {"enum", 4, true, "%d", false},
    {"NxByte", 1, true, "%c", false},
    {"NxString", 8, false, "%s", true},
    {"NxDate", 4, true, "%a %e.%b %Y", true},
    {"NxTime", 3, true, "%I:%M:%S %p", true},
    {"BlockId", 4, true, "#%lu", false},
    {"NxObjId", 12, true, "(%H-%L#%B)", true},
    {"NxClassId", 4, true, "(%Cv%V)", true},
    {"NxRef", 20, true, "(%D:%H-%L#%B, %C)", true},
    {"NxBlob", 4, false, "[BLOB,len=%L]", true},
    {"NxDateTime", 8, true, "%a %e.%b %Y %I:%M:%S %p", true},
    {"NxIString", 8, false, "%s", false},
    {"NxCaseIString", 8, false, "%s", false},
    {"d_Date", 4, true, "%a %b %e", false},
    {"d_Time", 6, true, "%I:%M:%S %p", false},
    {"d_Timestamp", 10, true, "%a %b %e %I:%M:%S %p", false},
    {"d_Interval", 4, true, "%e days, %I hours, %M minutes, %S seconds", false},
    {"NxInt64", 8, true, "%S", false},
    {"NxBoolean", 1, true, "noop", true},
    {"NxNull_char", 2, true, "%c", true},
    {"NxNull_uchar", 2, true, "%c", true},
    {"NxNull_short", 4, true, "%hd", true},
    {"NxNull_ushort", 4, true, "%hu", true},
    {"NxNull_int", 8, true, "%d", true},
    {"NxNull_unsigned", 8, true, "%u", true},
    {"NxNull_long", 8, true, "%ld", true},
    {"NxNull_ulong", 8, true, "%lu", true},
    {"NxNull_float", 8, true, "%f", true},
    {"NxNull_double", 12, true, "%lf", true},
    {"NxNull_NxInt64", 12, true, "%S", true},
    {"NxSeal", 6, true, "noop", false},
    {"illegal", 0, true, "illegal", false},
};
static_assert(sizeof kTypes / sizeof *kTypes == kTypeCount);

TEST(Records, NameSizeFormatAndNullState) {
  NxTypeMgr mgr(5);
  for (char id = 0; id < static_cast<char>(kTypeCount); ++id) {
    const TypeRow& row = kTypes[static_cast<int>(id)];
    SCOPED_TRACE(row.name);
    char found = 99;
    EXPECT_EQ(mgr.Name2NxTypeId(row.name, found), 0);
    EXPECT_EQ(found, id);
    EXPECT_EQ(mgr.MemLenGet(id, 1), row.size);
    EXPECT_EQ(mgr.IsFixed(id), row.fixed);
    EXPECT_STREQ(mgr.ExchangeFormat(id, nullptr), row.format);
    EXPECT_EQ(mgr.SupportsNullValue(id), row.nullable);
    EXPECT_EQ(mgr.IsValidType(id), 1);
  }
}

TEST(Records, EverySlotIsFilled) {
  for (const NxTypeTab* record : NxNewtypetab) {
    void* slots[25];
    std::memcpy(slots, record, sizeof slots);
    for (int i = 0; i < 25; ++i) EXPECT_TRUE(slots[i] || i == 19) << record->name << " slot " << i;
  }
}

TEST(Records, SharedFunctions) {
  EXPECT_EQ(NxWordTab.Store, NxShortTab.Store);
  EXPECT_NE(NxWordTab.Compare, NxShortTab.Compare);
  EXPECT_EQ(NxBlockIdTab.Hash, NxDWordTab.Hash);
  EXPECT_NE(NxDWordTab.EvalAndBound, NxLongTab.EvalAndBound);
  EXPECT_NE(NxUnsignedTab.Translate, NxIntTab.Translate);
  EXPECT_NE(NxUnsignedTab.Load, NxIntTab.Load);
  EXPECT_EQ(NxUnsignedTab.Create, NxIntTab.Create);
  EXPECT_EQ(NxEnumTab.Compare, NxIntTab.Compare);
  EXPECT_NE(NxEnumTab.Translate, NxIntTab.Translate);
  EXPECT_EQ(NxByteTab.PrintToNxString, NxCharTab.PrintToNxString);
  EXPECT_EQ(NxOldStringTab.Load, NxStringTab.Load);
  EXPECT_NE(NxOldStringTab.Store, NxStringTab.Store);
  EXPECT_EQ(NxOldStringTab.NullSizeGet, NxStringTab.NullSizeGet);
}

// How null looks in memory, for the types whose null state is a matter of bytes.
TEST(Records, NullStates) {
  struct Row {
    char id;
    std::vector<unsigned char> before, after;
  };
  const unsigned char kLow = 0x80;
  const Row rows[] = {
      {12, {1, 2, 3, 4}, {0, kLow, kLow, kLow}},
      {13, {1, 2, 3}, {kLow, kLow, kLow}},
      {15, {1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 7, 7}, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 7, 7}},
      {16, {0, 0, 0, 0}, {255, 255, 255, 255}},
      {17, {9, 9, 9, 9, 0, 0, 0, 0, 0, 1, 7, 7, 3, 0}, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 7, 7, 3, 0}},
      {19, {0, kLow, kLow, kLow, kLow, kLow, 0, 9}, {0, kLow, kLow, kLow, kLow, kLow, kLow, 9}},
      {27, {1}, {255}},
      {28, {5, 0}, {0, 1}},
      {31, {5, 6, 0, 9}, {0, 0, 1, 9}},
      {36, {5, 6, 7, 8, 0, 9}, {0, 0, 0, 0, 1, 9}},
      {37, {1, 2, 3, 4, 5, 6, 7, 8, 0, 9}, {0, 0, 0, 0, 0, 0, 0, 0, 1, 9}},
      {38, {1, 2, 3, 4, 5, 6, 7, 8, 0, 9}, {0, 0, 0, 0, 0, 0, 0, 0, 1, 9}},
  };
  NxTypeMgr mgr(5);
  for (const Row& row : rows) {
    SCOPED_TRACE(kTypes[static_cast<int>(row.id)].name);
    std::vector<unsigned char> value = row.before;
    EXPECT_EQ(mgr.IsNullValue(row.id, value.data()), 0);
    EXPECT_EQ(mgr.SetNullValue(row.id, value.data()), 0);
    EXPECT_EQ(value, row.after);
    EXPECT_NE(mgr.IsNullValue(row.id, value.data()), 0);
  }
  unsigned char flagged[2] = {7, 2};  // any flag but 0 counts in memory
  EXPECT_NE(mgr.IsNullValue(28, flagged), 0);
  unsigned char blockOnly[12] = {1};
  EXPECT_NE(mgr.IsNullValue(15, blockOnly), 0);
  EXPECT_EQ(mgr.DiskIsNullValue(15, blockOnly), -2999);
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

TEST(Identifiers, ByName) {
  struct Row {
    unsigned long factory;
    const char* name;
    int result;
    char id;
  };
  const Row rows[] = {
      {5, "NxWord", 0, 5},  {5, "nxword", 1, 41},   {5, "Word", 1, 41},      {5, "NxWor", 1, 41},
      {5, "", 1, 41},       {3, "NxString", 0, 11}, {3, "NxBoolean", 0, 27}, {3, "NxNull_char", 1, 28},
      {3, "illegal", 1, 28}};
  for (const Row& row : rows) {
    char id = 77;
    EXPECT_EQ(NxTypeMgr(row.factory).Name2NxTypeId(row.name, id), row.result) << row.name;
    EXPECT_EQ(id, row.id) << row.name;
  }
}

TEST(Manager, FactoryChoosesTheTable) {
  struct Row {
    unsigned long given;
    unsigned short effective;
    bool early;
  };
  const Row rows[] = {{0, 0, true},  {3, 3, true},   {4, 4, false},    {10, 10, false},
                      {11, 3, true}, {12, 4, false}, {1000, 4, false}, {65547, 4, false}};
  NxTypeMgr mgr(5);
  for (const Row& row : rows) {
    mgr.SetFactory(row.given);
    EXPECT_EQ(mgr.factory, row.effective) << row.given;
    EXPECT_EQ(mgr.table, row.early ? NxOldtypetab : NxNewtypetab) << row.given;
  }
  for (unsigned i = 0; i < kOldTypeCount; ++i)
    EXPECT_EQ(NxOldtypetab[i], i == 11 ? &NxOldStringTab : NxNewtypetab[i]);
  EXPECT_EQ(NxTypeMgr(3).SupportsNullValue(11), 0);
}

TEST(Manager, SizesAndElements) {
  NxTypeMgr mgr(5);
  EXPECT_EQ(mgr.MemLenGet(17, 4000), 14464);
  EXPECT_EQ(mgr.MemLenGet(100, 7), 0);
  char base[16];
  EXPECT_EQ(mgr.GetArrayElement(13, base, 5, 0), base + 15);
  EXPECT_EQ(mgr.GetArrayElement(13, base, 4, 5), base + 12);
  EXPECT_EQ(mgr.GetArrayElement(13, base, 5, 5), nullptr);
  char name[16];
  EXPECT_EQ(mgr.NameGet(18, name), name);
  EXPECT_STREQ(name, "NxBlob");
}

// A table of one's own whose functions note what they were called with.
std::vector<long> noted;
template <class... Args>
void Note(Args... args) {
  noted = {(long)args...};  // addresses and numbers alike
}

class OwnTable : public testing::Test {
 protected:
  OwnTable() : mgr(5) {
    for (NxTypeTab*& entry : table) entry = &record;
    table[11] = &NxStringTab;
    mgr.table = table;
    noted.clear();
  }
  NxTypeTab record = NxIllegalTab;
  NxTypeTab* table[kTypeCount];
  NxTypeMgr mgr;
  char a[8] = {}, b[8] = {};
};

TEST_F(OwnTable, ArgumentsReachTheSlotsInTheirOrder) {
  const auto addr = [](const void* p) { return reinterpret_cast<long>(p); };
  int error = 5;
  unsigned short relation = 6;
  record.Store = [](void* i, const void* v, unsigned char f, unsigned long n) {
    return Note(i, v, f, n), 21;
  };
  EXPECT_EQ(mgr.Store(2, a, b, 3, 4), 21);
  EXPECT_EQ(noted, (std::vector<long>{addr(a), addr(b), 3, 4}));
  record.SizeGet = [](const void* p, unsigned char form, unsigned char f, unsigned long n) {
    return Note(p, form, f, n), 22;
  };
  EXPECT_EQ(mgr.DiskLenGet(2, a, 3, 4, 8), 22);
  EXPECT_EQ(noted, (std::vector<long>{addr(a), 8, 3, 4}));
  record.Compare = [](unsigned char f, unsigned long l1, void* v1, unsigned long l2, void* v2,
                      unsigned short o, unsigned long n, int& e) {
    Note(f, l1, v1, l2, v2, o, n, static_cast<long>(e));
    e = 99;
    return 23L;
  };
  EXPECT_EQ(mgr.Cmp(2, a, b, 7, 4, 3), 23);
  EXPECT_EQ(noted, (std::vector<long>{3, 0, addr(a), 0, addr(b), 7, 4, 0}));
  EXPECT_EQ(mgr.Cmp(2, 10, a, 11, b, 7, 4, 3, error), 23);
  EXPECT_EQ(noted, (std::vector<long>{3, 10, addr(a), 11, addr(b), 7, 4, 5}));
  EXPECT_EQ(error, 99);
  record.EvalAndBound = [](NxIdxBounds* r, unsigned short& w, void* k, unsigned char f, unsigned long n,
                           NxIdxBounds* s) { return Note(r, static_cast<long>(w), k, f, n, s), 0.5F; };
  EXPECT_EQ(mgr.EvalAndBound(2, nullptr, relation, a, 3, 4, reinterpret_cast<NxIdxBounds*>(b), nullptr),
            0.5F);
  EXPECT_EQ(noted, (std::vector<long>{0, 6, addr(a), 3, 4, addr(b)}));
  record.Hash = [](unsigned char f, unsigned long l, void* v, unsigned long n, int&) {
    return Note(f, l, v, n), 24UL;
  };
  EXPECT_EQ(mgr.Hash(2, 10, a, 4, 3, error), 24U);
  EXPECT_EQ(noted, (std::vector<long>{3, 10, addr(a), 4}));
  record.Translate = [](void* d, unsigned char df, unsigned long dl, void* s, unsigned char sf,
                        unsigned long sl, unsigned long n) { return Note(d, df, dl, s, sf, sl, n), 25; };
  EXPECT_EQ(mgr.Translate(2, a, 8, 5, b, 1, 6, 7), 25);
  EXPECT_EQ(noted, (std::vector<long>{addr(a), 8, 5, addr(b), 1, 6, 7}));
}

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
  EXPECT_EQ(Text(mgr.PrintToNxString(0, out, letters, nullptr, 3)), "A0x0az");
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

TEST(Context, DefaultManagerAndOptions) {
  EXPECT_EQ(DefaultTypeMgr(nullptr), nullptr);
  ___NxTypemgrContext(1);
  ASSERT_NE(DefaultTypeMgr(nullptr), nullptr);
  EXPECT_EQ(DefaultTypeMgr(nullptr)->factory, 5);
  auto* own = new NxTypeMgr(3);
  delete DefaultTypeMgr(nullptr);
  EXPECT_EQ(DefaultTypeMgr(own), own);
  ___NxTypemgrContext(0);  // releases whatever is there
  EXPECT_EQ(DefaultTypeMgr(nullptr), nullptr);

  EXPECT_EQ(static_cast<int>(NxString("010")), 8);
  *___NxTypeMgrOptions() = kOptionDecimalOnly;
  EXPECT_EQ(static_cast<int>(NxString("010")), 10);
  *___NxTypeMgrOptions() = 0;
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
