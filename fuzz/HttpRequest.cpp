// The door of the network: what comes in on a connection, before anybody has said who they are.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "controller/http/Problem.h"
#include "controller/http/RequestFramer.h"
#include "fuzz/Property.h"

namespace {

constexpr std::size_t kBodyLimit = 1000;

/// Writes down what is found in the bytes.
class Reader final : public controller::RequestFramer::IReader {
 public:
  std::string found;

  std::size_t OnHead(controller::RequestHead head) override {
    fuzz::Require(head.path.starts_with('/') && !head.path.starts_with("//"), "a path is a path");
    fuzz::Require(controller::ParseAuthority(head.authority).has_value(), "a host is a host");
    fuzz::Require(head.fields.contains("host"), "a request says whom it is for");
    fuzz::Require(
        !(head.fields.contains("content-length") && head.fields.contains("transfer-encoding")),
        "a body ends in one way");
    for (const auto& [name, value] : head.fields) {
      fuzz::Require(value.find_first_of("\r\n\0", 0, 3) == std::string::npos,
                    "a field is one line");
    }
    const bool takesBody = head.method == "POST" || head.method == "PUT" || head.method == "PATCH";
    fuzz::Require(takesBody || !head.HasBody(), "other requests have no body");
    found += head.method + " " + head.target + " " +
             (head.length ? std::to_string(*head.length) : "chunks") + "\n";
    return kBodyLimit;
  }
  void OnRequestEnd() override { found += "end\n"; }
};

/// What is found when the bytes come in pieces of this size.
std::string Found(std::string_view bytes, std::size_t piece) {
  Reader reader;
  controller::RequestFramer framer(reader, controller::HeadLimits{2000, 500, 20});
  try {
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
      framer.Feed(bytes.substr(at, piece));
      fuzz::Require(framer.PartOfHead().size() <= 2000, "no head grows without end");
    }
  } catch (const controller::Problem& problem) {
    fuzz::Require(problem.Status() >= 400, "a refusal has a status");
    fuzz::Require(!problem.Response().body.empty(), "a refusal says why");
    reader.found += std::string("refused: ") + problem.what() + "\n";
  }
  return reader.found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string whole = Found(bytes, std::max<std::size_t>(size, 1));
  fuzz::RequireEqual(Found(bytes, 1), whole, "it does not matter how the bytes are cut");
  fuzz::RequireEqual(Found(bytes, 7), whole, "it does not matter how the bytes are cut");
  return 0;
}
