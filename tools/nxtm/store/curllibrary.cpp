#include "store/curllibrary.h"

#include <dlfcn.h>

#include <string>

#include "data/failure.h"

namespace nxtm {

namespace {

constexpr char kFile[] = "libcurl.so.4";

class Loader {
 public:
  Loader() : library_(dlopen(kFile, RTLD_NOW | RTLD_LOCAL)) {
    if (!library_) Fail();
  }
  template <class Function>
  void Load(Function& function, const char* name) const {
    function = reinterpret_cast<Function>(dlsym(library_, name));
    if (!function) Fail();
  }

 private:
  [[noreturn]] static void Fail() {
    const char* const reason = dlerror();
    throw StoreFailure(std::string("stores in a cluster need ") + kFile + ": " +
                       (reason ? reason : "a function is missing"));
  }
  void* library_;
};

CurlLibrary Load() {
  const Loader loader;
  CurlLibrary curl{};
  loader.Load(curl.globalInit, "curl_global_init");
  loader.Load(curl.easyInit, "curl_easy_init");
  loader.Load(curl.easyReset, "curl_easy_reset");
  loader.Load(curl.easySetopt, "curl_easy_setopt");
  loader.Load(curl.easyGetinfo, "curl_easy_getinfo");
  loader.Load(curl.easyStrerror, "curl_easy_strerror");
  loader.Load(curl.easyCleanup, "curl_easy_cleanup");
  loader.Load(curl.multiInit, "curl_multi_init");
  loader.Load(curl.multiSetopt, "curl_multi_setopt");
  loader.Load(curl.multiAddHandle, "curl_multi_add_handle");
  loader.Load(curl.multiRemoveHandle, "curl_multi_remove_handle");
  loader.Load(curl.multiPerform, "curl_multi_perform");
  loader.Load(curl.multiPoll, "curl_multi_poll");
  loader.Load(curl.multiInfoRead, "curl_multi_info_read");
  loader.Load(curl.multiCleanup, "curl_multi_cleanup");
  loader.Load(curl.slistAppend, "curl_slist_append");
  loader.Load(curl.slistFreeAll, "curl_slist_free_all");
  curl.globalInit(CURL_GLOBAL_DEFAULT);
  return curl;
}

}  // namespace

const CurlLibrary& TheCurlLibrary() {
  static const CurlLibrary library = Load();
  return library;
}

}  // namespace nxtm
