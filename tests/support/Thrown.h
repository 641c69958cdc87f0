#pragma once

#include <exception>
#include <functional>
#include <string>

namespace Lumivane::Test {

/// The text of the exception of type Exception that `work` throws; "nothing thrown" if none.
/// Exceptions of other types pass through and fail the test.
template <class Exception>
std::string thrownText(const std::function<void()>& work) {
  try {
    work();
  } catch (const Exception& error) {
    return error.what();
  }
  return "nothing thrown";
}

}  // namespace Lumivane::Test
