#pragma once

#include <zvapikit/http/HTTPProgress.hpp>

#include <boost/asio/awaitable.hpp>
#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ZAK {
class MobileApiClient;
}

namespace zvkit {

/// The command line is at fault, not the call.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// One argument of an operation: its name in the JSON object, and its type for people.
struct Argument {
  std::string name;
  std::string type;
  bool mayBeLeftOut = false;
};

/// One operation of the kit, to be called by name.
struct Operation {
  std::string group;
  std::string name;
  std::vector<Argument> arguments;
  /// Calls it with a JSON object of arguments; yields the result as JSON, empty for an operation without one.
  /// Throws `UsageError` at once, not when awaited, for arguments that are missing or do not fit.
  /// Long work tells the function, if there is one, how far it is.
  std::function<boost::asio::awaitable<std::string>(std::shared_ptr<ZAK::MobileApiClient>, const nlohmann::json&,
                                                    const ZAK::HTTPProgress::Function&)>
      call;

  [[nodiscard]] std::string fullName() const { return group + "." + name; }
};

/// Every operation of the kit, by group.
const std::vector<Operation>& catalogue();

/// The operation `GROUP.OPERATION`; of several with one name, the one that has these arguments. Throws `UsageError`
/// when there is none, or an argument that it does not have.
const Operation& find(std::string_view fullName, const nlohmann::json& arguments);

}  // namespace zvkit
