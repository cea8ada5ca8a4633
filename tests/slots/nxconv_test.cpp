// String arrays: the record, and the texts of the fixed-size types.

#include "nxconv.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "nxcomp.h"
#include "nxstring.h"
#include "nxtmdata.h"
#include "nxtypmgr.h"

namespace {

TEST(Record, StringsAndOwnership) {
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

/// The bytes of a value.
template <class T>
std::string Bytes(T value) {
  return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

struct Row {
  char id;
  std::string value;
  const char* text;  // null: a null string
};

TEST(Texts, OfValuesAndBack) {
  NxDate nullDate(0L);
  nullDate.SetNullValue();
  NxTime nullTime(0L);
  nullTime.SetNullValue();
  const Row rows[] = {
      {0, "\xC8", "-56"},
      {0, "A", "65"},
      {10, "\xFF", "-1"},
      {1, Bytes<short>(-32768), "-32768"},
      {5, Bytes<unsigned short>(65535), "-1"},
      {2, Bytes(-2147483647L), "-2147483647"},
      {14, Bytes(4294967295UL), "-1"},
      {7, Bytes(2147483647), "2147483647"},
      {8, Bytes(4294967295U), "-1"},
      {9, Bytes(-5), "-5"},
      {3, Bytes(0.1), "0.1"},
      {3, Bytes(-1e300), "-1e+300"},
      {4, Bytes(0.5F), "0.5"},
      {12, Bytes(NxDate(2451545L)), "2451545"},
      {12, Bytes(nullDate), nullptr},
      {13, Bytes(NxTime(3661L)), "3661"},
      {13, Bytes(nullTime), nullptr},
      {26, Bytes(-9000000000LL), "-9000000000"},
      {27, std::string(1, '\1'), "1"},
      {27, std::string(1, '\0'), "0"},
      {27, "\xFF", nullptr},
      {39, std::string("\1\0\2\0\3\0", 6), "4295098371"},
  };
  NxTypeMgr mgr(5);
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << mgr.NameGet(row.id, nullptr) << " " << (row.text ? row.text : "null"));
    // The second of two values, for the step; and unaligned.
    std::string values = "x" + row.value + row.value;
    NxTypeConvertData* strings = mgr.ConvertTo(row.id, &values[1], 2);
    ASSERT_EQ(strings->count, 2U);
    EXPECT_EQ(strings->typeId, 11);
    const NxString* s = strings->GetString(1);
    EXPECT_EQ(s->IsNullValue() != 0, row.text == nullptr);
    EXPECT_STREQ(s->StrGet(), row.text ? row.text : "");
    auto* back = static_cast<char*>(mgr.ConvertFrom(row.id, strings, 2));
    EXPECT_EQ(std::string(back + row.value.size(), row.value.size()), row.value);
    mgr.Delete(row.id, back, 2);
    delete strings;
  }
}

TEST(Texts, PrecisionOfFloats) {
  NxTypeMgr mgr(5);
  float value = 0.1F;
  NxTypeConvertData* strings = mgr.ConvertTo(4, &value, 1);
  EXPECT_STREQ(strings->GetString(0)->StrGet(), "0.100000001490116");
  delete strings;
}

/// What the n-th text becomes, from a record of these texts.
std::string FromTexts(char id, std::vector<NxString> texts, unsigned long n) {
  NxTypeMgr mgr(5);
  NxTypeConvertData record(11, texts.size(), texts.data(), nullptr);
  auto* values = static_cast<char*>(mgr.ConvertFrom(id, &record, n));
  record.mgr = nullptr;  // the texts are the vector's
  const unsigned long size = mgr.MemLenGet(id, 1);
  const std::string last(values + (n - 1) * size, size);
  mgr.Delete(id, values, n);
  return last;
}

TEST(Values, OfOddTexts) {
  NxString null;
  null.SetNullValue();
  const unsigned short wideOne[] = {'1', 'x', 0};
  EXPECT_EQ(FromTexts(7, {NxString("12"), null, NxString("x")}, 3), Bytes(0));
  EXPECT_EQ(FromTexts(7, {NxString("12"), null}, 2), Bytes(0));
  EXPECT_EQ(FromTexts(7, {NxString("12")}, 2), Bytes(0)) << "missing";
  EXPECT_EQ(FromTexts(7, {NxString("0x10")}, 1), Bytes(16));
  EXPECT_EQ(FromTexts(7, {NxString("010")}, 1), Bytes(8));
  *___NxTypeMgrOptions() = kOptionDecimalOnly;
  EXPECT_EQ(FromTexts(7, {NxString("0x10")}, 1), Bytes(0));
  EXPECT_EQ(FromTexts(7, {NxString("010")}, 1), Bytes(10));
  *___NxTypeMgrOptions() = 0;
  EXPECT_EQ(FromTexts(0, {NxString("321")}, 1), "A") << "the low byte";
  EXPECT_EQ(FromTexts(27, {NxString("10")}, 1), std::string(1, '\1'));
  EXPECT_EQ(FromTexts(27, {NxString(wideOne)}, 1), std::string(1, '\1'));
  EXPECT_EQ(FromTexts(27, {NxString("true")}, 1), std::string(1, '\0'));
  EXPECT_EQ(FromTexts(27, {null}, 1), "\xFF");
  EXPECT_EQ(FromTexts(27, {NxString("1")}, 2), "\xFF");
  EXPECT_EQ(FromTexts(12, {NxString("")}, 1), Bytes(NxDate(0L))) << "empty is not null";
  EXPECT_EQ(FromTexts(12, {null}, 1), std::string("\x00\x80\x80\x80", 4));
  EXPECT_EQ(FromTexts(39, {NxString("")}, 1), std::string(6, '\0'));
  EXPECT_EQ(FromTexts(26, {NxString("")}, 1), std::string(8, '\0'));
}

}  // namespace
