// Nullable scalars: flags beyond 0 and 1, arrays across the blocks that are converted at
// once.

#include "nxnultyp.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

/// A value in memory: a number of equal bytes, a flag, zeros.
Bytes Value(const NxTypeTab& type, unsigned char byte, unsigned char flag) {
  Bytes value(NumberBytes(type), byte);
  value.push_back(flag);
  value.resize(Size(type));
  return value;
}

/// Its image under a code, as the text of formats.md has it.
Bytes Image(const NxTypeTab& type, unsigned char code, unsigned char byte, unsigned char flag) {
  Bytes image(NumberBytes(type), byte);
  image.insert(code & 8 ? image.end() : image.begin(), flag);
  return image;
}

void Append(Bytes& all, const Bytes& more) { all.insert(all.end(), more.begin(), more.end()); }

// Arrays across the blocks that are converted at once, with every flag.
TEST(Nullables, AnyFlagIsNullInMemoryAndOneInImages) {
  for (const NxTypeTab* type : kTypes)
    for (unsigned char code : {1, 2, 8, 9, 10})
      for (unsigned n : {1, 2, 3, 16, 17, 31, 32, 33, 47, 64, 700}) {
        SCOPED_TRACE(std::string(type->name) + " code " + std::to_string(code) + " n " + std::to_string(n));
        Bytes values, images, stored, loaded;
        for (unsigned i = 0; i < n; ++i) {
          const auto flag = static_cast<unsigned char>(i), byte = static_cast<unsigned char>(i * 7);
          Append(values, Value(*type, byte, flag));
          Append(stored, flag ? Image(*type, code, 0, 1) : Image(*type, code, byte, 0));
          Append(images, Image(*type, code, byte, flag));
          Append(loaded, flag == 1 ? Value(*type, 0, 1) : Value(*type, byte, 0));
        }
        Bytes image(stored.size() + 1, 0xEE), back(loaded.size() + 1);
        EXPECT_EQ(type->Store(image.data(), values.data(), code, n), static_cast<int>(stored.size()));
        EXPECT_EQ(image.back(), 0xEE);
        image.pop_back();
        EXPECT_EQ(image, stored);
        EXPECT_EQ(type->Load(back.data(), images.data(), code, n), static_cast<int>(stored.size()));
        EXPECT_EQ(back.back(), 0);
        back.pop_back();
        EXPECT_EQ(back, loaded);
      }
}

TEST(Nullables, AnyFlagOrdersAndHashesAsWhatItSays) {
  for (const NxTypeTab* type : kTypes)
    for (unsigned char code : {1, 2, 8, 9, 10})
      for (int f = 0; f < 256; ++f) {
        SCOPED_TRACE(std::string(type->name) + " code " + std::to_string(code) + " flag " +
                     std::to_string(f));
        const auto flag = static_cast<unsigned char>(f);
        EXPECT_EQ(type->IsNull(Value(*type, 0x11, flag).data()), static_cast<signed char>(flag));
        const bool inMemory = code == 8, null = inMemory ? flag != 0 : flag == 1;
        const auto in = [&](unsigned char byte, unsigned char flagByte) {
          return inMemory ? Value(*type, byte, flagByte) : Image(*type, code, byte, flagByte);
        };
        Bytes a = in(0x11, flag), none = in(9, 1), same = in(0x11, 0);
        int error = 7;
        EXPECT_EQ(type->Compare(code, 0, a.data(), 0, none.data(), 0, 1, error), null ? 0 : 1);
        EXPECT_EQ(type->Compare(code, a.size(), a.data(), same.size(), same.data(), 0, 1, error),
                  null ? -1 : 0);
        EXPECT_EQ(type->Hash(code, 0, a.data(), 1, error) == 0xFEFE7575, null);
        EXPECT_EQ(error, 0);
        NxString text("1");
        EXPECT_EQ(type->ScanFromNxString(nullptr, text, "%d", 1), nullptr);
      }
}

}  // namespace
