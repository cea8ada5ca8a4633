// Nullable scalars: flags beyond 0 and 1, arrays across the blocks that are converted at
// once, estimates beside nulls, texts.

#include "nxnultyp.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "nxconv.h"
#include "nxoption.h"
#include "nxtypevl.h"
#include "nxtyphash.h"
#include "nxtypmgr.h"
#include "support/strings.h"

namespace {

const NxTypeTab* const kTypes[] = {
#define NX_RECORD(Type, Value, Scalar, Format) &Type##Tab,
    NX_NULLABLE_TYPES(NX_RECORD)
#undef NX_RECORD
};

unsigned long Size(const NxTypeTab& type) { return type.flags & 0xFFFF; }
unsigned long NumberBytes(const NxTypeTab& type) {
  return static_cast<unsigned long>(type.NullSizeGet(1)) - 1;
}

/// A value in memory: a number of equal bytes and a flag.
Bytes Value(const NxTypeTab& type, unsigned char byte, unsigned char flag) {
  Bytes value(Size(type), byte);
  value[NumberBytes(type)] = flag;
  return value;
}

/// Its image under a code, as the text of formats.md has it.
Bytes Image(const NxTypeTab& type, unsigned char code, unsigned char byte, unsigned char flag) {
  Bytes image(NumberBytes(type), byte);
  image.insert(code & 8 ? image.end() : image.begin(), flag);
  return image;
}

TEST(Nullables, AnyFlagIsNullInMemoryAndOneInImages) {
  for (const NxTypeTab* type : kTypes) {
    for (unsigned char code : {1, 2, 8, 9, 10}) {
      for (int f = 0; f < 256; ++f) {
        SCOPED_TRACE(std::string(type->name) + " code " + std::to_string(code) + " flag " +
                     std::to_string(f));
        const auto flag = static_cast<unsigned char>(f);
        Bytes value = Value(*type, 0x11, flag), image(NumberBytes(*type) + 1);
        EXPECT_EQ(type->IsNull(value.data()), static_cast<signed char>(flag));
        type->Store(image.data(), value.data(), code, 1);
        EXPECT_EQ(image, flag ? Image(*type, code, 0, 1) : Image(*type, code, 0x11, 0));

        image = Image(*type, code, 0x11, flag);
        type->Load(value.data(), image.data(), code, 1);
        const Bytes loaded(value.begin(), value.begin() + static_cast<long>(NumberBytes(*type)) + 1);
        EXPECT_EQ(loaded, flag == 1 ? Image(*type, 8, 0, 1) : Image(*type, 8, 0x11, 0));

        // Beside a null and beside the number, where values of this form are compared.
        const bool inMemory = code == 8, null = inMemory ? flag != 0 : flag == 1;
        Bytes a = inMemory ? Value(*type, 0x11, flag) : image;
        Bytes none = inMemory ? Value(*type, 9, 1) : Image(*type, code, 9, 1);
        Bytes same = inMemory ? Value(*type, 0x11, 0) : Image(*type, code, 0x11, 0);
        int error = 7;
        EXPECT_EQ(type->Compare(code, 0, a.data(), 0, none.data(), 0, 1, error), null ? 0 : 1);
        EXPECT_EQ(type->Compare(code, a.size(), a.data(), same.size(), same.data(), 0, 1, error),
                  null ? -1 : 0);
        EXPECT_EQ(type->Hash(code, 0, a.data(), 1, error) == 0xFEFE7575, null);
        EXPECT_EQ(error, 0);
      }
    }
  }
}

TEST(Nullables, ArraysConvertAsTheirElements) {
  for (const NxTypeTab* type : kTypes) {
    const unsigned long size = Size(*type), stored = NumberBytes(*type) + 1;
    for (unsigned char code : {1, 2, 8, 10}) {
      for (unsigned long n : {0, 1, 2, 3, 16, 17, 31, 32, 33, 47, 64, 700}) {
        SCOPED_TRACE(std::string(type->name) + " code " + std::to_string(code) + " n " + std::to_string(n));
        Bytes values(n * size), image(n * stored + 1, 0xEE), expected = image;
        for (unsigned char& byte : values) byte = static_cast<unsigned char>(std::rand());
        for (unsigned long i = 0; i < n; ++i) {
          values[i * size + stored - 1] = static_cast<unsigned char>(i % 3);
          type->Store(expected.data() + i * stored, values.data() + i * size, code, 1);
        }
        EXPECT_EQ(type->Store(image.data(), values.data(), code, n), static_cast<int>(n * stored));
        EXPECT_EQ(image, expected);
        Bytes loaded(n * size + 1, 0), single = loaded;
        for (unsigned long i = 0; i < n; ++i) {
          image[i * stored + (code & 8 ? stored - 1 : 0)] = static_cast<unsigned char>(i % 5);
          type->Load(single.data() + i * size, image.data() + i * stored, code, 1);
        }
        EXPECT_EQ(type->Load(loaded.data(), image.data(), code, n), static_cast<int>(n * stored));
        EXPECT_EQ(loaded, single);
      }
    }
  }
}

TEST(Nullables, NumbersHashAsTheScalarsOfTheirBits) {
  int error = 0;
  char low = -1;
  short word = -2;
  NxNull_uchar byte(255);
  NxNull_ushort wide(65534);
  EXPECT_EQ(NxNull_ucharHash(8, 0, &byte, 1, error), CharHash(8, 0, &low, 1, error));
  EXPECT_EQ(NxNull_ushortHash(8, 0, &wide, 1, error), ShortHash(8, 0, &word, 1, error));
  NxNull_int nulls[2];
  EXPECT_EQ(NxNull_intHash(8, 0, nulls, 2, error), 0U);
}

/// What a term on key selects of an index from lo to hi.
template <class T>
float Estimate(unsigned short relation, T key, T lo, T hi, bool cut = false) {
  const NxTypeTab* type = nullptr;
#define NX_FIND(Type, Value, Scalar, Format) \
  if (std::is_same_v<T, Type>) type = &Type##Tab;
  NX_NULLABLE_TYPES(NX_FIND)
#undef NX_FIND
  const auto length = static_cast<unsigned char>(type->NullSizeGet(1));
  Bytes images[3] = {Bytes(length), Bytes(length), Bytes(length)};
  const T values[3] = {key, lo, hi};
  for (int i = 0; i < 3; ++i) type->Store(images[i].data(), values + i, kFormatBigEndian, 1);
  if (cut) images[2].pop_back();
  NxIdxBounds range = {images[1].data(), images[2].data(), length, static_cast<unsigned char>(length - cut)};
  return type->EvalAndBound(&range, relation, images[0].data(), kFormatBigEndian, 1, nullptr);
}

TEST(Nullables, Estimates) {
  using I = NxNull_int;
  const I null;
  EXPECT_FLOAT_EQ(Estimate(kRelationEqual, I(5), I(1), I(10)), 0.1F);
  EXPECT_FLOAT_EQ(Estimate(kRelationEqual, I(5), null, I(9)), 0.1F / 10);
  EXPECT_FLOAT_EQ(Estimate(kRelationGreater, I(5), null, I(9)), 0.5F / 10);
  EXPECT_FLOAT_EQ(Estimate(kRelationLess, I(5), null, I(9)), 0.5F / 10);
  EXPECT_FLOAT_EQ(Estimate(kRelationEqual, null, null, I(9)), 0.001F / 10);
  EXPECT_FLOAT_EQ(Estimate(kRelationEqual, null, I(1), I(10)), 0);
  EXPECT_FLOAT_EQ(Estimate(kRelationGreater, null, I(1), I(10)), 0.05F);
  EXPECT_FLOAT_EQ(Estimate(kRelationLess, null, I(1), I(10)), 0);
  EXPECT_FLOAT_EQ(Estimate(7, I(5), null, null), 0);
  EXPECT_FLOAT_EQ(Estimate(kRelationGreater | 0x8010, I(0), I(1), I(10)), 1);
  EXPECT_FLOAT_EQ(Estimate(kRelationLess, I(20), I(1), I(10)), 1);
  EXPECT_EQ(Estimate(kRelationEqual, I(5), I(1), I(10), true), 0);
  // The number's own arithmetic: signed differences wrap, small ones do not.
  EXPECT_EQ(Estimate(kRelationGreater, I(-2000000000), I(-2000000000), I(2000000000)), 0);
  EXPECT_GT(Estimate(kRelationGreater, NxNull_unsigned(20), NxNull_unsigned(1), NxNull_unsigned(10)), 1e8);
  EXPECT_EQ(Estimate(kRelationGreater, NxNull_uchar(20), NxNull_uchar(1), NxNull_uchar(10)), 0);
  EXPECT_FLOAT_EQ(Estimate(kRelationLess, NxNull_uchar(200), NxNull_uchar(100), NxNull_uchar(255)),
                  100 / 156.F);
  EXPECT_FLOAT_EQ(Estimate(kRelationGreater, NxNull_char(-100), NxNull_char(-128), NxNull_char(127)),
                  227 / 256.F);
}

TEST(Nullables, EstimatesOfWideNumbers) {
  using W = NxNull_NxInt64;
  const auto w = [](long high, unsigned long low) { return W(NxInt64(low, high)); };
  const W null, ten = w(0, 10), one = w(0, 1);
  EXPECT_FLOAT_EQ(Estimate(kRelationEqual, w(0, 5), one, ten), 0.1F);
  EXPECT_FLOAT_EQ(Estimate(kRelationLess, w(1, 0), w(0, 0), w(1, 0xFFFFFFFF)), 0.5F);
  EXPECT_FLOAT_EQ(Estimate(kRelationGreater, ten, one, ten), 0.1F);  // nothing above, but it meets the end
  EXPECT_FLOAT_EQ(Estimate(kRelationEqual, w(0, 11), one, ten), 0);
  EXPECT_FLOAT_EQ(Estimate(kRelationEqual, null, null, ten), 1 / 11.F);
  EXPECT_FLOAT_EQ(Estimate(kRelationLess, null, w(-1, 0), ten), 1 / 4294967307.F);
  EXPECT_FLOAT_EQ(Estimate(kRelationEqual, w(0, 5), null, ten), 0.1F / 11);
  EXPECT_FLOAT_EQ(Estimate(kRelationEqual, w(-1, 0), null, null), 1);  // below the null range's end
}

TEST(Nullables, Texts) {
  struct Row {
    char id;
    const char* format;
    const char* text;
    const char* printed;
  };
  const Row rows[] = {
      {28, "%d", "0xF0", "-16"},
      {29, "%d", "0xF0", "240"},
      {31, "%hu", "65537", "1"},
      {32, "%d", "12", "12"},
      {33, "%u", "4294967295", "4294967295"},
      {34, "<%ld>", "<7>", "<7>"},
      {36, "%.1f", "", "{NULL}"},
      {36, "%f", "2.5", "2.500000"},
      {38, "%x", "0x1F", "0x1f"},
      {38, "%S", "", "{NULL}"},
      {32, "%d", "{NULL} 12", "{NULL}"},
      {32, "%d", "{NUL", "99"},
      {38, "%d", "{NUL", "-1"},
  };
  for (const Row& row : rows) {
    for (const NxString& text : {Narrow(row.text), Wide(Widened(row.text))}) {
      const NxTypeTab& type = *NxNewtypetab[static_cast<int>(row.id)];
      SCOPED_TRACE(std::string(type.name) + " " + row.text);
      unsigned char value[12] = {99, 0, 0, 0, 0, 0, 0, 0, 0};
      NxString in(text), out("before");
      EXPECT_EQ(type.ScanFromNxString(value, in, row.format, 1), value);
      if (row.id == 38) out = "";  // appends
      EXPECT_EQ(Text(type.PrintToNxString(out, value, row.format, 1)), row.printed);
      EXPECT_EQ(type.ScanFromNxString(nullptr, in, row.format, 1), nullptr);
    }
  }
}

TEST(Nullables, StringArrays) {
  NxTypeMgr mgr(5);
  NxString texts[] = {NxString("70"), NxString("-1"), NxString("x"), NxString()};
  texts[3].SetNullValue();
  NxTypeConvertData strings(kStringTypeId, 4, texts, nullptr);
  const char* const printed[][2] = {{"F", "\xFF"}, {"70", "255"}, {"70", "-1"}, {"F", "\xFF\xFF"},
                                    {"70", "-1"},  {"70", "-1"},  {"70", "-1"}, {"70", "4294967295"},
                                    {"70", "-1"},  {"70", "-1"},  {"70", "-1"}};
  for (char id = 28; id <= 38; ++id) {
    SCOPED_TRACE(mgr.NameGet(id, nullptr));
    void* values = mgr.ConvertFrom(id, &strings, 5);
    NxTypeConvertData* back = mgr.ConvertTo(id, values, 5);
    for (int i : {0, 1}) EXPECT_EQ(Text(*back->GetString(i)), printed[id - 28][i]);
    EXPECT_FALSE(back->GetString(2)->IsNullValue());
    EXPECT_TRUE(back->GetString(3)->IsNullValue());
    EXPECT_TRUE(back->GetString(4)->IsNullValue());  // beyond the record
    delete back;
    mgr.Delete(id, values, 5);
  }
  strings.mgr = nullptr;  // the texts stay ours
}

}  // namespace
