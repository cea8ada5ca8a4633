/// libcurl, loaded when a cluster is first spoken to: with what it needs itself it takes longer
/// to load than most commands on a file run.
#ifndef NXTM_CURLLIBRARY_H
#define NXTM_CURLLIBRARY_H

#define CURL_DISABLE_TYPECHECK  // the checks name functions that are not linked
#include <curl/curl.h>

namespace nxtm {

struct CurlLibrary {
  decltype(&::curl_global_init) globalInit;
  decltype(&::curl_easy_init) easyInit;
  decltype(&::curl_easy_reset) easyReset;
  decltype(&::curl_easy_setopt) easySetopt;
  decltype(&::curl_easy_getinfo) easyGetinfo;
  decltype(&::curl_easy_strerror) easyStrerror;
  decltype(&::curl_easy_cleanup) easyCleanup;
  decltype(&::curl_multi_init) multiInit;
  decltype(&::curl_multi_setopt) multiSetopt;
  decltype(&::curl_multi_add_handle) multiAddHandle;
  decltype(&::curl_multi_remove_handle) multiRemoveHandle;
  decltype(&::curl_multi_perform) multiPerform;
  decltype(&::curl_multi_poll) multiPoll;
  decltype(&::curl_multi_info_read) multiInfoRead;
  decltype(&::curl_multi_cleanup) multiCleanup;
  decltype(&::curl_slist_append) slistAppend;
  decltype(&::curl_slist_free_all) slistFreeAll;
};

/// The library, ready for use from any thread; it stays loaded. A StoreFailure when it cannot
/// be loaded, which names it.
const CurlLibrary& TheCurlLibrary();

}  // namespace nxtm

#endif
