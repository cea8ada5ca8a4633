/// Everything that the type-manager library exports. An application that includes
/// this header and links `nx21::Rtms` needs nothing else.
#ifndef NX21RTMS_H
#define NX21RTMS_H

#include "nxapi.h"

// Types and their manager.
#include "nxconv.h"
#include "nxnulltext.h"
#include "nxoption.h"
#include "nxslot.h"
#include "nxtmdata.h"
#include "nxtmvers.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "nxtypfmt.h"
#include "nxtyphash.h"
#include "nxtypmgr.h"

// Texts.
#include "nx_utf_8.h"
#include "nxchar.h"
#include "nxcistr.h"
#include "nxcodset.h"
#include "nxistr.h"
#include "nxmbchar.h"
#include "nxstring.h"
#include "nxstritr.h"
#include "nxwchar.h"
#include "ord2str.h"
#include "strwild.h"

// Values.
#include "nxbool.h"
#include "nxcomp.h"
#include "nxint64.h"
#include "nxseal.h"

#endif
