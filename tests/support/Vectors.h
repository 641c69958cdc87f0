#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace Lumivane::Test {

using Json = nlohmann::json;

/// The folder of the shots that must come out; LUMIVANE_GOLDEN_DIR overrides the project's own.
std::string goldenDir();

/// The folder of inputs and results of single operations; LUMIVANE_VECTORS_DIR overrides it.
std::string vectorsDir();

/// One case of a file of vectorsDir(): see its README for the shapes.
struct VectorCase {
  std::string operation;
  size_t index = 0;
  Json in;
  Json out;            ///< null when the case throws
  std::string throws;  ///< type of the exception expected, e.g. "std::out_of_range", or empty
  Json messages;       ///< what must be printed, or null
};

/// Registers one GoogleTest per case of OPERATION.json, named `vectors_OPERATION.Case<n>`. A
/// missing or empty file registers one failing test. Call it before RUN_ALL_TESTS, through a
/// static VectorTests object.
class VectorTests {
 public:
  VectorTests(const std::string& operation, std::function<void(const VectorCase&)> check);
};

/// A double of a vector file: a number, or "nan", "inf", "-inf".
double toDouble(const Json& value);
std::vector<double> toVector(const Json& value);
std::vector<std::vector<double>> toVectors(const Json& value);

/// Whether two doubles are the same: equal bits, or both not a number.
bool sameBits(double a, double b);
::testing::AssertionResult sameBits(const std::vector<double>& expected,
                                    const std::vector<double>& actual);
::testing::AssertionResult sameBits(const std::vector<std::vector<double>>& expected,
                                    const std::vector<std::vector<double>>& actual);

/// Runs `work`, compares its printed text with the case's messages (joined) where it has some, and
/// the exception thrown with the case's `throws`.
void checkedRun(const VectorCase& vectorCase, const std::function<void()>& work);

}  // namespace Lumivane::Test
