#include "controller/http/EventStream.h"

#include <charconv>
#include <ctime>
#include <utility>

#include "controller/Log.h"
#include "controller/Printable.h"
#include "controller/http/Problem.h"

namespace controller {

namespace {

/// How long a client waits before it comes again, in milliseconds.
constexpr const char* kRetry = "retry: 3000\n";

/// Another one for each start of the program, and later ones are greater.
std::string NewEpoch() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  const auto nanoseconds = static_cast<std::uint64_t>(now.tv_sec) * 1000000000U +
                           static_cast<std::uint64_t>(now.tv_nsec);
  char text[17];
  const auto end = std::to_chars(text, text + sizeof(text), nanoseconds, 16);
  return {text, end.ptr};
}

/// A line end in the text would end the field.
std::string DataLines(std::string_view json) {
  std::string lines = "data: ";
  for (const char byte : json) {
    if (byte == '\n') {
      lines += "\ndata: ";
    } else if (byte != '\r') {
      lines += byte;
    }
  }
  return lines;
}

std::string Frame(const std::string& id, std::string_view name, std::string_view json) {
  return "id: " + id + "\nevent: " + std::string(name) + "\n" + DataLines(json) + "\n\n";
}

std::string LastIdInQuery(const HttpRequest& request) {
  std::string id;
  for (const auto& [name, value] : request.query) {
    if (name != "last_event_id") {
      throw Problem("malformed",
                    "the parameter " + Quoted(name) + " is not known here; there is last_event_id");
    }
    if (!id.empty()) throw Problem("malformed", "give the parameter \"last_event_id\" once");
    id = value;
  }
  return id;
}

/// What the client has seen last, as it says. A browser that comes again says it in the header
/// field, with the address that it began with; so that counts more.
std::string LastId(const HttpRequest& request) {
  std::string inQuery = LastIdInQuery(request);
  const auto field = request.headers.find("last-event-id");
  return field != request.headers.end() ? field->second : inQuery;
}

}  // namespace

EventStream::EventStream(event_base* base, StillAllowed stillAllowed,
                         const EventStreamLimits& limits)
    : base_(base),
      stillAllowed_(std::move(stillAllowed)),
      limits_(limits),
      epoch_(NewEpoch()),
      heartbeat_(MakeLoopEvent(base, -1, EV_PERSIST, OnHeartbeat, this)) {}

HttpRoute EventStream::Route(const std::string& path) {
  HttpRoute route;
  route.method = "GET";
  route.path = path;
  route.handler = [this](const HttpRequest& request, Respond respond) {
    Welcome(request, respond);
  };
  return route;
}

void EventStream::Welcome(const HttpRequest& request, const Respond& respond) {
  if (clients_.size() >= limits_.clients) {
    throw Problem("too-many",
                  std::to_string(clients_.size()) + " clients listen already; try again later");
  }
  HttpResponse response;
  response.contentType = "text/event-stream";
  // Between us and the client nobody is to collect what we say.
  response.headers.emplace_back("X-Accel-Buffering", "no");
  response.body = Begin(request);
  response.goesOn = [this, request](std::unique_ptr<IHttpStream> stream) {
    Accept(request, std::move(stream));
  };
  respond(std::move(response));
}

std::string EventStream::Begin(const HttpRequest& request) const {
  const std::string lastId = LastId(request);
  // The id alone is no event, but what the client will say when it comes again. Before it has read
  // what it missed it must not say that it has.
  const auto at = [](const std::string& id) { return kRetry + ("id: " + id) + "\n\n"; };
  if (lastId.empty()) return at(LatestId());
  if (const auto missed = Since(lastId)) return at(lastId) + *missed;
  return kRetry + Frame(LatestId(), "reset", "{}");
}

/// What came after the event of this id; nothing where that is not known.
std::optional<std::string> EventStream::Since(std::string_view lastId) const {
  const std::string prefix = epoch_ + "-";
  if (!lastId.starts_with(prefix)) return std::nullopt;
  lastId.remove_prefix(prefix.size());
  std::uint64_t last = 0;
  const auto read = std::from_chars(lastId.data(), lastId.data() + lastId.size(), last);
  if (read.ec != std::errc() || read.ptr != lastId.data() + lastId.size()) return std::nullopt;
  if (last > sequence_ || sequence_ - last > kept_.size()) return std::nullopt;
  std::string missed;
  for (std::size_t at = kept_.size() - (sequence_ - last); at < kept_.size(); ++at) {
    missed += kept_[at];
  }
  // More than it may have unread: it would be dropped before it could read.
  if (missed.size() > limits_.unread / 2) return std::nullopt;
  return missed;
}

void EventStream::Accept(const HttpRequest& request, std::unique_ptr<IHttpStream> stream) {
  if (clients_.empty()) {
    const timeval pause = Milliseconds(limits_.heartbeat);
    event_add(heartbeat_.get(), &pause);
  }
  clients_.push_back({request, std::move(stream)});
  const ClientPlace client = std::prev(clients_.end());
  client->stream->WhenGone([this, client] { Leave(client); });
}

void EventStream::Leave(ClientPlace client) {
  clients_.erase(client);
  // Nobody is there to be told anything: the loop may sleep.
  if (clients_.empty()) event_del(heartbeat_.get());
}

std::string EventStream::Id(std::uint64_t sequence) const {
  return epoch_ + "-" + std::to_string(sequence);
}

void EventStream::Publish(std::string_view name, std::string_view json) {
  ++sequence_;
  Keep(Frame(Id(sequence_), name, json));
  Tell(kept_.back());
  // Only now: one that is too large to be kept was told all the same.
  while (kept_.size() > limits_.events || keptBytes_ > limits_.bytes) {
    keptBytes_ -= kept_.front().size();
    kept_.pop_front();
  }
}

void EventStream::Keep(std::string frame) {
  keptBytes_ += frame.size();
  kept_.push_back(std::move(frame));
}

void EventStream::Tell(std::string_view text) {
  for (auto client = clients_.begin(); client != clients_.end();) {
    const ClientPlace present = client++;
    present->stream->Write(text);
    if (present->stream->Unread() <= limits_.unread) continue;
    ++dropped_;
    Log::Warning("http: a client of the stream, " + present->request.actor +
                 ", does not read and was dropped");
    Leave(present);
  }
}

void EventStream::OnHeartbeat(int, short, void* argument) {
  auto& self = *static_cast<EventStream*>(argument);
  Guarded(self.base_, [&] {
    for (auto client = self.clients_.begin(); client != self.clients_.end();) {
      const ClientPlace present = client++;
      if (!self.stillAllowed_(present->request)) self.Leave(present);
    }
    self.Tell(": heartbeat\n\n");
  });
}

}  // namespace controller
