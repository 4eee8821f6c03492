#include "Call.hpp"

#include <boost/beast/http/status.hpp>

#include <algorithm>

namespace ZAK {

using nlohmann::json;

namespace {

[[noreturn]] void refuseField(const char* key, const char* expectation) {
  throw Refusal(400, std::string(key) + " must be " + expectation);
}

}  // namespace

std::optional<EmulatorText::QueryItem> Call::queryItem(std::string_view name) const {
  std::optional<EmulatorText::QueryItem> found;
  for (EmulatorText::QueryItem& item : EmulatorText::parseQuery(request.target)) {
    if (item.name != name) continue;
    if (found) throw Refusal(400, "query item " + item.name + " is there twice");
    found = std::move(item);
  }
  return found;
}

void Call::checkQuery(std::initializer_list<std::string_view> names) const {
  for (const EmulatorText::QueryItem& item : EmulatorText::parseQuery(request.target)) {
    if (std::find(names.begin(), names.end(), item.name) == names.end()) {
      throw Refusal(400, "query item " + item.name + " should not exist");
    }
  }
}

std::string Call::queryValue(std::string_view name) const {
  std::string value;
  if (const auto item = queryItem(name)) value = item->value.value_or("");
  if (value.empty()) throw Refusal(400, "query item " + std::string(name) + " must be there with a value");
  return value;
}

std::string Call::language() const {
  if (!queryItem("language")) return "en";
  const std::string tag = queryValue("language");
  return tag.substr(0, tag.find_first_of("-_"));
}

json Call::body(std::initializer_list<const char*> required, std::initializer_list<const char*> optional) const {
  const std::string* type = request.header("Content-Type");
  const std::string_view media = type ? std::string_view(*type).substr(0, type->find(';')) : std::string_view();
  if (!EmulatorText::equalIgnoringCase(media, "application/json"))
    throw Refusal(415, "the body must be application/json");
  json value = json::parse(request.body, nullptr, false);
  if (value.is_discarded()) throw Refusal(400, "the body is not JSON");
  checkKeys(value, required, optional);
  return value;
}

User& Call::self() const {
  User& user = world.users.at(userId);
  if (!user.createdAt) throw Refusal(404, "the user has no profile yet", "check-user-exist");
  return user;
}

const User& Call::person(const std::string& id) const {
  const User* const user = world.person(id, userId);
  if (!user) throw Refusal(404, "there is no such person");
  return *user;
}

Post& Call::readablePost(const std::string& id) const {
  const auto found = world.posts.find(id);
  if (found == world.posts.end() || !world.mayRead(userId, found->second)) throw Refusal(404, "there is no such post");
  return found->second;
}

Usage& Call::usage() const { return world.usage[{userId, World::moment(now).id}]; }

void checkKeys(const json& value, std::initializer_list<const char*> required,
               std::initializer_list<const char*> optional) {
  if (!value.is_object()) throw Refusal(400, "an object was expected");
  for (const char* key : required) {
    if (!value.contains(key)) throw Refusal(400, std::string(key) + " is missing");
  }
  const auto known = [&](const std::string& key) {
    return std::find(required.begin(), required.end(), key) != required.end() ||
           std::find(optional.begin(), optional.end(), key) != optional.end();
  };
  for (const auto& item : value.items()) {
    if (!known(item.key())) throw Refusal(400, item.key() + " should not exist");
  }
}

std::string textField(const json& object, const char* key) {
  const json& value = object.at(key);
  if (!value.is_string() || value.get_ref<const std::string&>().empty()) refuseField(key, "a text that is not empty");
  return value.get<std::string>();
}

std::int64_t countField(const json& object, const char* key) {
  const json& value = object.at(key);
  if (!value.is_number_integer() || value.get<std::int64_t>() < 0) refuseField(key, "an integer of 0 or more");
  return value.get<std::int64_t>();
}

double numberField(const json& object, const char* key) {
  const json& value = object.at(key);
  if (!value.is_number()) refuseField(key, "a number");
  return value.get<double>();
}

bool flagField(const json& object, const char* key) {
  const json& value = object.at(key);
  if (!value.is_boolean()) refuseField(key, "a boolean");
  return value.get<bool>();
}

Date dateField(const json& object, const char* key) {
  const json& value = object.at(key);
  const auto date = value.is_string() ? EmulatorText::parseDate(value.get_ref<const std::string&>()) : std::nullopt;
  if (!date) refuseField(key, "a date with milliseconds in UTC");
  return *date;
}

std::vector<std::string> textsField(const json& object, const char* key) {
  const json& value = object.at(key);
  const auto isText = [](const json& element) { return element.is_string(); };
  if (!value.is_array() || !std::all_of(value.begin(), value.end(), isText)) refuseField(key, "an array of texts");
  return value.get<std::vector<std::string>>();
}

Picture pictureField(const json& object, const char* key) {
  const json& value = object.at(key);
  checkKeys(value, {"bucket", "path", "width", "height"});
  Picture picture{textField(value, "bucket"), textField(value, "path"), countField(value, "width"),
                  countField(value, "height")};
  if (picture.width == 0 || picture.height == 0) refuseField(key, "a picture with a size");
  return picture;
}

std::string reasonPhrase(int status) {
  return std::string(boost::beast::http::obsolete_reason(static_cast<boost::beast::http::status>(status)));
}

EmulatorResponse jsonResponse(const json& value, int status) {
  return {status, value.dump(-1, ' ', false, json::error_handler_t::replace), {}};
}

EmulatorResponse emptyResponse() { return jsonResponse(json::object()); }

EmulatorResponse refusalResponse(const Refusal& refusal, Date now) {
  json body{{"error", reasonPhrase(refusal.status)},
            {"statusCode", refusal.status},
            {"message", refusal.message},
            {"requestId", EmulatorText::randomHex()},
            {"timestamp", EmulatorText::dateText(now)}};
  if (!refusal.errorKey.empty()) body["errorKey"] = refusal.errorKey;
  return jsonResponse(body, refusal.status);
}

}  // namespace ZAK
