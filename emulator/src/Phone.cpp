#include "Call.hpp"

#include <algorithm>

namespace ZAK {

using nlohmann::json;

namespace {

constexpr int mostWrongCodes = 3;

// The verification service's status codes; each is answered under HTTP 200.
constexpr const char* success = "0";
constexpr const char* unknownRequest = "3";
constexpr const char* alreadyVerified = "6";
constexpr const char* codeAlreadySent = "10";
constexpr const char* codeNotValid = "16";
constexpr const char* tooManyWrongCodes = "17";

/// The number with its country code, without what makes it readable: `+33639980101` for `+33 6 39 98 01 01`.
std::string phoneNumber(const json& body) {
  std::string number = textField(body, "phoneNumber");
  std::erase_if(number, [](char c) { return std::string_view(" .-()").find(c) != std::string_view::npos; });
  const bool isNumber = number.size() >= 6 && number.size() <= 16 && number[0] == '+' &&
                        std::all_of(number.begin() + 1, number.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!isNumber) throw Refusal(400, "phoneNumber must be a number with its country code");
  return number;
}

/// Whether the code may still be given.
bool isOpen(const PhoneVerification& verification, Date now) {
  return !verification.isVerified && verification.wrongCodes < mostWrongCodes && now < verification.expires;
}

EmulatorResponse requestCode(Call& call) {
  call.checkQuery({});
  const json body = call.body({"phoneNumber"}, {"deviceId"});
  if (body.contains("deviceId")) (void)textField(body, "deviceId");
  const std::string number = phoneNumber(body);
  for (const auto& [id, verification] : call.world.verifications) {
    if (verification.phoneNumber != number || !isOpen(verification, call.now)) continue;
    return jsonResponse({{"vonageRequestId", id},
                         {"status", codeAlreadySent},
                         {"errorText", "a code was sent to this number and may still be given"}});
  }
  const std::string id = call.world.nextId("verification");
  call.world.verifications[id] = {number, call.now + call.options.phoneCodeLifetime};
  return jsonResponse({{"vonageRequestId", id}, {"status", success}});
}

/// The id of the user with the number, who is made on first sight.
std::string userWith(World& world, const std::string& number) {
  for (const auto& [id, user] : world.users) {
    if (user.phoneNumber == number) return id;
  }
  User& user = world.ensureUser(world.nextId("user"));
  user.phoneNumber = number;
  return user.id;
}

EmulatorResponse failure(const char* status, const char* errorText) {
  return jsonResponse({{"status", status}, {"errorText", errorText}});
}

/// The right code gives a token that signs the number's user in, as a Firebase token does.
EmulatorResponse checkCode(Call& call) {
  call.checkQuery({});
  const json body = call.body({"vonageRequestId", "code"});
  const std::string code = textField(body, "code");
  const auto found = call.world.verifications.find(textField(body, "vonageRequestId"));
  if (found == call.world.verifications.end()) return failure(unknownRequest, "there is no such request");
  PhoneVerification& verification = found->second;
  if (verification.isVerified) return failure(alreadyVerified, "the number was verified before");
  if (call.now >= verification.expires) return failure(codeNotValid, "the code has expired");
  if (verification.wrongCodes < mostWrongCodes && code != call.options.phoneCode) ++verification.wrongCodes;
  if (verification.wrongCodes == mostWrongCodes) return failure(tooManyWrongCodes, "too many codes were wrong");
  if (code != call.options.phoneCode) return failure(codeNotValid, "the code is not the one that was sent");
  verification.isVerified = true;
  const std::string userId = userWith(call.world, verification.phoneNumber);
  const std::string token = "phone-" + EmulatorText::randomHex();
  call.world.firebaseTokens[token] = userId;
  return jsonResponse({{"status", success}, {"token", token}, {"uid", userId}});
}

}  // namespace

void addPhoneRoutes(Router& router) {
  router.add("POST", "/api/vonage/request-code", &requestCode);
  router.add("POST", "/api/vonage/check-code", &checkCode);
}

}  // namespace ZAK
