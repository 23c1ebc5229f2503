#pragma once

#include <curl/curl.h>

namespace controller {

/// The functions of libcurl that are used here, by their names without "curl_". The library is not
/// linked but loaded when it is first wanted: with all that it brings along it takes 4 ms and 8 MB
/// (1.3 MB of them the process's own), which a controller without hooks never needs.
///
/// Options are passed as libcurl reads them, nothing checks that: numbers as `long` (10L), or
/// `curl_off_t` where the option's name ends in _LARGE.
struct Curl {
  decltype(&curl_easy_init) easy_init = nullptr;
  decltype(&curl_easy_cleanup) easy_cleanup = nullptr;
  decltype(&curl_easy_reset) easy_reset = nullptr;
  decltype(&curl_easy_setopt) easy_setopt = nullptr;
  decltype(&curl_easy_getinfo) easy_getinfo = nullptr;
  decltype(&curl_easy_perform) easy_perform = nullptr;
  decltype(&curl_easy_strerror) easy_strerror = nullptr;
  decltype(&curl_slist_append) slist_append = nullptr;
  decltype(&curl_slist_free_all) slist_free_all = nullptr;
  decltype(&curl_multi_init) multi_init = nullptr;
  decltype(&curl_multi_cleanup) multi_cleanup = nullptr;
  decltype(&curl_multi_setopt) multi_setopt = nullptr;
  decltype(&curl_multi_add_handle) multi_add_handle = nullptr;
  decltype(&curl_multi_remove_handle) multi_remove_handle = nullptr;
  decltype(&curl_multi_assign) multi_assign = nullptr;
  decltype(&curl_multi_socket_action) multi_socket_action = nullptr;
  decltype(&curl_multi_perform) multi_perform = nullptr;
  decltype(&curl_multi_poll) multi_poll = nullptr;
  decltype(&curl_multi_info_read) multi_info_read = nullptr;
  decltype(&curl_multi_strerror) multi_strerror = nullptr;
  decltype(&curl_url) url = nullptr;
  decltype(&curl_url_cleanup) url_cleanup = nullptr;
  decltype(&curl_url_set) url_set = nullptr;
  decltype(&curl_url_get) url_get = nullptr;
  decltype(&curl_free) free = nullptr;

  /// The library, initialised; stays for the life of the process. Throws a `Failure` where it is
  /// not installed or is another one; the next call then tries again.
  static const Curl& Load();
};

}  // namespace controller
