#pragma once

#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/JSONEncoder.hpp>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>
#include <string>
#include <vector>

namespace ZAK::test {

/// The error that decoding ends with; a failure when it does not end with one.
template <class T>
DecodingError decodingError(JSONBody body, const JSONDecoder& decoder = JSONDecoder()) {
  try {
    (void)decoder.decode<T>(body);
  } catch (const DecodingError& error) {
    return error;
  }
  ADD_FAILURE() << "decoded: " << body.text();
  return DecodingError(DecodingError::Kind::dataCorrupted, {}, "");
}

/// Sends a full sample of a record through decoder and encoder, whole and with each field in turn missing, null and of
/// the wrong type. `required` are the keys that must be there; every other key of the sample may be missing.
template <class T>
void checkRecord(const nlohmann::json& sample, const std::set<std::string>& required) {
  const auto roundTrip = [](const nlohmann::json& body) {
    return nlohmann::json::parse(JSONEncoder().encode(JSONDecoder().decode<T>(body.dump())));
  };
  EXPECT_EQ(roundTrip(sample), sample);
  const T value = JSONDecoder().decode<T>(sample.dump());
  EXPECT_EQ(JSONDecoder().decode<T>(JSONEncoder().encode(value)), value);
  EXPECT_FALSE(value == T()) << "the sample must differ from an empty record";
  for (const std::string& key : required) EXPECT_TRUE(sample.contains(key)) << key;

  for (const auto& [key, content] : sample.items()) {
    SCOPED_TRACE(key);
    nlohmann::json missing = sample;
    missing.erase(key);
    nlohmann::json null = sample;
    null[key] = nullptr;
    nlohmann::json wrong = sample;
    wrong[key] = content.is_string() ? nlohmann::json(5) : nlohmann::json("text");

    if (required.contains(key)) {
      const DecodingError lost = decodingError<T>(missing.dump());
      EXPECT_EQ(lost.kind(), DecodingError::Kind::keyNotFound);
      EXPECT_EQ(lost.key(), key);
      for (std::size_t i = 0; i < key.size(); ++i) {
        nlohmann::json misspelt = missing;
        std::string other = key;
        other[i] = '#';
        misspelt[other] = content;
        EXPECT_EQ(decodingError<T>(misspelt.dump()).key(), key) << other;
      }
      const DecodingError voided = decodingError<T>(null.dump());
      EXPECT_EQ(voided.kind(), DecodingError::Kind::valueNotFound);
      EXPECT_EQ(voided.codingPath(), std::vector<CodingKey>{key});
    } else {
      EXPECT_EQ(roundTrip(missing), missing);
      EXPECT_EQ(roundTrip(null), missing);
    }
    const DecodingError mistyped = decodingError<T>(wrong.dump());
    EXPECT_EQ(mistyped.kind(), DecodingError::Kind::typeMismatch);
    EXPECT_EQ(mistyped.codingPath(), std::vector<CodingKey>{key});
  }
}

/// Compares the texts of an enumeration, in the order of its cases.
template <class E>
void checkRawValues(const std::vector<const char*>& texts) {
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(fromRawValue<E>(texts[i]), static_cast<E>(i)) << texts[i];
    EXPECT_EQ(rawValue(static_cast<E>(i)), texts[i]);
  }
  EXPECT_EQ(RawValues<E>::cases.size(), texts.size());
  EXPECT_EQ(fromRawValue<E>("nothing of the kind"), std::nullopt);
}

}  // namespace ZAK::test
