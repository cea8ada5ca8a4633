// The library's context: the default type manager, which start-up makes and shutdown
// releases.

#include "nxtmdata.h"

#include "base/nxalloc.h"
#include "nxlang.h"
#include "nxtypmgr.h"

namespace {

constexpr unsigned long kCurrentFactory = 5;

NxTypeMgr* def_tmgr = nullptr;

}  // namespace

NxTypeMgr* DefaultTypeMgr(NxTypeMgr* mgr) {
  if (mgr) def_tmgr = mgr;
  return def_tmgr;
}

void ___NxTypemgrContext(int start) {
  ___NxI18NContext(start);
  if (start == 0) {
    delete def_tmgr;
    def_tmgr = nullptr;
    return;
  }
  def_tmgr = NxNewObject<NxTypeMgr>(kCurrentFactory);
}
