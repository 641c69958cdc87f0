#include "Commands.h"
#include "HostError.h"
#include "Options.h"
#include "OutputNames.h"

#include <lumivane/io/DataReader.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Parser.h>
#include <lumivane/session/Files.h>

#include <iostream>

namespace Lumivane::Host {
namespace {

// Infinity and NaN have a JSON5 form but no JSON form.
void warnIfNoJson(const std::string& file, const std::string& json) {
  Jzon::Parser parser;
  if (parser.parseString(json).isValid()) return;
  std::cerr << "lumivane: " << oneLine(file)
            << ": warning: the result is not JSON: " << oneLine(parser.getError()) << std::endl;
}

}  // namespace

void runJson5(const Json5Options& options) {
  OutputNames({options.file}).add("--output", options.out);
  const std::string json = IO::DataReader().Json5_to_Json(Session::readBytes(options.file));
  if (json.empty()) throw HostError(options.file, "cannot be converted");
  warnIfNoJson(options.file, json);
  if (options.out.empty())
    std::cout << json << '\n';
  else
    Session::writeFile(options.out, json + "\n");
}

}  // namespace Lumivane::Host
