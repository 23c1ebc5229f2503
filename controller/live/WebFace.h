#pragma once

#include <memory>
#include <string>
#include <vector>

#include "controller/House.h"
#include "controller/api/Api.h"
#include "controller/http/EventStream.h"
#include "controller/http/HttpServer.h"
#include "controller/http/TokenStore.h"

namespace controller {

/// Where a controller is to be reached.
struct WebOptions {
  std::vector<ListenAddress> listen;
  std::vector<std::string> allowedHosts;
};

/// What a house shows to the network: the page, the API, the stream of what happens, and what
/// monitoring asks for.
class WebFace final : private IHouseListener {
 public:
  /// Listens from here on; throws a `Failure` where that is not possible, or where the addresses
  /// can be reached from elsewhere and nobody has a token. `house` and `base` must outlive it.
  WebFace(event_base* base, House& house, const WebOptions& options, const std::string& project);
  ~WebFace();
  WebFace(const WebFace&) = delete;
  WebFace& operator=(const WebFace&) = delete;

  /// Where it is reached, port 0 replaced by the real one.
  const std::vector<ListenAddress>& Addresses() const { return addresses_; }

 private:
  void OnEventChanged(Change change, unsigned long eventId) override;
  void OnProgrammingChanged(unsigned long eventId) override;
  void OnJournalRow(const JournalRow& row) override;
  void OnProjectChanged() override;
  void OnTodayChanged() override;
  void OnSaving(bool works, const std::string& why) override;
  void OnScheduleReplaced() override;

  House& house_;
  TokenStore tokens_;
  Api api_;
  EventStream stream_;
  HttpServer server_;
  std::vector<ListenAddress> addresses_;
};

}  // namespace controller
