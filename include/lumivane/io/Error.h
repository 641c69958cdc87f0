#pragma once

#include <lumivane/export.h>

#include <stdexcept>
#include <string>

namespace Lumivane::IO {

/// What the operations on files, and all of the session, throw when they cannot do their work: the
/// file or name concerned and the cause, as "SUBJECT: CAUSE".
///
/// The text is one line of UTF-8, whatever came in, as `oneLine` makes it.
class LUMIVANE_EXPORT Error : public std::runtime_error {
 public:
  /// "SUBJECT: CAUSE".
  Error(const std::string& subject, const std::string& cause);
  Error(const Error&) noexcept = default;             ///< Shares the text.
  Error& operator=(const Error&) noexcept = default;  ///< Shares the text.
  ~Error() override;

  /// The file, or the name that a scene was given.
  std::string subject() const;
  /// What is wrong with it; never empty unless it was given so.
  std::string cause() const;

 private:
  size_t subjectLength;  // in what(); an exception's copy must not throw, so no strings are kept
};

/// The text with its line ends and other control characters as spaces, since an error is one line,
/// and with U+FFFD for what is not UTF-8.
LUMIVANE_EXPORT std::string oneLine(const std::string& text);

}  // namespace Lumivane::IO
