#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/CollectionDto.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/model/TermDto.hpp>

#include <boost/asio/awaitable.hpp>

namespace ZAK {

/// The terms and consents that the user accepts or declines. Every operation is safe to repeat, and is sent again by
/// the kit when the connection fails. Thread safety, executors, lifetimes, cancellation and errors are those of
/// `MobileApiDomain` and `Client`.
class ZVAPIKIT_API TermsDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// All terms with the user's answers.
  boost::asio::awaitable<CollectionDto<TermDto>> fetch();
  /// Changes the user's answer to a term.
  boost::asio::awaitable<TermDto> update(TermCodeDto code, TermStatusDto with);
};

}  // namespace ZAK
