#include "support/Vectors.h"

#include "support/Capture.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <utility>

namespace Lumivane::Test {
namespace {

std::string dataDir(const char* variable, const char* folder) {
  const char* outside = std::getenv(variable);
  return outside != nullptr ? std::string(outside) : std::string(LUMIVANE_TEST_DATA "/") + folder;
}

class VectorTest : public ::testing::Test {
 public:
  VectorTest(VectorCase vectorCase, std::function<void(const VectorCase&)> check)
      : case_(std::move(vectorCase)), check_(std::move(check)) {}
  void TestBody() override {
    SCOPED_TRACE("in: " + case_.in.dump());
    check_(case_);
  }

 private:
  VectorCase case_;
  std::function<void(const VectorCase&)> check_;
};

class MissingVectors : public ::testing::Test {
 public:
  explicit MissingVectors(std::string why) : why_(std::move(why)) {}
  void TestBody() override { FAIL() << why_; }

 private:
  std::string why_;
};

VectorCase readCase(const std::string& operation, size_t index, const Json& json) {
  VectorCase result;
  result.operation = operation;
  result.index = index;
  result.in = json.at("in");
  if (json.contains("out")) result.out = json.at("out");
  if (json.contains("throws")) result.throws = json.at("throws").get<std::string>();
  if (json.contains("messages")) result.messages = json.at("messages");
  return result;
}

std::string thrownType(const std::function<void()>& work) {
  try {
    work();
  } catch (const std::out_of_range&) {
    return "std::out_of_range";
  } catch (const std::length_error&) {
    return "std::length_error";
  } catch (const std::invalid_argument&) {
    return "std::invalid_argument";
  } catch (const std::runtime_error&) {
    return "std::runtime_error";
  } catch (const std::exception& error) {
    return std::string("another exception: ") + error.what();
  }
  return "";
}

}  // namespace

std::string goldenDir() { return dataDir("LUMIVANE_GOLDEN_DIR", "golden"); }
std::string vectorsDir() { return dataDir("LUMIVANE_VECTORS_DIR", "vectors"); }

VectorTests::VectorTests(const std::string& operation,
                         std::function<void(const VectorCase&)> check) {
  const std::string path = vectorsDir() + "/" + operation + ".json";
  const std::string suite = "vectors_" + operation;
  // A folder given from outside may hold some of the operations only.
  if (!std::filesystem::exists(path) && std::getenv("LUMIVANE_VECTORS_DIR") != nullptr) return;
  try {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("cannot be read");
    const Json document = Json::parse(file);
    const Json& cases = document.at("cases");
    if (cases.empty()) throw std::runtime_error("no cases");
    for (size_t i = 0; i < cases.size(); ++i) {
      const VectorCase one = readCase(operation, i, cases[i]);
      ::testing::RegisterTest(
          suite.c_str(), ("Case" + std::to_string(i)).c_str(), nullptr, nullptr, __FILE__, __LINE__,
          [one, check]() -> ::testing::Test* { return new VectorTest(one, check); });
    }
  } catch (const std::exception& error) {
    const std::string why = path + ": " + error.what();
    ::testing::RegisterTest(suite.c_str(), "HasCases", nullptr, nullptr, __FILE__, __LINE__,
                            [why]() -> ::testing::Test* { return new MissingVectors(why); });
  }
}

double toDouble(const Json& value) {
  if (!value.is_string()) return value.get<double>();
  const std::string text = value.get<std::string>();
  if (text == "nan") return std::numeric_limits<double>::quiet_NaN();
  if (text == "inf") return std::numeric_limits<double>::infinity();
  if (text == "-inf") return -std::numeric_limits<double>::infinity();
  throw std::runtime_error("no number: " + text);
}

std::vector<double> toVector(const Json& value) {
  std::vector<double> result;
  for (const Json& element : value) result.push_back(toDouble(element));
  return result;
}

std::vector<std::vector<double>> toVectors(const Json& value) {
  std::vector<std::vector<double>> result;
  for (const Json& element : value) result.push_back(toVector(element));
  return result;
}

bool sameBits(double a, double b) {
  if (std::isnan(a) && std::isnan(b)) return true;
  return a == b && std::signbit(a) == std::signbit(b);
}

::testing::AssertionResult sameBits(const std::vector<double>& expected,
                                    const std::vector<double>& actual) {
  if (expected.size() != actual.size())
    return ::testing::AssertionFailure()
           << "expected " << expected.size() << " values, got " << actual.size();
  for (size_t i = 0; i < expected.size(); ++i) {
    if (sameBits(expected[i], actual[i])) continue;
    ::testing::AssertionResult failure = ::testing::AssertionFailure();
    failure << "value " << i << ": expected " << Json(expected[i]).dump() << ", got "
            << Json(actual[i]).dump();
    return failure;
  }
  return ::testing::AssertionSuccess();
}

::testing::AssertionResult sameBits(const std::vector<std::vector<double>>& expected,
                                    const std::vector<std::vector<double>>& actual) {
  if (expected.size() != actual.size())
    return ::testing::AssertionFailure()
           << "expected " << expected.size() << " rows, got " << actual.size();
  for (size_t i = 0; i < expected.size(); ++i) {
    const ::testing::AssertionResult row = sameBits(expected[i], actual[i]);
    if (!row) return ::testing::AssertionFailure() << "row " << i << ": " << row.message();
  }
  return ::testing::AssertionSuccess();
}

void checkedRun(const VectorCase& vectorCase, const std::function<void()>& work) {
  std::string thrown;
  const std::string printed = capturedStdout([&] { thrown = thrownType(work); });
  EXPECT_EQ(vectorCase.throws, thrown);
  if (vectorCase.messages.is_null()) return;
  std::string expected;
  for (const Json& message : vectorCase.messages) expected += message.get<std::string>();
  EXPECT_EQ(expected, printed);
}

}  // namespace Lumivane::Test
