#include "TokenStore.hpp"

#include "Text.hpp"

namespace ZAK {

TokenStore::Issued TokenStore::issue(const std::string& userId, Date expires) {
  Issued issued{"access-" + EmulatorText::randomHex(), "refresh-" + EmulatorText::randomHex(), expires};
  access_[issued.access] = {userId, expires};
  refresh_[issued.refresh] = {userId, issued.access};
  return issued;
}

std::optional<TokenStore::Issued> TokenStore::refresh(const std::string& refreshToken, Date expires) {
  const auto used = refresh_.extract(refreshToken);
  if (used.empty()) return std::nullopt;
  return issue(used.mapped().userId, expires);
}

std::optional<std::string> TokenStore::user(const std::string& accessToken, Date now) const {
  const auto found = access_.find(accessToken);
  if (found == access_.end() || found->second.expires <= now) return std::nullopt;
  return found->second.userId;
}

void TokenStore::revoke(const std::string& accessToken) {
  access_.erase(accessToken);
  std::erase_if(refresh_, [&](const auto& entry) { return entry.second.access == accessToken; });
}

void TokenStore::revokeAll() {
  access_.clear();
  refresh_.clear();
}

}  // namespace ZAK
