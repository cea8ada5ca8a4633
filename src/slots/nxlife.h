// Life cycle of arrays of values: how the types' slots make, release, construct,
// assign and copy them. Two kinds of value are told apart: plain ones, which are just
// their bytes (and may stand anywhere, aligned or not), and objects that own storage.
#ifndef NXLIFE_H
#define NXLIFE_H

#include <cstring>
#include <new>
#include <type_traits>

#include "base/nxalloc.h"
#include "nxtypes.h"

/// n values as the type's conversion makes them of empty texts: the default of most
/// types. Null when memory is short.
void* NxDefaultFromEmptyText(NxSlot::ConvertFrom* convertFrom, unsigned long n);

/// Making and releasing in the object form: one object for n 0 and 1, else an array.
template <class T>
struct NxObjectForm {
  static void* Create(unsigned long n) {
    if (n > 1) return NxNewZeroArray<T>(n);
    return NxNewObject<T>();
  }
  static int Delete(void* values, unsigned long n) {
    if (n > 1)
      delete[] static_cast<T*>(values);
    else
      delete static_cast<T*>(values);
    return 0;
  }
};

/// Making and releasing in the scalar form: always an array, uninitialised.
template <class T>
struct NxArrayForm {
  static void* Create(unsigned long n) { return NxNewArray<T>(n); }
  static int Delete(void* values, unsigned long) {
    delete[] static_cast<T*>(values);
    return 0;
  }
};

/// Values that are just their bytes.
template <class T>
struct NxPlainValues {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

  /// A null place is skipped.
  static void Construct(void* place, unsigned long n) {
    if (n == 0 || !place) return;
    const T value = T();
    Fill(place, &value, n);
  }
  static void Destroy(void*, unsigned long) {}
  /// Serves assignment and copying alike.
  static void Assign(void* dst, void* src, unsigned long n, int fill) {
    if (n == 0) return;
    if (!fill) {
      std::memmove(dst, src, n * sizeof(T));
      return;
    }
    unsigned char first[sizeof(T)];
    std::memcpy(first, src, sizeof first);
    Fill(dst, first, n);
  }
  static void Copy(void* dst, void* src, unsigned long n, int fill) { Assign(dst, src, n, fill); }

 private:
  static void Fill(void* place, const void* value, unsigned long n) {
    auto* p = static_cast<unsigned char*>(place);
    for (unsigned long i = 0; i < n; ++i, p += sizeof(T)) std::memcpy(p, value, sizeof(T));
  }
};

/// Objects that own storage; they stand aligned. At a null place none is constructed.
template <class T>
struct NxObjectValues {
  static void Construct(void* place, unsigned long n) {
    if (!place) return;
    auto* p = static_cast<T*>(place);
    for (unsigned long i = 0; i < n; ++i) new (p + i) T();
  }
  static void Destroy(void* place, unsigned long n) {
    auto* p = static_cast<T*>(place);
    for (unsigned long i = 0; i < n; ++i) p[i].~T();
  }
  static void Assign(void* dst, void* src, unsigned long n, int fill) {
    auto* to = static_cast<T*>(dst);
    auto* from = static_cast<T*>(src);
    for (unsigned long i = 0; i < n; ++i) to[i] = from[fill ? 0 : i];
  }
  static void Copy(void* dst, void* src, unsigned long n, int fill) {
    auto* to = static_cast<T*>(dst);
    auto* from = static_cast<T*>(src);
    for (unsigned long i = 0; i < n; ++i) new (to + i) T(from[fill ? 0 : i]);
  }
};

/// The object form of classes whose constructor asks the clock: once for all values
/// of an array.
template <class T>
struct NxClockForm {
  static void* Create(unsigned long n) {
    if (n < 2) return NxObjectForm<T>::Create(n);
    void* values = NxNewArray<Room>(n);
    if (values) NxPlainValues<T>::Construct(values, n);
    return values;
  }
  static int Delete(void* values, unsigned long n) {
    if (n < 2) return NxObjectForm<T>::Delete(values, n);
    delete[] static_cast<Room*>(values);
    return 0;
  }

 private:
  struct Room {
    alignas(T) unsigned char bytes[sizeof(T)];
  };
};

/// n null values of a class with SetNullValue.
template <class T, class Form = NxObjectForm<T>>
void* NxNullValues(unsigned long n) {
  auto* values = static_cast<T*>(Form::Create(n));
  if (!values) return nullptr;
  for (unsigned long i = 0; i < n; ++i) values[i].SetNullValue();
  return values;
}

/// Constructor to Copy of a type. Values fills places: one of the templates above.
#define NX_PLACES(Type, Values)                                                                        \
  void Type##Constructor(void* place, unsigned long n, unsigned long) { Values::Construct(place, n); } \
  void Type##Destructor(void* place, unsigned long n, unsigned long) { Values::Destroy(place, n); }    \
  void Type##Assignment(void* dst, void* src, unsigned long n, int fill) {                             \
    Values::Assign(dst, src, n, fill);                                                                 \
  }                                                                                                    \
  void Type##Copy(void* dst, void* src, unsigned long n, int fill) { Values::Copy(dst, src, n, fill); }

/// Create to Copy of a type. Some types name Create and Delete (`Creator`) otherwise than
/// the rest (`Type`). Form makes and releases.
#define NX_LIFE_CYCLE(Creator, Type, Form, Values)                   \
  NX_PLACES(Type, Values)                                            \
  void* Creator##Create(unsigned long n) { return Form::Create(n); } \
  int Creator##Delete(void* values, unsigned long n) { return Form::Delete(values, n); }

#endif
