#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/HTTPRequest.hpp>
#include <zvapikit/json/JSONType.hpp>

#include <boost/asio/awaitable.hpp>

namespace ZAK {

/// Where an answer is decoded to: a value and the description of its type. The value must outlive the call it is
/// handed to.
struct DecodeTarget {
  template <class Result>
  static DecodeTarget of(Result& value) {
    return DecodeTarget{&jsonType<Result>(), &value};
  }

  const JSONType* type = nullptr;
  void* value = nullptr;
};

/// Turns one prepared request into a decoded record, and every failure into an error of the kit.
///
/// Thread safety: any number of calls at once, from any thread.
class ZVAPIKIT_API RequestExecutor {
 public:
  virtual ~RequestExecutor() = default;

  /// Sends the request and decodes the answer into `target`. The awaitable keeps the executor alive.
  /// \throws ZAKError, or the error exactly as received when it is none of the HTTP layer's: cancellation, decoding.
  virtual boost::asio::awaitable<void> execute(HTTPRequest request, DecodeTarget target) = 0;
};

}  // namespace ZAK
