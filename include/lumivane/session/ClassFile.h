#pragma once

#include <lumivane/export.h>

#include <string>

namespace Lumivane::Session {

class LoadedScene;

/// Tables that say what the surfaces of a scene are (CSV with one heading). Columns:
///
/// - `object`, the number of an object from 1, or `id`, its id as tables show it (`idText`), or
///   both, which must agree then; an id that several objects have means all of them;
/// - `face`, optional: the number of a face from 1 in the object; empty for the whole object;
/// - `class`: any text; empty for none.
///
/// A row of a face comes before one of its object, in whatever order they stand. What no row names
/// stays what it was.

/// Sets classes of a scene by a table's file.
/// \throws Error that names file, line and column: if it cannot be read, has other columns, names
/// an
///         object or face that the scene does not have, or gives one surface two classes. The
///         scene's classes are as before then
LUMIVANE_EXPORT void readClasses(LoadedScene& scene, const std::string& path);

/// The same of a table's text; `name` stands in errors.
LUMIVANE_EXPORT void readClassesText(LoadedScene& scene, const std::string& text,
                                     const std::string& name);

/// The table of a scene's classes: columns `id`, `face` and `class`, a row for each object whose
/// regions all have one class, and one for each face with a class of the others. Of a face whose
/// regions differ the first one's counts.
LUMIVANE_EXPORT std::string classesText(const LoadedScene& scene);

/// The name of the table that belongs to a scene file and lies beside it: "room.classes.csv" for
/// "room.json".
LUMIVANE_EXPORT std::string classFileBeside(const std::string& scenePath);

/// Sets the classes of a scene by the table beside its file (`LoadedScene::name`), if there is one.
/// \return whether there is one \throws Error as `readClasses`
LUMIVANE_EXPORT bool readClassesBeside(LoadedScene& scene);

}  // namespace Lumivane::Session
