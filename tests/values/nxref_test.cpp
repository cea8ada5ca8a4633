// Identifiers and references: their numbers, orders and texts, and what their images and
// slots do that other types' do not. The examples of texts are those of docs/references.md.
#include "nxref.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "nxbase.h"
#include "nxlang.h"
#include "nxrefx.h"
#include "nxseal.h"
#include "nxstring.h"
#include "nxtypmgr.h"

namespace {

using Bytes = std::vector<unsigned char>;

NxObjId Object(unsigned high, unsigned long low, unsigned long block = 1) {
  return {block, low, static_cast<unsigned short>(high)};
}

NxDBOId InDatabase(unsigned short database, const NxObjId& id) {
  return {id.block, id.low, id.high, database};
}

NxRef Reference(unsigned short database, const NxObjId& id, unsigned short classNumber = 1) {
  return {id, database, {classNumber, 2}};
}

TEST(NxObjId, CarriesBetweenItsParts) {
  for (const long long start : {0LL, 1LL, 0xFFFFFFFFLL, 0x100000000LL, 0x100007FFFLL, 0xFFFFFFFFFFFFLL})
    for (const int step : {1, -1, 0, 2, 32767, -32768}) {
      NxObjId id = Object(static_cast<unsigned>(start >> 32), static_cast<unsigned long>(start));
      const NxObjId& result = step == 1 ? ++id : step == -1 ? --id : id += static_cast<short>(step);
      EXPECT_EQ(static_cast<long long>(result.high) << 32 | result.low, (start + step) & 0xFFFFFFFFFFFFLL);
      EXPECT_EQ(id.block, 1UL);
    }
}

/// Each value sorts behind those before it, whatever class the other operand has, and
/// equals the one in its place.
template <class A, class B>
void ExpectOneOrder(const std::vector<A>& values, const std::vector<B>& others) {
  for (std::size_t i = 0; i < values.size(); ++i)
    for (std::size_t j = 0; j < others.size(); ++j) {
      EXPECT_EQ(values[i] != others[j], i < j ? -1 : i > j) << i << ' ' << j;
      if constexpr (!std::is_same_v<A, NxClassId>) {
        EXPECT_EQ(values[i] == others[j], i == j) << i << ' ' << j;
      }
    }
}

TEST(Identifiers, HaveOneOrder) {
  NxObjId last;
  last.SetHighestValue();
  const std::vector<NxObjId> ids = {Object(0, 0), Object(0, 0xFFFFFFFF), Object(1, 0), last};
  std::vector<NxDBOId> local(4), foreign(4);
  std::vector<NxLocalRef> localRefs(4);
  std::vector<NxRef> refs(4);
  for (unsigned i = 0; i < 4; ++i) {
    local[i].database = 9;
    local[i] = ids[i];
    foreign[i] = InDatabase(3, Object(ids[i].high, ids[i].low, 2));  // blocks do not count
    refs[i].database = 9;
    localRefs[i] = ids[i];
    refs[i] = localRefs[i];
    localRefs[i] = NxClassId{static_cast<unsigned short>(i ^ 1), 0};  // nor do classes
  }
  ExpectOneOrder(ids, ids);
  ExpectOneOrder(ids, foreign);  // an object has no database to look at
  ExpectOneOrder(local, ids);
  ExpectOneOrder<NxDBOId, NxDBOId>({local[0], local[3], foreign[0]}, {local[0], local[3], foreign[0]});
  EXPECT_EQ(foreign[0] != last, 1);
  EXPECT_FALSE(foreign[0] == ids[0]);
  ExpectOneOrder(localRefs, localRefs);
  ExpectOneOrder(localRefs, refs);
  refs = {Reference(2, ids[0]), Reference(3, ids[0]), Reference(1, ids[1])};  // the object counts first
  ExpectOneOrder(refs, refs);
  EXPECT_EQ(localRefs[0] != refs[0], -1);
  EXPECT_FALSE(localRefs[0] == refs[0]);
  const std::vector<NxClassId> classes = {{65535, 65535}, {0, 0}, {0, 1}, {1, 0}, {65535, 65534}};
  ExpectOneOrder(classes, classes);
  EXPECT_TRUE(classes[1] > classes[0]);
  NxSeal seal;
  seal.ConvertFrom(Object(0x0102, 0x03040506));
  EXPECT_TRUE((seal == NxSeal{0x0102, 0x0304, 0x0506}));
}

TEST(References, TakeTheirParts) {
  NxRef ref;
  ref = InDatabase(3, Object(1, 2));
  ref = NxClassId{4, 5};
  NxLocalRef local;
  local = ref;
  ref = Object(6, 7);
  ref = static_cast<unsigned short>(8);
  NxString text;
  EXPECT_STREQ(ref.PrintToNxString(text, "%D %H %L %C %V").StrGet(), "8 6 7 4 5");
  EXPECT_STREQ(local.PrintToNxString(text, "%D %H %L %C %V").StrGet(), "0 1 2 4 5");
  local = NxClassId{9, 8};
  EXPECT_STREQ(local.PrintToNxString(text, "%H %L %C %V").StrGet(), "1 2 9 8");
  NxObjId id;
  id = InDatabase(3, Object(1, 2, 3));
  EXPECT_STREQ(id.PrintToNxString(text, "%B %H %L").StrGet(), "3 1 2");

  const struct {
    unsigned short database, classNumber;
    unsigned long low;
    int valid, validOrigin;
  } rows[] = {{1, 1, 1, 1, 1},     {1, 0, 1, 0, 0}, {65535, 1, 1, 0, 1},
              {65535, 0, 1, 0, 1}, {1, 1, 0, 0, 0}, {65535, 1, 0, 0, 0}};
  for (const auto& row : rows) {
    const NxRef r = Reference(row.database, Object(0, row.low), row.classNumber);
    EXPECT_EQ(r.IsValid(), row.valid) << row.database << ' ' << row.classNumber;
    EXPECT_EQ(r.IsValidOriginId(), row.validOrigin) << row.database << ' ' << row.classNumber;
  }
}

// ---------------------------------------------------------------------------
// Texts

/// The cells of the tables of examples under a heading of docs/references.md.
std::vector<std::vector<std::string>> Examples(const std::string& heading) {
  std::ifstream in(NX_SOURCE_DIR "/docs/references.md");
  std::vector<std::vector<std::string>> rows;
  bool inside = false;
  for (std::string line; std::getline(in, line);) {
    if (line.compare(0, 2, "##") == 0) inside = line == "## " + heading;
    if (!inside || line.compare(0, 5, "| `Nx") != 0) continue;
    std::istringstream cells(line.substr(2));
    std::vector<std::string> row;
    for (std::string cell; std::getline(cells, cell, '|');) {
      cell.erase(0, cell.find_first_not_of(" `"));
      cell.erase(cell.find_last_not_of(" `") + 1);
      row.push_back(cell);
    }
    rows.push_back(row);
  }
  return rows;
}

/// The types as their records and their fields, offset and width, in the document's order.
const struct Type {
  NxTypeTab& record;
  std::vector<std::pair<unsigned, unsigned>> fields;
} kTypes[] = {
    {NxObjIdTab, {{8, 2}, {4, 4}, {0, 4}}},
    {NxClassIdTab, {{0, 2}, {2, 2}}},
    {NxRefTab, {{12, 2}, {8, 2}, {4, 4}, {0, 4}, {14, 2}, {16, 2}}},
};
const Type& TypeOf(const std::string& name) {
  return kTypes[name == "NxObjId" ? 0 : name == "NxClassId" ? 1 : 2];
}

Bytes ValueOf(const Type& type, const std::string& numbers) {
  Bytes value(type.record.flags & 0xFFFF);
  std::istringstream in(numbers);
  unsigned long number;
  for (const auto& field : type.fields)
    if (in >> number) std::memcpy(&value[field.first], &number, field.second);
  return value;
}

const char* FormatOf(const std::string& cell) { return cell == "none" ? nullptr : cell.c_str(); }

TEST(Texts, AreWhatTheDocumentSays) {
  const auto prints = Examples("Printing"), scans = Examples("Scanning");
  ASSERT_GT(prints.size(), 10U);
  ASSERT_GT(scans.size(), 10U);
  for (const auto& row : prints) {
    const Type& type = TypeOf(row[0]);
    NxString out("before");
    EXPECT_EQ(&type.record.PrintToNxString(out, ValueOf(type, row[1]).data(), FormatOf(row[2]), 1), &out);
    EXPECT_EQ(std::string(out.StrGet()), row[3]) << row[0] << ' ' << row[1];
  }
  for (const auto& row : scans)
    for (const unsigned char codeSet : {kCodeSetLatin1, kCodeSetUnicode}) {
      const Type& type = TypeOf(row[0]);
      Bytes value = ValueOf(type, type.fields.size() == 6 ? "9 9 9 9 9 9" : "9 9 9");
      NxString in(row[1].c_str());
      in.MapToCodeSet(codeSet);
      EXPECT_EQ(type.record.ScanFromNxString(value.data(), in, FormatOf(row[2]), 1), value.data());
      EXPECT_EQ(value, ValueOf(type, row[3])) << row[0] << ' ' << row[1];
      EXPECT_EQ(type.record.ScanFromNxString(nullptr, in, FormatOf(row[2]), 1), nullptr);
    }
}

TEST(Texts, MembersHaveFormatsOfTheirOwn) {
  NxString out;
  NxRef ref = Reference(3, Object(0, 42, 7), 12);
  NxLocalRef local;
  local = ref;
  NxDBOId object = InDatabase(5, ref.objId);
  EXPECT_STREQ(ref.PrintToNxString(out, nullptr).StrGet(), "(3:0-42#7, 12)");
  EXPECT_STREQ(local.PrintToNxString(out, nullptr).StrGet(), "(0-42#7,12)");
  EXPECT_STREQ(object.PrintToNxString(out, nullptr).StrGet(), "(0-42#7)");
  local.ScanFromNxString(NxString("(1-2#3,4)"), nullptr);
  EXPECT_STREQ(local.PrintToNxString(out, "%H %L %B %C %V").StrGet(), "1 2 3 4 0");
  object.ScanFromNxString(NxString("(1-2#3)"), nullptr);
  EXPECT_TRUE(object == Object(1, 2));
  ref.ScanFromNxString(NxString("{NULL} and more"), nullptr);  // only the object becomes null
  EXPECT_TRUE(ref.IsNullValue());
  EXPECT_EQ(ref.database, 3);
  EXPECT_EQ(ref.classId.version, 2);

  // What does not fit into the work area is cut.
  object.low = 4294967295UL;
  EXPECT_EQ(object.PrintToNxString(out, (std::string(505, 'x') + "%L").c_str()).Len(), 511);
  EXPECT_EQ(std::string(out.StrGet()).substr(504), "x429496");
}

// ---------------------------------------------------------------------------
// Slots

TEST(Slots, TouchTheBytesOfTheirFieldsOnly) {
  unsigned char raw[] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 77, 77};
  NxObjIdConstructor(raw, 1, 0);
  EXPECT_EQ(raw[9], 0);
  EXPECT_EQ(raw[10], 77);
  NxObjIdConstructor(nullptr, 1, 0);
  NxRef ref = Reference(1, Object(1, 1));
  unsigned char image[14];
  NxRef::Store(image, &ref, kFormatBigEndian, 1);
  NxRef::Load(&ref, image, kFormatBigEndian, 1);
  EXPECT_EQ(ref.classId.version, 0);  // the image has none
}

}  // namespace
