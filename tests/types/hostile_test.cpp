// Every slot that is told its lengths, of every type, under every format byte: bytes of any
// kind, option words and cuts, in memory that ends where it must not be read on.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "nxconv.h"
#include "nxtypcmp.h"
#include "nxtypevl.h"
#include "nxtypmgr.h"
#include "support/block.h"
#include "support/strings.h"

namespace {

class Hostile : public testing::TestWithParam<int> {
 protected:
  unsigned Below(unsigned n) { return static_cast<unsigned>(random()) % n; }
  /// Random bytes; mostly few kinds of them, so that heads and lengths make sense at times.
  Block Bytes(unsigned long size) {
    static constexpr unsigned char kLikely[] = {0, 1, 2, 0x40, 0xC0, 253, 254, 255, 'a', '*', 5, 9};
    Block bytes(size);
    for (unsigned long i = 0; i < size; ++i)
      bytes.Data()[i] = Below(4) ? kLikely[Below(sizeof kLikely)] : static_cast<unsigned char>(random());
    return bytes;
  }
  bool IsObject(unsigned format) {  // objects are read where values in memory are asked for
    return !mgr.IsFixed(id) && (format & kFormatMemory) != 0;
  }

  NxTypeMgr mgr{GetParam() < 100 ? 5UL : 3UL};
  const char id = static_cast<char>(GetParam() % 100);
  std::mt19937 random{static_cast<unsigned>(GetParam())};
  const Reports reports;
};

TEST_P(Hostile, EveryFormatByteAndAnyLength) {
  for (unsigned format = 0; format < 256; ++format)
    for (int round = 0; round < 20; ++round) {
      const auto code = static_cast<unsigned char>(format);
      const Block a = Bytes(1 + Below(40)), b = Bytes(1 + Below(40)), out = Bytes(1 + Below(40));
      const unsigned long count = Below(4);
      const auto options = static_cast<unsigned short>(random());
      int error = 0;
      if (!IsObject(format)) {
        mgr.Cmp(id, a.Size(), a.Data(), b.Size(), b.Data(), options, count, code, error);
        mgr.Hash(id, a.Size(), a.Data(), count, code, error);
        // From image to image, of whatever forms.
        const auto other = static_cast<unsigned char>(random() & ~unsigned{kFormatMemory});
        mgr.Translate(id, out.Data(), other, out.Size(), a.Data(), code & ~kFormatMemory, a.Size(), count);
      }
      MemFile file(a.Data(), a.Size());
      mgr.DiskLenGetFromMemFile(id, &file, code, count);
      mgr.table[static_cast<int>(id)]->NullSizeGet(count);
    }
}

TEST_P(Hostile, ValuesMadeOfAnyImage) {
  for (unsigned format = 0; format < 256; ++format)
    for (int round = 0; round < 8; ++round) {
      const auto code = static_cast<unsigned char>(format & ~unsigned{kFormatMemory});
      const unsigned long n = 1 + Below(2);
      void* values = mgr.Create(id, n);
      if (!values) continue;  // the illegal type
      // A fixed type reads its whole image, others to the stated length.
      const auto least =
          mgr.IsFixed(id) ? static_cast<unsigned>(mgr.table[static_cast<int>(id)]->NullSizeGet(n)) : 0;
      const Block image = Bytes(least + 1 + Below(30));
      mgr.Translate(id, values, kFormatMemory, 0, image.Data(), code, image.Size(), n);
      const Block stored(static_cast<unsigned long>(mgr.DiskLenGet(id, values, code, n, kFormatMemory)));
      mgr.Store(id, stored.Data(), values, code, n);
      // Values of fixed types are stored whole; of others length 0 would be no limit.
      const Block cut(mgr.IsFixed(id) ? stored.Size() : 1 + Below(static_cast<unsigned>(stored.Size()) + 2));
      mgr.Translate(id, cut.Data(), code, cut.Size(), values, kFormatMemory, 0, n);
      NxString text;
      mgr.PrintToNxString(id, text, values, nullptr, n);
      mgr.ScanFromNxString(id, values, text, nullptr, 1);
      delete mgr.ConvertTo(id, values, n);
      int error = 0;
      mgr.Cmp(id, values, values, static_cast<unsigned short>(random()), n, kFormatMemory);
      mgr.Hash(id, 0, values, n, kFormatMemory, error);
      mgr.Delete(id, values, n);
    }
}

// The tables of the current and of the early formats.
INSTANTIATE_TEST_SUITE_P(Current, Hostile, testing::Range(0, 41));
INSTANTIATE_TEST_SUITE_P(Early, Hostile, testing::Range(100, 128));

}  // namespace
