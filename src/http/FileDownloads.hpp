#pragma once

#include <zvapikit/http/HTTPClient.hpp>
#include <zvapikit/http/HTTPRequest.hpp>

#include <boost/asio/awaitable.hpp>

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace ZAK {

/// Downloads to files, of which those of one URL to one destination share a transfer.
///
/// Thread safety: any number of calls at once, from any thread.
class FileDownloads : public std::enable_shared_from_this<FileDownloads> {
 public:
  /// Fetches the request, which has a destination, or waits for another call that does so already; a URL's query does
  /// not count, since it may hold a signature. Who waits is told of the progress too, and takes over when the other
  /// call is cancelled, or fails with another query. Otherwise as `HTTPClient::fetch`.
  boost::asio::awaitable<HTTPResponse> fetch(std::shared_ptr<HTTPClient> client, HTTPRequest request);

 private:
  class Download;
  class Lead;

  static boost::asio::awaitable<HTTPResponse> fetchShared(std::shared_ptr<FileDownloads> self,
                                                          std::shared_ptr<HTTPClient> client, HTTPRequest request);
  static boost::asio::awaitable<HTTPResponse> lead(std::shared_ptr<Lead> lead, std::shared_ptr<HTTPClient> client,
                                                   HTTPRequest request);
  static boost::asio::awaitable<std::shared_ptr<const HTTPResponse>> follow(std::shared_ptr<Download> download,
                                                                            HTTPProgress::Function received);

  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<Download>> running_;
};

}  // namespace ZAK
