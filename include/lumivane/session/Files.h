#pragma once

#include <lumivane/io/FileReading.h>
#include <lumivane/io/FileWriting.h>

/// Files read and written, under the session's name, so that a host needs one room only.
namespace Lumivane::Session {

using IO::checkReadable;
using IO::checkWritable;
using IO::readBytes;
using IO::readDocument;
using IO::removeUnfinishedFiles;
using IO::sameFile;
using IO::writeFile;
using IO::writtenFile;

}  // namespace Lumivane::Session
