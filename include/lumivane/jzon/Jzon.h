#pragma once

/// \file
/// The whole JSON layer.

#include <lumivane/jzon/Format.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Parser.h>
#include <lumivane/jzon/Writer.h>
