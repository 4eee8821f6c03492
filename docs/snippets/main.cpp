#include "Snippets.hpp"

#include <iostream>

int main() {
  int failed = 0;
  const std::pair<const char*, void (*)()> pages[] = {
      {"setup", setup},       {"sign-in", signIn},      {"errors", errors},
      {"requests", requests}, {"transfers", transfers}, {"threads", threads},
      {"testing", testing},   {"logging", logging},     {"deployment", deployment}};
  for (const auto& [name, page] : pages) {
    try {
      page();
    } catch (const std::exception& error) {
      std::cerr << name << ": " << error.what() << "\n";
      ++failed;
    }
  }
  return failed;
}
