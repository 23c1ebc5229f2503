#include "controller/programming/HookClient.h"

#include <utility>
#include <vector>

#include "controller/Failure.h"
#include "controller/Log.h"
#include "controller/programming/HookCall.h"

namespace controller {

namespace {

constexpr long kIdleConnections = 8;

}  // namespace

void HookClient::MultiCleanup::operator()(CURLM* multi) const { Curl::Load().multi_cleanup(multi); }

HookClient::HookClient(event_base* base)
    : base_(base), timer_(MakeLoopEvent(base, -1, 0, OnTimer, this)) {}

HookClient::~HookClient() {
  for (const auto& call : calls_) {
    curl_->multi_remove_handle(multi_.get(), call.second->Easy());
  }
  calls_.clear();
  // Closes the connections, for which it wants its sockets no longer watched.
  multi_.reset();
}

void HookClient::Open() {
  curl_ = &Curl::Load();
  multi_.reset(curl_->multi_init());
  if (!multi_) throw Failure("out of memory");
  curl_->multi_setopt(multi_.get(), CURLMOPT_SOCKETFUNCTION, &HookClient::OnSocketWanted);
  curl_->multi_setopt(multi_.get(), CURLMOPT_SOCKETDATA, static_cast<void*>(this));
  curl_->multi_setopt(multi_.get(), CURLMOPT_TIMERFUNCTION, &HookClient::OnTimerWanted);
  curl_->multi_setopt(multi_.get(), CURLMOPT_TIMERDATA, static_cast<void*>(this));
  curl_->multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, kIdleConnections);
}

unsigned long HookClient::Begin(HookRequest request, Done done) {
  if (!multi_) Open();
  const unsigned long id = ++lastId_;
  auto call = std::make_unique<Call>(*curl_, id, std::move(request), std::move(done));
  Add(*call);
  calls_[id] = std::move(call);
  return id;
}

void HookClient::Add(Call& call) {
  call.Prepare();
  const CURLMcode code = curl_->multi_add_handle(multi_.get(), call.Easy());
  if (code != CURLM_OK) {
    throw Failure(std::string("libcurl does not take a request: ") + curl_->multi_strerror(code));
  }
}

void HookClient::Abort(unsigned long id) {
  const auto found = calls_.find(id);
  if (found == calls_.end()) return;
  curl_->multi_remove_handle(multi_.get(), found->second->Easy());
  calls_.erase(found);
}

void HookClient::Act(int fd, int what) {
  int running = 0;
  const CURLMcode code = curl_->multi_socket_action(multi_.get(), fd, what, &running);
  if (code != CURLM_OK) {
    Log::Warning(std::string("web hooks: libcurl says: ") + curl_->multi_strerror(code));
  }
  TakeEnded();
}

void HookClient::TakeEnded() {
  // Taken first: whoever is told may begin or abort others.
  std::vector<std::pair<unsigned long, CURLcode>> ended;
  int left = 0;
  while (const CURLMsg* message = curl_->multi_info_read(multi_.get(), &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    void* call = nullptr;
    curl_->easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &call);
    ended.emplace_back(static_cast<Call*>(call)->Id(), message->data.result);
  }
  for (const auto& [id, code] : ended) End(id, code);
}

void HookClient::End(unsigned long id, CURLcode code) {
  const auto found = calls_.find(id);
  if (found == calls_.end()) return;
  Call& call = *found->second;
  curl_->multi_remove_handle(multi_.get(), call.Easy());
  HookAnswer answer;
  try {
    if (code == CURLE_OK && call.Follow()) return Add(call);
    answer = call.Answer(code);
  } catch (const Failure& failure) {
    answer.text = failure.what();
  }
  const std::unique_ptr<Call> over = std::move(found->second);
  calls_.erase(found);
  over->WhenDone()(answer);
}

void HookClient::WatchSocket(curl_socket_t fd, int what) {
  sockets_.erase(fd);
  if (what == CURL_POLL_REMOVE || what == CURL_POLL_NONE) return;
  int wanted = EV_PERSIST;
  if ((what & CURL_POLL_IN) != 0) wanted |= EV_READ;
  if ((what & CURL_POLL_OUT) != 0) wanted |= EV_WRITE;
  LoopEvent watch = MakeLoopEvent(base_, fd, static_cast<short>(wanted), OnSocket, this);
  event_add(watch.get(), nullptr);
  sockets_[fd] = std::move(watch);
}

void HookClient::WatchTimer(long milliseconds) {
  if (milliseconds < 0) {
    event_del(timer_.get());
    return;
  }
  const timeval delay = Milliseconds(milliseconds);
  event_add(timer_.get(), &delay);
}

int HookClient::OnSocketWanted(CURL*, curl_socket_t fd, int what, void* self, void*) noexcept {
  auto& client = *static_cast<HookClient*>(self);
  Guarded(client.base_, [&] { client.WatchSocket(fd, what); });
  return 0;
}

int HookClient::OnTimerWanted(CURLM*, long milliseconds, void* self) noexcept {
  auto& client = *static_cast<HookClient*>(self);
  Guarded(client.base_, [&] { client.WatchTimer(milliseconds); });
  return 0;
}

void HookClient::OnSocket(int fd, short what, void* self) {
  auto& client = *static_cast<HookClient*>(self);
  const int ready = ((what & EV_READ) != 0 ? CURL_CSELECT_IN : 0) |
                    ((what & EV_WRITE) != 0 ? CURL_CSELECT_OUT : 0);
  Guarded(client.base_, [&] { client.Act(fd, ready); });
}

void HookClient::OnTimer(int, short, void* self) {
  auto& client = *static_cast<HookClient*>(self);
  Guarded(client.base_, [&] { client.Act(CURL_SOCKET_TIMEOUT, 0); });
}

}  // namespace controller
