// The record that carries an array of values between the string-array conversions and
// their callers; it releases what it carries through a type manager.
#include "nxconv.h"

#include "base/nxalloc.h"
#include "nxstring.h"
#include "nxtypmgr.h"

NxTypeConvertData::NxTypeConvertData() : NxTypeConvertData(kIllegalTypeId, 0, nullptr, nullptr) {}

NxTypeConvertData::NxTypeConvertData(char typeId, unsigned long count, void* data, NxTypeMgr* mgr)
    : mgr(mgr), data(data), count(count), typeId(typeId) {}

namespace {

/// Callers that destroy a record in storage of their own read its fields afterwards.
/// Volatile, for a compiler may drop plain stores to an object that ends.
template <class T>
void PutLast(T& field, T value) {
  *const_cast<volatile T*>(&field) = value;
}

}  // namespace

NxTypeConvertData::~NxTypeConvertData() {
  if (mgr && data) {
    mgr->Delete(typeId, data, count);
    PutLast<void*>(data, nullptr);
  }
  PutLast(count, 0UL);
  PutLast(typeId, kIllegalTypeId);
}

NxTypeConvertData* NxTypeConvertData::Make(char typeId, unsigned long count, void* data, NxTypeMgr* mgr) {
  return NxNewObject<NxTypeConvertData>(typeId, count, data, mgr);
}

NxString* NxTypeConvertData::GetString(int i) {
  if (i < 0 || static_cast<unsigned long>(i) >= count || typeId != kStringTypeId || !data) return nullptr;
  return static_cast<NxString*>(data) + i;
}
