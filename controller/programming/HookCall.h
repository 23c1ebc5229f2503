#pragma once

#include <array>
#include <chrono>
#include <memory>
#include <string>

#include "controller/programming/HookClient.h"

namespace controller {

/// One attempt under way: a request after the other, where there are redirects.
class HookClient::Call {
 public:
  Call(const Curl& curl, unsigned long id, HookRequest request, Done done);

  unsigned long Id() const { return id_; }
  CURL* Easy() const { return easy_.get(); }
  const Done& WhenDone() const { return done_; }

  /// Sets the handle up for the present request. Throws a `Failure` where the library cannot.
  void Prepare();
  /// Goes on with the redirect that the answer is, if it is one; false where it is not to be
  /// followed, and `Answer` tells what there is.
  bool Follow();
  /// What came out of it; `code` is the library's word.
  HookAnswer Answer(CURLcode code);

 private:
  struct EasyCleanup {
    void operator()(CURL* easy) const { Curl::Load().easy_cleanup(easy); }
  };
  struct ListFree {
    void operator()(curl_slist* list) const { Curl::Load().slist_free_all(list); }
  };

  template <typename Value>
  void Set(CURLoption option, Value value);
  void SetLimits();
  void SetReceivers();
  void SetMethod();
  void SetHeaders();
  void AddHeader(const std::string& line);
  long Status() const;
  long MillisecondsLeft() const;
  std::string ErrorText(CURLcode code) const;
  HookAnswer Answered() const;
  static std::size_t OnBody(char* data, std::size_t size, std::size_t count, void* self) noexcept;
  static std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* self) noexcept;

  const Curl& curl_;
  unsigned long id_;
  HookRequest request_;
  Done done_;
  std::chrono::steady_clock::time_point deadline_;
  int redirects_ = 0;
  std::string statusLine_;
  std::string body_;
  std::size_t received_ = 0;
  /// Why a redirect was not followed.
  std::string refused_;
  std::array<char, CURL_ERROR_SIZE> error_{};
  std::unique_ptr<curl_slist, ListFree> headers_;
  std::unique_ptr<CURL, EasyCleanup> easy_;
};

}  // namespace controller
