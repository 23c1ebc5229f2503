#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "controller/http/RequestHead.h"

namespace controller {

/// Finds out where the requests on one connection begin and end, from the bytes as they come in,
/// however they are cut. It takes no more than RFC 9112 allows and less where that leaves a choice:
/// lines end with CR LF, a header field is one line, chunks have neither extensions nor trailers.
class RequestFramer {
 public:
  class IReader {
   public:
    /// The head of a request has come. Answers how many bytes its body may have, or throws the
    /// `Problem` that it is refused with, before any of the body is taken.
    virtual std::size_t OnHead(RequestHead head) = 0;
    /// The rest of it has come, too.
    virtual void OnRequestEnd() = 0;

   protected:
    ~IReader() = default;
  };
  enum class Phase {
    /// Nothing of the next request has come yet.
    kBetween,
    kHead,
    kBody,
  };

  RequestFramer(IReader& reader, const HeadLimits& limits) : reader_(reader), limits_(limits) {}

  /// Takes what came in next. Throws a `Problem` where it is no request; the connection cannot be
  /// used any further then, since nobody knows where the next one would begin.
  void Feed(std::string_view bytes);
  Phase Where() const;
  /// The head that is not complete yet, as far as it has come.
  std::string_view PartOfHead() const;

 private:
  enum class State { kHead, kFixedBody, kChunkSize, kChunk, kChunkEnd, kLastEnd };

  void TakeHeadByte(char byte);
  void TakeChunkSizeByte(char byte);
  void TakeEndByte(char byte);
  std::string_view TakeBody(std::string_view bytes);
  void EndHead();
  void EndChunkSize();
  void EndRequest();

  IReader& reader_;
  HeadLimits limits_;
  State state_ = State::kHead;
  /// The line or head that is not complete yet.
  std::string text_;
  /// What is still to come of the body or of the chunk.
  std::uint64_t missing_ = 0;
  /// How much the chunks that are still to come may hold.
  std::uint64_t allowance_ = 0;
};

/// The `Problem` of a body that is too large.
[[noreturn]] void RefuseBody(std::uint64_t limit);

}  // namespace controller
