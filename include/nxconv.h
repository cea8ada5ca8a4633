/// `NxTypeConvertData`: the carrier of an array of strings between the string-array
/// conversions of the types and their callers.
///
/// Threads: as standard types. Several may read one value at once; who changes it is alone.
#ifndef NXCONV_H
#define NXCONV_H

#include "nxapi.h"

class NxString;
class NxTypeMgr;

class NX_API NxTypeConvertData {
 public:
  /// No manager, no data, count 0, type identifier 100 (the illegal type).
  NxTypeConvertData();
  /// Carries `count` values of type `typeId` at `data`. With a manager the record
  /// owns them and releases them through it; without one they stay the caller's.
  NxTypeConvertData(char typeId, unsigned long count, void* data, NxTypeMgr* mgr);
  NxTypeConvertData(const NxTypeConvertData&) = delete;
  NxTypeConvertData& operator=(const NxTypeConvertData&) = delete;
  /// Releases the data through the manager when both are set.
  ~NxTypeConvertData();

  /// A record of these fields; the caller deletes it.
  static NxTypeConvertData* Make(char typeId, unsigned long count, void* data, NxTypeMgr* mgr);

  /// String `i`, or null when `i` is not in [0, count), the record carries no
  /// strings (type identifier other than 11) or no data.
  NxString* GetString(int i);

  NxTypeMgr* mgr;       // owner of `data`, or null
  void* data;           // the values; for string arrays `count` NxString
  unsigned long count;  // values in `data`
  char typeId;          // type of the values in `data`
};

#endif
