#include "controller/http/RequestFramer.h"

#include <algorithm>
#include <utility>

#include "controller/http/Problem.h"

namespace controller {

void RefuseBody(std::uint64_t limit) {
  throw Problem("too-large", "the body is too large; at most " + std::to_string(limit) +
                                 " bytes are taken here");
}

RequestFramer::Phase RequestFramer::Where() const {
  if (state_ != State::kHead) return Phase::kBody;
  return text_.empty() ? Phase::kBetween : Phase::kHead;
}

std::string_view RequestFramer::PartOfHead() const {
  return state_ == State::kHead ? std::string_view(text_) : std::string_view();
}

void RequestFramer::Feed(std::string_view bytes) {
  while (!bytes.empty()) {
    switch (state_) {
      case State::kFixedBody:
      case State::kChunk:
        bytes = TakeBody(bytes);
        continue;
      case State::kHead:
        TakeHeadByte(bytes.front());
        break;
      case State::kChunkSize:
        TakeChunkSizeByte(bytes.front());
        break;
      case State::kChunkEnd:
      case State::kLastEnd:
        TakeEndByte(bytes.front());
        break;
    }
    bytes.remove_prefix(1);
  }
}

void RequestFramer::TakeHeadByte(char byte) {
  const bool afterReturn = !text_.empty() && text_.back() == '\r';
  if (afterReturn != (byte == '\n')) {
    throw Problem("malformed", "a line of the header does not end with CR LF");
  }
  if (text_.empty() && byte == '\r') {
    throw Problem("malformed", "an empty line stands before the request");
  }
  text_ += byte;
  if (text_.ends_with("\r\n\r\n")) return EndHead();
  if (text_.size() < limits_.bytes) return;
  if (text_.find('\n') == std::string::npos) {
    throw Problem("uri-too-long",
                  "the request line is longer than " + std::to_string(limits_.bytes) + " bytes");
  }
  throw Problem("headers-too-large",
                "the header is longer than " + std::to_string(limits_.bytes) + " bytes");
}

void RequestFramer::EndHead() {
  RequestHead head = ParseRequestHead(text_, limits_);
  text_.clear();
  const std::optional<std::uint64_t> length = head.length;
  const std::size_t limit = reader_.OnHead(std::move(head));
  if (length && *length > limit) RefuseBody(limit);
  allowance_ = limit;
  missing_ = length.value_or(0);
  if (!length) {
    state_ = State::kChunkSize;
  } else if (missing_ > 0) {
    state_ = State::kFixedBody;
  } else {
    EndRequest();
  }
}

std::string_view RequestFramer::TakeBody(std::string_view bytes) {
  const std::uint64_t taken = std::min<std::uint64_t>(missing_, bytes.size());
  missing_ -= taken;
  if (missing_ == 0) {
    if (state_ == State::kChunk) {
      state_ = State::kChunkEnd;
    } else {
      EndRequest();
    }
  }
  return bytes.substr(static_cast<std::size_t>(taken));
}

void RequestFramer::TakeChunkSizeByte(char byte) {
  text_ += byte;
  if (text_.ends_with("\r\n")) return EndChunkSize();
  constexpr std::string_view kDigits = "0123456789abcdefABCDEF\r";
  const bool inOrder =
      kDigits.find(byte) != std::string_view::npos && text_.find('\r') >= text_.size() - 1;
  if (!inOrder || text_.front() == '\r' || text_.size() > 9) {
    throw Problem("malformed",
                  "the size of a chunk is not up to eight hexadecimal digits and CR LF");
  }
}

void RequestFramer::EndChunkSize() {
  missing_ = std::stoull(text_, nullptr, 16);
  text_.clear();
  if (missing_ > allowance_) RefuseBody(allowance_);
  allowance_ -= missing_;
  state_ = missing_ == 0 ? State::kLastEnd : State::kChunk;
}

void RequestFramer::TakeEndByte(char byte) {
  text_ += byte;
  if (text_ == "\r") return;
  if (text_ != "\r\n") {
    throw Problem("malformed", state_ == State::kChunkEnd
                                   ? "a chunk does not end where its size says"
                                   : "something follows the last chunk; trailers are not taken");
  }
  text_.clear();
  if (state_ == State::kLastEnd) return EndRequest();
  state_ = State::kChunkSize;
}

void RequestFramer::EndRequest() {
  state_ = State::kHead;
  reader_.OnRequestEnd();
}

}  // namespace controller
