#include "controller/Curl.h"

#include <dlfcn.h>
#include <memory>
#include <string>

#include "controller/Failure.h"

namespace controller {

namespace {

// The name of the interface that <curl/curl.h> describes; it has not changed since 2006.
constexpr const char* kLibrary = "libcurl.so.4";

[[noreturn]] void FailToLoad() {
  const char* why = dlerror();
  throw Failure(std::string("cannot load ") + kLibrary + ", which talks HTTP: " +
                (why == nullptr ? "no reason is known" : why) + "; install it (Debian: libcurl4)");
}

template <typename Function>
void Fetch(void* library, const char* name, Function& function) {
  void* const address = dlsym(library, name);
  if (address == nullptr) FailToLoad();
  function = reinterpret_cast<Function>(address);
}

void FetchEasy(void* library, Curl& curl) {
  Fetch(library, "curl_easy_init", curl.easy_init);
  Fetch(library, "curl_easy_cleanup", curl.easy_cleanup);
  Fetch(library, "curl_easy_reset", curl.easy_reset);
  Fetch(library, "curl_easy_setopt", curl.easy_setopt);
  Fetch(library, "curl_easy_getinfo", curl.easy_getinfo);
  Fetch(library, "curl_easy_perform", curl.easy_perform);
  Fetch(library, "curl_easy_strerror", curl.easy_strerror);
  Fetch(library, "curl_slist_append", curl.slist_append);
  Fetch(library, "curl_slist_free_all", curl.slist_free_all);
}

void FetchMulti(void* library, Curl& curl) {
  Fetch(library, "curl_multi_init", curl.multi_init);
  Fetch(library, "curl_multi_cleanup", curl.multi_cleanup);
  Fetch(library, "curl_multi_setopt", curl.multi_setopt);
  Fetch(library, "curl_multi_add_handle", curl.multi_add_handle);
  Fetch(library, "curl_multi_remove_handle", curl.multi_remove_handle);
  Fetch(library, "curl_multi_assign", curl.multi_assign);
  Fetch(library, "curl_multi_socket_action", curl.multi_socket_action);
  Fetch(library, "curl_multi_perform", curl.multi_perform);
  Fetch(library, "curl_multi_poll", curl.multi_poll);
  Fetch(library, "curl_multi_info_read", curl.multi_info_read);
  Fetch(library, "curl_multi_strerror", curl.multi_strerror);
}

void FetchUrl(void* library, Curl& curl) {
  Fetch(library, "curl_url", curl.url);
  Fetch(library, "curl_url_cleanup", curl.url_cleanup);
  Fetch(library, "curl_url_set", curl.url_set);
  Fetch(library, "curl_url_get", curl.url_get);
  Fetch(library, "curl_free", curl.free);
}

struct Close {
  void operator()(void* library) const { dlclose(library); }
};

Curl LoadCurl() {
  std::unique_ptr<void, Close> library(dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL));
  if (!library) FailToLoad();
  Curl curl;
  FetchEasy(library.get(), curl);
  FetchMulti(library.get(), curl);
  FetchUrl(library.get(), curl);
  decltype(&curl_global_init) initialise = nullptr;
  Fetch(library.get(), "curl_global_init", initialise);
  if (const CURLcode code = initialise(CURL_GLOBAL_DEFAULT); code != CURLE_OK) {
    throw Failure(std::string(kLibrary) + " does not start: " + curl.easy_strerror(code));
  }
  // Never closed: its TLS library has handlers that run when the process ends.
  library.release();
  return curl;
}

}  // namespace

const Curl& Curl::Load() {
  static const Curl curl = LoadCurl();
  return curl;
}

}  // namespace controller
