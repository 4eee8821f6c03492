#pragma once

#include <zvapikit/emulator/EmulatorOptions.hpp>

#include <boost/asio/ssl/context.hpp>

#include <string>

namespace ZAK {

/// A server's identity with the authority that vouches for it, both made afresh.
struct ServerIdentity {
  explicit ServerIdentity(EmulatorOptions::Certificate kind);

  std::string authority;  ///< the authority's certificate, PEM
  boost::asio::ssl::context context;
};

}  // namespace ZAK
