// Identifiers and references: what makes them equal, orders them, and turns one into
// another. Their texts are in nxreftext.cpp.
#include "nxref.h"

#include "base/nxnullorder.h"

namespace {

/// The object number, below a database number where one counts first.
template <class Id>
unsigned long long Number(const Id& id, unsigned short database = 0) {
  return static_cast<unsigned long long>(database) << 48 | static_cast<unsigned long long>(id.high) << 32 |
         id.low;
}

NxObjId& SetNumber(NxObjId& id, unsigned long long number) {
  id.low = static_cast<unsigned long>(number);
  id.high = static_cast<unsigned short>(number >> 32);
  return id;
}

template <class V>
int Order(V a, V b) {
  return a < b ? -1 : a > b;
}

template <class To, class From>
To& TakeObject(To& to, const From& from) {
  to.block = from.block;
  to.low = from.low;
  to.high = from.high;
  return to;
}

}  // namespace

// ---------------------------------------------------------------------------
// NxObjId

NxObjId& NxObjId::operator=(const NxDBOId& id) { return TakeObject(*this, id); }

NxObjId& NxObjId::operator++() { return *this += 1; }
NxObjId& NxObjId::operator--() { return *this += -1; }
NxObjId& NxObjId::operator+=(short n) {
  return SetNumber(*this, Number(*this) + static_cast<unsigned long long>(n));
}

int NxObjId::operator!=(const NxObjId& id) const { return Order(Number(*this), Number(id)); }
int NxObjId::operator==(const NxDBOId& id) const { return low == id.low && high == id.high; }
int NxObjId::operator!=(const NxDBOId& id) const { return Order(Number(*this), Number(id)); }

int NxObjId::SetNullValue() {
  block = 0;
  SetNumber(*this, 0);
  return 0;
}

void NxObjId::SetHighestValue() {
  block = 0;
  SetNumber(*this, ~0ULL);
}

// ---------------------------------------------------------------------------
// NxDBOId

NxDBOId& NxDBOId::operator=(const NxObjId& id) {
  database = 0;
  return TakeObject(*this, id);
}

int NxDBOId::operator!=(const NxDBOId& id) const {
  return Order(Number(*this, database), Number(id, id.database));
}
int NxDBOId::operator!=(const NxObjId& id) const { return Order(Number(*this, database), Number(id)); }

// ---------------------------------------------------------------------------
// NxClassId

int NxClassId::operator!=(const NxClassId& id) const {
  return static_cast<int>(NxOrderNullable(*this, id, [](const NxClassId& a, const NxClassId& b) {
    const long numbers = Order(a.classNumber, b.classNumber);
    return numbers != 0 ? numbers : Order(a.version, b.version);
  }));
}

int NxClassId::SetNullValue() {
  classNumber = kNoClass;
  version = kNoClass;
  return 0;
}

// ---------------------------------------------------------------------------
// NxLocalRef

NxLocalRef& NxLocalRef::operator=(const NxRef& ref) {
  objId = ref.objId;
  classId = ref.classId;
  return *this;
}
NxLocalRef& NxLocalRef::operator=(const NxObjId& id) {
  objId = id;
  return *this;
}
NxLocalRef& NxLocalRef::operator=(const NxClassId& id) {
  classId = id;
  return *this;
}

int NxLocalRef::operator==(const NxRef& ref) const { return objId == ref.objId && ref.database == 0; }
int NxLocalRef::operator!=(const NxRef& ref) const {
  const int objects = objId != ref.objId;
  return objects != 0 ? objects : -(ref.database != 0);
}

// ---------------------------------------------------------------------------
// NxRef

NxRef& NxRef::operator=(const NxLocalRef& ref) {
  objId = ref.objId;
  classId = ref.classId;
  database = 0;
  return *this;
}
NxRef& NxRef::operator=(const NxDBOId& id) {
  objId = id;
  database = id.database;
  return *this;
}
NxRef& NxRef::operator=(const NxObjId& id) {
  objId = id;
  return *this;
}
NxRef& NxRef::operator=(const NxClassId& id) {
  classId = id;
  return *this;
}
NxRef& NxRef::operator=(unsigned short databaseNumber) {
  database = databaseNumber;
  return *this;
}

int NxRef::operator!=(const NxRef& ref) const {
  const int objects = objId != ref.objId;
  return objects != 0 ? objects : Order(database, ref.database);
}

int NxRef::IsInvalid() const {
  return objId.IsNullValue() || classId.classNumber == 0 || database == kNoDatabase;
}
int NxRef::IsInvalidOriginId() const {
  return objId.IsNullValue() || (database != kNoDatabase && classId.classNumber == 0);
}
