#include "FaultScript.hpp"

#include <algorithm>

namespace ZAK {

std::size_t FaultScript::add(EmulatorFault fault) {
  Entry entry{std::move(fault), std::nullopt, 0};
  if (!entry.fault.path.empty()) entry.path.emplace(entry.fault.path);
  entry.left = entry.fault.times;
  entries_.push_back(std::move(entry));
  return entries_.size() - 1;
}

const EmulatorFault* FaultScript::meet(const EmulatorRequest& request) {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    const EmulatorFault& fault = entry.fault;
    return entry.left > 0 && (!fault.server || *fault.server == request.server) &&
           (fault.method.empty() || fault.method == request.method) &&
           (!entry.path || entry.path->match(request.path)) && (!fault.predicate || fault.predicate(request));
  });
  if (found == entries_.end()) return nullptr;
  if (found->left != EmulatorFault::always) --found->left;
  ++found->met;
  ++timesMet_;
  return &found->fault;
}

std::size_t FaultScript::timesMet(std::size_t id) const { return entries_.at(id).met; }

void FaultScript::clear() {
  for (Entry& entry : entries_) entry.left = 0;
}

}  // namespace ZAK
