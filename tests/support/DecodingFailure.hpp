#pragma once

#include <zvapikit/json/JSONDecoder.hpp>

#include <gtest/gtest.h>

namespace ZAK::Tests {

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

}  // namespace ZAK::Tests
