/// Everything that the type-manager library exports. An application that includes
/// this header and links `nx21::Rtms` needs nothing else.
#ifndef NX21RTMS_H
#define NX21RTMS_H

#include "nxapi.h"

// Types and their manager.
#include "nxblobx.h"
#include "nxconv.h"
#include "nxdatimx.h"
#include "nxnullcmp.h"
#include "nxnulltext.h"
#include "nxnultyp.h"
#include "nxoption.h"
#include "nxrefx.h"
#include "nxslot.h"
#include "nxsortkey.h"
#include "nxtmdata.h"
#include "nxtmvers.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "nxtypfmt.h"
#include "nxtyphash.h"
#include "nxtypmgr.h"
#include "odmgtyp.h"

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
#include "d_date.h"
#include "d_interv.h"
#include "d_time.h"
#include "d_timest.h"
#include "nxblob.h"
#include "nxbool.h"
#include "nxcomp.h"
#include "nxdatime.h"
#include "nxint64.h"
#include "nxostime.h"
#include "nxref.h"
#include "nxseal.h"

#endif
