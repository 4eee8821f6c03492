#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/HTTPRequest.hpp>
#include <zvapikit/json/JSONType.hpp>

#include <boost/asio/awaitable.hpp>

namespace ZAK {

/// Where an answer is decoded to: a value and the description of its type. The value must outlive the call it is
/// handed to.
///
/// Thread safety: as a standard container; the value is written by the call that decodes.
struct DecodeTarget {
  /// Decodes into this value.
  template <class Result>
  static DecodeTarget of(Result& value) {
    return DecodeTarget{&jsonType<Result>(), &value};
  }

  const JSONType* type = nullptr;  ///< what the value is
  void* value = nullptr;           ///< a freshly made one
};

/// Turns one prepared request into a decoded record, and every failure into an error of the kit.
///
/// Thread safety: any number of calls at once, from any thread.
class ZVAPIKIT_API RequestExecutor {
 public:
  virtual ~RequestExecutor() = default;

  /// Sends the request, again as often as its `maxRetries` and the client's validators have it, and decodes the answer
  /// into `target`. The awaitable keeps the executor alive.
  /// \throws ZAKError for the failures of the HTTP layer; anything else exactly as it was received: cancellation,
  ///   decoding.
  virtual boost::asio::awaitable<void> execute(HTTPRequest request, DecodeTarget target) = 0;
};

}  // namespace ZAK
