#pragma once

#include <lumivane/io/DataReader.h>
#include <lumivane/session/Error.h>
#include <lumivane/session/Files.h>

#include <memory>
#include <new>
#include <string>

namespace Lumivane::Session {

/// Why a text is no document.
std::string parserError(const std::string& text);

/// The first colour or pen of a document that the model refuses, in words; empty if there is none.
std::string refusedValue(const std::string& text);

/// Reads the text of a document by one of the reader's operations.
/// \throws Error
template <class Model>
std::unique_ptr<Model> readText(const std::string& text, const std::string& name,
                                Model* (IO::DataReader::*read)(const std::string&)) {
  std::unique_ptr<Model> model;
  IO::DataReader reader;
  try {
    model.reset((reader.*read)(text));
  } catch (const std::bad_alloc&) {
    throw;  // a text for it would need memory as well
  } catch (const std::exception& error) {
    const std::string place = refusedValue(text);
    throw Error(name, place.empty() ? error.what() : place);
  }
  if (model == nullptr) throw Error(name, parserError(text));
  return model;
}

}  // namespace Lumivane::Session
