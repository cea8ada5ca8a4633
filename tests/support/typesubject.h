// What is known of a type of fixed size by its row: values, images, order.
#ifndef TYPESUBJECT_H
#define TYPESUBJECT_H

#include <algorithm>
#include <cstring>

#include "nxtmdata.h"
#include "nxtypcmp.h"
#include "nxtypmgr.h"
#include "support/block.h"
#include "support/strings.h"
#include "support/typerows.h"

template <class T>
int Order(const unsigned char* a, const unsigned char* b) {
  T x, y;
  std::memcpy(&x, a, sizeof x);
  std::memcpy(&y, b, sizeof y);
  return x < y ? -1 : x > y;
}

inline int OrderOfField(char kind, const unsigned char* a, const unsigned char* b) {
  using Function = int (*)(const unsigned char*, const unsigned char*);
  static const char kKinds[] = "bBhHiIfd";
  static const Function kOrders[] = {Order<signed char>,    Order<unsigned char>, Order<short>,
                                     Order<unsigned short>, Order<int>,           Order<unsigned>,
                                     Order<float>,          Order<double>};
  return kOrders[std::strchr(kKinds, kind) - kKinds](a, b);
}

inline bool IsStored(unsigned char format) { return (format & kFormatCodeMask) != kFormatMemory; }

/// A type of fixed size, its row, and values of it that are drawn as `Below` says.
class TypeSubject {
 public:
  explicit TypeSubject(const TypeRow& row) : row(row) {}
  virtual ~TypeSubject() = default;
  /// A number below n.
  virtual unsigned Below(unsigned n) = 0;
  unsigned long SizeIn(unsigned char format) const { return IsStored(format) ? row.ImageSize() : row.size; }

  /// Values at the ends of their fields, few enough to meet; never a wildcard, and what is
  /// not stored is 0.
  Block Values(unsigned long n);
  bool IsNull(const unsigned char* value) const;
  /// The values with what is not stored made 0.
  Block Plain(const Block& values) const;

  Block Image(const Block& values, unsigned char format) const;
  Block In(unsigned char format, const Block& values) const {
    return IsStored(format) ? Image(values, format) : values;
  }

  int Compare(const unsigned char* a, const unsigned char* b, unsigned char format);
  /// Elements before the first that differs, and how that one orders.
  std::pair<unsigned long, int> FirstDifference(const Block& a, const Block& b, unsigned char format);

  const TypeRow& row;
  const char id = row.id;
  const unsigned long size = row.size;
  NxTypeMgr mgr{5};
};

inline Block TypeSubject::Values(unsigned long n) {
  static const unsigned char kEnds[] = {0, 1, 0x7F, 0x80, 2, 0xFE};
  Block values(n * size);
  CopyBytes(values.Data(), std::string(n * size, '\0').data(), n * size);
  for (unsigned char* value = values.Data(); value != values.Data() + values.Size(); value += size) {
    for (const TypeRow::Field& field : row.image)
      for (unsigned long i = 0; i < field.width; ++i)
        value[field.offset + i] = kEnds[Below(3) ? Below(2) : Below(6)];
    if (row.Has('o')) *value &= 1;  // other bytes have no order among themselves
    if (row.Has('n')) value[row.image[0].offset] = 0;
    if (row.Nullable() && Below(4) == 0) row.MakeNull(value);
  }
  return values;
}

inline bool TypeSubject::IsNull(const unsigned char* value) const {
  for (unsigned long i = 0; row.Nullable() && i < size; ++i) {
    const std::string byte = row.null.substr(2 * i, 2);
    if (byte != ".." && byte != "zz" && value[i] != std::stoi(byte, nullptr, 16)) return false;
  }
  return row.Nullable();
}

inline Block TypeSubject::Plain(const Block& values) const {
  Block plain(values.Size());
  for (unsigned long i = 0; i < values.Size(); ++i) {
    const bool stored = std::any_of(row.image.begin(), row.image.end(), [&](const TypeRow::Field& f) {
      return i % size >= f.offset && i % size < f.offset + f.width;
    });
    plain.Data()[i] = stored ? values.Data()[i] : 0;
  }
  return plain;
}

/// What Store is to write.
inline Block TypeSubject::Image(const Block& values, unsigned char format) const {
  Block image(values.Size() / size * row.ImageSize());
  std::vector<TypeRow::Field> fields = row.image;
  if (row.Has('n') && (format & 8)) std::rotate(fields.begin(), fields.begin() + 1, fields.end());
  const bool swaps = row.bigEndian || (format & kFormatCodeMask) == kFormatBigEndian;
  unsigned char* at = image.Data();
  for (const unsigned char* v = values.Data(); v != values.Data() + values.Size(); v += size)
    for (const TypeRow::Field& field : fields) {
      std::memcpy(at, v + field.offset, field.width);
      if (swaps) std::reverse(at, at + field.width);
      at += field.width;
    }
  return image;
}

/// How two values order, by the row; where it says nothing, as the type has it.
inline int TypeSubject::Compare(const unsigned char* a, const unsigned char* b, unsigned char format) {
  const std::string& order = IsStored(format) ? row.stored : row.order;
  if (order == "-") {
    const Block x = In(format, Block(a, size)), y = In(format, Block(b, size));
    return Sign(mgr.Cmp(id, x.Data(), y.Data(), kWildcardsOff, 1, format));
  }
  if (row.Has('n') && (IsNull(a) || IsNull(b))) return IsNull(b) - IsNull(a);
  for (unsigned long i = 0; i < order.size();) {
    std::size_t digits = 0;
    const unsigned long at = std::stoul(order.substr(i + 1), &digits);
    if (const int result = OrderOfField(order[i], a + at, b + at)) return result;
    i += 1 + digits;
  }
  return 0;
}

inline std::pair<unsigned long, int> TypeSubject::FirstDifference(const Block& a, const Block& b,
                                                                  unsigned char format) {
  for (unsigned long i = 0; i < a.Size() / size; ++i)
    if (const int order = Compare(a.Data() + i * size, b.Data() + i * size, format)) return {i, order};
  return {a.Size() / size, 0};
}

/// The types of fixed size that have their operations.
inline std::vector<TypeRow> FixedTypes() {
  std::vector<TypeRow> rows = AllTypeRows();
  rows.erase(std::remove_if(rows.begin(), rows.end(),
                            [](const TypeRow& row) {
                              return row.image.empty() ||
                                     NxNewtypetab[static_cast<int>(row.id)]->Store == NxIllegalTab.Store;
                            }),
             rows.end());
  return rows;
}

#endif
